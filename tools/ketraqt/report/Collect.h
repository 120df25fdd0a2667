// Gathers what a report tells.
#pragma once

#include "report/Report.h"

#include <qt/QTMovie.h>

namespace Ketra::Tool::Report {

/// `movie` is null for a file that is none but has atoms.
MovieParts collect(const std::string& file, Source& source, QT::QTAtom& root, QT::QTMovie* movie);

} // namespace Ketra::Tool::Report
