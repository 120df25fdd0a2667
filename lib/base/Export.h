// The export macro of the library. Every public class carries it; nothing else leaves the shared library.
#pragma once

#if defined(_WIN32)
#if defined(KETRA_QT_BUILDING)
#define KETRA_QT_API __declspec(dllexport)
#else
#define KETRA_QT_API __declspec(dllimport)
#endif
#define KETRA_QT_LOCAL
#else
#define KETRA_QT_API __attribute__((visibility("default")))
// For a private class inside a public one, which would leave the library with it.
#define KETRA_QT_LOCAL __attribute__((visibility("hidden")))
#endif
