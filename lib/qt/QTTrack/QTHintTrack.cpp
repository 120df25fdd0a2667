#include <qt/QTAtoms/entries/STSDHint.h>
#include <qt/QTAtoms/media/HMHD.h>
#include <qt/QTAtoms/user/HINF.h>
#include <qt/QTAtoms/user/HNTI.h>
#include <qt/QTSample.h>
#include <qt/QTTrack/QTHintTrack.h>
#include <qt/QTTrack/detail/HintStatistics.h>
#include <qt/QTTrack/detail/SampleEntries.h>
#include <qt/QTTrack/detail/UserData.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Numbers.h>

namespace Ketra::QT {

namespace {

constexpr char kHandlerName[] = "Apple Hint Media Handler";
constexpr char kLineEnd[] = "\r\n";
constexpr unsigned int kTimeScaleAtom = 12; // bytes of "tims"

/// The RTP time scale behind the typed entry. Preparing twice renews the one that is there.
void describeTimeScale(STSDData& entry, unsigned int timeScale) {
    for (QTFrame* extension : entry.getExtensions()) {
        unsigned char* data = extension->getData();
        if (extension->getDataLength() != kTimeScaleAtom || wire::load32(data + 4) != fourCC("tims"))
            continue;
        wire::store32(data + 8, timeScale);
        return;
    }
    wire::MallocPtr block = wire::allocate(kTimeScaleAtom);
    if (!block) return;
    wire::store32(block.get(), kTimeScaleAtom);
    wire::store32(block.get() + 4, fourCC("tims"));
    wire::store32(block.get() + 8, timeScale);
    std::unique_ptr<QTFrame> atom(wire::makeFrame(kTimeScaleAtom, std::move(block)));
    if (entry.addExtension(atom.get()) == 0) static_cast<void>(atom.release());
}

} // namespace

QTHintTrack::QTHintTrack() : QTTrack(kMOV) {
    setMediaType(fourCC("hint"));
    begin(1);
}

QTHintTrack::QTHintTrack(QTAtom* trak) : QTHintTrack(trak, "QT::QTHintTrack::QTHintTrack") {}

QTHintTrack::QTHintTrack(QTAtom* trak, const char* function) : QTHintTrack() {
    readTrak(trak, fourCC("hint"), function, "No track header found in track atom",
             "No mdia-atom found in trak-atom");
    readStatistics();
    readDescriptions(false);
}

QTHintTrack::QTHintTrack(const QTHintTrack& other)
    : QTTrack(other), rtpPacketNumber_(other.rtpPacketNumber_), largestPacket_(other.largestPacket_),
      encoding_(other.encoding_), clockRate_(other.clockRate_), parameter_(other.parameter_),
      transport_(other.transport_), payloadType_(other.payloadType_), attributes_(other.attributes_),
      hintAverageBitRate_(other.hintAverageBitRate_), sdpBandwidth_(other.sdpBandwidth_) {
    begin(other.sample_->getSampleNumber());
}

QTHintTrack& QTHintTrack::operator=(const QTHintTrack& other) {
    if (this == &other) return *this;
    QTTrack::operator=(other);
    rtpPacketNumber_ = other.rtpPacketNumber_;
    largestPacket_ = other.largestPacket_;
    encoding_ = other.encoding_;
    clockRate_ = other.clockRate_;
    parameter_ = other.parameter_;
    transport_ = other.transport_;
    payloadType_ = other.payloadType_;
    attributes_ = other.attributes_;
    hintAverageBitRate_ = other.hintAverageBitRate_;
    sdpBandwidth_ = other.sdpBandwidth_;
    begin(other.sample_->getSampleNumber());
    return *this;
}

QTHintTrack::~QTHintTrack() = default;

void QTHintTrack::begin(unsigned int sampleNumber) { sample_ = std::make_unique<QTSample>(sampleNumber); }

int QTHintTrack::prepareForWriting() { return 0; }

unsigned int QTHintTrack::getType() { return fourCC("hint"); }

int QTHintTrack::parseStsd(QTAtom* stsd) {
    const STSD* table = wire::descriptionTable(stsd);
    if (!table) return 0;
    // A count that disagrees is no error here: this class also stands for tracks of unknown kinds.
    for (const STSDData* entry : table->getSampleDescriptionTable()) {
        setDataFormat(entry->getDataFormat());
    }
    return 0;
}

void QTHintTrack::readStatistics() {
    const HINF* hinf = wire::child<HINF>(wire::child<UDTA>(getTrak(), fourCC("udta")), fourCC("hinf"));
    if (!hinf) return;
    for (QTDataAtom* atom : hinf->getDataAtoms()) {
        if (atom->getType() != fourCC("payt")) continue;
        const wire::PayloadDescription payload = wire::PayloadDescription::read(*atom);
        payloadType_ = payload.type;
        encoding_ = payload.encoding;
        clockRate_ = payload.clockRate;
        parameter_ = payload.parameter;
    }
}

int QTHintTrack::setHintMaxBitrate(unsigned int v) { return hmhd() ? hmhd()->setMaxBitRate(v) : -1; }
int QTHintTrack::setHintAvgBitrate(unsigned int v) { return hmhd() ? hmhd()->setAvgBitRate(v) : -1; }
int QTHintTrack::setHintSlidingAvgBitrate(unsigned int v) {
    return hmhd() ? hmhd()->setSlidingAvgBitRate(v) : -1;
}
int QTHintTrack::setHintMaxPacketSize(unsigned short v) { return hmhd() ? hmhd()->setMaxPDUSize(v) : -1; }
int QTHintTrack::setHintAvgPacketSize(unsigned short v) { return hmhd() ? hmhd()->setAvgPDUSize(v) : -1; }

int QTHintTrack::addRTPPacket(QTRTPPacket* packet) {
    if (!packet) return -1;
    largestPacket_ = std::max(largestPacket_, packet->getSize());
    return sample_->addRTPPacket(packet);
}

QTFrame* QTHintTrack::finishSample() {
    QTFrame* frame = sample_->makeQTFrame();
    begin(sample_->getSampleNumber() + 1);
    return frame;
}

void QTHintTrack::prepareHeaders() {
    hintAverageBitRate_ = wire::hintBitRate(getTotalDataSize(), rtpPacketNumber_, getDuration());
    setAtomMediaHandlerComponentType(fourCC("mhlr"));
    setAtomMediaHandlerComponentSubType(fourCC("hint"));
    setAtomMediaHandlerComponentName(kHandlerName, sizeof kHandlerName - 1, true);
    sdpBandwidth_ = getMaxBitRate() >> 10; // kbit/s of 1024 bits
    setAtomHeaderFlags(0);                 // a hint track is not played
    STSDData* entry = getCurrentAtomSampleDescriptionData();
    if (!entry) return;
    entry->setType(fourCC("rtp "));
    if (auto* hint = dynamic_cast<STSDHint*>(entry->getExtraData())) hint->setMaxPacketSize(largestPacket_);
    describeTimeScale(*entry, getAtomMediaTimeScale());
}

void QTHintTrack::prepareMediaHeader(unsigned short averagePacketSize) {
    setHintMaxPacketSize(largestPacket_);
    setHintAvgPacketSize(averagePacketSize);
    setHintMaxBitrate(getMaxBitRate());
    setHintAvgBitrate(hintAverageBitRate_);
    setHintSlidingAvgBitrate(hintAverageBitRate_ * 60);
}

void QTHintTrack::storeHintDescription() {
    const QTFrame* description = getHintDescription();
    if (!description) return;
    HINF* hinf = wire::requireChild<HINF>(wire::requireUserData(*this), fourCC("hinf"));
    if (hinf) hinf->setHintDescription(new QTFrame(*description));
}

int QTHintTrack::addHinfAtoms(unsigned int kind) {
    HINF* hinf = wire::requireChild<HINF>(wire::requireUserData(*this), fourCC("hinf"));
    if (!hinf) return -1;
    wire::HintStatistics statistics;
    statistics.packets = rtpPacketNumber_;
    statistics.bytes = getTotalDataSize();
    statistics.maxBitRate = getMaxBitRate();
    statistics.largestPacket = largestPacket_;
    statistics.duration = getDuration();
    statistics.samples = getSampleCount();
    statistics.payload = {payloadType_, encoding_, clockRate_, parameter_};
    statistics.append(*hinf, kind == fourCC("audi"));
    return 0;
}

int QTHintTrack::addSdpText(const CString& text) {
    HNTI* hnti = wire::child<HNTI>(wire::child<UDTA>(getTrak(), fourCC("udta")), fourCC("hnti"));
    if (!hnti) return -1;
    return wire::append(*hnti, wire::dataAtom(fourCC("sdp "), text.getData(), text.getLength()));
}

int QTHintTrack::addSdpFile() { return 0; }

CString QTHintTrack::getAttributeLines() const {
    CString lines;
    for (const CString& attribute : attributes_) {
        lines += attribute;
        lines += kLineEnd;
    }
    return lines;
}

} // namespace Ketra::QT
