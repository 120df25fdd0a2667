#include <qt/QTTrack/QTAudioTrack.h>
#include <qt/wire/Numbers.h>

#include <limits>

namespace Ketra::QT {

QTAudioTrack::QTAudioTrack() : QTTrack(kMOV) {}

QTAudioTrack::QTAudioTrack(QTAtom* trak) : QTTrack(kMOV) {
    readTrak(trak, fourCC("audi"), "QT::QTAudioTrack::QTAudioTrack", "No tkhd-atom found in trak-atom",
             "No mdia-atom found in trak-atom");
    readDescriptions(true);
}

QTAudioTrack::QTAudioTrack(const QTAudioTrack& other) = default;

QTAudioTrack& QTAudioTrack::operator=(const QTAudioTrack& other) = default;

QTAudioTrack::~QTAudioTrack() = default;

unsigned int QTAudioTrack::getType() { return fourCC("audi"); }

int QTAudioTrack::setSampleRate(double v) {
    sampleRate_ = v;
    // A media time scale of 0 makes a file unplayable, and durations are counted in it from the first sample
    // on.
    const bool fits = v >= 1 && v <= std::numeric_limits<unsigned int>::max();
    if (fits && getAtomMediaTimeScale() == 0) setAtomMediaTimeScale(wire::toUnsigned32(v));
    return 0;
}

unsigned int QTAudioTrack::getBytesPerSample() const {
    if (bytesPerSample_) return bytesPerSample_;
    return getDataFormat() == fourCC("in24") ? 3 : sampleSize_ / 8U;
}

} // namespace Ketra::QT
