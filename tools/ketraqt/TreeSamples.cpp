// The sample tables.
#include "Tree.h"

#include <qt/QTAtoms.h>

namespace Ketra::Tool {

namespace {

/// A pair of numbers of a run, or null without the run.
template <class Entry, class First, class Second>
Json pairJson(const Entry* entry, const char* first, First (Entry::*a)() const, const char* second,
              Second (Entry::*b)() const) {
    if (!entry) return nullptr;
    return {{first, (entry->*a)()}, {second, (entry->*b)()}};
}

template <class Entry, class Value>
Json valueJson(const Entry* entry, Value (Entry::*value)() const) {
    return entry ? Json((entry->*value)()) : Json();
}

void describeStts(const QT::STTS& atom, Node& node) {
    addVersion(atom, node);
    addTable(atom.getNumberOfEntries(), node, [&atom](unsigned int i) {
        return pairJson(atom.getTimeToSampleData(i), "samples", &QT::STTSData::getSampleCount, "duration",
                        &QT::STTSData::getDuration);
    });
}

void describeCtts(const QT::CTTS& atom, Node& node) {
    addVersion(atom, node);
    addTable(atom.getNumberOfEntries(), node, [&atom](unsigned int i) {
        return pairJson(atom.getCompositionTimeData(i), "samples", &QT::CTTSData::getSampleCount, "offset",
                        &QT::CTTSData::getSampleOffset);
    });
}

void describeCslg(const QT::CSLG& atom, Node& node) {
    const auto asSigned = [](unsigned int bits) { return static_cast<int>(bits); };
    addVersion(atom, node);
    node.fields.update({{"shift", asSigned(atom.getShift())},
                        {"least_delta", asSigned(atom.getLeastDelta())},
                        {"greatest_delta", asSigned(atom.getGreatestDelta())},
                        {"display_start_time", asSigned(atom.getDisplayStartTime())},
                        {"display_end_time", asSigned(atom.getDisplayEndTime())}});
}

template <class Table>
void describeSync(const Table& atom, Node& node) {
    addVersion(atom, node);
    addTable(atom.getNumberOfEntries(), node, [&atom](unsigned int i) {
        return valueJson(atom.getSyncSampleData(i), &QT::STSSData::getNumber);
    });
}

/// This table has no count of its own: a byte a sample.
void describeSdtp(const QT::SDTP& atom, Node& node) {
    constexpr std::uint64_t kBeforeEntries = 12;
    addVersion(atom, node);
    const std::uint64_t size = atom.getSize();
    const std::uint64_t count = size > kBeforeEntries ? size - kBeforeEntries : 0;
    addTable(
        static_cast<unsigned int>(std::min<std::uint64_t>(count, 0xFFFFFFFF)), node,
        [&atom](unsigned int i) { return valueJson(atom.getSampleDepData(i), &QT::STSSData::getNumber); });
}

void describeStdp(const QT::STDP& atom, Node& node) {
    addVersion(atom, node);
    addTable(atom.getNumberOfEntries(), node, [&atom](unsigned int i) {
        return valueJson(atom.getDegradationPriorityData(i), &QT::STDPData::getPriority);
    });
}

/// The entries are those of the expansion, one a chunk.
void describeStsc(const QT::STSC& atom, Node& node) {
    addVersion(atom, node);
    addTable(atom.getNumberOfEntries(), node, [&atom](unsigned int i) -> Json {
        const QT::STSCData* chunk = atom.getSampleToChunkData(i);
        if (!chunk) return nullptr;
        return {{"chunk", i + 1},
                {"samples", chunk->getSamplesPerChunk()},
                {"description", chunk->getSampleDescriptionID()},
                {"samples_before", chunk->getTotalSampleCount()}};
    });
}

void describeStsz(QT::STSZ& atom, Node& node) {
    addVersion(atom, node);
    node.fields["sample_size"] = atom.getSampleSize();
    if (atom.getSampleSize()) {
        node.fields["entries"] = atom.getNumberOfEntries();
        return;
    }
    addTable(atom.getNumberOfEntries(), node, [&atom](unsigned int i) {
        return valueJson(atom.getSampleSizeData(i), &QT::STSZData::getSize);
    });
}

void describeStco(const QT::STCO& atom, Node& node) {
    addVersion(atom, node);
    node.fields["bits"] = atom.is64Bit() ? 64 : 32;
    addTable(atom.getNumberOfEntries(), node, [&atom](unsigned int i) {
        return valueJson(atom.getChunkOffsetData(i), &QT::STCOData::getOffset);
    });
}

void describeNothing(const QT::QTAtom&, Node&) {}

} // namespace

const Describers& sampleDescribers() {
    static const Describers table = {
        on<QT::STTS>(describeStts),           on<QT::CTTS>(describeCtts),
        on<QT::CSLG>(describeCslg),           on<QT::STSS>(describeSync<QT::STSS>),
        on<QT::STPS>(describeSync<QT::STPS>), on<QT::SDTP>(describeSdtp),
        on<QT::STDP>(describeStdp),           on<QT::STSC>(describeStsc),
        on<QT::STSZ>(describeStsz),           on<QT::STCO>(describeStco),
        on<QT::STBL>(describeNothing),
        on<QT::STSH>(describeNothing), // its payload is not kept
    };
    return table;
}

} // namespace Ketra::Tool
