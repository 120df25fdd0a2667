// Decoder configuration of H.263 video.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "d263": 8 vendor (32), 12 decoder version, 13 level, 14 profile (8).
class KETRA_QT_API D263 : public QTAtom {
public:
    D263();
    explicit D263(QTAtom* header);
    D263(const D263&) = default;
    D263& operator=(const D263&) = default;
    ~D263() override;

    int parse() override;
    QTFrame* serialize() override;

    /// Reads the 7 bytes behind the atom header, which must exist, and advances the cursor over them. 0.
    int getInfo(unsigned char** cursor);

    unsigned int getVendor() const { return vendor_; } ///< four-character code
    int setVendor(unsigned int v) { return vendor_ = v, 0; }
    unsigned char getDecoderVersion() const { return decoderVersion_; }
    int setDecoderVersion(unsigned char v) { return decoderVersion_ = v, 0; }
    unsigned char getH263Level() const { return h263Level_; }
    int setH263Level(unsigned char v) { return h263Level_ = v, 0; }
    unsigned char getH263Profile() const { return h263Profile_; }
    int setH263Profile(unsigned char v) { return h263Profile_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int vendor_ = 0;
    unsigned char decoderVersion_ = 0;
    unsigned char h263Level_ = 0;
    unsigned char h263Profile_ = 0;
};

} // namespace Ketra::QT
