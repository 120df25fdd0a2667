// Text media information of a QuickTime movie.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "text" inside "gmhd": 44 bytes, of which 36 are a fixed matrix. It is always written with the same bytes,
/// whatever was read.
class KETRA_QT_API TEXTA : public QTAtom {
public:
    TEXTA();
    explicit TEXTA(QTAtom* header);
    TEXTA(const TEXTA&) = default;
    TEXTA& operator=(const TEXTA&) = default;
    ~TEXTA() override;

    std::uint64_t updateSize() override; ///< 44
    int parse() override;                ///< passes over the payload
    QTFrame* serialize() override;       ///< calls updateSize() first

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);
};

} // namespace Ketra::QT
