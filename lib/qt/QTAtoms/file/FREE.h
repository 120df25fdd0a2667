// Free space.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "free": skipped on reading; always written as 16 bytes, the payload zero.
class KETRA_QT_API FREE : public QTAtom {
public:
    FREE();
    explicit FREE(QTAtom* header);
    FREE(const FREE&) = default;
    FREE& operator=(const FREE&) = default;
    ~FREE() override;

    QTFrame* serialize() override;
};

} // namespace Ketra::QT
