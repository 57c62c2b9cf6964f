#pragma once

// What the libraries offer; everything else of them is hidden.
//   BDA_API           an operation or a class of libbda
//   BDA_PLATFORM_API  a class, a function or a table of libbda-platform
//
// BDA_STATIC is defined for whoever compiles or uses static libraries, BDA_EXPORTS and BDA_PLATFORM_EXPORTS while the
// shared ones are compiled: the CMake targets and pkg-config see to it. The only public header that names what is a
// compiler's own.
#if defined(BDA_STATIC)
#define BDA_API
#define BDA_PLATFORM_API
#elif defined(_WIN32)
#ifdef BDA_EXPORTS
#define BDA_API __declspec(dllexport)
#else
#define BDA_API __declspec(dllimport)
#endif
#ifdef BDA_PLATFORM_EXPORTS
#define BDA_PLATFORM_API __declspec(dllexport)
#else
#define BDA_PLATFORM_API __declspec(dllimport)
#endif
#else
#define BDA_API __attribute__((visibility("default")))
#define BDA_PLATFORM_API __attribute__((visibility("default")))
#endif
