#include <qt/QTTrack/QTAudioHintTrack.h>
#include <qt/QTTrack/detail/HintStatistics.h>
#include <qt/QTTrack/detail/SessionText.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kFirstDynamicType = 96; // payload types below it are assigned for good
} // namespace

QTAudioHintTrack::QTAudioHintTrack() = default;

QTAudioHintTrack::QTAudioHintTrack(QTAtom* trak)
    : QTHintTrack(trak, "QT::QTAudioHintTrack::QTAudioHintTrack") {}

QTAudioHintTrack::QTAudioHintTrack(const QTAudioHintTrack&) = default;

QTAudioHintTrack& QTAudioHintTrack::operator=(const QTAudioHintTrack&) = default;

QTAudioHintTrack::~QTAudioHintTrack() = default;

unsigned int QTAudioHintTrack::getType() { return fourCC("auhi"); }

int QTAudioHintTrack::prepareForWriting() {
    setAtomMediaTimeScale(sampleRate_);
    setAtomMediaDuration(mediaUnits(getDuration()));
    QTTrack::prepareForWriting();
    prepareHeaders();
    storeHintDescription();
    prepareMediaHeader(wire::audioPacketSize(getTotalDataSize(), getRTPPacketNumber()));
    addHinfAtoms(fourCC("audi"));
    addSdpFile();
    return 0;
}

int QTAudioHintTrack::addSdpFile() {
    const int type = wire::printed(getPayloadType());
    const int bandwidth = wire::printed(getSDPBandwidth());
    const int trackID = wire::printed(getID());
    CString text =
        CString::createWithFormat("m=audio 0 %s %d\r\nb=AS:%d\r\n", getTransport().c_str(), type, bandwidth);
    if (getPayloadType() < kFirstDynamicType) {
        // No line end: the first attribute runs on, and without attributes the end of the list ends it.
        text += CString::createWithFormat("a=control:trackID=%d", trackID);
    } else {
        text += CString::createWithFormat("a=rtpmap:%d %s/%d/%d\r\na=control:trackID=%d\r\na=range:npt=0-",
                                          type, getEncoding().c_str(), wire::printed(getClockRate()),
                                          wire::printed(getParameter()), trackID);
        text += wire::fourDecimals(getDuration());
        text += "\r\n";
    }
    text += getAttributes().empty() ? CString("\r\n") : getAttributeLines();
    return addSdpText(text);
}

} // namespace Ketra::QT
