// Extension atom of a type of its own.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "uuid": a 16-byte identifier and data behind it, held as one. A parsed one is skipped and has nothing to
/// write.
class KETRA_QT_API UUIDA : public QTAtom {
public:
    UUIDA();
    UUIDA(unsigned int length, unsigned char* data); ///< copies identifier and data, `length` bytes in all
    explicit UUIDA(QTAtom* header);
    UUIDA(const UUIDA&) = default;
    UUIDA& operator=(const UUIDA&) = default;
    ~UUIDA() override;

    QTFrame* serialize() override; ///< null without data
};

} // namespace Ketra::QT
