// Data information container.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "dinf": the data references.
class KETRA_QT_API DINF : public QTAtom {
public:
    DINF();
    explicit DINF(QTAtom* header);
    DINF(const DINF&) = default;
    DINF& operator=(const DINF&) = default;
    ~DINF() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
