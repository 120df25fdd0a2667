// Decoder configuration of AMR audio.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "damr": 8 vendor (32), 12 decoder version (8), 13 mode set (16), 15 mode change period, 16 frames per
/// sample (8).
class KETRA_QT_API DAMR : public QTAtom {
public:
    DAMR();
    explicit DAMR(QTAtom* header);
    DAMR(const DAMR&) = default;
    DAMR& operator=(const DAMR&) = default;
    ~DAMR() override;

    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVendor() const { return vendor_; } ///< four-character code
    int setVendor(unsigned int v) { return vendor_ = v, 0; }
    unsigned char getDecoderVersion() const { return decoderVersion_; }
    int setDecoderVersion(unsigned char v) { return decoderVersion_ = v, 0; }
    unsigned short getModeSet() const { return modeSet_; } ///< a bit for each mode
    int setModeSet(unsigned short v) { return modeSet_ = v, 0; }
    unsigned char getModeChangePeriod() const { return modeChangePeriod_; }
    int setModeChangePeriod(unsigned char v) { return modeChangePeriod_ = v, 0; }
    unsigned char getFramesPerSample() const { return framesPerSample_; }
    int setFramesPerSample(unsigned char v) { return framesPerSample_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int vendor_ = 0;
    unsigned char decoderVersion_ = 0;
    unsigned short modeSet_ = 0;
    unsigned char modeChangePeriod_ = 0;
    unsigned char framesPerSample_ = 0;
};

} // namespace Ketra::QT
