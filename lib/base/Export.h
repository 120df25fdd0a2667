// The export macro of the library. Every public class carries it; nothing else leaves the shared library.
#pragma once

#if defined(_WIN32)
#if defined(KETRA_QT_BUILDING)
#define KETRA_QT_API __declspec(dllexport)
#else
#define KETRA_QT_API __declspec(dllimport)
#endif
#else
#define KETRA_QT_API __attribute__((visibility("default")))
#endif
