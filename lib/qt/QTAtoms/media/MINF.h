// Media information container.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "minf": a media header, data information, a data handler and the sample table.
class KETRA_QT_API MINF : public QTAtom {
public:
    MINF();
    explicit MINF(QTAtom* header);
    MINF(const MINF&) = default;
    MINF& operator=(const MINF&) = default;
    ~MINF() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
