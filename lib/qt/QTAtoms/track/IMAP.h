// Input map: what the inputs of a track stand for.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "imap": holds one "  in" for each input. Atoms of other types keep their bytes.
class KETRA_QT_API IMAP : public QTAtom {
public:
    IMAP();
    explicit IMAP(QTAtom* header);
    IMAP(const IMAP&) = default;
    IMAP& operator=(const IMAP&) = default;
    ~IMAP() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
