#include "HintedTrack.h"

#include <qt/QTAtoms.h>
#include <qt/QTChunk.h>

#include <cmath>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>

namespace serve {

using namespace Ketra::QT;

namespace {

using Bytes = std::vector<unsigned char>;

template <class Atom>
const Atom* find(const QTAtom* from, std::initializer_list<unsigned int> path) {
    for (const unsigned int type : path) {
        if (!from) return nullptr;
        from = from->getAtomOfType(type);
    }
    return dynamic_cast<const Atom*>(from);
}

std::uint64_t number(const Bytes& bytes, std::size_t at, unsigned int width) {
    std::uint64_t value = 0;
    for (std::size_t i = at; i < at + width; ++i) {
        value = value << 8 | (i < bytes.size() ? bytes[i] : 0U);
    }
    return value;
}

/// Samples by number, each read from where the tables say it is.
class Samples {
public:
    Samples(QTMovie& movie, QTTrack& track) : stream_(movie.getStream()), places_(&track) {
        const auto* sizes =
            find<STSZ>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsz")});
        count_ = sizes ? sizes->getNumberOfEntries() : 0;
    }
    unsigned int count() const { return count_; }
    double time(unsigned int n) { return places_.findTime(n); }
    Bytes read(unsigned int n) {
        if (n < 1 || n > count_ || places_.findChunkNumber(n) == 0)
            return {}; // the offset is that in the chunk
        Bytes bytes(places_.findSampleSize(n));
        stream_->lseek(static_cast<std::int64_t>(places_.findSampleOffset(n)), 0);
        const auto got = stream_->read(bytes.data(), static_cast<std::int64_t>(bytes.size()));
        bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        return bytes;
    }

private:
    QTStream* stream_;
    QTChunk places_;
    unsigned int count_ = 0;
};

class Reader {
public:
    Reader(QTMovie& movie, QTTrack& track) : own_(movie, track), track_(track) {
        result_.id = track.getID();
        const auto* reference = find<HINT>(track.getTrak(), {fourCC("tref"), fourCC("hint")});
        QTTrack* media = reference ? movie.getTrackID(reference->getTrackID()) : nullptr;
        if (media) media_ = std::make_unique<Samples>(movie, *media);
        if (!media) problem("it belongs to no media track");
        readTimeScale();
        readDelay(movie);
    }

    HintedTrack read() {
        for (unsigned int n = 1; n <= own_.count(); ++n) {
            readSample(n);
        }
        result_.samples = own_.count();
        return std::move(result_);
    }

private:
    void problem(const std::string& text) { result_.problems.push_back(text); }

