// Reading the typed part of a sample description: for the tracks, which interpret the raw entries.
#pragma once

namespace Ketra::QT {

class STSDAudio;
class STSDVideo;

namespace wire {

class Reader;

/// Reads the fields of the body as they stand in the file; missing ones are 0.
void readBody(STSDVideo& video, Reader& in);
/// Likewise; the version decides how long the body is. Version 2 gives sample size, packets and flags as the
/// file has them.
void readBody(STSDAudio& audio, Reader& in);

} // namespace wire
} // namespace Ketra::QT
