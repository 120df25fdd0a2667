// Gathers what a report tells.
#pragma once

#include "report/Report.h"

#include <qt/QTMovie.h>

namespace Ketra::Tool::Report {

/// Fills all but the name of the file. `movie` is null for a file that is none but has atoms.
void collect(MovieParts& parts, Source& source, QT::QTAtom& root, QT::QTMovie* movie);

} // namespace Ketra::Tool::Report