    /// The sample entry says in which scale timestamps are.
    void readTimeScale() {
        const auto* table =
            find<STSD>(track_.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsd")});
        const auto entries = table ? table->getSampleDescriptionTable() : std::vector<STSDData*>();
        if (entries.size() != 1 || entries[0]->getDataFormat() != fourCC("rtp ")) {
            problem("its sample description is not that of RTP hints");
            return;
        }
        constexpr std::size_t kFields = 8; // versions and largest packet
        const Bytes body(entries[0]->getData(), entries[0]->getData() + entries[0]->getDataSize());
        largestStated_ = static_cast<unsigned int>(number(body, 4, 4));
        for (std::size_t at = kFields; at + 8 <= body.size();) {
            const std::uint64_t size = number(body, at, 4);
            if (number(body, at + 4, 4) == fourCC("tims")) {
                result_.clockRate = static_cast<unsigned int>(number(body, at + 8, 4));
            }
            if (size < 8) break;
            at += size;
        }
        if (!result_.clockRate) problem("it has no time scale for timestamps");
    }

    void readDelay(const QTMovie& movie) {
        const auto* edits = find<ELST>(track_.getTrak(), {fourCC("edts"), fourCC("elst")});
        const ELSTData* first = edits ? edits->getEditListData(0) : nullptr;
        if (first && first->getMediaTime() == -1 && movie.getTimeScale()) {
            delay_ = static_cast<double>(first->getDuration()) / movie.getTimeScale();
        }
    }

    void readSample(unsigned int n) {
        const Bytes sample = own_.read(n);
        result_.sampleBytes += sample.size();
        std::size_t at = 4;
        for (std::uint64_t left = number(sample, 0, 2); left > 0; --left) {
            if (at + 12 > sample.size()) return problem("a packet entry is cut off");
            at = readPacket(sample, n, at);
        }
    }

    std::size_t readPacket(const Bytes& sample, unsigned int n, std::size_t at) {
        const double scale = track_.getAtomMediaTimeScale();
        const auto sending = static_cast<std::int32_t>(number(sample, at, 4));
        Bytes packet{static_cast<unsigned char>(0x80 | (sample[at + 4] & 0x30)), sample[at + 5],
                     sample[at + 6], sample[at + 7]};
        const std::uint64_t flags = number(sample, at + 8, 2);
        const std::uint64_t constructors = number(sample, at + 10, 2);
        at += 12;
        std::int32_t offset = 0;
        if (flags & 4) {
            const std::uint64_t length = number(sample, at, 4);
            for (std::size_t tlv = at + 4; tlv + 12 <= at + length && number(sample, tlv, 4) >= 8;
                 tlv += number(sample, tlv, 4)) {
                if (number(sample, tlv + 4, 4) == fourCC("rtpo")) {
                    offset = static_cast<std::int32_t>(number(sample, tlv + 8, 4));
                }
            }
            at += length;
        }
        const double sampleTime = own_.time(n) + delay_;
        const std::int64_t timestamp = std::llround(sampleTime * result_.clockRate) + offset;
        const auto wrapped = static_cast<std::uint32_t>(HintedTrack::kTimestampBase + timestamp);
        for (const std::uint32_t field : {wrapped, result_.id}) { // the track's ID serves as source
            for (int shift = 24; shift >= 0; shift -= 8) {
                packet.push_back(static_cast<unsigned char>(field >> shift));
            }
        }
        const std::size_t header = packet.size();
        for (std::uint64_t i = 0; i < constructors; ++i, at += 16) {
            if (at + 16 > sample.size()) {
                problem("a constructor is cut off");
                break;
            }
            construct(sample, n, at, packet);
        }
        const auto payload = static_cast<unsigned int>(packet.size() - header);
        result_.largestPayload = std::max(result_.largestPayload, payload);
        if (payload > largestStated_) problem("a packet is larger than the largest one");
        result_.packets.push_back({sampleTime + (scale > 0 ? sending / scale : 0), std::move(packet)});
        return at;
    }

    void construct(const Bytes& sample, unsigned int n, std::size_t at, Bytes& packet) {
        if (sample[at] == 0) return;
        if (sample[at] == 1) {
            packet.insert(packet.end(), sample.begin() + static_cast<std::ptrdiff_t>(at + 2),
                          sample.begin() +
                              static_cast<std::ptrdiff_t>(at + 2 + std::min<unsigned>(14, sample[at + 1])));
            return;
        }
        if (sample[at] != 2) return problem("a constructor is of an unknown kind");
        const auto wanted = static_cast<unsigned int>(number(sample, at + 4, 4));
        const bool here = sample[at + 1] == 0xFF;
        const Bytes other = here && wanted == n             ? Bytes()
                            : here                          ? own_.read(wanted)
                            : sample[at + 1] == 0 && media_ ? media_->read(wanted)
                                                            : Bytes();
        const Bytes& from = here && wanted == n ? sample : other;
        const std::uint64_t count = number(sample, at + 2, 2);
        const std::uint64_t offset = number(sample, at + 8, 4);
        if (offset + count > from.size()) return problem("a constructor points outside its sample");
        packet.insert(packet.end(), from.begin() + static_cast<std::ptrdiff_t>(offset),
                      from.begin() + static_cast<std::ptrdiff_t>(offset + count));
    }

    Samples own_;
    std::unique_ptr<Samples> media_;
    QTTrack& track_;
    HintedTrack result_;
    unsigned int largestStated_ = 0;
    double delay_ = 0;
};

/// The 64-bit or 32-bit number that a statistic begins with.
std::map<unsigned int, Bytes> statisticsOf(const QTTrack& track) {
    std::map<unsigned int, Bytes> found;
    const auto* hinf = find<HINF>(track.getTrak(), {fourCC("udta"), fourCC("hinf")});
    for (QTDataAtom* atom : hinf ? hinf->getDataAtoms() : std::vector<QTDataAtom*>()) {
        const std::unique_ptr<QTFrame> bytes(atom->serialize());
        found[atom->getType()] = Bytes(bytes->getData() + 8, bytes->getData() + bytes->getDataLength());
    }
    return found;
}

} // namespace

bool isHintTrack(const QTTrack& track) {
    const auto* handler = find<HDLR>(track.getTrak(), {fourCC("mdia"), fourCC("hdlr")});
    return handler && handler->getComponentSubType() == fourCC("hint");
}

HintedTrack readHints(QTMovie& movie, QTTrack& track) { return Reader(movie, track).read(); }

std::vector<std::string> checkStatistics(QTTrack& track, const HintedTrack& hints) {
    std::vector<std::string> wrong;
    std::map<unsigned int, Bytes> stated = statisticsOf(track);
    // Packets are counted in 16 bits, and every one is taken to cost 32 bytes of its hint sample.
    const std::uint64_t packets = hints.packets.size() & 0xFFFF;
    const std::uint64_t payload = hints.sampleBytes - 32 * packets;
    const auto expect = [&](const char(&name)[5], std::uint64_t value, std::size_t width) {
        const Bytes& field = stated[fourCC(name)];
        const std::uint64_t limit = width == 4 ? value & 0xFFFFFFFF : value;
        const auto found =
            number(field, field.size() - std::min(field.size(), width), static_cast<unsigned>(width));
        if (field.size() < width || found != limit) {
            wrong.push_back(std::string(name) + " is " + std::to_string(found) + " instead of " +
                            std::to_string(limit));
        }
    };
    expect("trpy", payload + 12 * packets, 8);
    expect("totl", payload + 12 * packets, 4);
    expect("nump", packets, 8);
    expect("npck", packets, 4);
    expect("tpyl", payload, 8);
    expect("tpay", payload, 4);
    expect("dimm", payload, 8);
    expect("dmed", 0, 8);
    expect("drep", 0, 8);
    expect("pmax", hints.largestPayload, 4);
    const double perSample =
        hints.samples ? track.getDuration() * 1000 / static_cast<double>(hints.samples) : 0;
    expect("dmax", static_cast<std::uint64_t>(perSample + 0.5), 4);
    return wrong;
}

} // namespace serve
