// Hints built out of somebody else's movies and bytes, and read back.
#pragma once

#include <cstddef>

namespace hinting {

/// Hints every track of the movie that can be hinted, reads the hints back and compares; reads the movie's
/// own hint tracks. Only the tool's and the library's exceptions are expected, and held back; a packet that
/// is lost or too large ends the program.
void exerciseMovie(const unsigned char* bytes, std::size_t size);

/// Arbitrary bytes as samples of a format. The first bytes choose it and the size of packets; then come
/// samples behind their lengths of 16 bits.
void exercisePacketizer(const unsigned char* bytes, std::size_t size);

} // namespace hinting
