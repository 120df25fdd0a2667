// Chapter titles: as text lines "HH:MM:SS.mmm Title", and as they are found in a movie.
#pragma once

#include <qt/QTMovie.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Ketra::Tool {

struct Chapter {
    std::uint64_t start = 0; ///< milliseconds
    std::string title;       ///< UTF-8
};

/// Reads such lines; empty ones are passed over. Throws ToolError for a file that cannot be read, and for a
/// line that is none or goes back in time.
std::vector<Chapter> readChapters(const std::string& path);
std::string chapterLine(const Chapter& chapter);

/// IDs of the tracks that others name as their chapters.
std::vector<unsigned int> chapterTracks(const QT::QTMovie& movie);
/// The titles of the first of them; empty ones, which only fill time, are left out.
std::vector<Chapter> chaptersOf(const QT::QTMovie& movie);

} // namespace Ketra::Tool
