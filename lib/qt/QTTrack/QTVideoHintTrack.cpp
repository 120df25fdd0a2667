#include <qt/QTAtoms/track/TKHD.h>
#include <qt/QTTrack/QTVideoHintTrack.h>
#include <qt/QTTrack/detail/HintStatistics.h>
#include <qt/QTTrack/detail/SessionText.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>

namespace Ketra::QT {

QTVideoHintTrack::QTVideoHintTrack() = default;

QTVideoHintTrack::QTVideoHintTrack(QTAtom* trak)
    : QTHintTrack(trak, "QT::QTVideoHintTrack::QTVideoHintTrack") {
    const TKHD* header = wire::child<TKHD>(trak, fourCC("tkhd"));
    width_ = static_cast<unsigned short>(wire::toInteger(static_cast<double>(header->getWidth())));
    height_ = static_cast<unsigned short>(wire::toInteger(static_cast<double>(header->getHeight())));
}

QTVideoHintTrack::QTVideoHintTrack(const QTVideoHintTrack&) = default;

QTVideoHintTrack& QTVideoHintTrack::operator=(const QTVideoHintTrack&) = default;

QTVideoHintTrack::~QTVideoHintTrack() = default;

unsigned int QTVideoHintTrack::getType() { return fourCC("vihi"); }

int QTVideoHintTrack::prepareForWriting() {
    setAtomHeaderWidth(static_cast<float>(wire::toInteger(width_ * displayFactor_)));
    setAtomHeaderHeight(static_cast<float>(wire::toInteger(height_ * displayFactor_)));
    setAtomMediaDuration(mediaUnits(getDuration()));
    QTTrack::prepareForWriting();
    prepareHeaders();
    prepareMediaHeader(wire::videoPacketSize(getTotalDataSize(), getRTPPacketNumber()));
    addHinfAtoms(fourCC("vide"));
    addSdpFile();
    storeHintDescription();
    return 0;
}

int QTVideoHintTrack::addSdpFile() {
    const int type = wire::printed(getPayloadType());
    CString text = CString::createWithFormat(
        "m=video 0 %s %d\r\nb=AS:%d\r\na=rtpmap:%d %s/%d\r\na=control:trackID=%d\r\na=cliprect:0,0,%d,%d\r\n",
        getTransport().c_str(), type, wire::printed(getSDPBandwidth()), type, getEncoding().c_str(),
        wire::printed(getClockRate()), wire::printed(getID()), height_, width_);
    if (getMovieType() == k3GP) {
        text += CString::createWithFormat("a=framesize:%d %d-%d\r\n", type, width_, height_);
    } else {
        text += "a=range:npt=0-";
        text += wire::fourDecimals(getDuration());
        text += "\r\n";
    }
    text += getAttributeLines();
    return addSdpText(text);
}

} // namespace Ketra::QT
