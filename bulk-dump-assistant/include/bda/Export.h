#pragma once

// Marks the classes that the shared library exports; everything else of it is hidden.
#define BDA_API __attribute__((visibility("default")))
