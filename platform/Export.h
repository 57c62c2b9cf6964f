#pragma once

// Marks what the platform library offers as a symbol; everything else of it is header-only.
#define BDA_PLATFORM_API __attribute__((visibility("default")))
