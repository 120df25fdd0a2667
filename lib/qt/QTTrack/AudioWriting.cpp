// Writing a sound track: header values, the sample description and its extensions.
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTAtoms/entries/DAMR.h>
#include <qt/QTAtoms/entries/STSDAudio.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/QTTrack/QTAudioTrack.h>
#include <qt/QTTrack/detail/AudioFormats.h>
#include <qt/QTTrack/detail/MediaWriting.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Throw.h>

#include <cmath>
#include <limits>

namespace Ketra::QT {

namespace {

using wire::Coding;
using Format = wire::AudioFormat;
using wire::kBig;
using wire::kLittle;
using wire::kSampleRates;

constexpr unsigned int kVendor = fourCC("KETR");
constexpr double kHighestShortRate = 65535; // what a 16.16 rate can hold
constexpr short kVariableRate = -2;
constexpr wire::MediaHandler kHandler = {fourCC("soun"), "Ketra Sound Media Handler",
                                         "Apple Sound Media Handler", 25};

// Flags of linear PCM.
constexpr unsigned int kFloat = 1;
constexpr unsigned int kBigEndian = 2;
constexpr unsigned int kSigned = 4;
constexpr unsigned int kPacked = 8;

/// Speech codecs are bound to the file families that define them.
void checkFlavour(Coding coding, QTMovieConstructionFlags flavour) {
    const char* message = nullptr;
    if (coding == Coding::kAMR && flavour == kMP4) message = "AMR not allowed in MP4-files.";
    if (coding == Coding::kQCELP && flavour != k3G2) message = "QCELP only allowed i 3GPP2-files";
    if (coding == Coding::kEVRC && flavour != k3G2) {
        message = "*** ERROR ****: Incorrect setting, EVRC only allowed in 3gpp2";
    }
    if (message) QT_THROW(wire::area::kTrack, "Ketra::QT::QTAudioTrack::prepareForWriting", message);
}

/// By the number of channels, from 1.
constexpr unsigned int kLayoutTags[] = {0x00640001, 0x00650002, 0x00710003, 0x00730004,
                                        0x00750005, 0x00790006, 0x007D0007, 0x007F0008};

unsigned int nearestRateIndex(double rate) {
    const auto nearest = std::min_element(
        std::begin(kSampleRates), std::end(kSampleRates),
        [rate](unsigned int a, unsigned int b) { return std::fabs(a - rate) < std::fabs(b - rate); });
    return static_cast<unsigned int>(nearest - std::begin(kSampleRates));
}

} // namespace

/// Fills the description of one track, by a table of its kinds of coding.
class QTAudioTrack::DescriptionWriter {
public:
    DescriptionWriter(QTAudioTrack& track, const Format& format)
        : track_(track), format_(format), isMOV_(track.getMovieType() == kMOV),
          bytes_(format.bytes ? format.bytes : track.getBytesPerSample()) {
        if (!track_.extensions_) track_.extensions_ = std::make_shared<wire::ExtensionList>();
        if (!bytes_) bytes_ = format.coding == Coding::kUnsignedPCM ? 1 : 2;
        written_ = isMOV_ || format.coding != Coding::kMP3 ? format.written : fourCC("mp4a");
        const bool tooHigh = track.sampleRate_ > kHighestShortRate;
        if (isMOV_ && wire::isPCM(format.coding) && tooHigh) written_ = fourCC("lpcm");
    }

    void write(STSDData& entry);
    unsigned int bytesPerSample() const { return bytes_; }

private:
    struct Row {
        Coding coding;
        void (DescriptionWriter::*write)();
    };
    static const Row kRows[];

    bool packed() const { return isMOV_ && version() == 1; }
    unsigned short version() const;
    unsigned int endian() const;
    unsigned int pcmFlags() const;
    unsigned int samplesPerPacket(unsigned int usual) const;
    void fill(STSDAudio& d) const;
    void fillPackets(STSDAudio& d) const;

    wire::AtomBuilder beginWave() const;
    void addWave(wire::AtomBuilder& wave);
    void pcm();
    void mpeg4();
    void mp3();
    void alac();
    void qdm2();
    void amr();
    void qcelp() { speech(fourCC("dqcp")); }
    void evrc() { speech(fourCC("devc")); }
    void speech(unsigned int type);
    void writeLayout();
    std::unique_ptr<QTFrame> makeESDS() const;
    unsigned char objectType() const;
    std::vector<unsigned char> specificInfo() const;

