// Types shared by the whole library: the movie flavours and four-character codes.
#pragma once

#include <base/Export.h>

/// Movies: their atoms, tracks, samples and frames.
namespace Ketra::QT {

/// The flavour of a movie; the value is the four characters of its name.
enum QTMovieConstructionFlags : unsigned int {
    kMOV = 0x6B4D4F56, ///< QuickTime movie
    kMP4 = 0x6B4D5034, ///< MPEG-4 file
    kM4V = 0x6B4D3456, ///< MPEG-4 video file
    kM4A = 0x6B4D3441, ///< MPEG-4 audio file
    k3GP = 0x6B334750, ///< 3GPP file
    k3G2 = 0x6B334732, ///< 3GPP2 file
    kAMC = 0x6B414D43, ///< AMC file
    kPSP = 0x6B505350  ///< handheld device file
};

/// A four-character code as a host integer, first character in the most significant byte:
/// fourCC("moov") is 0x6D6F6F76.
constexpr unsigned int fourCC(const char (&text)[5]) {
    return (static_cast<unsigned int>(static_cast<unsigned char>(text[0])) << 24) |
           (static_cast<unsigned int>(static_cast<unsigned char>(text[1])) << 16) |
           (static_cast<unsigned int>(static_cast<unsigned char>(text[2])) << 8) |
           static_cast<unsigned int>(static_cast<unsigned char>(text[3]));
}

// The inside of the library: declared here so that public classes can befriend and hold it, defined nowhere
// that a caller sees.
namespace wire {
struct Access;
class Block;
class Output;
template <class Layout>
class EntryTable;
template <class T>
class HeldList;
} // namespace wire

} // namespace Ketra::QT
