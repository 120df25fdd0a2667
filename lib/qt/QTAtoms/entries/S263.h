// Sample entry of H.263 video.
#pragma once

#include <qt/QTAtoms/entries/VisualEntry.h>

namespace Ketra::QT {

/// "s263": the fields of VisualEntry and an optional "d263".
class KETRA_QT_API S263 : public VisualEntry {
public:
    S263();
    explicit S263(QTAtom* header);
    S263(const S263&) = default;
    S263& operator=(const S263&) = default;
    ~S263() override;

    int parse() override;

    QTAtom* getD263() const { return child(); }          ///< borrowed, or null
    int setD263(QTAtom* atom) { return setChild(atom); } ///< adopts; null removes
};

} // namespace Ketra::QT