    QTAudioTrack& track_;
    const Format& format_;
    bool isMOV_;
    unsigned int bytes_; // of one sample of one channel
    unsigned int written_;
};

const QTAudioTrack::DescriptionWriter::Row QTAudioTrack::DescriptionWriter::kRows[] = {
    {Coding::kPCM, &DescriptionWriter::pcm},         {Coding::kFloatPCM, &DescriptionWriter::pcm},
    {Coding::kUnsignedPCM, &DescriptionWriter::pcm}, {Coding::kMPEG4, &DescriptionWriter::mpeg4},
    {Coding::kMP3, &DescriptionWriter::mp3},         {Coding::kALAC, &DescriptionWriter::alac},
    {Coding::kQDM2, &DescriptionWriter::qdm2},       {Coding::kAMR, &DescriptionWriter::amr},
    {Coding::kQCELP, &DescriptionWriter::qcelp},     {Coding::kEVRC, &DescriptionWriter::evrc},
};

void QTAudioTrack::DescriptionWriter::write(STSDData& entry) {
    entry.setDataFormat(written_);
    if (auto* description = dynamic_cast<STSDAudio*>(entry.getExtraData())) fill(*description);
    track_.extensions_->begin(entry);
    const Row* row = std::find_if(std::begin(kRows), std::end(kRows),
                                  [this](const Row& r) { return r.coding == format_.coding; });
    if (row != std::end(kRows)) (this->*row->write)();
    if (isMOV_ && !wire::isSpeech(format_.coding) && format_.coding != Coding::kOther) writeLayout();
}

/// Only QuickTime movies have more than the plain form: with packets, or linear PCM in full.
unsigned short QTAudioTrack::DescriptionWriter::version() const {
    if (!isMOV_ || wire::isSpeech(format_.coding) || format_.coding == Coding::kOther) return 0;
    if (written_ == fourCC("lpcm")) return 2;
    return wire::isPCM(format_.coding) && format_.bytes < 3 ? 0 : 1;
}

unsigned int QTAudioTrack::DescriptionWriter::endian() const {
    if (format_.endian) return format_.endian;
    return track_.endian_ == kLittle ? kLittle : kBig;
}

unsigned int QTAudioTrack::DescriptionWriter::pcmFlags() const {
    // Samples of 64 bits have no other form than floating point.
    const bool real = format_.coding == Coding::kFloatPCM || bytes_ == 8;
    unsigned int flags = kPacked;
    if (real) {
        flags |= kFloat;
    } else if (format_.coding != Coding::kUnsignedPCM) {
        flags |= kSigned;
    }
    return endian() == kBig ? flags | kBigEndian : flags;
}

unsigned int QTAudioTrack::DescriptionWriter::samplesPerPacket(unsigned int usual) const {
    return track_.getSamplesPerPacket() ? track_.getSamplesPerPacket() : usual;
}

void QTAudioTrack::DescriptionWriter::fill(STSDAudio& d) const {
    constexpr unsigned int kSizes[] = {20, 36, 56};
    constexpr unsigned int kTemplateChannels = 2; // speech entries hold fixed values
    const bool speech = wire::isSpeech(format_.coding);
    const bool wide = written_ == fourCC("sawb");
    d.setVersion(version());
    d.setSize(kSizes[version()]);
    d.setRevisionLevel(track_.revisionLevel_);
    d.setVendor(track_.vendor_);
    d.setChannels(speech ? kTemplateChannels : track_.channels_);
    d.setPacketSize(0);
    d.setSampleRate(speech ? (wide ? 16000 : 8000) : track_.sampleRate_);
    d.setFormatSpecificFlags(0);
    if (format_.coding == Coding::kOther) {
        d.setSampleSize(track_.sampleSize_);
    } else if (wire::isPCM(format_.coding) && version() == 0) {
        d.setSampleSize(static_cast<unsigned short>(bytes_ * 8));
    } else {
        d.setSampleSize(16);
    }
    const bool compressed = packed() && !wire::isPCM(format_.coding);
    const short usual = compressed ? kVariableRate : short{0};
    const short id = track_.compressionID_ ? track_.compressionID_ : usual;
    d.setCompressionID(static_cast<unsigned short>(id));
    fillPackets(d);
}

void QTAudioTrack::DescriptionWriter::fillPackets(STSDAudio& d) const {
    if (wire::isPCM(format_.coding)) {
        d.setSamplesPerPacket(1);
        d.setBytesPerPacket(bytes_);
        d.setBytesPerFrame(bytes_ * track_.channels_);
        d.setBytesPerSample(version() == 2 ? bytes_ : 2);
        if (version() == 2) d.setFormatSpecificFlags(static_cast<int>(0x80000000U | pcmFlags()));
        return;
    }
    const struct {
        Coding coding;
        unsigned int samples;
    } kUsual[] = {
        {Coding::kMPEG4, objectType() == 0x40 ? 1024U : 1152U}, {Coding::kMP3, 1152}, {Coding::kALAC, 4096}};
    unsigned int usual = 1;
    for (const auto& row : kUsual) {
        if (row.coding == format_.coding) usual = row.samples;
    }
    d.setSamplesPerPacket(samplesPerPacket(usual));
    d.setBytesPerPacket(track_.bytesPerPacket_);
    d.setBytesPerFrame(track_.bytesPerFrame_);
    d.setBytesPerSample(2);
}

wire::AtomBuilder QTAudioTrack::DescriptionWriter::beginWave() const {
    wire::AtomBuilder frma(fourCC("frma"));
    frma.u32(written_);
    wire::AtomBuilder wave(fourCC("wave"));
    wave.atom(frma);
    return wave;
}

/// Adds the terminator, then the whole.
void QTAudioTrack::DescriptionWriter::addWave(wire::AtomBuilder& wave) {
    wire::AtomBuilder end(0);
    track_.extensions_->add(wave.atom(end));
}

void QTAudioTrack::DescriptionWriter::pcm() {
    if (format_.bytes < 3 || version() == 2) return; // the code tells the byte order
    wire::AtomBuilder enda(fourCC("enda"));
    enda.u16(endian() == kLittle ? 1 : 0);
    if (packed()) {
        wire::AtomBuilder wave = beginWave();
        addWave(wave.atom(enda));
    } else if (endian() == kLittle) {
        track_.extensions_->add(enda);
    }
}

unsigned char QTAudioTrack::DescriptionWriter::objectType() const {
    if (track_.getDataFormat() == fourCC("mp4a")) return 0x40;
    if (track_.getDataFormat() == fourCC("mp1a")) return 0x6B;
    if (track_.getDataFormat() == fourCC("mp2a")) return 0x69;
    return track_.sampleRate_ >= 32000 ? 0x6B : 0x69; // MPEG-1 or MPEG-2 layer 3
}

/// The configuration handed in, or the shortest one that says rate and channels.
std::vector<unsigned char> QTAudioTrack::DescriptionWriter::specificInfo() const {
    if (objectType() != 0x40) return {};
    const QTFrame* info = track_.getDecoderSpecificInfo();
    if (info && info->getData() && info->getDataLength()) {
        return std::vector<unsigned char>(info->getData(), info->getData() + info->getDataLength());
    }
    constexpr unsigned int kLowComplexity = 2;
    const unsigned int channels = track_.channels_ == 8 ? 7 : track_.channels_ & 15;
    const unsigned int bits =
        kLowComplexity << 11 | nearestRateIndex(track_.sampleRate_) << 7 | channels << 3;
    return {static_cast<unsigned char>(bits >> 8), static_cast<unsigned char>(bits)};
}

std::unique_ptr<QTFrame> QTAudioTrack::DescriptionWriter::makeESDS() const {
    const std::vector<unsigned char> info = specificInfo();
    wire::StreamConfiguration stream;
    stream.objectTypeIndication = objectType();
    stream.streamType = 5;
    stream.bufferSize = 6144 / 8 * track_.channels_; // bits a channel
    stream.maxBitRate = track_.getMaxBitRate();
    stream.avgBitRate = track_.getAvgBitRate();
    stream.specificInfo = info.data();
    stream.specificInfoSize = static_cast<unsigned int>(info.size());
    return wire::makeESDS(stream);
}

void QTAudioTrack::DescriptionWriter::mpeg4() {
    std::unique_ptr<QTFrame> esds = makeESDS();
    if (!packed()) {
        track_.extensions_->add(std::move(esds));
        return;
    }
    wire::AtomBuilder empty(fourCC("mp4a"));
    empty.u32(0);
    wire::AtomBuilder wave = beginWave();
    wave.atom(empty);
    if (esds) wave.frame(*esds);
    addWave(wave);
}

void QTAudioTrack::DescriptionWriter::mp3() {
    if (!packed()) {
        track_.extensions_->add(makeESDS());
        return;
    }
    wire::AtomBuilder wave = beginWave();
    addWave(wave);
}

void QTAudioTrack::DescriptionWriter::alac() {
    constexpr unsigned int kAtom = 36;
    constexpr unsigned int kFullPayload = 28; // with version and flags
    constexpr unsigned int kConfig = 24;
    const QTFrame* info = track_.getDecoderSpecificInfo();
    const unsigned int length = info && info->getData() ? info->getDataLength() : 0;
    wire::AtomBuilder config(fourCC("alac"));
    if (length == kAtom) {
        config.bytes(info->getData() + 8, kFullPayload);
    } else if (length == kFullPayload) {
        config.frame(*info);
    } else if (length == kConfig) {
        config.u32(0).frame(*info);
    } else {
        const unsigned int bits = track_.sampleSize_ ? track_.sampleSize_ : 16;
        config.u32(0).u32(samplesPerPacket(4096)).u8(0).u8(bits).u8(40).u8(10).u8(14);
        config.u8(track_.channels_).u16(255).u32(0).u32(track_.getAvgBitRate());
        config.u32(wire::toUnsigned32(track_.sampleRate_));
    }
    if (packed()) {
        wire::AtomBuilder wave = beginWave();
        addWave(wave.atom(config));
    } else {
        track_.extensions_->add(config);
    }
}

void QTAudioTrack::DescriptionWriter::qdm2() {
    const QTFrame* info = track_.getDecoderSpecificInfo();
    if (!packed()) return;
    wire::AtomBuilder wave = beginWave();
    if (info && info->getData()) wave.frame(*info); // atoms already
    addWave(wave);
}

void QTAudioTrack::DescriptionWriter::amr() {
    constexpr unsigned short kAllNarrow = 0x81FF;
    constexpr unsigned short kAllWide = 0x83FF;
    const unsigned short all = written_ == fourCC("sawb") ? kAllWide : kAllNarrow;
    DAMR damr;
    damr.setVendor(kVendor);
    damr.setModeSet(track_.amrMode_ ? static_cast<unsigned short>(track_.amrMode_) : all);
    damr.setFramesPerSample(static_cast<unsigned char>(samplesPerPacket(1)));
    track_.extensions_->add(std::unique_ptr<QTFrame>(damr.serialize()));
}

void QTAudioTrack::DescriptionWriter::speech(unsigned int type) {
    wire::AtomBuilder config(type);
    track_.extensions_->add(config.u32(kVendor).u8(0).u8(samplesPerPacket(1)));
}

void QTAudioTrack::DescriptionWriter::writeLayout() {
    if (track_.channels_ == 0 || track_.channels_ > std::size(kLayoutTags)) return;
    wire::AtomBuilder chan(fourCC("chan"));
    chan.u32(0).u32(kLayoutTags[track_.channels_ - 1]).u32(0).u32(0);
    track_.extensions_->add(chan);
}

namespace {

/// Whether the table names every one of `count` samples and they are not of `size` bytes, so that their
/// number and size would say something else of the media than what was added.
bool namesOtherSamples(const STSZ& sizes, unsigned int count, std::uint64_t size) {
    const auto& table = wire::Access::table(sizes);
    if (sizes.getSampleSize() != 0 || table.held() != count) return false;
    for (std::uint64_t i = 0; i < table.held(); ++i) {
        if (table.at(i) != size) return true;
    }
    return false;
}

} // namespace

/// Samples of PCM are all of one size, and they are what the other tables count.
void QTAudioTrack::writeConstantSize(unsigned int bytesPerSample) {
    const std::uint64_t size = std::uint64_t{channels_} * bytesPerSample;
    const unsigned int count = stts() ? stts()->getSumOfEntries() : 0;
    if (!stsz() || !count || !size || size > std::numeric_limits<unsigned int>::max()) return;
    if (namesOtherSamples(*stsz(), count, size)) return;
    stsz()->setSampleSizeTable({});
    stsz()->setSampleSize(static_cast<unsigned int>(size));
    stsz()->setNumberOfEntries(count);
}

int QTAudioTrack::prepareForWriting() {
    const Format format = wire::audioFormat(getDataFormat());
    checkFlavour(format.coding, getMovieType());
    if (getAtomMediaTimeScale() == 0) setAtomMediaTimeScale(wire::toUnsigned32(sampleRate_));
    setAtomMediaDuration(mediaUnits(getDuration()));
    wire::writeMediaHandler(*this, kHandler);
    if (!wire::isThreeGPP(getMovieType())) setAtomMediaHandlerManufacturer(fourCC("appl"));
    QTTrack::prepareForWriting();
    DescriptionWriter writer(*this, format);
    if (STSDData* entry = getCurrentAtomSampleDescriptionData()) writer.write(*entry);
    if (wire::isPCM(format.coding)) writeConstantSize(writer.bytesPerSample());
    return 0;
}

} // namespace Ketra::QT
