// Sample entry of MPEG-4 audio.
#pragma once

#include <qt/QTAtoms/entries/AudioEntry.h>

namespace Ketra::QT {

/// "mp4a": the fields of AudioEntry and an optional "esds".
///
/// serialize() leaves the atom header out: the frame begins with the fields and ends with eight zero bytes.
/// Files get their "mp4a" entries from the sample description table.
class KETRA_QT_API MP4A : public AudioEntry {
public:
    MP4A();
    explicit MP4A(QTAtom* header);
    MP4A(const MP4A&) = default;
    MP4A& operator=(const MP4A&) = default;
    ~MP4A() override;

    int parse() override;
    QTFrame* serialize() override;

    QTAtom* getESDS() const { return child(); }          ///< borrowed, or null
    int setESDS(QTAtom* atom) { return setChild(atom); } ///< adopts; null removes
};

} // namespace Ketra::QT
