// Reading the sound sample descriptions.
#include <qt/QTAtoms/detail/Descriptions.h>
#include <qt/QTAtoms/entries/DAMR.h>
#include <qt/QTAtoms/entries/STSDAudio.h>
#include <qt/QTTrack/QTAudioTrack.h>
#include <qt/QTTrack/detail/AudioFormats.h>
#include <qt/QTTrack/detail/Extensions.h>
#include <qt/QTTrack/detail/SampleEntries.h>

#include <cstring>

namespace Ketra::QT {

namespace {

constexpr unsigned int kEntryHeader = 16;
constexpr unsigned int kFlagBigEndian = 2; // of linear PCM

} // namespace

/// Walks one description: the fixed fields, then each extension by its row in a table.
class QTAudioTrack::DescriptionReader {
public:
    DescriptionReader(QTAudioTrack& track, STSDData& entry) : track_(track), entry_(entry) {}

    void read() {
        wire::Reader in(entry_.getData(), entry_.getDataSize());
        auto description = std::make_unique<STSDAudio>();
        const double sampleRate = wire::readBody(*description, in);
        takeFields(*description, sampleRate);
        giveFields(*description);
        entry_.setExtraData(description.release());
        walk(in);
    }

private:
    using Extension = wire::Extension;
    struct Row {
        unsigned int type;
        std::uint64_t least; // bytes without which the extension means nothing
        void (DescriptionReader::*read)(const Extension&);
    };
    static const Row kRows[];

    void takeFields(const STSDAudio& d, double sampleRate);
    void takeLinearPCM(const STSDAudio& d);
    void giveFields(STSDAudio& d) const;
    void walk(wire::Reader& in);
    void setSpeech(unsigned short bits, double sampleRate);

    void esds(const Extension& atom);
    void specificInfo(const DecoderSpecificInfo& info);
    void damr(const Extension& atom);
    void qcelp(const Extension&);
    void evrc(const Extension&);
    void enda(const Extension& atom);

