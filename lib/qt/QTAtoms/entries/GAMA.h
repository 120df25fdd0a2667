// Gamma of a video description.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "gama": 8 gamma (16.16). It reads by a rule of its own (see getGamma) and, as long as it is not set anew,
/// is written with the bytes that were read.
class KETRA_QT_API GAMA : public QTAtom {
public:
    GAMA();
    explicit GAMA(QTAtom* header);
    GAMA(const GAMA&) = default;
    GAMA& operator=(const GAMA&) = default;
    ~GAMA() override;

    std::uint64_t updateSize() override; ///< 12
    int parse() override;
    QTFrame* serialize() override;

    /// As set; of a file the first two bytes, least significant first: a gamma of 2.2 in a file reads as 512.
    float getGamma() const { return gamma_; }
    int setGamma(float gamma);

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    float gamma_ = 0;
    unsigned char file_[4] = {}; // the field as it stands in a file
};

} // namespace Ketra::QT
