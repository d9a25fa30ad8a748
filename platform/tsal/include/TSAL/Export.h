#pragma once

// Only the build of the library defines TSAL_BUILD.
#if defined(_WIN32) && defined(TSAL_BUILD)
#define TSAL_API __declspec(dllexport)
#elif defined(_WIN32)
#define TSAL_API __declspec(dllimport)
#else
#define TSAL_API __attribute__((visibility("default")))
#endif
