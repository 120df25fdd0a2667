// The eight flavours: their names on the command line, and what may be in each.
#pragma once

#include <qt/QTMovie.h>

#include <string>
#include <vector>

namespace Ketra::Tool {

enum class MediaKind { kVideo, kSound, kText, kTimecode };

std::vector<std::string> flavourNames();
std::string flavourName(QT::QTMovieConstructionFlags flavour);
/// Throws ToolError for a name that is none.
QT::QTMovieConstructionFlags flavourOf(const std::string& name);
/// The flavour that a movie's file type tells.
QT::QTMovieConstructionFlags flavourOf(const QT::QTMovie& movie);

/// Whether players of the flavour expect media of that data format.
bool isAllowed(QT::QTMovieConstructionFlags flavour, MediaKind kind, unsigned int format);

} // namespace Ketra::Tool
