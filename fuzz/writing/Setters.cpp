// Every value that a caller can set while a movie is written.
#include "hostile/Harness.h"
#include "writing/WriteHarness.h"

#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <memory>

using namespace Ketra::QT;

namespace writing {

namespace {

constexpr std::size_t kBlock = 64;

QTFrame* frameOf(const Bytes& bytes) {
    return new QTFrame(static_cast<unsigned int>(bytes.size()), copyOf(bytes), 0, 0, false, 1, 0, 0, false);
}

/// The caller keeps what is not adopted.
template <class T, class Adding>
void offer(std::unique_ptr<T> thing, Adding adding) {
    if (adding(thing.get()) == 0) static_cast<void>(thing.release());
}

/// A text that ends in a zero byte, with the length of the whole.
struct Text {
    Bytes bytes;
    explicit Text(Script& script) : bytes(script.bytes(kBlock)) { bytes.push_back(0); }
    const char* data() const { return reinterpret_cast<const char*>(bytes.data()); }
    unsigned int length() const { return static_cast<unsigned int>(bytes.size()); }
};

template <class Target>
using Setter = void (*)(Target&, Script&);

template <class Target, std::size_t N>
void setOne(const Setter<Target> (&setters)[N], Target& target, Script& script) {
    const Setter<Target> set = script.pick(setters);
    hostile::attempt([&] { set(target, script); });
}

constexpr Setter<QTMovie> kMovie[] = {
    [](QTMovie& m, Script& s) { m.setDuration(s.number()); },
    [](QTMovie& m, Script& s) { m.setStartTime(s.number()); },
    [](QTMovie& m, Script& s) { m.setEndTime(s.number()); },
    [](QTMovie& m, Script& s) { m.setBitRate(s.u32()); },
    [](QTMovie& m, Script& s) { m.setTimeScale(s.u32()); },
    [](QTMovie& m, Script& s) { m.setAtomTimeScale(s.u32()); },
    [](QTMovie& m, Script& s) { m.setAtomDuration(s.u32()); },
    [](QTMovie& m, Script& s) { m.set3gpVersion(s.u8()); },
    [](QTMovie& m, Script& s) { m.useFtypForMov(s.flag()); },
    [](QTMovie& m, Script& s) { m.setFtypMajorBrand(s.u32()); },
    [](QTMovie& m, Script& s) { m.setFtypMinorVersion(s.u32()); },
    [](QTMovie& m, Script& s) { m.addCompatibleBrand(s.u32()); },
    [](QTMovie& m, Script& s) { m.setAllowTranscoding(s.flag()); },
    [](QTMovie& m, Script&) { m.addBitRateToHint(); },
    [](QTMovie& m, Script& s) { m.addAMCRestrictions(s.flag(), s.flag(), s.u32(), s.flag(), s.flag()); },
    [](QTMovie& m, Script& s) {
        const unsigned int type = s.pick({fourCC("name"), fourCC("mana"), fourCC("titl"), s.u32()});
        const Text text(s);
        m.addUserData(type, text.length(), text.data());
    },
    [](QTMovie& m, Script& s) { m.addUserData(s.u32(), s.u32(), nullptr); },
    [](QTMovie& m, Script& s) {
        Bytes data = s.bytes(kBlock);
        const auto size = static_cast<unsigned int>(data.size() + 8);
        offer(std::make_unique<QTDataAtom>(size, s.u32(), data.data()),
              [&](QTDataAtom* entry) { return m.addInfoToHint(entry); });
    },
    [](QTMovie& m, Script&) { m.addInfoToHint(nullptr); },
    [](QTMovie& m, Script&) {
        offer(std::make_unique<UDTA>(), [&](QTAtom* child) { return m.addMoovChild(child); });
    },
    [](QTMovie& m, Script&) { m.getNewTrackID(); },
    [](QTMovie& m, Script&) { m.initAtoms(); },
    [](QTMovie& m, Script&) { m.addTrack(nullptr); },
};

constexpr Setter<QTTrack> kTrack[] = {
    [](QTTrack& t, Script& s) { t.setID(s.u32()); },
    [](QTTrack& t, Script& s) { t.setMediaType(s.u32()); },
    [](QTTrack& t, Script& s) { t.setMovieType(chooseFlavour(s)); },
    [](QTTrack& t, Script& s) { t.setStartTime(s.number()); },
    [](QTTrack& t, Script& s) { t.setEndTime(s.number()); },
    [](QTTrack& t, Script& s) { t.setStartOffset(s.number()); },
    [](QTTrack& t, Script& s) { t.setFirstPTS(s.number()); },
    [](QTTrack& t, Script& s) { t.setFirstDTS(s.number()); },
    [](QTTrack& t, Script& s) { t.setDuration(s.number()); },
    [](QTTrack& t, Script& s) { t.QTTrack::setFrameDuration(s.number()); },
    [](QTTrack& t, Script& s) { t.setFrameRate(s.number()); },
    [](QTTrack& t, Script& s) { t.setIsClosed(s.flag()); },
    [](QTTrack& t, Script& s) { t.setTotalDataSize(s.u64()); },
    [](QTTrack& t, Script& s) { t.setSampleCount(s.u32()); },
    [](QTTrack& t, Script& s) { t.addSampleCount(s.u32()); },
    [](QTTrack& t, Script& s) { t.setQueueNumber(s.u32()); },
    [](QTTrack& t, Script& s) { t.setMovieTimeScale(s.u32()); },
    [](QTTrack& t, Script& s) { t.setAvgBitRate(s.u32()); },
    [](QTTrack& t, Script& s) { t.setMaxBitRate(s.u32()); },
    [](QTTrack& t, Script& s) { t.setBitRate(s.u32()); },
    [](QTTrack& t, Script& s) { t.setAlternateGroup(s.u16()); },
    [](QTTrack& t, Script& s) { t.setDataFormat(s.u32()); },
    [](QTTrack& t, Script& s) { t.setDecoderSpecificInfo(frameOf(s.bytes(kBlock))); },
    [](QTTrack& t, Script&) { t.setDecoderSpecificInfo(nullptr); },
    [](QTTrack& t, Script& s) { t.setHintDescription(frameOf(s.bytes(kBlock))); },
    [](QTTrack& t, Script& s) { t.addHintDescription(frameOf(s.bytes(kBlock))); },
    [](QTTrack& t, Script&) { t.addHintDescription(nullptr); },
    [](QTTrack& t, Script& s) { t.setSamplesPerPacket(s.u32()); },
    [](QTTrack& t, Script& s) {
        Bytes name = s.bytes(kBlock);
        t.setCompressorName(static_cast<unsigned int>(name.size()), name.data());
    },
    [](QTTrack& t, Script& s) {
        t.addTrackReference(s.pick({fourCC("tmcd"), fourCC("chap"), s.u32()}), s.u32());
    },
    [](QTTrack& t, Script& s) { t.setHintTrackReference(s.u32()); },
    [](QTTrack& t, Script& s) { t.addSwitchAttribute(s.u32()); },
    [](QTTrack& t, Script& s) { t.setSwitchGroup(s.u32()); },
    [](QTTrack& t, Script&) { t.enableTrack(); },
    [](QTTrack& t, Script&) { t.disableTrack(); },
    [](QTTrack& t, Script& s) { t.setAtomHeaderDuration(s.u32()); },
    [](QTTrack& t, Script& s) { t.setAtomHeaderFlags(s.u32()); },
    [](QTTrack& t, Script& s) { t.setAtomHeaderWidth(static_cast<float>(s.u32())); },
    [](QTTrack& t, Script& s) { t.setAtomMediaDuration(s.u64()); },
    [](QTTrack& t, Script& s) { t.setAtomMediaTimeScale(s.u32()); },
    [](QTTrack& t, Script& s) { t.setAtomMediaLanguage(s.u16()); },
    [](QTTrack& t, Script& s) { t.setAtomMediaHandlerComponentSubType(s.u32()); },
    [](QTTrack& t, Script& s) {
        const Text name(s);
        t.setAtomMediaHandlerComponentName(name.data(), name.length(), s.flag());
    },
    [](QTTrack& t, Script& s) {
        const Text name(s);
        t.setAtomDataHandlerComponentName(name.data(), name.length(), s.flag());
    },
    [](QTTrack& t, Script& s) { t.setAtomVideoMediaGraphicsMode(s.u16()); },
    [](QTTrack& t, Script& s) {
        offer(std::make_unique<DREFEntry>(s.pick({fourCC("url "), fourCC("alis"), s.u32()}), s.u32()),
              [&](DREFEntry* entry) { return t.addAtomDataReference(entry); });
    },
    [](QTTrack& t, Script& s) {
        offer(std::make_unique<ELSTData>(s.u32(), static_cast<int>(s.u32()), 1.0F),
              [&](ELSTData* entry) { return t.addAtomEditListEntry(entry); });
    },
    [](QTTrack& t, Script& s) {
        offer(std::make_unique<STTSData>(s.u32(), s.u32()),
              [&](STTSData* entry) { return t.addAtomTimeToSample(entry); });
    },
    [](QTTrack& t, Script& s) {
        offer(std::make_unique<CTTSData>(s.u32(), s.u32()),
              [&](CTTSData* entry) { return t.addAtomCodingTimeToSample(entry); });
    },
    [](QTTrack& t, Script& s) { t.setChunkFullTime(s.number()); },
    [](QTTrack& t, Script& s) { t.setChunkFullMaxSize(s.u32()); },
    [](QTTrack& t, Script& s) { t.addDBABitrate(s.u32()); },
    [](QTTrack& t, Script&) { t.addSdpFile(); },
    [](QTTrack& t, Script&) { t.initAtoms(); },
};

constexpr Setter<QTVideoTrack> kVideo[] = {
    [](QTVideoTrack& t, Script& s) {
        t.setDataFormat(
            s.pick({fourCC("mp4v"), fourCC("avc1"), fourCC("h264"), fourCC("h265"), fourCC("s263"),
                    fourCC("h263"), fourCC("SVQ3"), fourCC("apch"), fourCC("mjp2"), fourCC("AVdn")}));
    },
    [](QTVideoTrack& t, Script& s) { t.setWidth(s.u32()); },
    [](QTVideoTrack& t, Script& s) { t.setHeight(s.u32()); },
    [](QTVideoTrack& t, Script& s) { t.setDisplayWidth(s.u32()); },
    [](QTVideoTrack& t, Script& s) { t.setDisplayHeight(s.u32()); },
    [](QTVideoTrack& t, Script& s) { t.setDisplayAspectRatio(s.u32(), s.u32()); },
    [](QTVideoTrack& t, Script& s) { t.setDisplayFactor(static_cast<float>(s.u16()) / 256.0F); },
    [](QTVideoTrack& t, Script& s) { t.set_clap_width(static_cast<int>(s.u32())); },
    [](QTVideoTrack& t, Script& s) { t.set_clap_height(static_cast<int>(s.u32())); },
    [](QTVideoTrack& t, Script& s) { t.setDepth(s.u16()); },
    [](QTVideoTrack& t, Script& s) { t.setColorTableID(s.u16()); },
    [](QTVideoTrack& t, Script& s) { t.setHorizontalResolution(s.u32()); },
    [](QTVideoTrack& t, Script& s) { t.setFields(s.u8()); },
    [](QTVideoTrack& t, Script& s) { t.setColorDescription(s.u16(), s.u16(), s.u16()); },
    [](QTVideoTrack& t, Script& s) { t.setH264SizeSize(s.u8()); },
    [](QTVideoTrack& t, Script& s) { t.setH264SeqParSet(frameOf(s.bytes(kBlock))); },
    [](QTVideoTrack& t, Script& s) { t.setH264PictParSet(frameOf(s.bytes(kBlock))); },
    [](QTVideoTrack& t, Script& s) { t.setH265DecoderSpecificInfo(frameOf(s.bytes(kBlock))); },
    [](QTVideoTrack& t, Script& s) {
        Bytes data = s.bytes(kBlock);
        t.setSVQ3Data(static_cast<unsigned int>(data.size()), data.data());
    },
    [](QTVideoTrack& t, Script& s) { t.setUseQuickTimeExtensions(s.flag()); },
    [](QTVideoTrack& t, Script&) {
        QTVideoTrack copy(t);
        copy = t;
    },
};

constexpr Setter<QTAudioTrack> kAudio[] = {
    [](QTAudioTrack& t, Script& s) {
        t.setDataFormat(s.pick({fourCC("mp4a"), fourCC("sowt"), fourCC("in24"), fourCC("fl64"),
                                fourCC("lpcm"), fourCC("raw "), fourCC(".mp3"), fourCC("alac"),
                                fourCC("QDM2"), fourCC("samr"), fourCC("sqcp"), fourCC("sevc")}));
    },
    [](QTAudioTrack& t, Script& s) { t.setVersion(s.u16()); },
    [](QTAudioTrack& t, Script& s) { t.setChannels(s.u8()); },
    [](QTAudioTrack& t, Script& s) { t.setChannels(s.u32()); },
    [](QTAudioTrack& t, Script& s) { t.setBitsPerSample(s.u16()); },
    [](QTAudioTrack& t, Script& s) { t.setCompressionID(static_cast<short>(s.u16())); },
    [](QTAudioTrack& t, Script& s) { t.setSampleRate(s.number()); },
    [](QTAudioTrack& t, Script& s) { t.setBytesPerPacket(s.u32()); },
    [](QTAudioTrack& t, Script& s) { t.setBytesPerFrame(s.u32()); },
    [](QTAudioTrack& t, Script& s) { t.setBytesPerSample(s.u32()); },
    [](QTAudioTrack& t, Script& s) {
        t.setEndian(s.pick({fourCC("big "), fourCC("lit "), s.u32()}));
    },
    [](QTAudioTrack& t, Script& s) { t.setAMRMode(s.u32()); },
    [](QTAudioTrack& t, Script&) {
        QTAudioTrack copy(t);
        copy = t;
    },
};

constexpr Setter<QTTextTrack> kText[] = {
    [](QTTextTrack& t, Script& s) { t.isChapterTrack(s.flag()); },
    [](QTTextTrack& t, Script& s) { t.setWidth(s.u32()); },
    [](QTTextTrack& t, Script& s) { t.setHeight(s.u32()); },
    [](QTTextTrack& t, Script& s) { t.setDisplayFlags(s.u32()); },
    [](QTTextTrack& t, Script& s) {
        Bytes name = s.bytes(255);
        t.setTextName(static_cast<unsigned int>(name.size()), name.data());
    },
    [](QTTextTrack& t, Script& s) { t.setTextName(s.u32(), nullptr); },
};

constexpr Setter<QTTimeCodeTrack> kTimeCode[] = {
    [](QTTimeCodeTrack& t, Script& s) { t.setTimeScale(s.u32()); },
    [](QTTimeCodeTrack& t, Script& s) { t.setFrameDuration(s.u32()); },
    [](QTTimeCodeTrack& t, Script& s) { t.setNumberOfFrames(s.u32()); },
    [](QTTimeCodeTrack& t, Script& s) { t.setTimeCodeSize(s.u16(), s.u16()); },
    [](QTTimeCodeTrack& t, Script& s) { t.setDropFrameFlag(s.u8()); },
    [](QTTimeCodeTrack& t, Script& s) {
        Bytes reel = s.bytes(255);
        t.setSourceReference(static_cast<unsigned int>(reel.size()), reel.data());
    },
    [](QTTimeCodeTrack& t, Script& s) {
        Bytes font = s.bytes(255);
        t.setFontName(static_cast<unsigned int>(font.size()), font.data());
    },
    [](QTTimeCodeTrack& t, Script& s) { t.setFontName(s.u32(), nullptr); },
};

Ketra::CString string(Script& script) { return Ketra::CString(Text(script).data()); }

constexpr Setter<QTHintTrack> kHint[] = {
    [](QTHintTrack& t, Script& s) { t.setPayloadType(s.u32()); },
    [](QTHintTrack& t, Script& s) { t.setClockRate(s.u32()); },
    [](QTHintTrack& t, Script& s) { t.setEncoding(string(s)); },
    [](QTHintTrack& t, Script& s) { t.setTransport(string(s)); },
    [](QTHintTrack& t, Script& s) {
        t.setAttributes({string(s), string(s)});
    },
    [](QTHintTrack& t, Script& s) { t.setHintMaxPacketSize(s.u16()); },
    [](QTHintTrack& t, Script& s) {
        t.addHinfAtoms(s.pick({fourCC("vide"), fourCC("audi"), s.u32()}));
    },
    [](QTHintTrack& t, Script&) {
        const std::unique_ptr<QTFrame> sample(t.finishSample());
        t.addHintSample(sample.get());
    },
};

constexpr Setter<QTDescriptionTrack> kDescription[] = {
    [](QTDescriptionTrack& t, Script& s) { t.setODSMTrackID(s.u32()); },
    [](QTDescriptionTrack& t, Script& s) { t.setSDSMTrackID(s.u32()); },
    [](QTDescriptionTrack& t, Script& s) {
        Bytes ids = s.bytes(kBlock);
        ids.resize(ids.size() / 4 * 4);
        auto* block = reinterpret_cast<unsigned int*>(copyOf(ids));
        t.setMpodData(block, static_cast<unsigned int>(ids.size() / 4));
    },
    [](QTDescriptionTrack& t, Script& s) { t.setMpodData(nullptr, s.u32()); },
};

template <class Track, std::size_t N>
bool setOwn(const Setter<Track> (&setters)[N], QTTrack& track, Script& script) {
    auto* own = dynamic_cast<Track*>(&track);
    if (own) setOne(setters, *own, script);
    return own != nullptr;
}

} // namespace

void setAnything(QTMovie& movie, Script& script) { setOne(kMovie, movie, script); }

void setAnything(QTTrack& track, Script& script) {
    const bool own = script.flag() && (setOwn(kVideo, track, script) || setOwn(kAudio, track, script) ||
                                       setOwn(kText, track, script) || setOwn(kTimeCode, track, script) ||
                                       setOwn(kHint, track, script) || setOwn(kDescription, track, script));
    if (!own) setOne(kTrack, track, script);
}

} // namespace writing
