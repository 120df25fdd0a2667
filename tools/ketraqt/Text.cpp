#include "Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD"; // U+FFFD

bool isControl(unsigned char c) { return c < 0x20 || c == 0x7F; }

void putUtf8(std::string& out, std::uint32_t c) {
    const auto tail = [&out, c](int shift) { out += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// The length of the well-formed sequence that the bytes begin with, or 0.
std::size_t sequenceLength(std::string_view bytes) {
    const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char first = at(0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || bytes.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) return 0;
    }
    // Longer than needed, a surrogate, or beyond the last character.
    const bool wrong = (first == 0xE0 && at(1) < 0xA0) || (first == 0xED && at(1) > 0x9F) ||
                       (first == 0xF0 && at(1) < 0x90) || (first == 0xF4 && at(1) > 0x8F);
    return wrong ? 0 : length;
}

std::string fromUtf16(const unsigned char* bytes, std::uint64_t count, bool bigEndian) {
    const auto unit = [=](std::uint64_t i) {
        const unsigned int high = bytes[i + (bigEndian ? 0 : 1)];
        const unsigned int low = bytes[i + (bigEndian ? 1 : 0)];
        return high << 8 | low;
    };
    std::string out;
    for (std::uint64_t i = 0; i + 2 <= count; i += 2) {
        const unsigned int first = unit(i);
        if (first >= 0xD800 && first < 0xDC00 && i + 4 <= count) {
            const unsigned int second = unit(i + 2);
            if (second >= 0xDC00 && second < 0xE000) {
                putUtf8(out, 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00));
                i += 2;
                continue;
            }
        }
        putUtf8(out, first >= 0xD800 && first < 0xE000 ? 0xFFFD : first);
    }
    return out;
}

} // namespace

std::string validUtf8(std::string_view bytes) {
    std::string out;
    while (!bytes.empty()) {
        const std::size_t length = sequenceLength(bytes);
        out += length ? bytes.substr(0, length) : kReplacement;
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

std::string oneLine(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (isControl(static_cast<unsigned char>(c))) {
            fmt::format_to(std::back_inserter(out), "\\x{:02x}", static_cast<unsigned char>(c));
        } else {
            out += c;
        }
    }
    return out;
}

std::string codeText(unsigned int code) {
    std::string out;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto c = static_cast<unsigned char>(code >> shift);
        if (c == 0xA9) {
            out += "\xC2\xA9";
        } else if (isControl(c) || c > 0x7F) {
            fmt::format_to(std::back_inserter(out), "\\x{:02x}", c);
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

std::string hexText(const unsigned char* bytes, std::uint64_t count, std::uint64_t limit) {
    std::string out;
    for (std::uint64_t i = 0; bytes && i < std::min(count, limit); ++i) {
        fmt::format_to(std::back_inserter(out), "{:02x}", bytes[i]);
    }
    if (bytes && count > limit) out += "...";
    return out;
}

std::string markedText(const unsigned char* bytes, std::uint64_t count) {
    if (!bytes) return {};
    if (count >= 2 && bytes[0] == 0xFE && bytes[1] == 0xFF) return fromUtf16(bytes + 2, count - 2, true);
    if (count >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) return fromUtf16(bytes + 2, count - 2, false);
    return validUtf8({reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)});
}

std::string secondsText(std::int64_t ticks, unsigned int scale) {
    constexpr std::uint64_t kDecimals = 1000000;
    if (scale == 0) return "0.000000";
    const std::uint64_t size =
        ticks < 0 ? 0 - static_cast<std::uint64_t>(ticks) : static_cast<std::uint64_t>(ticks);
    std::uint64_t whole = size / scale;
    std::uint64_t part = (size % scale * kDecimals + scale / 2) / scale;
    if (part == kDecimals) {
        ++whole;
        part = 0;
    }
    return fmt::format("{}{}.{:06}", ticks < 0 ? "-" : "", whole, part);
}

std::string languageText(unsigned short packed) {
    constexpr unsigned short kFirstPacked = 0x400; // below it, a Macintosh language number
    constexpr unsigned short kUnspecified = 0x7FFF;
    if (packed == kUnspecified) return "und";
    if (packed < kFirstPacked) return fmt::format("mac:{}", packed);
    std::string out;
    for (int shift = 10; shift >= 0; shift -= 5) {
        const int letter = packed >> shift & 0x1F;
        out += letter >= 1 && letter <= 26 ? static_cast<char>('a' + letter - 1) : '?';
    }
    return out;
}

} // namespace Ketra::Tool
