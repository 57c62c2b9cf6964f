#pragma once

// What the module takes from compilers beyond the standard; Export.h has the attributes of what is exported. Nothing
// else here does: that g++, clang, Apple's clang and Visual C++ compile it is a matter of these two headers.

// As a default argument: the line of the call. Of std::source_location, clang 14 finds none in libstdc++; the function
// is that of g++ and clang, and Visual C++ 19.26 took it over.
#define BDA_CALLERS_LINE __builtin_LINE()
