// Track container.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "trak". A track without samples is left out of a written file: its size is then 0 and it has no bytes.
class KETRA_QT_API TRAK : public QTAtom {
public:
    TRAK();
    explicit TRAK(QTAtom* header);
    TRAK(const TRAK&) = default;
    TRAK& operator=(const TRAK&) = default;
    ~TRAK() override;

    std::uint64_t updateSize() override;
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first
};

} // namespace Ketra::QT
