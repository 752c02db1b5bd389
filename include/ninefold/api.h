/* How the interface's names are exported. A Windows program that links the library statically defines NINEFOLD_STATIC. */
#ifndef NINEFOLD_API_H
#define NINEFOLD_API_H

#include <stdint.h>

#if defined(_WIN32)
#if defined(NINEFOLD_BUILD)
#define NINEFOLD_API __declspec(dllexport)
#elif defined(NINEFOLD_STATIC)
#define NINEFOLD_API
#else
#define NINEFOLD_API __declspec(dllimport)
#endif
#else
#define NINEFOLD_API __attribute__((visibility("default")))
#endif

#endif
