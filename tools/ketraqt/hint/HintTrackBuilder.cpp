#include "HintTrackBuilder.h"

#include "../Atoms.h"
#include "../ToolError.h"
#include "MakePacketizer.h"
#include "PacketBytes.h"

#include <base/CString.h>
#include <qt/QTAtoms/track/ELST.h>
#include <qt/QTRTPPacket.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr double kChunkSeconds = 1.0;
constexpr unsigned int kChunkBytes = 1 << 20;
constexpr unsigned int kFirstType = 96; // of the payload types that a session assigns
constexpr unsigned int kTypes = 32;

std::int64_t ticks(double seconds, unsigned int clock) {
    constexpr double kMost = 1e17;
    const double exact = seconds * clock;
    return std::isfinite(exact) ? std::llround(std::clamp(exact, -kMost, kMost)) : 0;
}

/// What the tables can hold.
std::int64_t durationOf(std::int64_t ticks) {
    return std::clamp<std::int64_t>(ticks, 0, std::numeric_limits<std::uint32_t>::max());
}

int narrow(std::int64_t value) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

/// The extra data that sets the timestamp apart from the time of sending.
unsigned char* timestampOffset(std::int64_t offset) {
    unsigned char bytes[kExtraSize];
    store32(bytes, kExtraSize);
    store32(bytes + 4, kExtraSize - 4);
    store32(bytes + 8, fourCC("rtpo"));
    store32(bytes + 12, static_cast<std::uint32_t>(narrow(offset)));
    return mallocCopy(bytes, sizeof bytes);
}

} // namespace

std::uint64_t mostMediaBytes(QT::QTStream& stream) {
    constexpr std::uint64_t kShared = 4;
    constexpr std::uint64_t kAtLeast = std::uint64_t{1} << 20;
    return kShared * static_cast<std::uint64_t>(std::max<std::int64_t>(0, stream.size())) + kAtLeast;
}

HintTrackBuilder::HintTrackBuilder(QT::QTTrack& media, QT::QTMovie& movie, HintLimits limits)
    : media_(media), packetizer_(makePacketizer(media, limits.largestPayload)), walk_(media),
      mediaBytesLeft_(limits.mediaBytes) {
    const StreamFormat& format = packetizer_->format();
    track_ = dynamic_cast<QT::QTHintTrack*>(
        movie.beginTrack(format.video ? fourCC("vihi") : fourCC("auhi"), movie.getMovieType()));
    if (!track_) throw ToolError(kMalformed, "no hint track can be made");
    describe();
    readEdits();
}

void HintTrackBuilder::describe() {
    const StreamFormat& format = packetizer_->format();
    track_->setHintTrackReference(media_.getID());
    track_->setAtomMediaTimeScale(format.clockRate);
    track_->setEncoding(format.encoding.c_str());
    track_->setClockRate(format.clockRate);
    track_->setParameter(format.channels);
    track_->setTransport("RTP/AVP");
    track_->setPayloadType(kFirstType + track_->getID() % kTypes); // streams of a session differ
    if (!format.parameters.empty()) {
        track_->setAttributes(
            {CString::createWithFormat("a=fmtp:%u %s", track_->getPayloadType(), format.parameters.c_str())});
    }
    if (auto* video = dynamic_cast<QT::QTVideoHintTrack*>(track_)) {
        constexpr unsigned int kMost = 0xFFFF;
        const auto& source = dynamic_cast<const QT::QTVideoTrack&>(media_);
        video->setWidth(static_cast<unsigned short>(std::min(source.getWidth(), kMost)));
        video->setHeight(static_cast<unsigned short>(std::min(source.getHeight(), kMost)));
    } else if (auto* audio = dynamic_cast<QT::QTAudioHintTrack*>(track_)) {
        audio->setSampleRate(format.clockRate);
    }
    track_->setChunkFullTime(kChunkSeconds);
    track_->setChunkFullMaxSize(kChunkBytes);
    if (!track_->beginChunk()) throw ToolError(kMalformed, "no hint track can be made");
}

/// What comes before the first edit that shows something is a delay; its media time is where showing begins.
/// Media that are left out are sent nevertheless: decoders need them, and their timestamps say when they are.
void HintTrackBuilder::readEdits() {
    const auto* edits = atomAt<QT::ELST>(media_.getTrak(), {fourCC("edts"), fourCC("elst")});
    const unsigned int clock = packetizer_->format().clockRate;
    const double movieScale = media_.getMovieTimeScale();
    const double mediaScale = media_.getAtomMediaTimeScale();
    double delay = 0;
    for (const QT::ELSTData* edit : edits ? edits->getEditListTable() : std::vector<QT::ELSTData*>()) {
        if (!edit) continue;
        if (edit->getMediaTime() == -1) {
            if (movieScale > 0) delay += edit->getDuration() / movieScale;
            continue;
        }
        if (mediaScale > 0) delay -= edit->getMediaTime() / mediaScale;
        break;
    }
    shift_ = ticks(delay, clock);
}

