#include "remux/TablePackets.h"

#include "Atoms.h"
#include "ToolError.h"

#include <qt/QTAtoms.h>
#include <qt/QTUtils.h>

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <iterator>
#include <new>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

/// Codecs whose QuickTime description may say nothing of their packets.
struct Codec {
    unsigned int format;
    unsigned int bytes; // of a packet and channel
    unsigned int samples;
};
constexpr Codec kCodecs[] = {{fourCC("ima4"), 34, 64},
                             {fourCC("MAC3"), 2, 6},
                             {fourCC("MAC6"), 1, 6},
                             {fourCC("ulaw"), 1, 1},
                             {fourCC("alaw"), 1, 1}};

QT::QTAtom* tablesOf(const QT::QTTrack& track) {
    return atomAt<QT::QTAtom>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl")});
}

bool isPlain(unsigned int format) {
    constexpr unsigned int kFormats[] = {fourCC("raw "), fourCC("sowt"), fourCC("twos"), fourCC("in24"),
                                         fourCC("in32"), fourCC("fl32"), fourCC("fl64"), fourCC("lpcm")};
    return std::find(std::begin(kFormats), std::end(kFormats), format) != std::end(kFormats);
}

} // namespace

bool wantsTables(const QT::QTTrack& track) {
    const auto* sizes = childOf<QT::STSZ>(tablesOf(track), fourCC("stsz"));
    const auto* table = childOf<QT::STSD>(tablesOf(track), fourCC("stsd"));
    const QT::STSDData* entry = table ? table->getSampleDescriptionData(0) : nullptr;
    if (!sizes || !entry || !dynamic_cast<const QT::QTAudioTrack*>(&track)) return false;
    return (sizes->getSampleSize() != 0) != isPlain(entry->getDataFormat());
}

TablePackets::TablePackets(QT::QTTrack& track, double longest)
    : track_(track), stream_(track.getTrak()->getUtils()->getStream()), longest_(longest),
      scale_(std::max(1U, track.getAtomMediaTimeScale())),
      runs_(childOf<QT::STSC>(tablesOf(track), fourCC("stsc"))),
      offsets_(childOf<QT::STCO>(tablesOf(track), fourCC("stco"))) {
    const auto* sizes = childOf<QT::STSZ>(tablesOf(track), fourCC("stsz"));
    const auto* times = childOf<QT::STTS>(tablesOf(track), fourCC("stts"));
    if (!stream_ || !runs_ || !offsets_ || !sizes || !times) {
        throw ToolError(kMalformed, fmt::format("track {} lacks a table", track.getID()));
    }
    constant_ = sizes->getSampleSize();
    stored_ = sizes->getNumberOfEntries();
    if (constant_ == 0) sizes_ = sizes->getSampleSizeTable();
    times_ = times->getTimeToSampleTable();
}

/// With a size of 1 the table counts samples whose packets the description tells; any other size is one.
TablePackets::Piece TablePackets::pieceOf(unsigned int description) const {
    if (constant_ > 1) return {constant_, 1};
    const auto* table = childOf<QT::STSD>(tablesOf(track_), fourCC("stsd"));
    const QT::STSDData* entry = table ? table->getSampleDescriptionData(description - 1) : nullptr;
    const auto* sound = entry ? dynamic_cast<const QT::STSDAudio*>(entry->getExtraData()) : nullptr;
    if (!sound) return {};
    const unsigned int channels = std::max(1U, sound->getChannels());
    const bool told = sound->getVersion() == 1 && sound->getSamplesPerPacket() && sound->getBytesPerFrame();
    if (told) return {sound->getBytesPerFrame(), sound->getSamplesPerPacket()};
    const auto* codec = std::find_if(std::begin(kCodecs), std::end(kCodecs),
                                     [entry](const Codec& c) { return c.format == entry->getDataFormat(); });
    if (codec != std::end(kCodecs)) return {codec->bytes * channels, codec->samples};
    return {std::max(1U, channels * sound->getSampleSize() / 8), 1};
}

