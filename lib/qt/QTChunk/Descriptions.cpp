// How the samples of a sample description are grouped into frames.
#include <qt/QTAtoms.h>
#include <qt/QTChunk.h>
#include <qt/QTTrack/QTAudioTrack.h>
#include <qt/QTTrack/detail/AudioFormats.h>
#include <qt/wire/Access.h>

#include <algorithm>
#include <iterator>

namespace Ketra::QT {

namespace {

constexpr unsigned int kMsAdpcm = 0x6D730055; // "ms" and the code of MPEG layer 3
constexpr unsigned int kImaSamples = 64;      // an IMA packet: 64 samples in 34 bytes a channel
constexpr unsigned int kImaBytes = 34;

/// The numbers of a sound description as it was read.
struct Sound {
    unsigned int version;
    unsigned int channels;
    unsigned int bits;
    unsigned int samplesPerPacket;
    unsigned int bytesPerPacket;
    unsigned int bytesPerFrame;
};

Sound soundOf(const STSDData& entry) {
    const auto* audio = dynamic_cast<const STSDAudio*>(entry.getExtraData());
    if (!audio) return {};
    return {audio->getVersion(),          audio->getChannels(),       audio->getSampleSize(),
            audio->getSamplesPerPacket(), audio->getBytesPerPacket(), audio->getBytesPerFrame()};
}

/// One way of grouping: whether whole chunks are handed out, stored samples a frame, bytes a stored size
/// unit.
struct Grouping {
    bool buffering;
    unsigned int samplesPerFrame;
    unsigned int sizeFactor;
    unsigned int reportedSamples; // what a frame says of itself
    bool sizeOne;                 // the constant sample size counts samples, not bytes
};

struct GroupingRule {
    unsigned int format;
    Grouping (*group)(const Sound& sound, const Grouping& current, unsigned int constantSize);
};

Grouping single(const Sound&, const Grouping&, unsigned int) { return {false, 1, 1, 1, false}; }

Grouping ima(const Sound& sound, const Grouping&, unsigned int) {
    return {true, kImaSamples, kImaBytes * sound.channels, kImaSamples, false};
}

Grouping bufferedAsIs(const Sound&, const Grouping& current, unsigned int) {
    return {true, current.samplesPerFrame, current.sizeFactor, current.samplesPerFrame, false};
}

/// A constant size of 1 says that the sizes count samples: then the packet of the description is the frame.
Grouping singleUnlessCounted(const Sound& sound, const Grouping& current, unsigned int constantSize) {
    if (constantSize != 1) return single(sound, current, constantSize);
    return {false, current.samplesPerFrame, current.sizeFactor, current.samplesPerFrame, false};
}

Grouping msAdpcm(const Sound& sound, const Grouping& current, unsigned int) {
    const unsigned int factor = sound.bytesPerFrame ? sound.bytesPerFrame : 1;
    return {false, current.samplesPerFrame, factor, current.samplesPerFrame, false};
}

/// Tables that count samples are read as tables of packets: a frame is a packet and says that it is one
/// sample.
Grouping dvAudio(const Sound& sound, const Grouping&, unsigned int constantSize) {
    const bool counted =
        constantSize == 1 && sound.version == 1 && sound.samplesPerPacket != 0 && sound.bytesPerFrame != 0;
    if (!counted) return {false, 1, 1, 1, false};
    return {false, sound.samplesPerPacket, sound.bytesPerFrame, 1, false};
}

constexpr GroupingRule kRules[] = {
    {fourCC("ima4"), ima},
    {fourCC("amrw"), bufferedAsIs},
    {fourCC("sevc"), single},
    {fourCC("sqcp"), single},
    {fourCC("vdva"), single},
    {fourCC("mp4a"), single},
    {fourCC("alac"), single},
    {fourCC("sawb"), singleUnlessCounted},
    {fourCC("samr"), singleUnlessCounted},
    {kMsAdpcm, msAdpcm},
    {fourCC("dvca"), dvAudio},
};

Grouping otherFormat(unsigned int format, const Sound& sound, unsigned int constantSize) {
    // A format with a size for each stored sample, like most compressed audio: one of them is a frame.
    if (constantSize == 0 && !wire::isPCM(wire::audioFormat(format).coding)) return {false, 1, 1, 1, false};
    if (sound.version == 1 && sound.samplesPerPacket != 0 && sound.bytesPerPacket != 1) {
        return {true, sound.samplesPerPacket, sound.bytesPerFrame, sound.samplesPerPacket, true};
    }
    if (sound.version == 2 && sound.samplesPerPacket != 0) {
        return {true, sound.samplesPerPacket, 1, sound.samplesPerPacket, false};
    }
    return {true, 1, sound.channels * sound.bits / 8, 1, true};
}

} // namespace

QTStream* QTChunk::dataStream(const STSDData& entry) const {
    const QTAtom* trak = track_->getTrak();
    const QTAtom* mdia = wire::child<QTAtom>(trak, fourCC("mdia"));
    const QTAtom* minf = wire::child<QTAtom>(mdia, fourCC("minf"));
    const QTAtom* dinf = wire::child<QTAtom>(minf, fourCC("dinf"));
    if (DREF* dref = wire::child<DREF>(dinf, fourCC("dref")); dref && entry.getDataReferenceIndex()) {
        DREFEntry* source = dref->getDataReferenceEntry(entry.getDataReferenceIndex() - 1U);
        if (source && source->getStream()) return source->getStream();
    }
    const QTUtils* utils = trak ? trak->getUtils() : nullptr;
    return utils ? utils->getStream() : nullptr;
}

int QTChunk::setSampleDescriptionID(unsigned int id) {
    if (id == descriptionID_ && id != 0) return 0;
    const STSDData* entry = stsd_ && id ? stsd_->getSampleDescriptionData(id - 1) : nullptr;
    if (!entry) return -1;
    if (descriptionID_ && entry->getDataFormat() != dataFormat_) return -1; // a track keeps its format
    dataFormat_ = entry->getDataFormat();
    descriptionID_ = id;
    QTStream* source = dataStream(*entry);
    if (source != stream_) knownLength_ = 0;
    stream_ = source;
    if (track_->getType() == fourCC("audi")) return setNeedsBuffering(*entry);
    buffering_ = false;
    sizeFactor_ = 1;
    samplesPerFrame_ = std::max(1U, track_->getSamplesPerPacket());
    reportedSamples_ = samplesPerFrame_;
    return 0;
}

int QTChunk::setNeedsBuffering(const STSDData& entry) {
    const Sound sound = soundOf(entry);
    Grouping current{buffering_, samplesPerFrame_, sizeFactor_, reportedSamples_, false};
    if (sound.version == 1) {
        const auto* audio = dynamic_cast<const QTAudioTrack*>(track_);
        current.sizeFactor = audio ? audio->getBytesPerFrame() : sound.bytesPerFrame;
        current.samplesPerFrame = track_->getSamplesPerPacket();
        if (current.sizeFactor == 0) current.sizeFactor = current.samplesPerFrame = 1;
    }
    const auto* rule = std::find_if(std::begin(kRules), std::end(kRules),
                                    [this](const GroupingRule& r) { return r.format == dataFormat_; });
    const Grouping chosen = rule != std::end(kRules) ? rule->group(sound, current, constantSize_)
                                                     : otherFormat(dataFormat_, sound, constantSize_);
    buffering_ = chosen.buffering;
    sizeFactor_ = chosen.sizeFactor;
    if (chosen.sizeOne) constantSize_ = 1;
    if (chosen.samplesPerFrame == 0)
        return -1; // the description says nothing usable; frames stay as they are
    samplesPerFrame_ = chosen.samplesPerFrame;
    reportedSamples_ = chosen.reportedSamples;
    return 0;
}

} // namespace Ketra::QT
