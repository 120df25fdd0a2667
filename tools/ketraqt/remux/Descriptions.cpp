#include "remux/Descriptions.h"

#include "Atoms.h"
#include "remux/Extensions.h"

#include <algorithm>
#include <iterator>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kVideoBody = 70;

QT::STSD* tableOf(const QT::QTTrack& track) {
    return atomAt<QT::STSD>(track.getTrak(),
                            {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsd")});
}

Bytes bodyOf(const QT::STSDData& entry) {
    return entry.getData() ? Bytes(entry.getData(), entry.getData() + entry.getDataSize()) : Bytes();
}

unsigned int soundVersion(const Bytes& body) { return body.size() < 2 ? 0 : body[0] << 8U | body[1]; }

/// Formats that QuickTime files hold in the longer forms of the sound description.
bool wantsPackets(unsigned int format) {
    constexpr unsigned int kFormats[] = {fourCC("mp4a"), fourCC("alac"), fourCC(".mp3"), fourCC("in24"),
                                         fourCC("in32"), fourCC("fl32"), fourCC("fl64")};
    return std::find(std::begin(kFormats), std::end(kFormats), format) != std::end(kFormats);
}

/// Whether the bytes of the description mean the same in both files.
bool sharesForm(MediaKind kind, const Bytes& body, unsigned int format, unsigned int tableVersion,
                bool fromQuickTime, bool toQuickTime) {
    if (kind != MediaKind::kSound || fromQuickTime == toQuickTime) {
        // Files of the newer kind may hold the older kind's forms, and the other way round.
        return kind != MediaKind::kSound || toQuickTime || tableVersion == 1 || soundVersion(body) == 0;
    }
    if (toQuickTime) return soundVersion(body) != 0 || !wantsPackets(format);
    return soundVersion(body) == 0;
}

/// The picture description for readers that know no terminator behind the last extension.
Bytes withoutTerminator(const Bytes& body) {
    if (body.size() < kVideoBody) return body;
    Bytes clean(body.begin(), body.begin() + kVideoBody);
    for (const Bytes& atom : extensionsOf(body, kVideoBody)) {
        clean.insert(clean.end(), atom.begin(), atom.end());
    }
    return clean;
}

/// The QuickTime name of H.263 stands in other files under another one, with its configuration.
void renameH263(unsigned int& format, Bytes& body) {
    if (format != fourCC("h263")) return;
    format = fourCC("s263");
    if (findExtension(body, kVideoBody, fourCC("d263"))) return;
    constexpr unsigned char kLowestLevel = 10;
    QT::D263 config;
    config.setVendor(fourCC("KETR"));
    config.setH263Level(kLowestLevel);
    const Bytes atom = bytesOf(config);
    body.insert(body.end(), atom.begin(), atom.end());
}

void carryWhole(const QT::STSD& from, QT::STSD& to, MediaKind kind, bool toQuickTime) {
    constexpr std::size_t kEntryHeader = 16;
    Bytes whole;
    unsigned int count = 0;
    for (const QT::STSDData* entry : from.getSampleDescriptionTable()) {
        Bytes body = bodyOf(*entry);
        unsigned int format = entry->getDataFormat();
        if (kind == MediaKind::kVideo && !toQuickTime) {
            body = withoutTerminator(body);
            renameH263(format, body);
        }
        putNumber(whole, body.size() + kEntryHeader, 4);
        putNumber(whole, format, 4);
        putNumber(whole, 0, 6);
        putNumber(whole, 1, 2); // all media is in the file itself
        whole.insert(whole.end(), body.begin(), body.end());
        // The table counts the entries that it holds, though the bytes are written in their place.
        if (++count > to.getNumberOfEntries()) to.addSampleDescription(new QT::STSDData);
    }
    if (count == 0) return;
    to.setVersion(toQuickTime ? 0 : from.getVersion());
    to.setSampleDescription(static_cast<unsigned int>(whole.size()), blockOf(whole));
}

/// What the written track made itself: the decoder configuration is replaced by the one that was read, which
/// may say more, and what is left over is added.
void complete(const QT::STSDData& from, QT::STSDData& to, bool toQuickTime) {
    const std::size_t start = soundBodySize(bodyOf(from));
    for (const Bytes& atom : flatExtensionsOf(bodyOf(from), start)) {
        const unsigned int type = typeOf(atom);
        bool known = isBuiltExtension(type);
        for (QT::QTFrame* written : to.getExtensions()) {
            const Bytes bytes(written->getData(), written->getData() + written->getDataLength());
            if (typeOf(bytes) == type) known = true;
            if (type != fourCC("esds")) continue;
            const Bytes replaced = typeOf(bytes) == type ? atom : withChild(bytes, atom);
            if (!replaced.empty()) {
                written->setData(static_cast<unsigned int>(replaced.size()), blockOf(replaced));
            }
        }
        if (known || (type == fourCC("chan") && !toQuickTime)) continue;
        auto extra = frameOf(atom.data(), atom.size());
        if (to.addExtension(extra.get()) == 0) static_cast<void>(extra.release());
    }
    // A rate that does not fit is left to the time scale of the media, which says the same.
    constexpr float kHighestRate = 65535;
    auto* sound = dynamic_cast<QT::STSDAudio*>(to.getExtraData());
    if (sound && sound->getVersion() < 2 && sound->getSampleRate() > kHighestRate) sound->setSampleRate(0);
    to.updateSize();
}

/// Linear PCM under the names that tell its format without flags.
void nameLinearPCM(const QT::STSDAudio& from, QT::QTAudioTrack& to) {
    constexpr int kFloat = 1;
    constexpr int kBig = 2;
    const int flags = from.getFormatSpecificFlags();
    const unsigned int bits = from.getSampleSize();
    const bool big = (flags & kBig) != 0;
    to.setEndian(big ? fourCC("big ") : fourCC("lit "));
    if (flags & kFloat) {
        to.setDataFormat(bits == 64 ? fourCC("fl64") : fourCC("fl32"));
    } else if (bits == 24) {
        to.setDataFormat(fourCC("in24"));
    } else if (bits == 32) {
        to.setDataFormat(fourCC("in32"));
    } else {
        to.setDataFormat(big ? fourCC("twos") : fourCC("sowt"));
    }
}

void configureSound(QT::QTAudioTrack& from, QT::QTAudioTrack& to) {
    to.setDataFormat(from.getDataFormat());
    to.setChannels(from.getChannels());
    to.setBitsPerSample(from.getSampleSize());
    to.setBytesPerSample(from.getBytesPerSample());
    to.setEndian(from.getEndian());
    to.setSampleRate(from.getSampleRate());
    to.setAMRMode(from.getAMRMode());
    if (from.getVersion() == 1) to.setSamplesPerPacket(from.getSamplesPerPacket());
    if (const QT::QTFrame* info = from.getDecoderSpecificInfo()) {
        to.setDecoderSpecificInfo(new QT::QTFrame(*info));
    }
    const QT::STSD* table = tableOf(from);
    const QT::STSDData* entry = table ? table->getSampleDescriptionData(0) : nullptr;
    if (!entry) return;
    const Bytes body = bodyOf(*entry);
    const auto* description = dynamic_cast<const QT::STSDAudio*>(entry->getExtraData());
    if (entry->getDataFormat() == fourCC("lpcm") && description && to.getMovieType() != QT::kMOV) {
        nameLinearPCM(*description, to);
    }
    if (entry->getDataFormat() != fourCC("alac")) return;
    for (const Bytes& atom : flatExtensionsOf(body, soundBodySize(body))) {
        if (typeOf(atom) == fourCC("alac"))
            to.setDecoderSpecificInfo(frameOf(atom.data(), atom.size()).release());
    }
}

void configurePicture(const QT::QTVideoTrack& from, QT::QTVideoTrack& to) {
    to.setDataFormat(from.getDataFormat());
    to.setWidth(from.getWidth());
    to.setHeight(from.getHeight());
    to.setDisplayWidth(from.getDisplayWidth());
    to.setDisplayHeight(from.getDisplayHeight());
}

} // namespace

unsigned int storedFormat(const QT::QTTrack& track) {
    const QT::STSD* table = tableOf(track);
    const QT::STSDData* entry = table ? table->getSampleDescriptionData(0) : nullptr;
    return entry ? entry->getDataFormat() : 0;
}

void configureDescription(QT::QTTrack& from, QT::QTTrack& to) {
    auto* sound = dynamic_cast<QT::QTAudioTrack*>(&from);
    auto* toSound = dynamic_cast<QT::QTAudioTrack*>(&to);
    if (sound && toSound) configureSound(*sound, *toSound);
    const auto* picture = dynamic_cast<const QT::QTVideoTrack*>(&from);
    auto* toPicture = dynamic_cast<QT::QTVideoTrack*>(&to);
    if (picture && toPicture) configurePicture(*picture, *toPicture);
}

void carryDescriptions(QT::QTTrack& from, QT::QTTrack& to, MediaKind kind, bool fromQuickTime) {
    const QT::STSD* read = tableOf(from);
    QT::STSD* written = tableOf(to);
    const QT::STSDData* first = read ? read->getSampleDescriptionData(0) : nullptr;
    QT::STSDData* made = written ? written->getSampleDescriptionData(0) : nullptr;
    if (!first || !made) return;
    const bool toQuickTime = to.getMovieType() == QT::kMOV;
    if (sharesForm(kind, bodyOf(*first), first->getDataFormat(), read->getVersion(), fromQuickTime,
                   toQuickTime)) {
        carryWhole(*read, *written, kind, toQuickTime);
    } else {
        complete(*first, *made, toQuickTime);
    }
}

} // namespace Ketra::Tool
