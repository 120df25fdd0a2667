#include "remux/Verify.h"

#include "ToolError.h"
#include "remux/Interrupt.h"
#include "remux/RawAtom.h"

#include <base/CException.h>

#include <cstring>
#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

constexpr double kWhole = 1e18; // seconds: sound is not cut

/// Bytes and ticks of packets, whose borders need not be the same on both sides.
class ByteStream {
public:
    explicit ByteStream(std::unique_ptr<PacketSource> packets) : packets_(std::move(packets)) { advance(); }

    bool ended() const { return ended_; }
    const unsigned char* data() const { return packet_.frame->getData() + used_; }
    std::size_t left() const { return packet_.frame->getDataLength() - used_; }
    std::uint64_t ticks() const { return ticks_; }
    void use(std::size_t count) {
        used_ += count;
        if (left() == 0) advance();
    }

private:
    void advance() {
        do {
            ended_ = !packets_->next(packet_);
            used_ = 0;
            if (!ended_) ticks_ += packet_.duration;
        } while (!ended_ && left() == 0);
    }

    std::unique_ptr<PacketSource> packets_;
    Packet packet_;
    std::size_t used_ = 0;
    std::uint64_t ticks_ = 0;
    bool ended_ = false;
};

bool sameBytes(const QT::QTFrame& a, const QT::QTFrame& b) {
    const std::size_t length = a.getDataLength();
    return b.getDataLength() == length && (length == 0 || std::memcmp(a.getData(), b.getData(), length) == 0);
}

class Comparison {
public:
    Comparison(unsigned int id, Progress& progress, std::uint64_t& done)
        : id_(id), progress_(progress), done_(done) {}

    void compareStreams(std::unique_ptr<PacketSource> expected, std::unique_ptr<PacketSource> found) {
        ByteStream a(std::move(expected));
        ByteStream b(std::move(found));
        while (!a.ended() && !b.ended()) {
            InterruptGuard::check();
            const std::size_t count = std::min(a.left(), b.left());
            if (std::memcmp(a.data(), b.data(), count) != 0) fail("other bytes");
            note(count);
            a.use(count);
            b.use(count);
        }
        if (!a.ended() || !b.ended()) fail("another length");
        if (a.ticks() != b.ticks()) fail("another duration");
    }

    void comparePackets(PacketSource& expected, PacketSource& found) {
        Packet a;
        Packet b;
        for (;;) {
            InterruptGuard::check();
            const bool more = expected.next(a);
            if (found.next(b) != more) fail("another number of frames");
            if (!more) return;
            ++number_;
            if (!sameBytes(*a.frame, *b.frame)) fail("other bytes");
            if (a.decode != b.decode || a.presentation != b.presentation || a.duration != b.duration)
                fail("other times");
            if (a.key != b.key || a.partialKey != b.partialKey) fail("another key mark");
            note(a.frame->getDataLength());
        }
    }

private:
    void note(std::size_t count) {
        done_ += count;
        progress_.update(done_);
    }
    [[noreturn]] void fail(const char* what) const {
        throw ToolError(kUnverified,
                        fmt::format("written track {} reads back with {} (frame {}); nothing was replaced",
                                    id_, what, number_));
    }

    unsigned int id_;
    Progress& progress_;
    std::uint64_t& done_;
    std::uint64_t number_ = 0;
};

bool isGrouped(TrackInput& input) {
    if (input.kind() != MediaKind::kSound) return false;
    Packet packet;
    const auto packets = input.packets(kWhole);
    while (packets->next(packet)) {
        if (packet.samples > 1) return true;
        if (packet.frame->getDataLength() > 0) return false;
    }
    return false;
}

void compareTracks(Plan& plan, Source& written, Progress& progress, std::uint64_t done) {
    const auto movie = openMovie(written);
    if (movie->getNumberOfTracks() != plan.tracks.size())
        throw ToolError(kUnverified, "the written file reads back with another number of tracks");
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        TrackInput& input = *plan.tracks[i];
        QT::QTTrack& track = *movie->getTracks()[i];
        if (track.getAtomMediaTimeScale() != input.timeScale())
            throw ToolError(kUnverified,
                            fmt::format("written track {} has another time scale", track.getID()));
        Comparison comparison(track.getID(), progress, done);
        const bool grouped = isGrouped(input); // packets of one track are read one at a time
        auto expected = input.packets(kWhole);
        auto found = input.packetsOf(track, kWhole);
        if (grouped) {
            comparison.compareStreams(std::move(expected), std::move(found));
        } else {
            comparison.comparePackets(*expected, *found);
        }
    }
}

} // namespace

void verify(Plan& plan, const std::string& path, Progress& progress, std::uint64_t done) {
    try {
        Source written(path);
        compareTracks(plan, written, progress, done);
    } catch (const ToolError& error) {
        if (error.code() != kMalformed) throw;
        throw ToolError(kUnverified, fmt::format("the written file does not read back: {}", error.what()));
    } catch (const CException& error) {
        throw ToolError(kUnverified, fmt::format("the written file does not read back: {}", error.what()));
    }
}

} // namespace Ketra::Tool
