// Walking along the sample tables.
#include "check/Tables.h"

#include <algorithm>

namespace Ketra::Tool {

SampleSizes::SampleSizes(const Subject& subject, const AtomPlace* stsz, const AtomPlace* stz2) {
    constexpr unsigned int kBefore = 12; // version and flags, the size or its bits, the count
    Bytes& bytes = subject.bytes;
    const AtomPlace* atom = stsz ? stsz : stz2;
    if (!atom) return;
    if (stsz && stsz->bodySize() >= kBefore) constant_ = bytes.u32(atom->body() + 4);
    if (constant_) {
        count_ = left_ = bytes.u32(atom->body() + 8);
        return;
    }
    if (!stsz) bits_ = bytes.u8(atom->body() + 7);
    if (!stsz && bits_ != 4 && bits_ != 8 && bits_ != 16) {
        subject.findings.add(Severity::Error, "size-bits", atom->path, atom->offset,
                             "the sizes have 4, 8 or 16 bits, nothing else");
        return;
    }
    if (bits_ == 4) {
        // Two a byte: the table is that of the bytes.
        count_ = bytes.u32(atom->body() + 8);
        const std::uint64_t room = atom->bodySize() > kBefore ? atom->bodySize() - kBefore : 0;
        if ((count_ + 1) / 2 > room) {
            subject.findings.add(Severity::Error, "table-size", atom->path, atom->offset,
                                 "the entries do not fit");
            count_ = 2 * room;
        }
        rows_ = Rows(bytes, atom->body() + kBefore, (count_ + 1) / 2, 1);
    } else {
        const TablePlace table = tableOf(subject, atom, kBefore, bits_ / 8);
        count_ = table.count;
        rows_ = table.rows(bytes);
    }
    left_ = count_;
}

unsigned int SampleSizes::next() {
    if (secondHalf_) {
        secondHalf_ = false;
        return rows_.u8(0) & 0x0F;
    }
    if (!rows_.next()) return 0;
    secondHalf_ = bits_ == 4;
    return bits_ == 32   ? rows_.u32(0)
           : bits_ == 16 ? rows_.u16(0)
           : bits_ == 8  ? rows_.u8(0)
                         : rows_.u8(0) >> 4;
}

std::uint64_t SampleSizes::take(std::uint64_t samples) {
    samples = std::min(samples, left_);
    left_ -= samples;
    if (constant_) return samples * constant_;
    std::uint64_t sum = 0;
    for (; samples > 0; --samples) {
        sum += next();
    }
    return sum;
}

void SampleTimes::skip(std::uint64_t samples) {
    while (samples > 0) {
        if (left_ == 0) {
            if (!rows_.next()) return;
            left_ = rows_.u32(0);
            continue;
        }
        const std::uint64_t some = std::min(samples, left_);
        ticks_ += some * rows_.u32(4); // below 2^64 for one row, and only compared
        left_ -= some;
        samples -= some;
    }
}

ChunkRuns::ChunkRuns(Rows rows) : rows_(std::move(rows)), ended_(!rows_.next()) {
    if (!ended_) rowChunk_ = rows_.u32(0);
}

void ChunkRuns::next() {
    ++chunk_;
    while (!ended_ && rowChunk_ <= chunk_) {
        samples_ = rows_.u32(4);
        description_ = rows_.u32(8);
        ended_ = !rows_.next();
        if (!ended_) rowChunk_ = rows_.u32(0);
    }
}

} // namespace Ketra::Tool
