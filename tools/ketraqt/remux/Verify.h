// Reading a written movie back against what was to be written.
#pragma once

#include "Progress.h"
#include "remux/Plan.h"

#include <string>

namespace Ketra::Tool {

/// Compares every frame of the file with the packets of the plan: bytes, sizes, times to the tick, key marks.
/// Throws ToolError for the first difference.
void verify(Plan& plan, const std::string& path, Progress& progress, std::uint64_t done);

} // namespace Ketra::Tool
