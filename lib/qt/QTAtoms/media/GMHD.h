// Base media header container.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "gmhd": base media information; the media headers of text and timecode stay plain atoms.
class KETRA_QT_API GMHD : public QTAtom {
public:
    GMHD();
    explicit GMHD(QTAtom* header);
    GMHD(const GMHD&) = default;
    GMHD& operator=(const GMHD&) = default;
    ~GMHD() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
