// Writing a video track: header values, the sample description and its extensions.
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTAtoms/entries/D263.h>
#include <qt/QTAtoms/entries/STSDVideo.h>
#include <qt/QTAtoms/samples/CSLG.h>
#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/track/Apertures.h>
#include <qt/QTAtoms/track/TAPT.h>
#include <qt/QTTrack/QTVideoTrack.h>
#include <qt/QTTrack/detail/MediaWriting.h>
#include <qt/QTTrack/detail/ParameterSets.h>
#include <qt/wire/Numbers.h>

#include <limits>
#include <numeric>

namespace Ketra::QT {

namespace {

constexpr unsigned short kDitherCopy = 64;
constexpr unsigned short kGrey = 32768;
constexpr unsigned short kEnglish = 5575; // "eng", three letters of five bits
constexpr unsigned short kUnspecified = 2;
constexpr unsigned int kHighDefinition = 720; // lines
constexpr wire::MediaHandler kHandler = {fourCC("vide"), "Ketra Video Media Handler",
                                         "Apple Video Media Handler", 25};

constexpr unsigned int kProRes[] = {fourCC("apch"), fourCC("apcn"), fourCC("apco"), fourCC("apcs"),
                                    fourCC("ap4h")};

bool isProRes(unsigned int format) {
    return std::find(std::begin(kProRes), std::end(kProRes), format) != std::end(kProRes);
}

template <class T>
T firstSet(T value, T otherwise, T last = 0) {
    if (value != T{}) return value;
    return otherwise != T{} ? otherwise : last;
}

/// Bytes that begin with an atom header which they can satisfy.
bool looksLikeAtoms(const QTFrame* frame) {
    if (!frame || !frame->getData() || frame->getDataLength() < 8) return false;
    const unsigned int size = wire::load32(frame->getData());
    return size >= 8 && size <= frame->getDataLength();
}

bool isAtom(const QTFrame& frame, unsigned int type) {
    return looksLikeAtoms(&frame) && wire::load32(frame.getData() + 4) == type;
}

/// A configuration that the track keeps: a whole atom, or a record (version 1) that lacks the atom header.
std::unique_ptr<QTFrame> keptConfiguration(const QTFrame* frame, unsigned int type) {
    if (!frame || !frame->getData() || !frame->getDataLength()) return nullptr;
    if (isAtom(*frame, type)) return std::make_unique<QTFrame>(*frame);
    if (frame->getData()[0] != 1) return nullptr;
    return wire::AtomBuilder(type).frame(*frame).takeFrame();
}

/// The least and the greatest composition offset, searched from these starting values.
struct CompositionRange {
    int least = 10000;
    int greatest = -10000;
    bool negative = false;

    explicit CompositionRange(const CTTS& table) {
        const auto& entries = wire::Access::table(table);
        for (std::uint64_t i = 0; i < entries.held(); ++i) {
            const auto offset = static_cast<int>(entries.at(i).value);
            least = std::min(least, offset);
            greatest = std::max(greatest, offset);
            negative = negative || offset < 0;
        }
    }
};

} // namespace

/// Fills the description of one track, by a table of its codecs.
class QTVideoTrack::DescriptionWriter {
public:
    DescriptionWriter(QTVideoTrack& track, STSDData& entry)
        : track_(track), entry_(entry), isMOV_(track.getMovieType() == kMOV) {
        if (!track_.extensions_) track_.extensions_ = std::make_shared<wire::ExtensionList>();
    }

    void write();

private:
    struct Codec {
        unsigned int format;
        void (DescriptionWriter::*write)();
    };
    static const Codec kCodecs[];

    void fill(STSDVideo& d) const;
    void writePicture();
    void writeColor();
    void writeApertures(std::uint64_t horizontal, std::uint64_t vertical);

    void svq3();
    void mpeg4();
    void keptAtoms();
    void h263();
    void h264();
    void h265();

