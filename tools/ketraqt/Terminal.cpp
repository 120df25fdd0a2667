#include "Terminal.h"

#include <cstdlib>
#include <fmt/format.h>
#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace Ketra::Tool {

namespace {

bool isSet(const char* name) {
    const char* value = std::getenv(name);
    return value && *value;
}

#ifdef _WIN32

/// A console takes escape sequences only when told to.
bool takesEscapes(std::FILE* stream) {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) && SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

#else

bool takesEscapes(std::FILE*) {
    const char* kind = std::getenv("TERM");
    return kind && *kind && std::string_view(kind) != "dumb";
}

#endif

} // namespace

bool isTerminal(std::FILE* stream) {
#ifdef _WIN32
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

bool wantsColours(std::FILE* stream) {
    return isTerminal(stream) && !isSet("NO_COLOR") && takesEscapes(stream);
}

std::string coloured(std::string_view text, Colour colour, bool wanted) {
    if (!wanted) return std::string(text);
    return fmt::format("\x1b[{}m{}\x1b[0m", static_cast<int>(colour), text);
}

} // namespace Ketra::Tool
