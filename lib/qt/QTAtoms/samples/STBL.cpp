#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/entries/MP4V.h>
#include <qt/QTAtoms/entries/STSD.h>
#include <qt/QTAtoms/samples/CSLG.h>
#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/samples/STBL.h>
#include <qt/QTAtoms/samples/STCO.h>
#include <qt/QTAtoms/samples/STDP.h>
#include <qt/QTAtoms/samples/STPS.h>
#include <qt/QTAtoms/samples/STSC.h>
#include <qt/QTAtoms/samples/STSH.h>
#include <qt/QTAtoms/samples/STSS.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/wire/Access.h>
#include <qt/wire/Container.h>

#include <algorithm>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("stsd"), wire::make<STSD>},
    {fourCC("stts"), wire::make<STTS>},
    {fourCC("ctts"), wire::make<CTTS>},
    {fourCC("cslg"), wire::make<CSLG>},
    {fourCC("stss"), wire::make<STSS>},
    {fourCC("stps"), wire::make<STPS>},
    {fourCC("stsh"), wire::make<STSH>},
    {fourCC("stdp"), wire::make<STDP>},
    {fourCC("stsc"), wire::make<STSC>},
    {fourCC("stsz"), wire::make<STSZ>},
    {fourCC("stco"), wire::make<STCO>},
    {fourCC("co64"), wire::make<STCO>},
    // Sample entries outside the description table all become visual ones.
    {fourCC("mp4a"), wire::make<MP4V>},
    {fourCC("mp4s"), wire::make<MP4V>},
    {fourCC("mp4v"), wire::make<MP4V>},
};

/// A file's last run goes on to the last chunk: the entries that it implies become entries of the table.
/// Their first chunk is their index, which counts from 0, unlike that of the entries before them.
void fillChunkTable(STSC& stsc, std::uint64_t chunks) {
    auto& table = wire::Access::table(stsc);
    const std::uint64_t held = table.held();
    if (held == 0 || held >= chunks) return;
    const wire::ChunkRun last = table.at(held - 1);
    const std::uint64_t added = chunks - held;
    table.changeStore().append({static_cast<std::uint32_t>(held), last.samplesPerChunk, last.descriptionID,
                                last.totalBefore + last.samplesPerChunk},
                               added);
    table.declared += static_cast<unsigned int>(added);
    wire::Access::setSize(stsc, stsc.getSize() + 12 * added);
}

/// A sync table without entries says that no sample can be decoded by itself; it is meant as no table.
void dropEmptySyncTable(STBL& stbl) {
    const auto* stss = wire::child<STSS>(&stbl, fourCC("stss"));
    if (!stss || stss->getNumberOfEntries() != 0) return;
    std::vector<QTAtom*>& children = wire::Access::children(stbl);
    const auto dropped = std::stable_partition(children.begin(), children.end(), [](const QTAtom* atom) {
        return atom->getType() != fourCC("stss");
    });
    for (auto child = dropped; child != children.end(); ++child) {
        delete *child;
    }
    children.erase(dropped, children.end());
}

} // namespace

STBL::STBL() : QTAtom(8, fourCC("stbl")) { container_ = true; }

STBL::STBL(QTAtom* header) : QTAtom(header) { container_ = true; }

STBL::~STBL() = default;

int STBL::parse() {
    const int result = wire::parseChildren(*this, kChildren, wire::Unlisted::kKeep);
    if (result != 0) return result;
    auto* stsc = wire::child<STSC>(this, fourCC("stsc"));
    const auto* stco = wire::child<STCO>(this, fourCC("stco"));
    if (stsc && stco) fillChunkTable(*stsc, wire::Access::table(*stco).held());
    dropEmptySyncTable(*this);
    return 0;
}

QTFrame* STBL::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
