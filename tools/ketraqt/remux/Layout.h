// Where the header and the media lie in the file.
#pragma once

#include "remux/MovieBuild.h"

namespace Ketra::Tool {

/// The atoms that a file begins with, up to the first byte of media, and those behind the media.
struct Layout {
    Bytes front;
    std::uint64_t frontSize = 0; ///< as planned; the front itself may still be unknown
    std::uint64_t mediaSize = 0;
};

/// Found by going through the tables without the media: a pass that knows sizes only.
Layout planLayout(Plan& plan, bool fastStart);

/// What goes in front of media of that size, and behind it.
Bytes frontOf(const Bytes& header, std::uint64_t mediaSize, bool fastStart);
Bytes backOf(const Bytes& header, bool fastStart);

} // namespace Ketra::Tool
