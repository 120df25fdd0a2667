#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/samples/STCO.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 4;
constexpr std::uint64_t kWideEntry = 8;
constexpr std::uint64_t kFixed = 16;
constexpr unsigned int kWideType = fourCC("co64");
} // namespace

STCO::STCO() : QTAtom(kFixed, fourCC("stco")), table_(new wire::EntryTable<wire::ChunkOffsetEntry>) {}

STCO::STCO(QTAtom* header) : STCO(header, header && header->getType() == kWideType ? 64 : 32) {}

STCO::STCO(QTAtom* header, int mode) : QTAtom(header), table_(new wire::EntryTable<wire::ChunkOffsetEntry>) {
    type_ = fourCC("stco");
    if (mode == 1 || mode == 64) table_->changeStore().widen();
}

STCO::STCO(const STCO& other)
    : QTAtom(other), version_(other.version_), flags_(other.flags_),
      table_(new wire::EntryTable<wire::ChunkOffsetEntry>(*other.table_)) {}

STCO& STCO::operator=(const STCO& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    *table_ = *other.table_;
    return *this;
}

STCO::~STCO() = default;

KETRA_TABLE_LIST(STCO, STCOData, ChunkOffset)
KETRA_TABLE_COUNT(STCO)
KETRA_TABLE_SET_ITERATOR(STCO)

template <class Self, class Io>
void STCO::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    auto& table = *a.table_;
    if constexpr (Io::kReads) {
        io.counted(table);
    } else {
        io.u32(table.declared);
        const bool wide = a.is64Bit();
        for (std::uint64_t i = 0; i < table.held(); ++i) {
            if (wide) {
                io.u64(table.at(i));
            } else {
                io.u32(table.at(i));
            }
        }
    }
}

// The width of the store is the flag: it outlives the entries, and every way to an offset that needs it sets
// it.
bool STCO::is64Bit() const { return table_->store().wide(); }

std::uint64_t STCO::updateSize() {
    return size_ = kFixed + (is64Bit() ? kWideEntry : kEntry) * table_->declared;
}

int STCO::parse() { return wire::parseLeaf(*this); }

QTFrame* STCO::serialize() {
    if (!table_->consistent()) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::STCO::serialize", "Wrong number of entries in STSC-table");
    }
    return wire::writeLeaf(*this, is64Bit() ? kWideType : type_);
}

int STCO::addChunkOffset(STCOData* entry) {
    if (!table_->append(entry)) return -1;
    size_ += kEntry;
    widenFor(entry->getOffset());
    return 0;
}

void STCO::append(std::uint64_t offset) {
    table_->append(offset);
    size_ += kEntry;
    widenFor(offset);
}

STCOData* STCO::getChunkOffsetData(unsigned int index) const { return table_->record(index); }

int STCO::setChunkOffsetTable(const std::vector<STCOData*>& table) {
    table_->replace(table);
    for (std::uint64_t i = 0; i < table_->held(); ++i) {
        widenFor(table_->at(i));
    }
    return 0;
}

int STCO::addToOffsets(std::uint64_t delta) {
    table_->transform([this, delta](std::uint64_t offset) {
        widenFor(offset + delta);
        return offset + delta;
    });
    return 0;
}

void STCO::widenFor(std::uint64_t offset) {
    if (offset > wire::ChunkOffsets::kNarrowLimit && !is64Bit()) table_->changeStore().widen();
}

} // namespace Ketra::QT
