// Media container.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "mdia": media header, handler and media information.
class KETRA_QT_API MDIA : public QTAtom {
public:
    MDIA();
    explicit MDIA(QTAtom* header);
    MDIA(const MDIA&) = default;
    MDIA& operator=(const MDIA&) = default;
    ~MDIA() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
