// The movie header of a file, changed in a few places and otherwise left byte for byte as it is.
#pragma once

#include "FileParts.h"

namespace Ketra::Tool {

class MovieHeader {
public:
    /// A whole "moov". Throws ToolError without a usable "mvhd".
    explicit MovieHeader(const ByteBlock& moov);

    unsigned int timeScale() const;
    unsigned int nextTrackID() const;             ///< higher than that of any track
    std::vector<const ByteBlock*> tracks() const; ///< until the next change

    void addTrack(ByteBlock trak); ///< settles the next track ID, too
    void removeHintTracks();
    /// Session information for servers, in the movie's user data: a whole "hnti".
    void setHintInformation(ByteBlock hnti);
    void removeHintInformation();

    ByteBlock bytes() const;

private:
    ByteBlock& header();
    const ByteBlock& header() const;
    void settleNextTrackID();
    void changeUserData(const ByteBlock* hnti);

    ByteBlock rest_; // filled while the children are found
    std::vector<AtomBytes> children_;
};

} // namespace Ketra::Tool