bool TablePackets::enterChunk() {
    while (left_ == 0) {
        const QT::STSCData* run = runs_->getSampleToChunkData(chunk_);
        const QT::STCOData* place = offsets_->getChunkOffsetData(chunk_);
        if (!run || !place || sample_ >= stored_) return false;
        ++chunk_;
        left_ = std::min<std::uint64_t>(run->getSamplesPerChunk(), stored_ - sample_);
        offset_ = place->getOffset();
        description_ = std::max(1U, run->getSampleDescriptionID());
        piece_ = pieceOf(description_);
    }
    return true;
}

std::uint64_t TablePackets::take(unsigned int samples) {
    std::uint64_t ticks = 0;
    while (samples > 0 && time_ < times_.size()) {
        const unsigned int here = std::min(samples, times_[time_]->getSampleCount() - timeUsed_);
        ticks += static_cast<std::uint64_t>(here) * times_[time_]->getDuration();
        timeUsed_ += here;
        samples -= here;
        if (timeUsed_ == times_[time_]->getSampleCount()) {
            timeUsed_ = 0;
            ++time_;
        }
    }
    return ticks;
}

std::unique_ptr<QT::QTFrame> TablePackets::read(std::uint64_t count) {
    const auto fileSize = static_cast<std::uint64_t>(std::max<std::int64_t>(0, stream_->size()));
    std::int64_t got = 0;
    auto* block = count > 0 && count <= std::min<std::uint64_t>(fileSize, 0xFFFFFFFF)
                      ? static_cast<unsigned char*>(std::malloc(static_cast<std::size_t>(count)))
                      : nullptr;
    const auto offset = static_cast<std::int64_t>(offset_);
    if (block && offset >= 0 && stream_->lseek(offset, 0) == offset)
        got = stream_->read(block, static_cast<std::int64_t>(count));
    if (got != static_cast<std::int64_t>(count)) {
        std::free(block);
        throw ToolError(kMalformed,
                        fmt::format("the file ends early: bytes of sample {} are missing", sample_ + 1));
    }
    if (count == 0) return std::make_unique<QT::QTFrame>();
    return std::make_unique<QT::QTFrame>(static_cast<unsigned int>(count), block, 0.0, 0.0, true, 1U, 0.0,
                                         0.0, false);
}

bool TablePackets::next(Packet& packet) {
    if (!enterChunk()) return false;
    std::uint64_t samples = 1;
    std::uint64_t bytes = 0;
    if (constant_ == 0) {
        bytes = sample_ < sizes_.size() ? sizes_[static_cast<std::size_t>(sample_)]->getSize() : 0;
    } else if (constant_ == 1) {
        const double seconds = time_ < times_.size() ? times_[time_]->getDuration() / scale_ : 1;
        const double most = seconds > 0 ? longest_ / seconds / piece_.samples : 1;
        const std::uint64_t pieces =
            static_cast<std::uint64_t>(std::clamp(most, 1.0, 65536.0)) * piece_.samples < left_
                ? static_cast<std::uint64_t>(std::clamp(most, 1.0, 65536.0))
                : left_ / piece_.samples;
        samples = std::max<std::uint64_t>(1, pieces) * piece_.samples;
        bytes = std::max<std::uint64_t>(1, pieces) * piece_.bytes;
        // Samples behind the last whole packet have no bytes of their own.
        if (samples > left_) bytes = 0;
        if (samples > left_ || left_ - samples < piece_.samples) samples = left_;
    } else {
        bytes = constant_;
    }
    packet = Packet();
    packet.frame = read(bytes);
    packet.samples = static_cast<unsigned int>(samples);
    packet.decode = packet.presentation = static_cast<std::int64_t>(ticks_);
    packet.duration = take(packet.samples);
    packet.description = description_;
    ticks_ += packet.duration;
    sample_ += samples;
    left_ -= samples;
    offset_ += bytes;
    return true;
}

} // namespace Ketra::Tool
