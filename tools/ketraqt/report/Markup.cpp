#include "report/Markup.h"

#include "Text.h"

#include <cmath>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

bool continues(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// As many bytes as the first characters take.
std::size_t lengthOf(std::string_view text, std::size_t characters) {
    std::size_t end = 0;
    while (end < text.size() && characters > 0) {
        do {
            ++end;
        } while (end < text.size() && continues(text[end]));
        --characters;
    }
    return end;
}

/// Control characters of two bytes, and those that are no characters, which a page must not hold.
bool forbidden(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (text.size() >= 2 && byte(0) == 0xC2 && byte(1) < 0xA0) return true;
    return text.size() >= 3 && byte(0) == 0xEF &&
           ((byte(1) == 0xBF && byte(2) >= 0xBE) || (byte(1) == 0xB7 && byte(2) >= 0x90 && byte(2) <= 0xAF));
}

std::string scaled(double number, const char* const* units, std::size_t count) {
    constexpr double kStep = 1000;
    std::size_t unit = 0;
    while (number >= kStep && unit + 1 < count) {
        number /= kStep;
        ++unit;
    }
    const int decimals = unit == 0 || number >= 100 ? 0 : number >= 10 ? 1 : 2;
    return decimal(number, decimals) + " " + units[unit];
}

} // namespace

std::string escaped(std::string_view text, std::size_t longest) {
    // Four bytes are the most that a character takes; what comes behind them is not even looked at.
    const bool cut = text.size() > longest * 4;
    std::string line = oneLine(validUtf8(text.substr(0, longest * 4)));
    const std::size_t end = lengthOf(line, longest);
    const bool more = cut || end < line.size();
    line.resize(end);
    std::string out;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (forbidden(std::string_view(line).substr(i))) {
            out += "\xEF\xBF\xBD";
            while (i + 1 < line.size() && continues(line[i + 1])) {
                ++i;
            }
        } else if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else if (c == '>') {
            out += "&gt;";
        } else if (c == '"') {
            out += "&quot;";
        } else if (c == '\'') {
            out += "&#39;";
        } else {
            out += c;
        }
    }
    return more ? out + "\xE2\x80\xA6" : out;
}

std::string foreign(std::string_view text, std::size_t longest) {
    return "<bdi>" + escaped(text, longest) + "</bdi>";
}

std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3; i -= 3) {
        digits.insert(i - 3, "\xE2\x80\xAF"); // a narrow space that no line breaks at
    }
    return digits;
}

std::string plural(std::uint64_t number, std::string_view one, std::string_view many) {
    return grouped(number) + " " + std::string(number == 1 ? one : many);
}

std::string decimal(double number, int decimals) {
    if (!std::isfinite(number)) return "0";
    std::string text = fmt::format("{:.{}f}", number, decimals);
    if (text.find('.') == std::string::npos) return text;
    while (text.back() == '0') {
        text.pop_back();
    }
    if (text.back() == '.') text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string bytesText(double bytes) {
    constexpr const char* kUnits[] = {"B", "kB", "MB", "GB", "TB", "PB", "EB"};
    return scaled(bytes, kUnits, std::size(kUnits));
}

std::string rateText(double bits) {
    constexpr const char* kUnits[] = {"bit/s", "kbit/s", "Mbit/s", "Gbit/s", "Tbit/s"};
    return scaled(bits, kUnits, std::size(kUnits));
}

std::string timeText(double seconds) {
    constexpr double kLongest = 1e12; // thirty thousand years
    if (seconds < 0) return "\xE2\x88\x92" + timeText(-seconds);
    if (!(seconds < kLongest)) return "\xE2\x80\x94";
    if (seconds > 0 && seconds < 0.001) return decimal(seconds * 1000, 3) + " ms";
    if (seconds < 1) return decimal(seconds, 4) + " s";
    if (seconds < 60) return decimal(seconds, 2) + " s";
    const auto tenths = static_cast<std::uint64_t>(std::llround(seconds * 10));
    const std::uint64_t whole = tenths / 10;
    const std::string rest = tenths % 10 ? fmt::format(".{}", tenths % 10) : std::string();
    if (whole < 3600) return fmt::format("{}:{:02}{}", whole / 60, whole % 60, rest);
    return fmt::format("{}:{:02}:{:02}{}", whole / 3600, whole / 60 % 60, whole % 60, rest);
}

std::string percentText(double share) {
    const double percent = share * 100;
    if (percent > 0 && percent < 0.1) return "< 0.1 %";
    return decimal(percent, percent < 10 ? 1 : 0) + " %";
}

std::string at(double share) { return decimal(share * 100, 3) + "%"; }

void addFact(std::string& page, std::string_view name, std::string_view markup) {
    fmt::format_to(std::back_inserter(page), "<div><dt>{}</dt><dd>{}</dd></div>", name, markup);
}

} // namespace Ketra::Tool::Report
