// Texts out of files and numbers, ready to be printed: valid UTF-8, no control characters.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Ketra::Tool {

/// Replaces what is not UTF-8 by U+FFFD.
std::string validUtf8(std::string_view bytes);

/// For one line of a terminal: control characters become \xNN.
std::string oneLine(std::string_view text);

/// The four characters of a code. 0xA9 is the copyright sign that names of user data begin with; other bytes
/// outside ASCII, and control characters, become \xNN.
std::string codeText(unsigned int code);

/// At most `limit` bytes as hexadecimal digits, with "..." behind them when there are more.
std::string hexText(const unsigned char* bytes, std::uint64_t count, std::uint64_t limit = 32);

/// UTF-8, or UTF-16 when a byte order mark says so.
std::string markedText(const unsigned char* bytes, std::uint64_t count);

/// ticks / scale with six decimals, computed in integers so that the last digit is right; 0 for a scale of 0.
std::string secondsText(std::int64_t ticks, unsigned int scale);

/// A packed ISO 639-2 code as its three letters, or "mac:N" for a Macintosh language number.
std::string languageText(unsigned short packed);

} // namespace Ketra::Tool
