// Shadow sync samples.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "stsh". The payload of a file is skipped and not kept: what is written is a header of the stored size, and
/// zeros.
class KETRA_QT_API STSH : public QTAtom {
public:
    STSH();
    explicit STSH(QTAtom* header);
    STSH(const STSH&) = default;
    STSH& operator=(const STSH&) = default;
    ~STSH() override;

    QTFrame* serialize() override;

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);
};

} // namespace Ketra::QT
