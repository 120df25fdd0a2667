#include "Configuration.h"

#include "../Atoms.h"
#include "../ToolError.h"

#include <base/CBuffer.h>
#include <base/CString.h>
#include <qt/QTAtoms/entries/STSD.h>
#include <qt/QTAtoms/entries/STSDData.h>

#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kVideoFields = 70; // of a description, behind its first 16 bytes
constexpr unsigned int kMostSets = 64;

std::size_t number(ByteView bytes, std::size_t at, unsigned int width) {
    std::size_t value = 0;
    for (unsigned int i = 0; i < width; ++i) {
        value = value << 8 | bytes[at + i];
    }
    return value;
}

/// Reads counted parameter sets; what does not fit ends the reading.
class SetReader {
public:
    explicit SetReader(ByteView bytes, std::size_t at) : bytes_(bytes), at_(at) {}

    bool has(std::size_t count) const { return at_ <= bytes_.size && bytes_.size - at_ >= count; }
    unsigned int take(unsigned int width) {
        if (!has(width)) throw ToolError(kMalformed, "the decoder configuration is cut off");
        const std::size_t value = number(bytes_, at_, width);
        at_ += width;
        return static_cast<unsigned int>(value);
    }
    ByteView takeSet() {
        const unsigned int length = take(2);
        if (!has(length)) throw ToolError(kMalformed, "a parameter set is cut off");
        const ByteView set = bytes_.part(at_, length);
        at_ += length;
        return set;
    }
    /// `count` sets as a list in base 64.
    std::string takeSets(unsigned int count) {
        std::string list;
        for (unsigned int i = 0; i < count && i < kMostSets; ++i) {
            const ByteView set = takeSet();
            if (!list.empty() && set.size) list += ',';
            list += base64(set);
        }
        return list;
    }

private:
    ByteView bytes_;
    std::size_t at_;
};

ByteView requireConfiguration(const QT::QTTrack& track, unsigned int type, std::size_t least) {
    const auto found = extensionOf(track, kVideoFields, type);
    if (!found || found->size < least) {
        throw ToolError(kMalformed, fmt::format("track {} has no decoder configuration", track.getID()));
    }
    return *found;
}

} // namespace

std::optional<ByteView> extensionOf(const QT::QTTrack& track, std::size_t fixedBytes, unsigned int type) {
    constexpr std::size_t kHeader = 8;
    const auto* table =
        atomAt<QT::STSD>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsd")});
    const auto entries = table ? table->getSampleDescriptionTable() : std::vector<QT::STSDData*>();
    if (entries.empty() || !entries.front() || !entries.front()->getData()) return std::nullopt;
    const ByteView body{entries.front()->getData(), entries.front()->getDataSize()};
    for (std::size_t at = fixedBytes; at < body.size && body.size - at >= kHeader;) {
        const std::size_t size = number(body, at, 4);
        if (size < kHeader || size > body.size - at) return std::nullopt;
        if (number(body, at + 4, 4) == type) return body.part(at + kHeader, size - kHeader);
        at += size;
    }
    return std::nullopt;
}

NalConfiguration configurationOfH264(const QT::QTTrack& track) {
    // 1 profile, compatibility, level; 4 length size; 5 sequence sets; then the picture sets.
    const ByteView record = requireConfiguration(track, fourCC("avcC"), 7);
    SetReader in(record, 5);
    std::string sets = in.takeSets(in.take(1) & 0x1FU);
    if (const std::string pictures = in.takeSets(in.take(1)); !pictures.empty()) sets += "," + pictures;
    NalConfiguration found;
    found.lengthSize = (record[4] & 3U) + 1;
    found.parameters = fmt::format("packetization-mode=1;profile-level-id={}", upperHex(record.part(1, 3)));
    if (!sets.empty()) found.parameters += ";sprop-parameter-sets=" + sets;
    return found;
}

NalConfiguration configurationOfH265(const QT::QTTrack& track) {
    struct Kind {
        unsigned int type;
        const char* name;
        std::string sets;
    };
    Kind kinds[] = {{32, "sprop-vps", {}}, {33, "sprop-sps", {}}, {34, "sprop-pps", {}}};
    const ByteView record = requireConfiguration(track, fourCC("hvcC"), 23);
    SetReader in(record, 22);
    const unsigned int arrays = in.take(1);
    for (unsigned int i = 0; i < arrays; ++i) {
        const unsigned int type = in.take(1) & 0x3FU;
        const std::string sets = in.takeSets(in.take(2));
        for (Kind& kind : kinds) {
            if (kind.type != type || sets.empty()) continue;
            kind.sets += (kind.sets.empty() ? "" : ",") + sets;
        }
    }
    NalConfiguration found;
    found.lengthSize = (record[21] & 3U) + 1;
    // 1 profile space, tier and profile; 6 constraints; 12 level.
    found.parameters = fmt::format(
        "profile-space={};profile-id={};tier-flag={};level-id={};interop-constraints={}", record[1] >> 6,
        record[1] & 0x1FU, record[1] >> 5 & 1U, record[12], upperHex(record.part(6, 6)));
    for (const Kind& kind : kinds) {
        if (kind.sets.empty()) continue;
        found.parameters += fmt::format(";{}={}", kind.name, kind.sets);
    }
    return found;
}

ByteView specificInfoOf(const QT::QTTrack& track) {
    const QT::QTFrame* info = track.getDecoderSpecificInfo();
    if (!info || !info->getData()) return {};
    return {info->getData(), info->getDataLength()};
}

std::string base64(ByteView bytes) {
    return CBuffer(bytes.data, static_cast<unsigned int>(bytes.size)).getBase64().c_str();
}

std::string upperHex(ByteView bytes) {
    return CBuffer(bytes.data, static_cast<unsigned int>(bytes.size)).getHex().getUpperCaseString().c_str();
}

} // namespace Ketra::Tool
