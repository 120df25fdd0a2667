// A page about a movie: what is in it, where, when, and what is wrong with it.
#pragma once

#include <string>

namespace Ketra::Tool {

struct ReportOptions {
    std::string file;
    std::string output; ///< "-": standard output
    bool force = false; ///< the output may be replaced
};

/// Of a file that is no movie but has atoms, the page is written, too; then throws ToolError.
void runReport(const ReportOptions& options);

} // namespace Ketra::Tool
