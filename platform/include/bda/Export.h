#pragma once

// What the shared libraries offer; everything else of them is hidden.
//   BDA_API           an operation or a class of libbda
//   BDA_PLATFORM_API  a class, a function or a table of libbda-platform
#define BDA_API __attribute__((visibility("default")))
#define BDA_PLATFORM_API __attribute__((visibility("default")))
