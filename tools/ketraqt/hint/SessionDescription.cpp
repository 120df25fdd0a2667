#include "SessionDescription.h"

#include <algorithm>

namespace Ketra::Tool {

namespace {

constexpr std::string_view kSessionOrder = "vosiuepcbtrzka";
constexpr std::string_view kMediaOrder = "micbka";

/// Lines in their order; of one kind, in the order in which they came. Other kinds have no place.
std::string ordered(const std::vector<std::string>& lines, std::string_view order) {
    std::string text;
    for (const char kind : order) {
        for (const std::string& line : lines) {
            if (line[0] == kind) text += line + "\r\n";
        }
    }
    return text;
}

} // namespace

std::vector<std::string> sessionLines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string_view line = text.substr(0, end);
        const bool plain = std::none_of(line.begin(), line.end(), [](char c) {
            return static_cast<unsigned char>(c) < ' ' && c != '\t';
        });
        if (line.size() > 2 && line[1] == '=' && plain) lines.emplace_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

void SessionDescription::addSessionText(std::string_view text) {
    for (std::string& line : sessionLines(text)) {
        if (line[0] == 'm') return;
        session_.push_back(std::move(line));
    }
}

void SessionDescription::addDefault(const std::string& kind, const std::string& value) {
    const bool there = std::any_of(session_.begin(), session_.end(),
                                   [&kind](const std::string& line) { return line.rfind(kind, 0) == 0; });
    if (!there) session_.push_back(kind + value);
}

void SessionDescription::addMediaText(std::string_view text) {
    std::vector<std::string> section;
    for (std::string& line : sessionLines(text)) {
        if (line[0] == 'm' && !section.empty()) break;
        if (line[0] == 'm' || !section.empty()) section.push_back(std::move(line));
    }
    if (!section.empty()) media_.push_back(std::move(section));
}

std::string SessionDescription::text() const {
    std::string text = ordered(session_, kSessionOrder);
    for (const auto& section : media_) {
        text += ordered(section, kMediaOrder);
    }
    return text;
}

} // namespace Ketra::Tool
