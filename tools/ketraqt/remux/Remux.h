// Writing a movie anew from the tracks of another: the base of the commands that write.
#pragma once

#include "remux/Plan.h"

namespace Ketra::Tool {

void runRemux(const RemuxOptions& options);

struct ChapterOptions {
    std::string file;
    std::string importFrom; ///< empty: list or export
    std::string exportTo;
    std::string output;
    bool force = false;
};
void runChapters(const ChapterOptions& options);

struct TimecodeOptions {
    std::string file;
    std::string start; ///< empty: print
    std::string rate;
    std::string output;
    bool force = false;
};
void runTimecode(const TimecodeOptions& options);

} // namespace Ketra::Tool
