// What the configuration records of H.264 and H.265 repeat from the parameter sets.
#include <qt/QTTrack/detail/ParameterSets.h>

#include <array>

namespace Ketra::QT::wire {

namespace {

constexpr std::size_t kLongestSet = 0xFFFF; // the length field
constexpr std::size_t kMostSequenceSets = 31;
constexpr std::size_t kMostPictureSets = 255;

/// Bits of a NAL unit, most significant first, without the 03 of every 00 00 03. Past the end: zeros.
class BitReader {
public:
    explicit BitReader(const NalUnit& unit, std::size_t skip) {
        unsigned int zeros = 0;
        for (std::size_t i = 0; i < unit.size(); ++i) {
            if (zeros >= 2 && unit[i] == 3) {
                zeros = 0;
                continue;
            }
            zeros = unit[i] ? 0 : zeros + 1;
            bytes_.push_back(unit[i]);
        }
        at_ = 8 * skip;
    }
    bool failed() const { return at_ > 8 * bytes_.size(); }
    unsigned int bits(unsigned int count) {
        unsigned int value = 0;
        while (count--) {
            const std::size_t byte = at_ / 8;
            const unsigned int bit = byte < bytes_.size() ? bytes_[byte] >> (7 - at_ % 8) & 1U : 0U;
            value = value << 1 | bit;
            ++at_;
        }
        return value;
    }
    /// An Exp-Golomb number.
    unsigned int number() {
        unsigned int zeros = 0;
        while (zeros < 31 && !failed() && bits(1) == 0) {
            ++zeros;
        }
        return (1U << zeros) - 1 + bits(zeros);
    }

private:
    std::vector<unsigned char> bytes_;
    std::size_t at_ = 0;
};

/// How colours are sampled; 4:2:0 with eight bits where a set does not tell.
struct Sampling {
    unsigned int chroma = 1;
    unsigned int lumaBits = 0; // above eight
    unsigned int chromaBits = 0;

