// The sample descriptions of a track: where their media lie, and what a sample of sound is.
#include "check/Tables.h"

#include <qt/QTTypes.h>

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kBeforeEntries = 8; // version and flags, the count
constexpr std::size_t kMostDescriptions = 65535;

/// Sound without a packet size in its description: bytes a channel that so many samples take. None: those of
/// the sample size.
struct Packing {
    unsigned int format;
    unsigned int samples;
    unsigned int bytes;
};
constexpr Packing kPackings[] = {
    {fourCC("raw "), 1, 0}, {fourCC("NONE"), 1, 0}, {fourCC("twos"), 1, 0}, {fourCC("sowt"), 1, 0},
    {fourCC("in24"), 1, 0}, {fourCC("in32"), 1, 0}, {fourCC("fl32"), 1, 0}, {fourCC("fl64"), 1, 0},
    {fourCC("lpcm"), 1, 0}, {fourCC("ulaw"), 1, 1}, {fourCC("alaw"), 1, 1}, {fourCC("ima4"), 64, 34},
    {fourCC("MAC3"), 6, 2}, {fourCC("MAC6"), 6, 1},
};

/// Whether each data reference is to the file itself.
std::vector<bool> readReferences(const Subject& subject, const AtomPlace* dref) {
    std::vector<bool> self;
    if (!dref || dref->bodySize() < kBeforeEntries) return self;
    constexpr unsigned int kLeast = 12; // size, type, version and flags
    const std::uint64_t count = subject.bytes.u32(dref->body() + 4);
    std::uint64_t at = dref->body() + kBeforeEntries;
    while (self.size() < std::min<std::uint64_t>(count, kMostDescriptions) && dref->end() - at >= kLeast) {
        const std::uint64_t size = subject.bytes.u32(at);
        if (size < kLeast || size > dref->end() - at) break;
        self.push_back((subject.bytes.u32(at + 8) & 1) != 0);
        at += size;
    }
    if (self.size() < std::min<std::uint64_t>(count, kMostDescriptions)) {
        subject.findings.add(Severity::Error, "table-size", dref->path, at, [&] {
            return fmt::format("data reference {} of {} does not fit", self.size() + 1, count);
        });
    }
    return self;
}

/// What a sample of a table without real sizes takes.
void readSound(Bytes& bytes, std::uint64_t entry, unsigned int format, Description& description) {
    const unsigned int version = bytes.u16(entry + 16);
    const unsigned int channels = bytes.u16(entry + 24);
    if (version == 1 && bytes.u32(entry + 36) && bytes.u32(entry + 44)) {
        description.samplesOfUnit = bytes.u32(entry + 36);
        description.bytesOfUnit = bytes.u32(entry + 44);
        return;
    }
    if (version == 2 && bytes.u32(entry + 64) && bytes.u32(entry + 68)) {
        description.samplesOfUnit = bytes.u32(entry + 68);
        description.bytesOfUnit = bytes.u32(entry + 64);
        return;
    }
    const auto* packing = std::find_if(std::begin(kPackings), std::end(kPackings),
                                       [format](const Packing& p) { return p.format == format; });
    description.sizeKnown = packing != std::end(kPackings) && version < 2;
    if (!description.sizeKnown) return;
    description.samplesOfUnit = packing->samples;
    description.bytesOfUnit =
        packing->bytes ? packing->bytes * channels : channels * bytes.u16(entry + 26) / 8;
}

} // namespace

std::vector<Description> readDescriptions(const Subject& subject, const TrackHead& track,
                                          bool countsSamples) {
    std::vector<Description> all;
    const AtomPlace* stsd = track.tables->child(fourCC("stsd"));
    if (!stsd || stsd->bodySize() < kBeforeEntries) return all;
    const AtomPlace* dinf = nullptr;
    if (const AtomPlace* mdia = track.trak->child(fourCC("mdia"))) {
        if (const AtomPlace* minf = mdia->child(fourCC("minf"))) dinf = minf->child(fourCC("dinf"));
    }
    const AtomPlace* dref = dinf ? dinf->child(fourCC("dref")) : nullptr;
    const std::vector<bool> self = readReferences(subject, dref);

    constexpr unsigned int kLeast = 16; // size, format, six bytes, the data reference
    Bytes& bytes = subject.bytes;
    const std::uint64_t count = std::min<std::uint64_t>(bytes.u32(stsd->body() + 4), kMostDescriptions);
    std::uint64_t at = stsd->body() + kBeforeEntries;
    while (all.size() < count) {
        const std::uint64_t room = stsd->end() - at;
        const std::uint64_t size = room < kLeast ? 0 : bytes.u32(at);
        if (size < kLeast || size > room) {
            subject.findings.add(Severity::Error, "table-size", stsd->path, at, [&] {
                return fmt::format("sample description {} of {} does not fit", all.size() + 1, count);
            });
            break;
        }
        Description description;
        const unsigned int reference = bytes.u16(at + 14);
        const bool known = reference > 0 && reference <= self.size();
        if (!known && dref) {
            subject.findings.add(Severity::Error, "data-reference", stsd->path, at, [&] {
                return fmt::format("it names data reference {} of {}", reference, self.size());
            });
        }
        description.inFile = known ? self[reference - 1] : !dref;
        if (countsSamples && track.handler == fourCC("soun"))
            readSound(bytes, at, bytes.u32(at + 4), description);
        all.push_back(description);
        at += size;
    }
    return all;
}

} // namespace Ketra::Tool
