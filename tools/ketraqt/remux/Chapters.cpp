#include "remux/Chapters.h"

#include "Atoms.h"
#include "FrameWalk.h"
#include "Output.h"
#include "Text.h"
#include "ToolError.h"
#include "UserText.h"

#include <qt/QTAtoms.h>
#include <qt/QTTrack.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fmt/format.h>
#include <fstream>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kLongestTitle = 65535 - 2; // a text sample counts its bytes with 16 bits

Chapter parseLine(const std::string& line) {
    unsigned int hours = 0;
    unsigned int minutes = 0;
    unsigned int seconds = 0;
    unsigned int thousandths = 0;
    int used = 0;
    const int found =
        std::sscanf(line.c_str(), "%3u:%2u:%2u.%3u%n", &hours, &minutes, &seconds, &thousandths, &used);
    const auto at = static_cast<std::size_t>(used);
    if (found != 4 || minutes > 59 || seconds > 59 || at < 4 || line[at - 4] != '.' || at >= line.size() ||
        line[at] != ' ' || line.size() - at > kLongestTitle) {
        throw ToolError(kUsage, fmt::format("not a chapter (HH:MM:SS.mmm Title): {}", line.substr(0, 80)));
    }
    return {((hours * 60ULL + minutes) * 60 + seconds) * 1000 + thousandths, validUtf8(line.substr(at + 1))};
}

} // namespace

std::vector<Chapter> readChapters(const std::string& path) {
    std::ifstream file(nativePath(path), std::ios::binary);
    if (!file) throw ToolError(kCannotRead, fmt::format("the chapters {} cannot be read", path));
    std::vector<Chapter> chapters;
    std::string line;
    while (std::getline(file, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (chapters.empty() && line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3); // a mark of its coding
        if (line.empty()) continue;
        const Chapter chapter = parseLine(line);
        if (!chapters.empty() && chapter.start <= chapters.back().start) {
            throw ToolError(kUsage, fmt::format("chapters must follow one another: {}", line.substr(0, 80)));
        }
        chapters.push_back(chapter);
    }
    if (file.bad()) throw ToolError(kCannotRead, fmt::format("the chapters {} cannot be read", path));
    return chapters;
}

std::string chapterLine(const Chapter& chapter) {
    const std::uint64_t seconds = chapter.start / 1000;
    return fmt::format("{:02}:{:02}:{:02}.{:03} {}\n", seconds / 3600, seconds / 60 % 60, seconds % 60,
                       chapter.start % 1000, oneLine(chapter.title));
}

std::vector<unsigned int> chapterTracks(const QT::QTMovie& movie) {
    std::vector<unsigned int> ids;
    for (const QT::QTTrack* track : movie.getTracks()) {
        for (const QT::QTAtom* child : track->getTrak()->getChildren()) {
            if (child->getType() != fourCC("tref")) continue;
            const auto* named = childOf<QT::CHAP>(child, fourCC("chap"));
            if (named && std::find(ids.begin(), ids.end(), named->getTrackID()) == ids.end()) {
                ids.push_back(named->getTrackID());
            }
        }
    }
    return ids;
}

std::vector<Chapter> chaptersOf(const QT::QTMovie& movie) {
    std::vector<Chapter> chapters;
    for (const unsigned int id : chapterTracks(movie)) {
        QT::QTTrack* track = movie.getTrackID(id);
        if (!track || !chapters.empty()) continue;
        FrameWalk walk(*track);
        FramePlace place;
        while (const auto frame = walk.next(place)) {
            const std::string title = sampleText(frame->getData(), frame->getDataLength());
            if (title.empty()) continue;
            chapters.push_back({static_cast<std::uint64_t>(std::llround(frame->getTime() * 1000)), title});
        }
    }
    return chapters;
}

} // namespace Ketra::Tool
