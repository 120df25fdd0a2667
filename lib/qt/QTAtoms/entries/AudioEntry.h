// The fields that audio sample entries share.
#pragma once

#include <qt/QTAtoms/entries/CodecEntry.h>

namespace Ketra::QT {

/// 8 reserved (48), 14 data reference index (16), 16 reserved (64), 24 channel count, 26 sample size in bits
/// (16), 28 reserved (32), 32 time scale (the integer part of the sample rate), 34 its fraction (16), 36 the
/// configuration atom.
class KETRA_QT_API AudioEntry : public CodecEntry {
public:
    ~AudioEntry() override;

    std::uint64_t updateSize() override; ///< 36 and the configuration

    unsigned short getDataReferenceIndex() const { return dataReferenceIndex_; } ///< into "dref", from 1
    int setDataReferenceIndex(unsigned short v) { return dataReferenceIndex_ = v, 0; }
    unsigned short getTimeScale() const { return timeScale_; } ///< hertz
    int setTimeScale(unsigned short v) { return timeScale_ = v, 0; }
    unsigned short getChannelCount() const { return channelCount_; }
    unsigned short getSampleSize() const { return sampleSize_; }

protected:
    explicit AudioEntry(unsigned int type); ///< a new one
    explicit AudioEntry(QTAtom* header);
    AudioEntry(const AudioEntry&) = default;
    AudioEntry& operator=(const AudioEntry&) = default;

    int parseFields();              ///< everything in front of the configuration
    QTFrame* writeAll(bool header); ///< with or without the 8-byte atom header

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    std::uint64_t reserved_ = 0;
    unsigned short dataReferenceIndex_ = 1;
    std::uint64_t reserved2_ = 0;
    unsigned short channelCount_ = 2;
    unsigned short sampleSize_ = 16;
    unsigned int reserved3_ = 0;
    unsigned short timeScale_ = 0;
    unsigned short timeScaleFraction_ = 0;
};

} // namespace Ketra::QT
