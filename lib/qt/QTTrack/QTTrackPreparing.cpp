// What is settled when a track is closed and prepared for writing.
#include <qt/QTAtoms.h>
#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <memory>

namespace Ketra::QT {

namespace {

constexpr char kDataHandlerName[] = "Apple Alias Data Handler";
constexpr unsigned int kDataHandlerNameLength = 24;

/// The end marker that handheld players want in every track.
constexpr unsigned char kHandheldMarker[] = {
    0x55, 0x53, 0x4d, 0x54, 0x21, 0xd2, 0x4f, 0xce, 0xbb, 0x88, 0x69, 0x5c, 0xfa, 0xc9, 0xc7,
    0x40, 0x00, 0x00, 0x00, 0x1c, 0x4d, 0x54, 0x44, 0x54, 0x00, 0x01, 0x00, 0x12, 0x00, 0x00,
    0x00, 0x0a, 0x55, 0xc4, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00,
};

unsigned int clampedUnsigned(double x) {
    return static_cast<unsigned int>(std::clamp<std::int64_t>(wire::toInteger(x), 0, 0xFFFFFFFF));
}

} // namespace

int QTTrack::endTrack() {
    isClosed_ = true;
    stopped_ = true;
    const unsigned int scale = getAtomMediaTimeScale();
    if (duration_ == 0 && scale != 0 && atoms_.stts) {
        std::uint64_t units = 0;
        const auto& table = wire::Access::table(*atoms_.stts);
        for (std::uint64_t i = 0; i < table.counted(); ++i) {
            const auto run = table.at(i);
            units += static_cast<std::uint64_t>(run.count) * run.value;
        }
        duration_ = wire::toSeconds(static_cast<double>(units), scale);
    }
    if (atoms_.tkhd && atoms_.tkhd->getDuration() == 0 && movieTimeScale_ != 0) {
        atoms_.tkhd->setDuration(clampedUnsigned(duration_ * movieTimeScale_ + 0.5));
    }
    return 0;
}

/// One edit that shows the whole track, and in front of it an empty one when the track starts later.
void QTTrack::addDefaultEdits() {
    std::int64_t mediaStart = 0;
    std::int64_t emptySpan = 0;
    if (firstPTS_ != kUnset && firstDTS_ != kUnset) {
        const double scale = movieTimeScale_;
        mediaStart =
            std::max<std::int64_t>(0, wire::toInteger((firstPTS_ - firstDTS_ - startOffset_) * scale + 0.5));
        const auto start = static_cast<double>(wire::toInteger(scale * startTime_ + 0.5));
        emptySpan = wire::toInteger(start - (startTime_ - firstPTS_) * scale) - mediaStart;
    }
    constexpr std::int64_t kMaxTime = std::numeric_limits<int>::max();
    if (emptySpan > 0) {
        const auto span = static_cast<unsigned int>(std::min<std::int64_t>(emptySpan, 0xFFFFFFFF));
        addAtomEditListEntry(new ELSTData(span, -1, 1.0F));
    }
    addAtomEditListEntry(
        new ELSTData(getAtomHeaderDuration(), static_cast<int>(std::min(mediaStart, kMaxTime)), 1.0F));
}

int QTTrack::prepareForWriting() {
    const bool quickTime = movieType_ == kMOV;
    prepared_ = true;
    if (atoms_.elst && atoms_.elst->getNumberOfEntries() == 0) addDefaultEdits();
    if (atoms_.dref && atoms_.dref->getNumberOfEntries() == 0) {
        addAtomDataReference(new DREFEntry(quickTime ? fourCC("alis") : fourCC("url "), 1U));
    }
    const double bytesPerSecond =
        duration_ > 0 && std::isfinite(duration_) ? static_cast<double>(totalDataSize_) / duration_ : 0;
    // The half is added to bytes, not to bits: players have come to expect these numbers.
    avgBitRate_ =
        duration_ > 0 && std::isfinite(duration_) ? clampedUnsigned((bytesPerSecond + 0.5) * 8.0) : 0;
    if (quickTime) {
        setAtomDataHandlerComponentType(fourCC("dhlr"));
        setAtomDataHandlerComponentSubType(fourCC("alis"));
        setAtomDataHandlerComponentName(kDataHandlerName, kDataHandlerNameLength, true);
    }
    if (movieType_ == kPSP && trak_) {
        auto marker = std::make_unique<UUIDA>(static_cast<unsigned int>(sizeof kHandheldMarker),
                                              const_cast<unsigned char*>(kHandheldMarker));
        if (trak_->addChild(marker.get()) == 0) static_cast<void>(marker.release());
    }
    return 0;
}

} // namespace Ketra::QT
