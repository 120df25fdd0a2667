// Edits container.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "edts": holds the edit list.
class KETRA_QT_API EDTS : public QTAtom {
public:
    EDTS();
    explicit EDTS(QTAtom* header);
    EDTS(const EDTS&) = default;
    EDTS& operator=(const EDTS&) = default;
    ~EDTS() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
