#include <qt/QTAtoms/entries/STSDText.h>
#include <qt/QTAtoms/track/TKHD.h>
#include <qt/QTTrack/QTTextTrack.h>
#include <qt/QTTrack/detail/SampleEntries.h>
#include <qt/QTTrack/detail/UserData.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Reader.h>

namespace Ketra::QT {

namespace {

constexpr char kHandlerName[] = "Apple Text Media Handler";
constexpr unsigned char kTrackName[] = "Chapter Track";
constexpr unsigned char kChapterMark[] = "chap"; // its terminating zero is written, too

bool hasChapterMark(QTAtom* trak) {
    const UDTA* userData = wire::child<UDTA>(trak, fourCC("udta"));
    return userData && (userData->getAtomOfType(fourCC("chap")) || userData->getDataAtom(fourCC("chap")));
}

/// What makes players take the texts for chapter titles.
void markChapters(UDTA& userData) {
    wire::append(userData, wire::dataAtom(fourCC("name"), kTrackName, sizeof kTrackName - 1));
    wire::append(userData, wire::dataAtom(fourCC("chap"), kChapterMark, sizeof kChapterMark));
    wire::append(userData, wire::dataAtom(fourCC("kgit"), kChapterMark, sizeof kChapterMark));
}

void describeText(STSDText& text, const QTTextTrack& track) {
    text.setDisplayFlags(track.getDisplayFlags());
    text.setTextJustification(track.getTextJustification());
    text.setBackgroundColorR(track.getBackgroundColorR());
    text.setBackgroundColorG(track.getBackgroundColorG());
    text.setBackgroundColorB(track.getBackgroundColorB());
    text.setDefaultTextBoxTop(track.getDefaultTextBoxTop());
    text.setDefaultTextBoxBottom(track.getDefaultTextBoxBottom());
    text.setDefaultTextBoxLeft(track.getDefaultTextBoxLeft());
    text.setDefaultTextBoxRight(track.getDefaultTextBoxRight());
    text.setReserved(track.getReserved());
    text.setFontNumber(track.getFontNumber());
    text.setFontFace(track.getFontFace());
    text.setReserved2(track.getReserved2());
    text.setReserved3(track.getReserved3());
    text.setForegroundColorR(track.getForegroundColorR());
    text.setForegroundColorG(track.getForegroundColorG());
    text.setForegroundColorB(track.getForegroundColorB());
    text.setTextName(track.getTextNameLength(), track.getTextName());
}

void describeChapters(STSDText& text, const QTTextTrack& track) {
    text.setDisplayFlags(4);
    text.setTextJustification(1);
    text.setBackgroundColorR(0xFFFF);
    text.setBackgroundColorG(0xFFFF);
    text.setBackgroundColorB(0xFFFF);
    text.setDefaultTextBoxTop(0);
    text.setDefaultTextBoxBottom(static_cast<unsigned short>(track.getHeight()));
    text.setDefaultTextBoxLeft(0);
    text.setDefaultTextBoxRight(static_cast<unsigned short>(track.getWidth()));
    text.setReserved(0);
    text.setFontNumber(0);
    text.setFontFace(2);
    text.setReserved2(0);
    text.setReserved3(0);
    text.setForegroundColorR(0);
    text.setForegroundColorG(0);
    text.setForegroundColorB(0);
    text.setTextName(track.getTextNameLength(), track.getTextName());
}

} // namespace

QTTextTrack::QTTextTrack() : QTTrack(kMOV) { setMediaType(fourCC("text")); }

QTTextTrack::QTTextTrack(QTAtom* trak) : QTTextTrack() {
    readTrak(trak, fourCC("text"), "QT::QTTextTrack::QTTextTrack", "No tkhd-atom found in trak-atom",
             "No mdia-atom found in trak-atom");
    const TKHD* header = wire::child<TKHD>(trak, fourCC("tkhd"));
    width_ = wire::toUnsigned32(static_cast<double>(header->getWidth()));
    height_ = wire::toUnsigned32(static_cast<double>(header->getHeight()));
    isChapterTrack_ = hasChapterMark(trak);
    readDescriptions(false);
}

QTTextTrack::QTTextTrack(const QTTextTrack&) = default;

QTTextTrack& QTTextTrack::operator=(const QTTextTrack&) = default;

QTTextTrack::~QTTextTrack() = default;

unsigned int QTTextTrack::getType() { return fourCC("text"); }

int QTTextTrack::parseStsd(QTAtom* stsd) {
    const STSD* table = wire::descriptionTable(stsd);
    if (!table) return -1;
    for (const STSDData* entry : wire::describedEntries(*table, "Ketra::QT::QTTextTrack::parseStsd")) {
        wire::Reader in(entry->getData(), entry->getDataSize());
        in.u32(displayFlags_);
        in.u32(textJustification_);
        for (auto& component : background_) {
            in.u16(component);
        }
        in.u16(boxTop_);
        in.u16(boxBottom_);
        in.u16(boxLeft_);
        in.u16(boxRight_);
        in.u64(reserved_);
        in.u16(fontNumber_);
        in.u16(fontFace_);
        in.u8(reserved2_);
        in.u16(reserved3_);
        for (auto& component : foreground_) {
            in.u16(component);
        }
        unsigned int length = 0;
        in.u8(length);
        name_.resize(std::min<std::size_t>(length, in.left()));
        in.bytes(name_.data(), name_.size());
    }
    return 0;
}

int QTTextTrack::prepareForWriting() {
    STSDData* entry = getCurrentAtomSampleDescriptionData();
    if (entry) entry->setType(fourCC("text"));
    setAtomMediaHandlerComponentType(fourCC("mhlr"));
    setAtomMediaHandlerComponentSubType(fourCC("text"));
    setAtomMediaHandlerManufacturer(fourCC("ketr"));
    setAtomMediaHandlerComponentName(kHandlerName, sizeof kHandlerName - 1, true);
    setAtomHeaderWidth(static_cast<float>(width_));
    setAtomHeaderHeight(static_cast<float>(height_));
    setAtomMediaDuration(mediaUnits(getDuration()));
    QTTrack::prepareForWriting();

    auto* text = entry ? dynamic_cast<STSDText*>(entry->getExtraData()) : nullptr;
    if (!isChapterTrack_) {
        if (text) describeText(*text, *this);
        return 0;
    }
    if (text) describeChapters(*text, *this);
    if (UDTA* userData = wire::requireUserData(*this)) {
        markChapters(*userData);
        initAtoms(); // finds user data that was made just now
    }
    disableTrack(); // toggles: a track that the caller had disabled is enabled
    return 0;
}

int QTTextTrack::setTextName(unsigned int length, unsigned char* bytes) {
    if (length && !bytes) return -1;
    name_ = std::vector<unsigned char>(bytes, bytes + length);
    return 0;
}

} // namespace Ketra::QT
