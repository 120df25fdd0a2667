#include <qt/QTAtoms/detail/DecodeIndex.h>
#include <qt/QTAtoms/detail/Runs.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 8;
constexpr std::uint64_t kFixed = 16;
} // namespace

CTTS::CTTS()
    : QTAtom(kFixed, fourCC("ctts")), table_(new wire::EntryTable<wire::CompositionEntry>),
      index_(new wire::DecodeIndex) {}

CTTS::CTTS(QTAtom* header)
    : QTAtom(header), table_(new wire::EntryTable<wire::CompositionEntry>), index_(new wire::DecodeIndex) {}

CTTS::CTTS(const CTTS& other)
    : QTAtom(other), version_(other.version_), flags_(other.flags_), taken_(other.taken_),
      table_(new wire::EntryTable<wire::CompositionEntry>(*other.table_)), index_(new wire::DecodeIndex) {}

CTTS& CTTS::operator=(const CTTS& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    taken_ = other.taken_;
    *table_ = *other.table_;
    return *this;
}

CTTS::~CTTS() = default;

KETRA_TABLE_METHODS(CTTS, CTTSData, addCompositionTime, CompositionTime, kEntry)
KETRA_TABLE_COUNT(CTTS)
KETRA_TABLE_SET_ITERATOR(CTTS)

template <class Self, class Io>
void CTTS::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.counted(*a.table_);
}

std::uint64_t CTTS::updateSize() {
    compact();
    bool needed = false;
    for (std::uint64_t i = 0; i < table_->held() && !needed; ++i) {
        needed = table_->at(i).value != 0;
    }
    return size_ = needed ? kFixed + kEntry * table_->held() : 0;
}

int CTTS::parse() { return wire::parseLeaf(*this); }

bool CTTS::write(wire::Output& out) {
    const bool consistent = table_->consistent(); // compacting sets the count right, so ask before
    if (updateSize() == 0) return false;
    if (!consistent) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::CTTS::serialize", "Wrong number of entries in CTTS-table");
    }
    return wire::writeLeafInto(*this, type_, out);
}

QTFrame* CTTS::serialize() {
    return wire::frameOf([this](wire::Output& out) { return write(out); });
}

int CTTS::compact() {
    wire::compactRuns(*table_);
    return 0;
}

CTTSData* CTTS::getCompositionTimeData(unsigned int index) const { return table_->record(index); }

int CTTS::setCompositionTimeTable(const std::vector<CTTSData*>& table) {
    table_->replace(table);
    size_ = kFixed + kEntry * table_->held();
    return 0;
}

int CTTS::getNextDecodeOffset() {
    const std::uint64_t held = table_->held();
    if (held == 0) return 0;
    const auto last = static_cast<unsigned int>(held - 1);
    table_->cursor = std::min(table_->cursor, last); // compacting may have left it behind
    if (taken_ < table_->at(table_->cursor).count) {
        ++taken_;
    } else {
        if (table_->cursor < last) ++table_->cursor;
        taken_ = 1;
    }
    return static_cast<int>(table_->at(table_->cursor).value);
}

int CTTS::resetDecodeOffset() {
    table_->cursor = 0;
    taken_ = 0;
    return 0;
}

void CTTS::seekDecodeOffset(std::uint64_t steps) {
    const wire::DecodeIndex::Position position = index_->after(*table_, steps);
    table_->cursor = position.entry;
    taken_ = position.taken;
}

int CTTS::peekDecodeOffset() const {
    const std::uint64_t held = table_->held();
    if (held == 0) return 0;
    std::uint64_t entry = std::min<std::uint64_t>(table_->cursor, held - 1);
    if (taken_ >= table_->at(entry).count && entry + 1 < held) ++entry;
    return static_cast<int>(table_->at(entry).value);
}

} // namespace Ketra::QT
