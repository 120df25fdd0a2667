// Media data.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "mdat": only its header is held and written, with a 64-bit size from 0xFFFFFFFF bytes on; media bytes are
/// never read into memory.
class KETRA_QT_API MDAT : public QTAtom {
public:
    MDAT();
    explicit MDAT(QTAtom* header);
    MDAT(const MDAT&) = default;
    MDAT& operator=(const MDAT&) = default;
    ~MDAT() override;

    int setSize(std::uint64_t size) { return size_ = size, 0; } ///< header and media, in bytes
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
