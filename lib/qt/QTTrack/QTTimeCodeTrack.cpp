#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/entries/STSDTimeCode.h>
#include <qt/QTAtoms/media/TCMI.h>
#include <qt/QTAtoms/samples/STCO.h>
#include <qt/QTStream.h>
#include <qt/QTTrack/QTTimeCodeTrack.h>
#include <qt/QTTrack/detail/SampleEntries.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Reader.h>

#include <limits>

namespace Ketra::QT {

namespace {

constexpr char kHandlerName[] = "Timecode Media Handler";
constexpr char kFontName[] = "Geneva";
constexpr unsigned int kSecondsPerHour = 3600;

using Text = std::vector<unsigned char>;

/// A zero byte follows the text for callers who take it as a C string.
Text terminated(const unsigned char* bytes, std::size_t length) {
    Text text(bytes, bytes + length);
    text.push_back(0);
    return text;
}

void borrow(Text& text, unsigned int& length, unsigned char*& bytes) {
    length = text.empty() ? 0 : static_cast<unsigned int>(text.size() - 1);
    bytes = length ? text.data() : nullptr;
}

int copyText(Text& text, unsigned int length, const unsigned char* bytes) {
    if (length && !bytes) return -1;
    text = length ? terminated(bytes, length) : Text();
    return 0;
}

/// The packing that callers know: the two middle bytes carry the same value.
unsigned int packTimeCode(unsigned int value, unsigned int timeScale) {
    const unsigned int hours = value / timeScale / kSecondsPerHour;
    const unsigned int middle = hours / 60 & 0xFF;
    return (hours & 0xFF) << 24 | middle << 16 | middle << 8 | (value % timeScale & 0xFF);
}

} // namespace

QTTimeCodeTrack::QTTimeCodeTrack() : QTTrack(kMOV) { setMediaType(fourCC("time")); }

QTTimeCodeTrack::QTTimeCodeTrack(QTAtom* trak) : QTTimeCodeTrack() {
    readTrak(trak, fourCC("time"), "QT::QTTimeCodeTrack::QTTimeCodeTrack", "No tkhd-atom found in trak-atom",
             "No mdia-atom found in trak-atom");
    readDescriptions(false);
}

QTTimeCodeTrack::QTTimeCodeTrack(const QTTimeCodeTrack&) = default;

QTTimeCodeTrack& QTTimeCodeTrack::operator=(const QTTimeCodeTrack&) = default;

QTTimeCodeTrack::~QTTimeCodeTrack() = default;

unsigned int QTTimeCodeTrack::getType() { return fourCC("tmcd"); }

int QTTimeCodeTrack::parseStsd(QTAtom* stsd) {
    constexpr unsigned int kNameAt = 18;
    constexpr unsigned int kTextAt = 30;
    const STSD* table = wire::descriptionTable(stsd);
    if (!table) return -1;
    for (const STSDData* entry : wire::describedEntries(*table, "Ketra::QT::QTTimeCodeTrack::parseStsd")) {
        wire::Reader in(entry->getData(), entry->getDataSize());
        in.u32(reserved_);
        in.u32(flags_);
        in.u32(timeScale_);
        in.u32(timeCodeFrameDuration_);
        in.u8(numberOfFrames_);
        if (entry->getDataSize() < kTextAt) continue;
        in.skip(kNameAt + 4 - in.position());
        unsigned int type = 0;
        unsigned int length = 0;
        in.u32(type);
        in.u16(length);
        in.skip(2); // language
        if (type != fourCC("name")) continue;
        sourceReference_ = terminated(in.cursor(), std::min<std::size_t>(length, in.left()));
    }
    return 0;
}

int QTTimeCodeTrack::prepareForWriting() {
    STSDData* entry = getCurrentAtomSampleDescriptionData();
    if (entry) entry->setType(fourCC("tmcd"));
    setAtomMediaHandlerComponentType(fourCC("mhlr"));
    setAtomMediaHandlerComponentSubType(fourCC("tmcd"));
    setAtomMediaHandlerManufacturer(fourCC("appl"));
    setAtomMediaHandlerComponentName(kHandlerName, sizeof kHandlerName - 1, true);

    unsigned int length = 0;
    unsigned char* bytes = nullptr;
    fontName_ = terminated(reinterpret_cast<const unsigned char*>(kFontName), sizeof kFontName - 1);
    if (TCMI* display = wire::child<TCMI>(gmhd(), fourCC("tcmi"))) {
        display->setTextFont(textFont_);
        display->setTextFace(textFace_);
        display->setTextSize(textSize_);
        display->setTextColor(textColor_[0], textColor_[1], textColor_[2]);
        display->setBackgroundColor(backgroundColor_[0], backgroundColor_[1], backgroundColor_[2]);
        getFontName(length, bytes);
        display->setFontName(length, bytes);
    }
    setAtomHeaderWidth(width_);
    setAtomHeaderHeight(height_);
    setAtomMediaDuration(mediaUnits(getDuration()));
    QTTrack::prepareForWriting();

    if (auto* code = entry ? dynamic_cast<STSDTimeCode*>(entry->getExtraData()) : nullptr) {
        code->setFlags(flags_);
        code->setTimeScale(timeScale_);
        code->setFrameDuration(timeCodeFrameDuration_);
        code->setNumberOfFrames(numberOfFrames_);
        getSourceReference(length, bytes);
        code->setSourceReference(length, bytes);
    }
    return 0;
}

int QTTimeCodeTrack::setTimeCodeSize(unsigned short width, unsigned short height) {
    width_ = width;
    height_ = height;
    return 0;
}

int QTTimeCodeTrack::setTextColor(unsigned short r, unsigned short g, unsigned short b) {
    textColor_[0] = r;
    textColor_[1] = g;
    textColor_[2] = b;
    return 0;
}

int QTTimeCodeTrack::getTextColor(unsigned short& r, unsigned short& g, unsigned short& b) const {
    r = textColor_[0];
    g = textColor_[1];
    b = textColor_[2];
    return 0;
}

int QTTimeCodeTrack::setBackgroundColor(unsigned short r, unsigned short g, unsigned short b) {
    backgroundColor_[0] = r;
    backgroundColor_[1] = g;
    backgroundColor_[2] = b;
    return 0;
}

int QTTimeCodeTrack::getBackgroundColor(unsigned short& r, unsigned short& g, unsigned short& b) const {
    r = backgroundColor_[0];
    g = backgroundColor_[1];
    b = backgroundColor_[2];
    return 0;
}

int QTTimeCodeTrack::setSourceReference(unsigned int length, unsigned char* bytes) {
    return copyText(sourceReference_, length, bytes);
}

int QTTimeCodeTrack::getSourceReference(unsigned int& length, unsigned char*& bytes) const {
    borrow(sourceReference_, length, bytes);
    return 0;
}

int QTTimeCodeTrack::setFontName(unsigned int length, unsigned char* bytes) {
    return copyText(fontName_, length, bytes);
}

int QTTimeCodeTrack::getFontName(unsigned int& length, unsigned char*& bytes) const {
    borrow(fontName_, length, bytes);
    return 0;
}

unsigned int QTTimeCodeTrack::getTimeCode(QTStream* stream) {
    if (timeCode_) return timeCode_;
    const STCO* chunks = wire::child<STCO>(stbl(), fourCC("stco"));
    if (!stream || !chunks || !timeScale_) return 0;
    const auto& offsets = wire::Access::table(*chunks);
    if (offsets.held() == 0) return 0;
    const std::uint64_t offset = offsets.at(0);
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return 0;
    unsigned char sample[4] = {};
    if (stream->lseek(static_cast<std::int64_t>(offset), 0) < 0) return 0;
    if (stream->read(sample, sizeof sample) != sizeof sample) return 0;
    // Unswapped, unlike every other number of a file.
    const unsigned int value = sample[0] | static_cast<unsigned int>(sample[1]) << 8 |
                               static_cast<unsigned int>(sample[2]) << 16 |
                               static_cast<unsigned int>(sample[3]) << 24;
    return timeCode_ = packTimeCode(value, timeScale_);
}

} // namespace Ketra::QT
