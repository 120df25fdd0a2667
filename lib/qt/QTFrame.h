// A block of bytes with its times: what every serialize() and every sample read returns.
#pragma once

#include <qt/QTTypes.h>

namespace Ketra::QT {

/// Owns one malloc block and releases it with free. A block handed over must come from malloc.
class KETRA_QT_API QTFrame {
public:
    QTFrame();
    /// Adopts `data`; with a length of 0 the block is neither kept nor released. Times are in seconds.
    QTFrame(unsigned int dataLength, unsigned char* data, double time, double duration, bool isKeyFrame,
            unsigned int samplesInFrame, double endTime, double decodeTime, bool containsEncodedAlpha);
    ~QTFrame();
    QTFrame(const QTFrame& other);            ///< duplicates the bytes
    QTFrame& operator=(const QTFrame& other); ///< duplicates the bytes

    unsigned char* getData() const { return data_; } ///< borrowed; null when empty
    unsigned int getDataLength() const { return dataLength_; }
    double getTime() const { return time_; }             ///< presentation time
    double getDecodeTime() const { return decodeTime_; } ///< decode time
    double getDuration() const { return duration_; }
    double getEndTime() const { return endTime_; }
    bool getIsKeyFrame() const { return isKeyFrame_; }
    unsigned int getSamplesInFrame() const { return samplesInFrame_; }
    bool getContainsEncodedAlpha() const { return containsEncodedAlpha_; }

    int setDataLength(unsigned int length); ///< the count only; the block is not touched
    int setTime(double seconds);
    int setDecodeTime(double seconds);
    int setDuration(double seconds);
    int setIsKeyFrame(bool isKeyFrame);
    int setSamplesInFrame(unsigned int count);
    int setContainsEncodedAlpha(bool alpha);
    /// Adopts the block. -1, and nothing changed, for a length of 0 or a null block.
    int setData(unsigned int length, unsigned char* data);
    /// Adopts a block of getDataLength() bytes, or as many as the next setDataLength() says. -1 for a null
    /// block.
    int setData(unsigned char* data);
    void print(); ///< does nothing

private:
    friend struct wire::Access;

    unsigned int dataLength_ = 0;
    unsigned char* data_ = nullptr;
    double time_ = 0;
    double decodeTime_ = 0;
    double duration_ = 0;
    unsigned int samplesInFrame_ = 0;
    bool isKeyFrame_ = false;
    double endTime_ = 0;
    bool containsEncodedAlpha_ = false;
    bool blockUntold_ = false;     // the block came without a length
    unsigned int blockLength_ = 0; // bytes really behind data_, whatever setDataLength says
};

} // namespace Ketra::QT
