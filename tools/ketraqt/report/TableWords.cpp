#include "report/TableWords.h"

#include "Atoms.h"

#include <qt/QTAtoms/file/CMOV.h>

#include <algorithm>
#include <cstring>

namespace Ketra::Tool::Report {

using QT::fourCC;

namespace {

std::uint32_t word32(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
           static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
}

constexpr std::size_t kHeader = 8;

/// An atom without a size reaches to the end.
std::uint64_t storedSize(const unsigned char* header, std::uint64_t toEnd) {
    const std::uint64_t size = word32(header);
    if (size == 1) return static_cast<std::uint64_t>(word32(header + 8)) << 32 | word32(header + 12);
    return size == 0 ? toEnd : size;
}

} // namespace

TableStore::TableStore(Source& source, QT::QTAtom& root) : source_(source) {
    if (const auto* packed = atomAt<QT::CMOV>(&root, {fourCC("moov"), fourCC("cmov")})) {
        unpacked_ = packed->getUnCompressedHeaders();
    }
}

std::size_t TableStore::read(bool unpacked, std::uint64_t offset, unsigned char* to, std::size_t count) {
    if (unpacked) {
        const std::uint64_t length = unpacked_ ? unpacked_->getDataLength() : 0;
        if (offset >= length || !unpacked_->getData()) return 0;
        count = static_cast<std::size_t>(std::min<std::uint64_t>(count, length - offset));
        std::memcpy(to, unpacked_->getData() + offset, count);
        return count;
    }
    const auto position = static_cast<std::int64_t>(offset);
    if (offset >= source_.fileSize() || source_.stream().lseek(position, 0) != position) return 0;
    std::size_t done = 0;
    while (done < count) {
        const std::int64_t got = source_.stream().read(to + done, static_cast<std::int64_t>(count - done));
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::optional<TableStore::Place> TableStore::payloadOf(const QT::QTAtom* atom) {
    if (!atom || atom->getHeaderSize() < kHeader) return std::nullopt;
    for (const bool unpacked : {true, false}) {
        unsigned char header[2 * kHeader] = {};
        if (unpacked && !unpacked_) continue;
        if (read(unpacked, atom->getOffset(), header, sizeof(header)) < kHeader) continue;
        const unsigned int type = word32(header + 4);
        // Offsets of 64 bits have a type of their own in the file, and share one in memory.
        const bool wide = type == fourCC("co64") && atom->getType() == fourCC("stco");
        if (type != atom->getType() && !wide) continue;
        const std::uint64_t limit = unpacked ? unpacked_->getDataLength() : source_.fileSize();
        const std::uint64_t begin = atom->getOffset() + atom->getHeaderSize();
        const std::uint64_t size = storedSize(header, limit - atom->getOffset());
        const std::uint64_t end = atom->getOffset() + std::min(size, limit - atom->getOffset());
        return Place{unpacked, begin, std::max(begin, end), size, type};
    }
    return std::nullopt;
}

TableWords::TableWords(TableStore& store, const QT::QTAtom* atom)
    : store_(store), place_(store.payloadOf(atom)) {
    constexpr std::uint64_t kVersionAndFlags = 4;
    if (place_) at_ = std::min(place_->end, place_->begin + kVersionAndFlags);
}

std::uint64_t TableWords::left() const { return place_ ? place_->end - at_ : 0; }

bool TableWords::next(std::uint32_t& word) {
    constexpr std::uint64_t kWord = 4;
    if (left() < kWord) return false;
    if (at_ < blockAt_ || at_ + kWord > blockAt_ + filled_) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, left()));
        blockAt_ = at_;
        filled_ = store_.read(place_->unpacked, at_, block_.data(), wanted);
        if (filled_ < kWord) {
            at_ = place_->end;
            return false;
        }
    }
    word = word32(block_.data() + (at_ - blockAt_));
    at_ += kWord;
    return true;
}

bool TableWords::next64(std::uint64_t& word) {
    std::uint32_t high = 0;
    std::uint32_t low = 0;
    if (!next(high) || !next(low)) return false;
    word = static_cast<std::uint64_t>(high) << 32 | low;
    return true;
}

} // namespace Ketra::Tool::Report
