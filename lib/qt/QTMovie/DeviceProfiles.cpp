// Extension atoms that single devices ask for.
#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>
#include <qt/QTTrack/detail/AtomBuilder.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Oddities.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

namespace Ketra::QT {

namespace {

using wire::AtomBuilder;
using Bytes = std::vector<unsigned char>;

constexpr unsigned char kMetadataID[16] = {'U',  'S',  'M',  'T',  0x21, 0xD2, 0x4F, 0xCE,
                                           0xBB, 0x88, 0x69, 0x5C, 0xFA, 0xC9, 0xC7, 0x40};
constexpr unsigned char kProfileID[16] = {'P',  'R',  'O',  'F',  0x21, 0xD2, 0x4F, 0xCE,
                                          0xBB, 0x88, 0x69, 0x5C, 0xFA, 0xC9, 0xC7, 0x40};
constexpr unsigned char kRestrictionID[16] = {'c',  'p',  'g',  'd',  0xA8, 0x8C, 0x11, 0xD4,
                                              0x81, 0x97, 0x00, 0x90, 0x27, 0x08, 0x77, 0x03};

std::unique_ptr<QTAtom> extensionAtom(const unsigned char (&id)[16], const Bytes& content) {
    Bytes payload(id, id + sizeof id);
    payload.insert(payload.end(), content.begin(), content.end());
    return std::make_unique<UUIDA>(static_cast<unsigned int>(payload.size()), payload.data());
}

// --- metadata

constexpr unsigned int kEnglish = 0x15C7;
constexpr unsigned int kUndetermined = 0x55C4;
constexpr unsigned int kEntryHeader = 10;
// Readers of the record rely on its fixed part, so both texts have the lengths that they have here.
constexpr std::string_view kTool("Ketra QT Writer\0", 16);
constexpr std::string_view kDate("2026/01/01 00:00:00\0", 20);
constexpr std::string_view kUntitled = "No name";
constexpr std::size_t kLongestTitle = (0xFFFF - kEntryHeader) / 2; // the entry's size has 16 bits

void addText(AtomBuilder& record, unsigned int type, unsigned int language, std::string_view text) {
    record.u16(static_cast<unsigned int>(kEntryHeader + 2 * text.size())).u32(type).u16(language).u16(1);
    for (const char c : text) {
        record.u16(static_cast<unsigned char>(c)); // each byte becomes a UTF-16 unit
    }
}

Bytes metadataRecord(std::string_view title) {
    enum EntryType : unsigned int { kTitle = 1, kWritten = 3, kWriter = 4, kFlags = 0x0B };
    AtomBuilder record(fourCC("MTDT"));
    record.u16(4);
    record.u16(kEntryHeader + 2).u32(kFlags).u16(kUndetermined).u16(0).u16(0x021C);
    addText(record, kWriter, kEnglish, kTool);
    addText(record, kTitle, kEnglish, title);
    addText(record, kWritten, kUndetermined, kDate);
    return record.take();
}

// --- profile

/// A rate that a caller set counts before the one that was measured.
unsigned int kilobits(const QTTrack& track) {
    return (track.getBitRate() ? track.getBitRate() : track.getAvgBitRate()) / 1000;
}

unsigned int fixed16_16(double value) {
    unsigned char bytes[4];
    wire::odd::Fixed16_16::write(bytes, static_cast<float>(value));
    return wire::load32(bytes);
}

struct PictureCodec {
    unsigned int format; // of the track
    unsigned int code;
};

constexpr PictureCodec kPictureCodecs[] = {
    {fourCC("h264"), fourCC("avc1")}, {fourCC("avc1"), fourCC("avc1")}, {fourCC("xavc"), fourCC("avc1")},
    {fourCC("h265"), fourCC("hvc1")}, {fourCC("hevc"), fourCC("hvc1")}, {fourCC("hvc1"), fourCC("hvc1")},
};

unsigned int pictureCode(const QTVideoTrack* track) {
    for (const PictureCodec& codec : kPictureCodecs) {
        if (track && track->getDataFormat() == codec.format) return codec.code;
    }
    return fourCC("mp4v");
}

template <class Track>
const Track* firstOf(const std::vector<QTTrack*>& tracks) {
    for (const QTTrack* track : tracks) {
        if (const auto* found = dynamic_cast<const Track*>(track)) return found;
    }
    return nullptr;
}

/// The values of a track that is not there are 0.
void addSound(AtomBuilder& sound, const QTAudioTrack* track) {
    const unsigned int rate = track ? kilobits(*track) : 0;
    sound.u32(0).u32(2).u32(fourCC("mp4a")).u32(0x0000020F).u32(0).u32(rate).u32(rate);
    sound.u32(track ? wire::toUnsigned32(track->getSampleRate()) : 0).u32(track ? track->getChannels() : 0);
}

void addPicture(AtomBuilder& picture, const QTVideoTrack* track) {
    const unsigned int code = pictureCode(track);
    const unsigned int level = code == fourCC("mp4v") ? 0x00000103 : 0x014D0015;
    const unsigned int rate = track ? kilobits(*track) : 0;
    const unsigned int frames = track ? fixed16_16(track->getFrameRate()) : 0;
    picture.u32(0).u32(1).u32(code).u32(level).u32(0).u32(rate).u32(rate).u32(frames).u32(frames);
    picture.u16(track ? track->getWidth() : 0).u16(track ? track->getHeight() : 0).u32(0x00010001);
}

Bytes profileRecord(const std::vector<QTTrack*>& tracks) {
    AtomBuilder file(fourCC("FPRF"));
    AtomBuilder sound(fourCC("APRF"));
    AtomBuilder picture(fourCC("VPRF"));
    file.u32(0).u32(0).u32(0);
    addSound(sound, firstOf<QTAudioTrack>(tracks));
    addPicture(picture, firstOf<QTVideoTrack>(tracks));
    Bytes record = {0, 0, 0, 0, 0, 0, 0, 3}; // three profiles follow
    for (AtomBuilder* profile : {&file, &sound, &picture}) {
        const Bytes& bytes = profile->take();
        record.insert(record.end(), bytes.begin(), bytes.end());
    }
    return record;
}

} // namespace

void QTMovie::addHandheldProfiles() {
    // The text counts its terminating zero byte.
    const std::string_view title =
        mana_.empty() ? kUntitled : std::string_view(mana_.data(), std::min(mana_.size() - 1, kLongestTitle));
    adoptIntoMoov(extensionAtom(kMetadataID, metadataRecord(title)));
    adoptIntoRoot(extensionAtom(kProfileID, profileRecord(tracks_)));
}

int QTMovie::addAMCRestrictions(bool a, bool b, unsigned int c, bool d, unsigned int e) {
    Bytes content(20);
    content[3] = static_cast<unsigned char>((b ? 2 : 0) + (d ? 4 : 0));
    content[7] = a ? 1 : 0;
    wire::store32(content.data() + 8, 0xBE78BAE0);
    wire::store32(content.data() + 12, c);
    wire::store32(content.data() + 16, e);
    return adoptIntoRoot(extensionAtom(kRestrictionID, content));
}

} // namespace Ketra::QT
