// What the media tracks share when they are written.
#pragma once

#include <qt/QTAtoms/entries/STSDData.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/QTTrack/detail/AtomBuilder.h>
#include <qt/wire/Access.h>

#include <vector>

namespace Ketra::QT::wire {

inline bool isThreeGPP(QTMovieConstructionFlags flavour) {
    return flavour == k3GP || flavour == k3G2 || flavour == kAMC;
}

/// Who handles a medium: 3GPP files name this library in a C string, all others a Pascal string.
struct MediaHandler {
    unsigned int subType;
    const char* threeGPPName;
    const char* pascalName;
    unsigned int nameLength; // of either name
};

/// Component type, subtype and name. The manufacturer is 0 in 3GPP files and else for the track to say.
void writeMediaHandler(QTTrack& track, const MediaHandler& handler);

/// The extensions that a track writes into its sample description. Those that it wrote before go first, so
/// that preparing a track twice does not double them; what a caller added stays.
class ExtensionList {
public:
    void begin(STSDData& entry);
    /// A null frame adds nothing.
    void add(std::unique_ptr<QTFrame> atom);
    void add(AtomBuilder& atom) { add(atom.takeFrame()); }

private:
    STSDData* entry_ = nullptr;
    std::vector<const QTFrame*> mine_;
};

/// Values of an "esds" with one stream.
struct StreamConfiguration {
    unsigned char objectTypeIndication = 0;
    unsigned char streamType = 0;
    unsigned char streamPriority = 0;
    unsigned int bufferSize = 15000;
    unsigned int maxBitRate = 0;
    unsigned int avgBitRate = 0;
    const unsigned char* specificInfo = nullptr;
    unsigned int specificInfoSize = 0; // 0: none
};

std::unique_ptr<QTFrame> makeESDS(const StreamConfiguration& stream);

} // namespace Ketra::QT::wire
