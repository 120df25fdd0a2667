#include "Arguments.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
// The second needs the first.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on
#endif

namespace Ketra::Tool {

#if defined(_WIN32)

namespace {

std::string toUtf8(const wchar_t* wide) {
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 1, '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, text.data(), length, nullptr, nullptr);
    text.pop_back(); // the zero, which the string has already
    return text;
}

} // namespace

std::vector<std::string> arguments(int argc, char** argv) {
    SetConsoleOutputCP(CP_UTF8);
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!wide) return {argv + 1, argv + argc};
    std::vector<std::string> all;
    for (int i = 1; i < count; ++i) {
        all.push_back(toUtf8(wide[i]));
    }
    LocalFree(wide);
    return all;
}

#else

std::vector<std::string> arguments(int argc, char** argv) { return {argv + (argc > 0 ? 1 : 0), argv + argc}; }

#endif

} // namespace Ketra::Tool
