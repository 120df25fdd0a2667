// Track aperture mode dimensions.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "tapt": holds "clef", "prof" and "enof". Atoms of other types keep their bytes.
class KETRA_QT_API TAPT : public QTAtom {
public:
    TAPT();
    explicit TAPT(QTAtom* header);
    TAPT(const TAPT&) = default;
    TAPT& operator=(const TAPT&) = default;
    ~TAPT() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
