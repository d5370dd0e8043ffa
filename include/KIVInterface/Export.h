#pragma once

// KIV_API marks what the shared library exports. KIV_STATIC is set where the classes are linked in
// directly (the tool, the tests); KIV_BUILDING where the library itself is compiled.
#if defined(_MSC_VER)
#error "Visual C++ cannot link the classes: use kiv.h (C) or kiv.hpp (C++17), and kiv.lib"
#endif
#if defined(KIV_STATIC)
#define KIV_API
#elif defined(_WIN32)
#if defined(KIV_BUILDING)
#define KIV_API __declspec(dllexport)
#else
#define KIV_API __declspec(dllimport)
#endif
#else
#define KIV_API __attribute__((visibility("default")))
#endif