    bool plausible() const { return chroma <= 3 && lumaBits <= 7 && chromaBits <= 7; }
};

Sampling samplingOfH264(const NalUnit& set) {
    BitReader in(set, 4); // NAL header, profile, flags, level
    Sampling found;
    in.number(); // set ID
    found.chroma = in.number();
    if (found.chroma == 3) in.bits(1);
    found.lumaBits = in.number();
    found.chromaBits = in.number();
    return in.failed() || !found.plausible() ? Sampling{} : found;
}

constexpr std::size_t kH265Header = 3; // NAL header, and the byte before the profile
constexpr unsigned int kProfileTierLevel = 12;

Sampling samplingOfH265(const NalUnit& set) {
    BitReader in(set, 2);
    Sampling found;
    in.bits(4);
    if (in.bits(3) != 0) return found; // sub-layers would have to be skipped
    in.bits(1 + 8 * kProfileTierLevel);
    in.number(); // set ID
    found.chroma = in.number();
    if (found.chroma == 3) in.bits(1);
    in.number(); // width
    in.number(); // height
    if (in.bits(1)) {
        for (int edge = 0; edge < 4; ++edge) {
            in.number();
        }
    }
    found.lumaBits = in.number();
    found.chromaBits = in.number();
    return in.failed() || !found.plausible() ? Sampling{} : found;
}

/// Profiles that the record does not describe further.
bool plainProfile(unsigned int profile) { return profile == 66 || profile == 77 || profile == 88; }

void keepWritable(std::vector<NalUnit>& sets, std::size_t most) {
    sets.erase(std::remove_if(sets.begin(), sets.end(),
                              [](const NalUnit& set) { return set.empty() || set.size() > kLongestSet; }),
               sets.end());
    if (sets.size() > most) sets.resize(most);
}

void putSets(AtomBuilder& out, const std::vector<NalUnit>& sets) {
    for (const NalUnit& set : sets) {
        out.u16(static_cast<unsigned int>(set.size())).bytes(set);
    }
}

/// The position of the next 00 00 01 at or behind `from`, or the end.
std::size_t findStartCode(const unsigned char* data, std::size_t length, std::size_t from) {
    for (std::size_t i = from; i + 3 <= length; ++i) {
        if (data[i] == 0 && data[i + 1] == 0 && data[i + 2] == 1) return i;
    }
    return length;
}

} // namespace

std::vector<NalUnit> splitNalUnits(const QTFrame* frame) {
    std::vector<NalUnit> units;
    if (!frame || !frame->getData()) return units;
    const unsigned char* data = frame->getData();
    const std::size_t length = frame->getDataLength();
    const std::size_t first = findStartCode(data, length, 0);
    if (first > 1 || (first == 1 && data[0] != 0)) {
        units.emplace_back(data, data + length);
        return units;
    }
    std::size_t at = first;
    while (at < length) {
        const std::size_t begin = at + 3;
        at = findStartCode(data, length, begin);
        std::size_t end = at; // zeros belong to the next start code or to the padding
        while (end > begin && data[end - 1] == 0) {
            --end;
        }
        if (end > begin) units.emplace_back(data + begin, data + end);
    }
    return units;
}

std::unique_ptr<QTFrame> makeAvcC(const QTFrame* sequenceSets, const QTFrame* pictureSets,
                                  unsigned int lengthSize) {
    std::vector<NalUnit> sequence = splitNalUnits(sequenceSets);
    std::vector<NalUnit> picture = splitNalUnits(pictureSets);
    keepWritable(sequence, kMostSequenceSets);
    keepWritable(picture, kMostPictureSets);
    if (sequence.empty() || sequence.front().size() < 4) return nullptr;
    const NalUnit& set = sequence.front();
    AtomBuilder out(fourCC("avcC"));
    out.u8(1).u8(set[1]).u8(set[2]).u8(set[3]); // version, profile, compatibility, level
    out.u8(0xFC | (((lengthSize ? lengthSize : 4) - 1) & 3));
    out.u8(0xE0 | static_cast<unsigned int>(sequence.size()));
    putSets(out, sequence);
    out.u8(static_cast<unsigned int>(picture.size()));
    putSets(out, picture);
    if (!plainProfile(set[1])) {
        const Sampling sampling = samplingOfH264(set);
        out.u8(0xFC | sampling.chroma).u8(0xF8 | sampling.lumaBits).u8(0xF8 | sampling.chromaBits).u8(0);
    }
    return out.takeFrame();
}

std::unique_ptr<QTFrame> makeHvcC(const QTFrame* sets) {
    constexpr std::array<unsigned int, 3> kTypes = {32, 33, 34}; // video, sequence, picture
    std::array<std::vector<NalUnit>, 3> arrays;
    for (NalUnit& unit : splitNalUnits(sets)) {
        const unsigned int type = unit[0] >> 1 & 0x3FU;
        const auto kind = std::find(kTypes.begin(), kTypes.end(), type);
        if (kind != kTypes.end()) arrays[static_cast<std::size_t>(kind - kTypes.begin())].push_back(unit);
    }
    for (auto& array : arrays) {
        keepWritable(array, kLongestSet);
    }
    const std::vector<NalUnit>& sequence = arrays[1];
    if (sequence.empty() || sequence.front().size() < kH265Header + kProfileTierLevel) return nullptr;
    BitReader profile(sequence.front(), kH265Header);
    AtomBuilder out(fourCC("hvcC"));
    out.u8(1);
    for (unsigned int i = 0; i < kProfileTierLevel; ++i) {
        out.u8(profile.bits(8));
    }
    const Sampling sampling = samplingOfH265(sequence.front());
    const unsigned int layers = (sequence.front()[2] >> 1 & 7U) + 1;
    const unsigned int nested = sequence.front()[2] & 1U;
    out.u16(0xF000).u8(0xFC); // no segmentation, any parallelism
    out.u8(0xFC | sampling.chroma).u8(0xF8 | sampling.lumaBits).u8(0xF8 | sampling.chromaBits);
    out.u16(0);                            // average frame rate unknown
    out.u8(layers << 3 | nested << 2 | 3); // lengths of four bytes
    const auto used = std::count_if(arrays.begin(), arrays.end(), [](const auto& a) { return !a.empty(); });
    out.u8(static_cast<unsigned int>(used));
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        if (arrays[i].empty()) continue;
        out.u8(0x80 | kTypes[i]).u16(static_cast<unsigned int>(arrays[i].size())); // complete
        putSets(out, arrays[i]);
    }
    return out.takeFrame();
}

} // namespace Ketra::QT::wire
