#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/samples/SDTP.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 1;
constexpr std::uint64_t kFixed = 12;
} // namespace

KETRA_TABLE_LIFE(SDTP, DependencyEntry, "sdtp", kFixed)
KETRA_TABLE_METHODS(SDTP, STSSData, addSampleDep, SampleDep, kEntry)
KETRA_TABLE_SET_ITERATOR(SDTP)

template <class Self, class Io>
void SDTP::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    if constexpr (!Io::kReads) io.entries(*a.table_, a.table_->held());
}

std::uint64_t SDTP::updateSize() { return size_ = table_->held() ? kFixed + kEntry * table_->held() : 0; }

int SDTP::parse() { return wire::parseLeaf(*this); }

bool SDTP::write(wire::Output& out) { return table_->held() != 0 && wire::writeLeafInto(*this, type_, out); }

QTFrame* SDTP::serialize() {
    return wire::frameOf([this](wire::Output& out) { return write(out); });
}

STSSData* SDTP::getSampleDepData(unsigned int index) const { return table_->record(index); }

int SDTP::setSampleDepTable(const std::vector<STSSData*>& table) {
    table_->replace(table);
    updateSize();
    return 0;
}

} // namespace Ketra::QT
