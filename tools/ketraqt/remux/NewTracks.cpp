#include "remux/NewTracks.h"

#include "remux/Extensions.h"

#include <qt/QTAtoms/track/ELST.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kMilliseconds = 1000;

class SamplePackets : public PacketSource {
public:
    explicit SamplePackets(const std::vector<NewTrack::Sample>& samples) : samples_(samples) {}

    bool next(Packet& packet) override {
        if (at_ == samples_.size()) return false;
        const NewTrack::Sample& sample = samples_[at_++];
        packet = Packet();
        packet.frame = frameOf(sample.bytes.data(), sample.bytes.size());
        packet.decode = packet.presentation = ticks_;
        packet.duration = sample.duration;
        ticks_ += static_cast<std::int64_t>(sample.duration);
        return true;
    }

private:
    const std::vector<NewTrack::Sample>& samples_;
    std::size_t at_ = 0;
    std::int64_t ticks_ = 0;
};

/// A length, the text, and the mark that it is UTF-8.
Bytes textSample(const std::string& title) {
    constexpr std::uint64_t kUtf8 = 0x100;
    Bytes bytes;
    putNumber(bytes, title.size(), 2);
    bytes.insert(bytes.end(), title.begin(), title.end());
    putNumber(bytes, 12, 4);
    putNumber(bytes, fourCC("encd"), 4);
    putNumber(bytes, kUtf8, 4);
    return bytes;
}

} // namespace

std::unique_ptr<PacketSource> NewTrack::packets(double) { return std::make_unique<SamplePackets>(samples_); }

std::uint64_t NewTrack::bytes() const {
    std::uint64_t sum = 0;
    for (const Sample& sample : samples_) {
        sum += sample.bytes.size();
    }
    return sum;
}

void NewTrack::beforePreparing(QT::QTTrack& track) {
    auto edit = std::make_unique<QT::ELSTData>(track.getAtomHeaderDuration(), 0, 1.0F);
    if (track.addAtomEditListEntry(edit.get()) == 0)
        static_cast<void>(edit.release()); // the track has it now
}

void NewTrack::settle(QT::QTTrack&, std::vector<std::unique_ptr<QT::QTAtom>>&) {}

ChapterTrack::ChapterTrack(const std::vector<Chapter>& chapters, double movieSeconds) {
    std::vector<Chapter> all = chapters;
    // Time before the first title is a title without text.
    if (!all.empty() && all.front().start > 0) all.insert(all.begin(), Chapter());
    const auto end = static_cast<std::uint64_t>(std::llround(std::max(0.0, movieSeconds) * kMilliseconds));
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::uint64_t until = i + 1 < all.size() ? all[i + 1].start : std::max(end, all[i].start + 1);
        samples_.push_back({textSample(all[i].title), until - all[i].start});
    }
}

unsigned int ChapterTrack::timeScale() const { return kMilliseconds; }

void ChapterTrack::configure(QT::QTTrack& track) {
    track.setAtomMediaTimeScale(timeScale());
    if (auto* text = dynamic_cast<QT::QTTextTrack*>(&track)) text->isChapterTrack(true);
}

TimecodeTrack::TimecodeTrack(const Timecode& start, const FrameRate& rate, double movieSeconds)
    : start_(start), rate_(rate) {
    Bytes bytes;
    putNumber(bytes, start.frame, 4);
    const double ticks = std::max(0.0, movieSeconds) * rate.numerator;
    const std::uint64_t frames = static_cast<std::uint64_t>(ticks + rate.denominator - 1) / rate.denominator;
    const std::uint64_t most = 0xFFFFFFFF / rate.denominator;
    samples_.push_back({bytes, std::clamp<std::uint64_t>(frames, 1, most) * rate.denominator});
}

void TimecodeTrack::configure(QT::QTTrack& track) {
    track.setAtomMediaTimeScale(timeScale());
    if (auto* code = dynamic_cast<QT::QTTimeCodeTrack*>(&track)) {
        code->setTimeScale(rate_.numerator);
        code->setFrameDuration(rate_.denominator);
        code->setNumberOfFrames(rate_.counted());
        if (start_.dropFrame) code->setDropFrameFlag(1);
    }
}

} // namespace Ketra::Tool
