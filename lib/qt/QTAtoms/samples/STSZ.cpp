#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 4;
constexpr std::uint64_t kFixed = 20;
} // namespace

STSZ::STSZ() : QTAtom(kFixed, fourCC("stsz")), table_(new wire::EntryTable<wire::SampleSizeEntry>) {}

STSZ::STSZ(QTAtom* header) : QTAtom(header), table_(new wire::EntryTable<wire::SampleSizeEntry>) {}

STSZ::STSZ(const STSZ& other)
    : QTAtom(other), version_(other.version_), flags_(other.flags_), sampleSize_(other.sampleSize_),
      calculatedSize_(other.calculatedSize_),
      table_(new wire::EntryTable<wire::SampleSizeEntry>(*other.table_)) {}

STSZ& STSZ::operator=(const STSZ& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    sampleSize_ = other.sampleSize_;
    calculatedSize_ = other.calculatedSize_;
    *table_ = *other.table_;
    return *this;
}

STSZ::~STSZ() = default;

KETRA_TABLE_METHODS(STSZ, STSZData, addSampleSize, SampleSize, kEntry)
KETRA_TABLE_COUNT(STSZ)
KETRA_TABLE_SET_ITERATOR(STSZ)

template <class Self, class Io>
void STSZ::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    if constexpr (Io::kReads) {
        io.u32(a.sampleSize_);
        io.u32(a.table_->declared);
        if (a.table_->declared == 0) return;
        if (a.sampleSize_ == 0) io.entries(*a.table_, a.table_->declared);
        a.table_->cursor = 0;
    } else {
        const bool table = a.writesTable();
        const unsigned int common = a.table_->held() ? a.table_->at(0) : 0;
        io.u32(table || a.sampleSize_ ? a.sampleSize_ : common);
        io.u32(a.table_->declared);
        if (table) io.entries(*a.table_, a.table_->declared);
    }
}

bool STSZ::writesTable() const {
    const std::uint64_t held = table_->held();
    if (sampleSize_ || held == 0) return false;
    const unsigned int first = table_->at(0);
    for (std::uint64_t i = 1; i < held; ++i) {
        if (table_->at(i) != first) return true;
    }
    return false;
}

std::uint64_t STSZ::updateSize() { return size_ = kFixed + (writesTable() ? kEntry * table_->declared : 0); }

int STSZ::parse() { return wire::parseLeaf(*this); }

bool STSZ::write(wire::Output& out) {
    const bool table = writesTable();
    if (table && !table_->consistent()) {
        QT_THROW(
            wire::area::kAtoms, "Ketra::QT::STSZ::serialize",
            CString::createWithFormat("Wrong number of entries in STSZ-table (NumOfEntries / actual count "
                                      "= %d / %d)",
                                      static_cast<int>(table_->declared), static_cast<int>(table_->held())));
    }
    size_ = kFixed + (table ? kEntry * table_->declared : 0);
    return wire::writeLeafInto(*this, type_, out);
}

QTFrame* STSZ::serialize() {
    return wire::frameOf([this](wire::Output& out) { return write(out); });
}

STSZData* STSZ::getSampleSizeData(unsigned int index) {
    if (table_->held() == 0) {
        const unsigned int count = table_->declared; // the sample count is not the table's business here
        table_->append(new STSZData(sampleSize_));
        table_->declared = count;
    }
    return table_->record(std::min<std::uint64_t>(index, table_->held() - 1));
}

int STSZ::setSampleSizeTable(const std::vector<STSZData*>& table) {
    table_->replace(table);
    return 0;
}

std::uint64_t STSZ::getCalculatedSize() {
    if (sampleSize_) {
        calculatedSize_ = static_cast<unsigned int>(table_->declared * sampleSize_);
        return calculatedSize_;
    }
    calculatedSize_ = 0;
    for (std::uint64_t i = 0; i < table_->held(); ++i) {
        calculatedSize_ += table_->at(i);
    }
    return calculatedSize_;
}

} // namespace Ketra::QT
