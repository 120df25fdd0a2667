// How the entries of the chunk tables are kept: chunk offsets of either width, and the sample-to-chunk table
// as what its expansion consists of.
#pragma once

#include <qt/QTAtoms/detail/ChunkRuns.h>
#include <qt/QTAtoms/samples/STCO.h>
#include <qt/QTAtoms/samples/STSC.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/EntryTable.h>

#include <limits>

namespace Ketra::QT::wire {

/// Chunk offsets in file form, four or eight bytes each. An offset that four bytes cannot hold makes the
/// whole store wide, and it stays wide.
class ChunkOffsets {
public:
    using Value = std::uint64_t;
    static constexpr Value kNarrowLimit = std::numeric_limits<std::uint32_t>::max();

    bool wide() const { return isWide_; }
    unsigned int width() const { return isWide_ ? U64::width : U32::width; }
    std::uint64_t size() const { return isWide_ ? wide_.size() : narrow_.size(); }
    std::uint64_t stored() const { return isWide_ ? wide_.stored() : narrow_.stored(); }
    const unsigned char* bytes(std::uint64_t i) const { return isWide_ ? wide_.bytes(i) : narrow_.bytes(i); }
    Value at(std::uint64_t i) const { return isWide_ ? wide_.at(i) : narrow_.at(i); }

    void widen() {
        if (isWide_) return;
        for (std::uint64_t i = 0; i < narrow_.size(); ++i) {
            wide_.push(narrow_.at(i));
        }
        narrow_.clear();
        isWide_ = true;
    }
    void adopt(Payload& payload, const unsigned char* bytes, std::uint64_t first, std::uint64_t count) {
        if (isWide_) {
            wide_.adopt(payload, bytes, first, count);
        } else {
            narrow_.adopt(payload, bytes, first, count);
        }
    }
    void push(Value offset) {
        if (offset > kNarrowLimit) widen();
        if (isWide_) {
            wide_.push(offset);
        } else {
            narrow_.push(offset);
        }
    }
    void set(std::uint64_t i, Value offset) {
        if (offset > kNarrowLimit) widen();
        if (isWide_) {
            wide_.set(i, offset);
        } else {
            narrow_.set(i, offset);
        }
    }
    void clear() { // the width stays
        narrow_.clear();
        wide_.clear();
    }

private:
    template <class Codec>
    struct Bytes : Codec {
        using Value = std::uint64_t;
    };

    PackedArray<Bytes<U32>> narrow_;
    PackedArray<Bytes<U64>> wide_;
    bool isWide_ = false;
};

struct ChunkOffsetEntry {
    using Record = STCOData;
    using Value = std::uint64_t;
    using Store = ChunkOffsets;
    static Record* record(Value offset) { return new STCOData(offset); }
    static Value value(const STCOData& data) { return data.getOffset(); }
    static void assign(STCOData& data, Value offset) { data.setOffset(offset); }
};

struct ChunkRunEntry {
    using Record = STSCData;
    using Value = ChunkRun;
    using Store = ChunkRuns;
    static Record* record(const ChunkRun& run) {
        return new STSCData(run.firstChunk, run.samplesPerChunk, run.descriptionID, run.totalBefore);
    }
    static ChunkRun value(const STSCData& data) {
        return {data.getFirstChunk(), data.getSamplesPerChunk(), data.getSampleDescriptionID(),
                data.getTotalSampleCount()};
    }
};

/// The entries that the file form of the table keeps: the first, and each that differs from the last kept one
/// in samples or description. Entries beyond the count field are left out.
template <class Visit>
void forEachWrittenRun(const EntryTable<ChunkRunEntry>& table, Visit visit) {
    if (table.held() == 0) return;
    ChunkRun kept = table.at(0);
    visit(kept);
    const auto consider = [&](const ChunkRun& entry) {
        if (entry.sameSamples(kept)) return;
        kept = entry;
        visit(kept);
    };
    const std::uint64_t count = table.counted();
    if (table.packed()) {
        for (const ChunkRuns::Segment& segment : table.store().segments()) {
            if (segment.start < count) consider(segment.first);
        }
    } else {
        for (std::uint64_t i = 1; i < count; ++i) {
            consider(table.at(i));
        }
    }
}

inline std::uint64_t writtenRuns(const EntryTable<ChunkRunEntry>& table) {
    std::uint64_t runs = 0;
    forEachWrittenRun(table, [&runs](const ChunkRun&) { ++runs; });
    return runs;
}

} // namespace Ketra::QT::wire
