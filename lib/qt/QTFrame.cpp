#include <qt/QTFrame.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace Ketra::QT {

QTFrame::QTFrame() = default;

QTFrame::QTFrame(unsigned int dataLength, unsigned char* data, double time, double duration, bool isKeyFrame,
                 unsigned int samplesInFrame, double endTime, double decodeTime, bool containsEncodedAlpha)
    : dataLength_(dataLength), data_(dataLength ? data : nullptr), time_(time), decodeTime_(decodeTime),
      duration_(duration), samplesInFrame_(samplesInFrame), isKeyFrame_(isKeyFrame), endTime_(endTime),
      containsEncodedAlpha_(containsEncodedAlpha), blockLength_(data_ ? dataLength : 0) {}

QTFrame::~QTFrame() { std::free(data_); }

QTFrame::QTFrame(const QTFrame& other)
    : dataLength_(other.dataLength_), time_(other.time_), decodeTime_(other.decodeTime_),
      duration_(other.duration_), samplesInFrame_(other.samplesInFrame_), isKeyFrame_(other.isKeyFrame_),
      endTime_(other.endTime_), containsEncodedAlpha_(other.containsEncodedAlpha_) {
    // The copy is as long as the frame says it is; what the block does not hold is zero.
    if (other.data_ && dataLength_) data_ = static_cast<unsigned char*>(std::calloc(dataLength_, 1));
    if (!data_) return;
    blockLength_ = dataLength_;
    std::memcpy(data_, other.data_, std::min(dataLength_, other.blockLength_));
}

QTFrame& QTFrame::operator=(const QTFrame& other) {
    if (this == &other) return *this;
    QTFrame copy(other);
    std::swap(data_, copy.data_);
    dataLength_ = copy.dataLength_;
    blockLength_ = copy.blockLength_;
    blockUntold_ = false;
    time_ = copy.time_;
    decodeTime_ = copy.decodeTime_;
    duration_ = copy.duration_;
    samplesInFrame_ = copy.samplesInFrame_;
    isKeyFrame_ = copy.isKeyFrame_;
    endTime_ = copy.endTime_;
    containsEncodedAlpha_ = copy.containsEncodedAlpha_;
    return *this;
}

int QTFrame::setDataLength(unsigned int length) {
    dataLength_ = length;
    if (blockUntold_) blockLength_ = length;
    blockUntold_ = false;
    return 0;
}

int QTFrame::setTime(double seconds) {
    time_ = seconds;
    return 0;
}

int QTFrame::setDecodeTime(double seconds) {
    decodeTime_ = seconds;
    return 0;
}

int QTFrame::setDuration(double seconds) {
    duration_ = seconds;
    return 0;
}

int QTFrame::setIsKeyFrame(bool isKeyFrame) {
    isKeyFrame_ = isKeyFrame;
    return 0;
}

int QTFrame::setSamplesInFrame(unsigned int count) {
    samplesInFrame_ = count;
    return 0;
}

int QTFrame::setContainsEncodedAlpha(bool alpha) {
    containsEncodedAlpha_ = alpha;
    return 0;
}

int QTFrame::setData(unsigned int length, unsigned char* data) {
    if (!length || !data) return -1;
    dataLength_ = length;
    setData(data);
    blockUntold_ = false;
    return 0;
}

int QTFrame::setData(unsigned char* data) {
    if (!data) return -1;
    if (data != data_) std::free(data_);
    data_ = data;
    blockLength_ = dataLength_;
    blockUntold_ = true; // a length that follows is that of this block
    return 0;
}

void QTFrame::print() {}

} // namespace Ketra::QT
