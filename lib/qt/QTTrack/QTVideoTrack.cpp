#include <qt/QTAtoms/track/TKHD.h>
#include <qt/QTTrack/QTVideoTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>

namespace Ketra::QT {

QTVideoTrack::QTVideoTrack() : QTTrack(kMOV) {}

QTVideoTrack::QTVideoTrack(QTAtom* trak) : QTTrack(kMOV) {
    readTrak(trak, fourCC("vide"), "QT::QTVideoTrack::QTVideoTrack", "No track header found in track atom",
             "No mdia-atom found in trak-atom");
    const TKHD& header = *wire::child<TKHD>(trak, fourCC("tkhd"));
    const unsigned int headerWidth = wire::toUnsigned32(static_cast<double>(header.getWidth()));
    const unsigned int headerHeight = wire::toUnsigned32(static_cast<double>(header.getHeight()));
    width_ = headerWidth;
    height_ = headerHeight;
    setFrameRate(getDuration() > 0 ? storedSamples() / getDuration() : 0);
    readDescriptions(true);
    if (displayWidth_ == 0) {
        displayWidth_ = headerWidth;
        displayHeight_ = headerHeight;
    }
}

QTVideoTrack::QTVideoTrack(const QTVideoTrack& other) = default;

QTVideoTrack& QTVideoTrack::operator=(const QTVideoTrack& other) = default;

QTVideoTrack::~QTVideoTrack() = default;

unsigned int QTVideoTrack::getType() { return fourCC("vide"); }

unsigned short QTVideoTrack::getSwitchSize() {
    return static_cast<unsigned short>(displayWidth_ * displayHeight_);
}

int QTVideoTrack::getColorDescription(unsigned short& primaries, unsigned short& transfer,
                                      unsigned short& matrix) const {
    primaries = primaries_;
    transfer = transfer_;
    matrix = matrix_;
    return 0;
}

int QTVideoTrack::setColorDescription(unsigned short primaries, unsigned short transfer,
                                      unsigned short matrix) {
    primaries_ = primaries;
    transfer_ = transfer;
    matrix_ = matrix;
    return 0;
}

int QTVideoTrack::setSVQ3Data(unsigned int length, unsigned char* data) {
    if (length && !data) return -1;
    svq3_ = std::vector<unsigned char>(data, data + length);
    return 0;
}

} // namespace Ketra::QT
