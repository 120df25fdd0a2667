#include "Output.h"
#include "remux/Chapters.h"
#include "remux/Remux.h"

namespace Ketra::Tool {

void runChapters(const ChapterOptions& options) {
    if (!options.importFrom.empty()) {
        RemuxOptions remux;
        remux.file = options.file;
        remux.output = options.output;
        remux.chapters = options.importFrom;
        remux.force = options.force;
        runRemux(remux);
        return;
    }
    Source source(options.file);
    const auto movie = openMovie(source);
    const std::vector<Chapter> chapters = chaptersOf(*movie);
    const auto list = [&chapters](Output& output) {
        for (const Chapter& chapter : chapters) {
            output.write(chapterLine(chapter));
        }
        output.finish();
    };
    if (options.exportTo.empty() || options.exportTo == "-") {
        Output output;
        list(output);
    } else {
        Output output(options.exportTo);
        list(output);
    }
}

} // namespace Ketra::Tool