MediaSample HintTrackBuilder::sampleOf(const QT::QTFrame& frame) const {
    const unsigned int clock = packetizer_->format().clockRate;
    MediaSample sample;
    sample.bytes = {frame.getData(), frame.getData() ? frame.getDataLength() : 0U};
    const std::int64_t decode = ticks(frame.getDecodeTime(), clock);
    sample.decode = decode + std::max<std::int64_t>(0, shift_); // no packet can be sent before the beginning
    sample.presentation = ticks(frame.getTime(), clock) + shift_;
    sample.duration = durationOf(ticks(frame.getDecodeTime() + frame.getDuration(), clock) - decode);
    sample.key = frame.getIsKeyFrame();
    return sample;
}

bool HintTrackBuilder::step(const ChunkSink& sink) {
    FramePlace place;
    const auto frame = walk_.next(place);
    if (!frame) return false;
    if (place.missing) {
        throw ToolError(kMalformed,
                        fmt::format("the file ends early: {} bytes of track {}, sample {} are missing",
                                    place.missing, media_.getID(), place.sample));
    }
    if (frame->getDataLength() > mediaBytesLeft_) {
        throw ToolError(kMalformed,
                        fmt::format("the samples of track {} lie on one another", media_.getID()));
    }
    mediaBytesLeft_ -= frame->getDataLength();
    const MediaSample sample = sampleOf(*frame);
    time_ = std::max(time_, frame->getDecodeTime());
    packetizer_->add(sample);
    takeGroups(sink);
    return true;
}

void HintTrackBuilder::takeGroups(const ChunkSink& sink) {
    for (PacketGroup& group : packetizer_->take()) {
        if (waiting_) write(*waiting_, durationOf(group.decode - waiting_->decode), sink);
        waiting_ = std::move(group);
    }
}

void HintTrackBuilder::write(const PacketGroup& group, std::int64_t duration, const ChunkSink& sink) {
    const StreamFormat& format = packetizer_->format();
    const double clock = format.clockRate;
    ticks_ += duration;
    const auto count = static_cast<std::int64_t>(group.payloads.size());
    for (std::int64_t i = 0; i < count; ++i) {
        const Payload& payload = group.payloads[static_cast<std::size_t>(i)];
        auto packet = std::make_unique<QT::QTRTPPacket>();
        packet->setRelativeTransmissionTime(narrow(duration * i / count)); // spread over the sample's time
        packet->setPlayTime(static_cast<double>(group.decode) / clock);
        packet->setDuration(i == 0 ? static_cast<double>(duration) / clock : 0); // the sample takes the sum
        packet->setMarker(payload.marker ? 1 : 0);
        packet->setPayloadType(static_cast<unsigned short>(track_->getPayloadType()));
        packet->setRTPSequenceNumber(track_->getNextRTPPacketNumber());
        packet->setBytesPerCompressionBlock(1); // servers divide by both
        packet->setSamplesPerCompressionBlock(1);
        packet->setData(static_cast<unsigned short>(payload.bytes.size()),
                        mallocCopy(payload.bytes.data(), payload.bytes.size()));
        if (group.presentation != group.decode) {
            packet->setFlags(kExtraData);
            packet->setTLVData(kExtraSize, timestampOffset(group.presentation - group.decode));
        }
        if (track_->addRTPPacket(packet.get()) == 0) static_cast<void>(packet.release());
    }
    const std::unique_ptr<QT::QTFrame> frame(track_->finishSample());
    if (!frame) throw ToolError(kNotAllowed, "a hint sample would be too large");
    frame->setDecodeTime(frame->getTime());
    const bool added = (format.video && group.key ? track_->addSyncSample(frame.get())
                                                  : track_->addHintSample(frame.get())) == 0;
    if (!added) throw ToolError(kMalformed, "a hint sample cannot be added");
    if (track_->getChunkFull()) sink(*track_);
}

void HintTrackBuilder::finish(const ChunkSink& sink) {
    packetizer_->finish();
    takeGroups(sink);
    if (waiting_) write(*waiting_, waiting_->duration, sink);
    waiting_.reset();
    sink(*track_);
    track_->setDuration(static_cast<double>(ticks_) / packetizer_->format().clockRate);
    track_->endTrack();
    track_->prepareForWriting();
}

} // namespace Ketra::Tool
