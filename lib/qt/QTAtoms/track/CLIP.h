// Clipping of a track's picture.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "clip": holds one "crgn". Only the first child is read; one of another type keeps its bytes.
class KETRA_QT_API CLIP : public QTAtom {
public:
    CLIP();
    explicit CLIP(QTAtom* header);
    CLIP(const CLIP&) = default;
    CLIP& operator=(const CLIP&) = default;
    ~CLIP() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
