// Nothing of its own: gives the precompiled headers of the tests a target to live in.
