// Free space under another name.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "skip": skipped on reading; always written as 16 bytes, the payload zero.
class KETRA_QT_API SKIP : public QTAtom {
public:
    SKIP();
    explicit SKIP(QTAtom* header);
    SKIP(const SKIP&) = default;
    SKIP& operator=(const SKIP&) = default;
    ~SKIP() override;

    QTFrame* serialize() override;
};

} // namespace Ketra::QT
