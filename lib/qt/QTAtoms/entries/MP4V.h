// Sample entry of MPEG-4 video.
#pragma once

#include <qt/QTAtoms/entries/VisualEntry.h>

namespace Ketra::QT {

/// "mp4v": the fields of VisualEntry and an optional "esds".
class KETRA_QT_API MP4V : public VisualEntry {
public:
    MP4V();
    explicit MP4V(QTAtom* header);
    MP4V(const MP4V&) = default;
    MP4V& operator=(const MP4V&) = default;
    ~MP4V() override;

    int parse() override;

    QTAtom* getESDS() const { return child(); }          ///< borrowed, or null
    int setESDS(QTAtom* atom) { return setChild(atom); } ///< adopts; null removes
};

} // namespace Ketra::QT
