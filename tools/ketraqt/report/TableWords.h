// The numbers of a sample table, read from where they are stored, one after the other.
#pragma once

#include "Source.h"

#include <qt/QTAtom.h>
#include <qt/QTFrame.h>

#include <array>
#include <cstdint>
#include <optional>

namespace Ketra::Tool::Report {

/// Where atoms are stored: in the file, or in a movie header that was compressed.
class TableStore {
public:
    TableStore(Source& source, QT::QTAtom& root);

    struct Place {
        bool unpacked = false; ///< in the header that was compressed
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
        std::uint64_t size = 0; ///< with the header, as stored; the atom in memory may have another by now
        unsigned int type = 0;
    };
    /// The payload of an atom that was read, as far as it is there; nothing for null or when it is gone.
    std::optional<Place> payloadOf(const QT::QTAtom* atom);
    std::size_t read(bool unpacked, std::uint64_t offset, unsigned char* to, std::size_t count);

private:
    Source& source_;
    const QT::QTFrame* unpacked_ = nullptr;
};

/// Holds a block of a table at a time: a table of any length costs no memory.
class TableWords {
public:
    /// Starts behind the version and flags; empty when there is no such table.
    TableWords(TableStore& store, const QT::QTAtom* atom);

    bool found() const { return place_.has_value(); }
    unsigned int type() const { return place_ ? place_->type : 0; } ///< as stored
    std::uint64_t left() const;                                     ///< bytes
    bool next(std::uint32_t& word);
    bool next64(std::uint64_t& word);

private:
    static constexpr std::size_t kBlock = 1 << 14;

    TableStore& store_;
    std::optional<TableStore::Place> place_;
    std::uint64_t at_ = 0;
    std::array<unsigned char, kBlock> block_{};
    std::uint64_t blockAt_ = 0;
    std::size_t filled_ = 0;
};

} // namespace Ketra::Tool::Report
