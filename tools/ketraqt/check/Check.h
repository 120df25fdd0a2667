// Looking for what a file does against the rules of its format.
#pragma once

#include "check/Finding.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ketra::Tool {

class Source;

/// Everything found, in the order of the file. The time is linear in the size of the tables, and the memory
/// does not follow what they claim. A file without a movie header has at least one finding.
std::vector<Finding> checkMovie(Source& source);

/// "note", "warning" or "error".
std::string_view severityName(Severity severity);

/// The place and what is wrong, "path @0x1a3f: text (and 3 more)".
std::string findingText(const Finding& finding);

/// The message, behind the place of the first error that may be the reason for it: one in the track with the
/// ID, or, without one, anywhere.
std::string withPlace(Source& source, const std::string& text, std::optional<unsigned int> track);

} // namespace Ketra::Tool
