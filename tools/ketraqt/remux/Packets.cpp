#include "remux/Packets.h"

#include "Atoms.h"
#include "ToolError.h"
#include "remux/RawAtom.h"

#include <algorithm>
#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

PacketSource::~PacketSource() = default;

FramePackets::FramePackets(QT::QTTrack& track, double longest)
    : walk_(track), scale_(track.getAtomMediaTimeScale()), longest_(longest),
      sound_(track.getType() == fourCC("audi")) {
    QT::QTAtom* tables =
        atomAt<QT::QTAtom>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl")});
    chunks_ = childOf<QT::STSC>(tables, fourCC("stsc"));
    if (const auto* partial = childOf<QT::STPS>(tables, fourCC("stps"))) {
        for (const QT::STSSData* entry : partial->getSyncSampleTable()) {
            partial_.push_back(entry->getNumber());
        }
        std::sort(partial_.begin(), partial_.end());
    }
}

/// How many stored samples a frame of sound is: those of its chunk, of which it is all.
unsigned int FramePackets::storedIn(const QT::QTFrame& frame, unsigned int chunk) const {
    const unsigned int frames = std::max(1U, frame.getSamplesInFrame());
    const auto* run = chunks_ && chunk ? chunks_->getSampleToChunkData(chunk - 1) : nullptr;
    if (!run || frames == 1) return frames;
    const unsigned int each = run->getSamplesPerChunk() / frames;
    return std::max(1U, each) * frames;
}

bool FramePackets::next(Packet& packet) {
    if (cut_.empty()) {
        FramePlace place;
        std::unique_ptr<QT::QTFrame> frame = walk_.next(place);
        if (!frame) return false;
        if (place.missing) {
            throw ToolError(kMalformed, fmt::format("the file ends early: {} bytes of sample {} are missing",
                                                    place.missing, place.sample));
        }
        cut(std::move(frame), place);
    }
    packet = std::move(cut_.front());
    cut_.pop_front();
    return true;
}

void FramePackets::cut(std::unique_ptr<QT::QTFrame> frame, const FramePlace& place) {
    const Ticks ticks = ticksOf(*frame, scale_);
    Packet whole;
    whole.decode = ticks.decode;
    whole.presentation = ticks.presentation;
    whole.duration = static_cast<std::uint64_t>(std::max<std::int64_t>(0, ticks.duration));
    whole.samples = sound_ ? storedIn(*frame, place.chunk) : 1;
    whole.key = frame->getIsKeyFrame();
    whole.partialKey = std::binary_search(partial_.begin(), partial_.end(), place.sample);
    const auto* run = chunks_ && place.chunk ? chunks_->getSampleToChunkData(place.chunk - 1) : nullptr;
    whole.description = run ? run->getSampleDescriptionID() : 1;

    // Only equal parts can be told apart: as many bytes and ticks for every frame of sound.
    const unsigned int frames = sound_ ? frame->getSamplesInFrame() : 1;
    const unsigned int bytes = frame->getDataLength();
    const double seconds = scale_ ? static_cast<double>(whole.duration) / scale_ : 0;
    if (frames < 2 || seconds <= longest_ || bytes % frames || whole.samples % frames ||
        whole.duration % frames) {
        whole.frame = std::move(frame);
        cut_.push_back(std::move(whole));
        return;
    }
    const auto most = static_cast<unsigned int>(std::max(1.0, longest_ / seconds * frames));
    for (unsigned int first = 0; first < frames; first += most) {
        const unsigned int count = std::min(most, frames - first);
        const std::uint64_t start = whole.duration / frames * first;
        Packet part;
        part.frame = frameOf(frame->getData() + std::size_t{bytes / frames} * first,
                             std::size_t{bytes / frames} * count);
        part.decode = whole.decode + static_cast<std::int64_t>(start);
        part.presentation = whole.presentation + static_cast<std::int64_t>(start);
        part.duration = whole.duration / frames * count;
        part.samples = whole.samples / frames * count;
        part.description = whole.description;
        cut_.push_back(std::move(part));
    }
}

} // namespace Ketra::Tool
