// Hint media header.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "hmhd", 28 bytes: 8 version, 9 flags, 12 largest and 14 average packet (16 bits each), 16 largest, 20
/// average and 24 sliding average bit rate (32 bits each).
class KETRA_QT_API HMHD : public QTAtom {
public:
    HMHD();
    explicit HMHD(QTAtom* header);
    HMHD(const HMHD&) = default;
    HMHD& operator=(const HMHD&) = default;
    ~HMHD() override;

    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned short getMaxPDUSize() const { return maxPDUSize_; } ///< bytes
    int setMaxPDUSize(unsigned short v) { return maxPDUSize_ = v, 0; }
    unsigned short getAvgPDUSize() const { return avgPDUSize_; } ///< bytes
    int setAvgPDUSize(unsigned short v) { return avgPDUSize_ = v, 0; }
    unsigned int getMaxBitRate() const { return maxBitRate_; } ///< bits a second
    int setMaxBitRate(unsigned int v) { return maxBitRate_ = v, 0; }
    unsigned int getAvgBitRate() const { return avgBitRate_; }
    int setAvgBitRate(unsigned int v) { return avgBitRate_ = v, 0; }
    unsigned int getSlidingAvgBitRate() const { return slidingAvgBitRate_; }
    int setSlidingAvgBitRate(unsigned int v) { return slidingAvgBitRate_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned short maxPDUSize_ = 0;
    unsigned short avgPDUSize_ = 0;
    unsigned int maxBitRate_ = 0;
    unsigned int avgBitRate_ = 0;
    unsigned int slidingAvgBitRate_ = 0;
};

} // namespace Ketra::QT
