// What `check` has to say about one place of a file.
#pragma once

#include <cstdint>
#include <string>

namespace Ketra::Tool {

enum class Severity {
    Note,    ///< allowed, but worth knowing
    Warning, ///< against the rules; readers cope, or each does something else
    Error    ///< media or tables cannot be read as they say
};

struct Finding {
    Severity severity;
    std::string rule;        ///< short kebab-case name
    std::string path;        ///< moov/trak[2]/mdia/minf/stbl/stsz; empty: the file as a whole
    std::uint64_t offset;    ///< bytes from the start of the file: the atom, or the entry at fault in it
    std::string text;        ///< one line, valid UTF-8
    std::uint64_t count = 1; ///< how often; the text is that of the first
};

} // namespace Ketra::Tool