    QTVideoTrack& track_;
    STSDData& entry_;
    bool isMOV_;
};

const QTVideoTrack::DescriptionWriter::Codec QTVideoTrack::DescriptionWriter::kCodecs[] = {
    {fourCC("SVQ3"), &DescriptionWriter::svq3},      {fourCC("mp4v"), &DescriptionWriter::mpeg4},
    {fourCC("AVdn"), &DescriptionWriter::keptAtoms}, {fourCC("AVdh"), &DescriptionWriter::keptAtoms},
    {fourCC("mjp2"), &DescriptionWriter::keptAtoms}, {fourCC("s263"), &DescriptionWriter::h263},
    {fourCC("h263"), &DescriptionWriter::h263},      {fourCC("h264"), &DescriptionWriter::h264},
    {fourCC("avc1"), &DescriptionWriter::h264},      {fourCC("xavc"), &DescriptionWriter::h264},
    {fourCC("h265"), &DescriptionWriter::h265},      {fourCC("hevc"), &DescriptionWriter::h265},
    {fourCC("hvc1"), &DescriptionWriter::h265},
};

void QTVideoTrack::DescriptionWriter::write() {
    entry_.setDataFormat(track_.getDataFormat());
    if (auto* description = dynamic_cast<STSDVideo*>(entry_.getExtraData())) fill(*description);
    track_.extensions_->begin(entry_);
    writePicture();
    const Codec* codec = std::find_if(std::begin(kCodecs), std::end(kCodecs),
                                      [this](const Codec& c) { return c.format == track_.getDataFormat(); });
    if (codec != std::end(kCodecs)) (this->*codec->write)();
}

void QTVideoTrack::DescriptionWriter::fill(STSDVideo& d) const {
    d.setVersion(firstSet(d.getVersion(), track_.version_));
    d.setRevisionLevel(firstSet(d.getRevisionLevel(), track_.revisionLevel_));
    d.setVendor(firstSet(d.getVendor(), track_.vendor_, isMOV_ ? fourCC("appl") : 0));
    d.setTemporalQuality(firstSet(d.getTemporalQuality(), track_.temporalQuality_));
    d.setSpatialQuality(firstSet(d.getSpatialQuality(), track_.spatialQuality_));
    d.setWidth(firstSet(d.getWidth(), static_cast<unsigned short>(track_.width_)));
    d.setHeight(firstSet(d.getHeight(), static_cast<unsigned short>(track_.height_)));
    d.setHorizontalResolution(
        firstSet(d.getHorizontalResolution(), static_cast<float>(track_.horizontalResolution_), 72.0F));
    d.setVerticalResolution(
        firstSet(d.getVerticalResolution(), static_cast<float>(track_.verticalResolution_), 72.0F));
    d.setFrameCount(firstSet<unsigned short>(d.getFrameCount(), track_.frameCount_, 1));
    d.setDepth(firstSet<unsigned short>(d.getDepth(), track_.depth_, 24));
    d.setColorTableID(firstSet<unsigned short>(d.getColorTableID(), track_.colorTableID_, 65535));
    if (track_.getCompressorNameLength()) {
        d.setCompressorName(track_.getCompressorNameLength(), track_.getCompressorName());
    }
}

void QTVideoTrack::DescriptionWriter::writePicture() {
    if (isMOV_ || (track_.getMovieType() == kMP4 && track_.useQuickTimeExtensions_)) writeColor();
    if (track_.fields_) {
        wire::AtomBuilder fiel(fourCC("fiel"));
        track_.extensions_->add(fiel.u8(track_.fields_).u8(track_.fieldOrder_));
    }
    // Spacing of the pixels that gives the picture the wanted shape.
    const bool shaped = track_.aspectW_ && track_.aspectH_;
    std::uint64_t horizontal =
        std::uint64_t{shaped ? track_.aspectW_ : track_.displayWidth_} * track_.height_;
    std::uint64_t vertical = std::uint64_t{shaped ? track_.aspectH_ : track_.displayHeight_} * track_.width_;
    if (const std::uint64_t divisor = std::gcd(horizontal, vertical)) {
        horizontal /= divisor;
        vertical /= divisor;
    }
    constexpr std::uint64_t kMost = std::numeric_limits<unsigned int>::max();
    if (!horizontal || !vertical || horizontal > kMost || vertical > kMost) {
        horizontal = vertical = 1;
    } else {
        wire::AtomBuilder pasp(fourCC("pasp"));
        track_.extensions_->add(
            pasp.u32(static_cast<unsigned int>(horizontal)).u32(static_cast<unsigned int>(vertical)));
    }
    if (isMOV_) writeApertures(horizontal, vertical);
}

void QTVideoTrack::DescriptionWriter::writeColor() {
    unsigned short values[3] = {track_.primaries_, track_.transfer_, track_.matrix_};
    const bool unspecified =
        std::find(std::begin(values), std::end(values), kUnspecified) != std::end(values);
    if (unspecified && isProRes(track_.getDataFormat())) {
        const bool high = track_.height_ >= kHighDefinition;
        values[0] = values[2] = high ? 1 : 6;
        values[1] = 1;
    }
    wire::AtomBuilder colr(fourCC("colr"));
    track_.extensions_->add(colr.u32(fourCC("nclc")).u16(values[0]).u16(values[1]).u16(values[2]));
}

void QTVideoTrack::DescriptionWriter::writeApertures(std::uint64_t horizontal, std::uint64_t vertical) {
    const bool clean = track_.clapWidth_ > 0 && track_.clapHeight_ > 0;
    const auto cleanWidth = clean ? static_cast<unsigned int>(track_.clapWidth_) : track_.width_;
    const auto cleanHeight = clean ? static_cast<unsigned int>(track_.clapHeight_) : track_.height_;
    if (clean) {
        wire::AtomBuilder clap(fourCC("clap")); // in the middle of the picture
        track_.extensions_->add(
            clap.u32(cleanWidth).u32(1).u32(cleanHeight).u32(1).u32(0).u32(1).u32(0).u32(1));
    }
    const auto* tapt = wire::child<TAPT>(track_.getTrak(), fourCC("tapt"));
    const auto shown = [&](unsigned int width) {
        return static_cast<unsigned int>(width * horizontal / vertical);
    };
    const auto set = [](auto* aperture, unsigned int width, unsigned int height) {
        if (!aperture) return;
        aperture->setWidth(width);
        aperture->setHeight(height);
    };
    set(wire::child<CLEF>(tapt, fourCC("clef")), shown(cleanWidth), cleanHeight);
    set(wire::child<PROF>(tapt, fourCC("prof")), shown(track_.width_), track_.height_);
    set(wire::child<ENOF>(tapt, fourCC("enof")), track_.width_, track_.height_);
}

void QTVideoTrack::DescriptionWriter::svq3() {
    if (track_.svq3_.empty()) return;
    wire::AtomBuilder smi(fourCC("SMI "));
    smi.u32(fourCC("SEQH")).u32(track_.getSVQ3DataLength()).bytes(track_.svq3_);
    track_.extensions_->add(smi);
}

void QTVideoTrack::DescriptionWriter::mpeg4() {
    wire::StreamConfiguration stream;
    stream.objectTypeIndication = 0x20;
    stream.streamType = 4;
    stream.maxBitRate = track_.getMaxBitRate();
    stream.avgBitRate = track_.getAvgBitRate();
    if (const QTFrame* info = track_.getDecoderSpecificInfo()) {
        stream.specificInfo = info->getData();
        stream.specificInfoSize = info->getDataLength();
    }
    track_.extensions_->add(wire::makeESDS(stream));
}

void QTVideoTrack::DescriptionWriter::keptAtoms() {
    const QTFrame* kept = track_.getDecoderSpecificInfo();
    if (looksLikeAtoms(kept)) track_.extensions_->add(std::make_unique<QTFrame>(*kept));
}

void QTVideoTrack::DescriptionWriter::h263() {
    constexpr unsigned char kDefaultLevel = 10;
    if (track_.getDataFormat() == fourCC("h263")) {
        // The QuickTime code, which the 3GPP families have under another name.
        if (track_.getMovieType() != k3GP && track_.getMovieType() != k3G2) return;
        entry_.setDataFormat(fourCC("s263"));
    }
    D263 config;
    config.setVendor(fourCC("KETR"));
    config.setH263Level(track_.h263Level_ ? track_.h263Level_ : kDefaultLevel);
    config.setH263Profile(track_.h263Profile_);
    track_.extensions_->add(std::unique_ptr<QTFrame>(config.serialize()));
}

void QTVideoTrack::DescriptionWriter::h264() {
    entry_.setDataFormat(fourCC("avc1"));
    auto* description = dynamic_cast<STSDVideo*>(entry_.getExtraData());
    if (isMOV_ && description) {
        unsigned char name[] = {'H', '2', '6', '4'};
        description->setCompressorName(sizeof name, name);
    }
    std::unique_ptr<QTFrame> config =
        wire::makeAvcC(track_.getH264SeqParSet(), track_.getH264PictParSet(), track_.h264SizeSize_);
    if (!config && !track_.getH264SeqParSet()) {
        config = keptConfiguration(track_.getDecoderSpecificInfo(), fourCC("avcC"));
    }
    track_.extensions_->add(std::move(config));
}

void QTVideoTrack::DescriptionWriter::h265() {
    entry_.setDataFormat(isMOV_ ? fourCC("hev1") : fourCC("hvc1"));
    const QTFrame* kept = track_.getH265DecoderSpecificInfo();
    std::unique_ptr<QTFrame> config = keptConfiguration(kept, fourCC("hvcC"));
    track_.extensions_->add(config ? std::move(config) : wire::makeHvcC(kept));
}

void QTVideoTrack::settleDisplaySize() {
    if (displayFactor_ != 1.0F) {
        const auto factor = static_cast<double>(displayFactor_);
        displayWidth_ = wire::toUnsigned32(width_ * factor);
        displayHeight_ = wire::toUnsigned32(height_ * factor);
    }
    displayWidth_ = firstSet(displayWidth_, width_);
    displayHeight_ = firstSet(displayHeight_, height_);
}

void QTVideoTrack::writeMediaHeader() {
    const bool isMOV = getMovieType() == kMOV;
    const unsigned short mode = firstSet(getAtomVideoMediaGraphicsMode(), kDitherCopy);
    const unsigned short color = firstSet(getAtomVideoMediaOpColor(), kGrey);
    setAtomVideoMediaGraphicsMode(isMOV ? mode : 0);
    setAtomVideoMediaOpColors(isMOV ? color : 0);
}

void QTVideoTrack::writeCompositionShift() {
    if (!stbl() || !ctts()) return;
    const CompositionRange range(*ctts());
    if (!range.negative) return;
    auto cslg = std::make_unique<CSLG>();
    cslg->setShift(0U - static_cast<unsigned int>(range.least));
    cslg->setLeastDelta(static_cast<unsigned int>(range.least));
    cslg->setGreatestDelta(static_cast<unsigned int>(range.greatest));
    cslg->setDisplayStartTime(0);
    cslg->setDisplayEndTime(static_cast<unsigned int>(getAtomMediaDuration()));
    if (stbl()->addChild(cslg.get()) == 0) static_cast<void>(cslg.release());
}

/// Every sample of these formats is a sync sample. What is taken out of the table lives on with the track:
/// a cursor may still point to it.
void QTVideoTrack::dropSyncTables() {
    if (!stbl() || (!isProRes(getDataFormat()) && getDataFormat() != fourCC("mjp2"))) return;
    for (const unsigned int type : {fourCC("stss"), fourCC("sdtp")}) {
        while (QTAtom* atom = stbl()->getAtomOfType(type)) {
            stbl()->removeAtomOfType(type);
            removed_.emplace_back(atom);
        }
    }
}

int QTVideoTrack::prepareForWriting() {
    settleDisplaySize();
    setAtomHeaderWidth(static_cast<float>(width_));
    setAtomHeaderHeight(static_cast<float>(height_));
    setAtomMediaDuration(mediaUnits(getDuration()));
    QTTrack::prepareForWriting();
    writeMediaHeader();
    wire::writeMediaHandler(*this, kHandler);
    if (wire::isThreeGPP(getMovieType())) setAtomMediaLanguage(kEnglish);
    writeCompositionShift();
    dropSyncTables();
    if (STSDData* entry = getCurrentAtomSampleDescriptionData()) DescriptionWriter(*this, *entry).write();
    return 0;
}

} // namespace Ketra::QT
