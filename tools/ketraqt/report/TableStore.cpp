#include "report/TableStore.h"

#include "Atoms.h"

#include <qt/QTAtoms/file/CMOV.h>

#include <algorithm>

namespace Ketra::Tool::Report {

using QT::fourCC;

namespace {

constexpr unsigned int kHeader = 8;

/// An atom without a size reaches to the end.
std::uint64_t storedSize(Bytes& bytes, std::uint64_t offset) {
    const std::uint64_t size = bytes.u32(offset);
    if (size == 1) return bytes.u64(offset + kHeader);
    return size == 0 ? bytes.size() - offset : size;
}

} // namespace

TableStore::TableStore(Source& source, QT::QTAtom& root) : file_(source.stream()) {
    const auto* packed = atomAt<QT::CMOV>(&root, {fourCC("moov"), fourCC("cmov")});
    const QT::QTFrame* header = packed ? packed->getUnCompressedHeaders() : nullptr;
    if (header && header->getData()) unpacked_.emplace(header->getData(), header->getDataLength());
}

std::optional<TableStore::Place> TableStore::placeOf(const QT::QTAtom* atom) {
    if (!atom || atom->getHeaderSize() < kHeader) return std::nullopt;
    const std::uint64_t offset = atom->getOffset();
    for (const bool unpacked : {true, false}) {
        if (unpacked && !unpacked_) continue;
        Bytes& source = bytes(unpacked);
        if (source.size() < kHeader || offset > source.size() - kHeader) continue;
        const unsigned int type = source.u32(offset + 4);
        // Offsets of 64 bits have a type of their own in the file, and share one in memory.
        const bool wide = type == fourCC("co64") && atom->getType() == fourCC("stco");
        if (type != atom->getType() && !wide) continue;
        const std::uint64_t begin = offset + atom->getHeaderSize();
        const std::uint64_t size = storedSize(source, offset);
        const std::uint64_t end = offset + std::min(size, source.size() - offset);
        return Place{unpacked, begin, std::max(begin, end), size, type};
    }
    return std::nullopt;
}

Table TableStore::tableOf(const QT::QTAtom* atom, unsigned int before, unsigned int rowSize) {
    const auto place = placeOf(atom);
    Table table;
    if (!place || place->end - place->begin < before) return table;
    Bytes& source = bytes(place->unpacked);
    table.found = true;
    table.type = place->type;
    table.second = source.u32(place->begin + 4);
    table.stated = source.u32(place->begin + before - 4);
    if (table.type == fourCC("co64")) rowSize = 8;
    const std::uint64_t room = (place->end - place->begin - before) / rowSize;
    table.rows = Rows(source, place->begin + before, std::min<std::uint64_t>(table.stated, room), rowSize);
    return table;
}

} // namespace Ketra::Tool::Report
