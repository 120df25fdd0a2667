// Reading the parts of a raw sample description: for the tracks, which interpret them.
#pragma once

namespace Ketra::QT {

class D263;
class DAMR;
class STSDAudio;
class STSDVideo;

namespace wire {

class Reader;

/// Reads the fields of the body as they stand in the file; missing ones are 0.
void readBody(STSDVideo& video, Reader& in);
/// Likewise; the version decides how long the body is. Version 2 gives sample size, packets and flags as the
/// file has them. Returns the sample rate in full.
double readBody(STSDAudio& audio, Reader& in);
/// Configuration atoms, behind their headers.
void readBody(DAMR& atom, Reader& in);
void readBody(D263& atom, Reader& in);

} // namespace wire
} // namespace Ketra::QT