    QTAudioTrack& track_;
    STSDData& entry_;
};

const QTAudioTrack::DescriptionReader::Row QTAudioTrack::DescriptionReader::kRows[] = {
    {fourCC("esds"), 12, &DescriptionReader::esds}, {fourCC("damr"), 17, &DescriptionReader::damr},
    {fourCC("dqcp"), 8, &DescriptionReader::qcelp}, {fourCC("sqcp"), 8, &DescriptionReader::qcelp},
    {fourCC("devc"), 8, &DescriptionReader::evrc},  {fourCC("sevc"), 8, &DescriptionReader::evrc},
    {fourCC("enda"), 10, &DescriptionReader::enda},
};

void QTAudioTrack::DescriptionReader::takeFields(const STSDAudio& d, double sampleRate) {
    track_.version_ = d.getVersion();
    track_.revisionLevel_ = d.getRevisionLevel();
    track_.vendor_ = d.getVendor();
    track_.channels_ = d.getChannels();
    track_.sampleSize_ = d.getSampleSize();
    track_.compressionID_ = static_cast<short>(d.getCompressionID());
    track_.sampleRate_ = sampleRate;
    const unsigned int sampleBytes = d.getSampleSize() / 8U;
    if (d.getVersion() == 1) {
        track_.setSamplesPerPacket(d.getSamplesPerPacket());
        track_.bytesPerPacket_ = d.getBytesPerPacket();
        track_.bytesPerFrame_ = d.getBytesPerFrame();
        track_.bytesPerSample_ = d.getBytesPerSample() ? d.getBytesPerSample() : sampleBytes;
    } else if (d.getVersion() == 2) {
        track_.bytesPerFrame_ = 0;
        takeLinearPCM(d);
    } else {
        track_.setSamplesPerPacket(1);
        track_.bytesPerPacket_ = sampleBytes;
        track_.bytesPerFrame_ = 0;
        track_.bytesPerSample_ = sampleBytes;
    }
    track_.setDataFormat(entry_.getDataFormat());
    if (entry_.getDataFormat() == fourCC("in24")) {
        track_.sampleSize_ = 24;
        track_.bytesPerSample_ = 3;
    }
    track_.extended_ = std::uint64_t{entry_.getDataSize()} + kEntryHeader > 22U + 16U * d.getVersion();
}

/// Version 2 describes linear PCM in full; for any other format it stands for plain 16-bit samples.
void QTAudioTrack::DescriptionReader::takeLinearPCM(const STSDAudio& d) {
    if (entry_.getDataFormat() == fourCC("lpcm")) {
        const auto flags = static_cast<unsigned int>(d.getFormatSpecificFlags());
        track_.endian_ = flags & kFlagBigEndian ? wire::kBig : wire::kLittle;
        track_.bytesPerSample_ = d.getSampleSize() / 8U;
        track_.bytesPerPacket_ = d.getBytesPerPacket();
        track_.setSamplesPerPacket(d.getSamplesPerPacket());
    } else {
        track_.sampleSize_ = 16;
        track_.bytesPerSample_ = 2;
        track_.bytesPerPacket_ = d.getChannels() * 2;
        track_.setSamplesPerPacket(1);
    }
}

void QTAudioTrack::DescriptionReader::giveFields(STSDAudio& d) const {
    constexpr unsigned int kSizes[] = {20, 36, 56};
    d.setSize(kSizes[d.getVersion() <= 2 ? d.getVersion() : 0]);
    d.setSampleSize(track_.sampleSize_);
    d.setSamplesPerPacket(track_.getSamplesPerPacket());
    d.setBytesPerPacket(track_.bytesPerPacket_);
    d.setBytesPerFrame(track_.bytesPerFrame_);
    d.setBytesPerSample(track_.bytesPerSample_);
    // Negative flags are what marks linear PCM when the description is written.
    const bool linear = d.getVersion() == 2 && entry_.getDataFormat() == fourCC("lpcm");
    const auto flags = static_cast<unsigned int>(d.getFormatSpecificFlags());
    d.setFormatSpecificFlags(linear ? static_cast<int>(flags | 0x80000000U) : 0);
}

void QTAudioTrack::DescriptionReader::walk(wire::Reader& in) {
    while (in.left() >= wire::kExtensionHeader) {
        const wire::ExtensionHeader header(in);
        if (header.type == fourCC("wave")) { // entered: its children follow
            in.skip(wire::kExtensionHeader);
            continue;
        }
        if (header.size < wire::kExtensionHeader || header.type == 0) return;
        const Extension atom = wire::takeExtension(in, header.size);
        const Row* row = std::find_if(std::begin(kRows), std::end(kRows),
                                      [&](const Row& r) { return r.type == header.type; });
        if (row != std::end(kRows) && atom.has(row->least)) (this->*row->read)(atom);
    }
}

void QTAudioTrack::DescriptionReader::esds(const Extension& atom) {
    const wire::DecoderConfiguration found(atom);
    track_.esds_ = found.esds;
    if (!found.config) return;
    const unsigned int kind = found.config->getObjectTypeIndication();
    if (kind == 0x6B) {
        track_.setDataFormat(fourCC("mp1a"));
    } else if (kind == 0x69) {
        track_.setDataFormat(fourCC("mp2a"));
    } else if (auto info = found.specificInfo()) {
        track_.setDecoderSpecificInfo(info.release());
        specificInfo(*found.info);
    }
}

void QTAudioTrack::DescriptionReader::specificInfo(const DecoderSpecificInfo& info) {
    const unsigned char* bytes = info.getDecoderSpecificInfo();
    const unsigned int length = info.getDecoderSpecificInfoSize();
    if (length > 3 && std::memcmp(bytes, "QLCM", 4) == 0) {
        track_.setDataFormat(fourCC("sqcp"));
        setSpeech(16, 8000);
        return;
    }
    if (length < 2) return;
    const unsigned int bits = wire::load16(bytes);
    const unsigned int rate = (bits >> 7) & 15;
    const unsigned int channels = (bits >> 3) & 15;
    if (channels) track_.channels_ = channels == 7 ? 8 : channels;
    if (rate < std::size(wire::kSampleRates)) track_.sampleRate_ = wire::kSampleRates[rate];
}

void QTAudioTrack::DescriptionReader::setSpeech(unsigned short bits, double sampleRate) {
    track_.sampleSize_ = bits;
    track_.channels_ = 1;
    track_.sampleRate_ = sampleRate;
}

void QTAudioTrack::DescriptionReader::damr(const Extension& atom) {
    DAMR config;
    wire::Reader in = atom.payload();
    wire::readBody(config, in);
    track_.setSamplesPerPacket(config.getFramesPerSample());
    if (track_.getDataFormat() == fourCC("samr")) setSpeech(8, 8000);
    if (track_.getDataFormat() == fourCC("sawb")) setSpeech(16, 16000);
}

void QTAudioTrack::DescriptionReader::qcelp(const Extension&) {
    track_.setDataFormat(fourCC("sqcp"));
    setSpeech(16, 8000);
}

void QTAudioTrack::DescriptionReader::evrc(const Extension&) {
    track_.setDataFormat(fourCC("sevc"));
    setSpeech(16, 8000);
}

void QTAudioTrack::DescriptionReader::enda(const Extension& atom) {
    track_.endian_ = atom.u16(8) == 1 ? wire::kLittle : wire::kBig;
}

int QTAudioTrack::parseStsd(QTAtom* atom) {
    STSD* stsd = wire::descriptionTable(atom);
    if (!stsd) return -1;
    for (STSDData* entry : wire::describedEntries(*stsd, "Ketra::QT::QTAudioTrack::parseStsd")) {
        DescriptionReader(*this, *entry).read();
    }
    return 0;
}

} // namespace Ketra::QT
