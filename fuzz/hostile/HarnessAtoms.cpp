#include "hostile/AtomTypes.h"
#include "hostile/Harness.h"

#include <base/Ferro.h>
#include <qt/QTCMStream.h>
#include <qt/QTUtils.h>

#include <algorithm>
#include <memory>
#include <typeinfo>
#include <utility>
#include <vector>

using namespace Ketra::QT;

namespace hostile {

namespace {

constexpr std::size_t kAtoms = 2000;        // of a tree that are looked at closely
constexpr unsigned int kEntries = 4096;     // a table above that is not asked for its records
constexpr std::size_t kCopyBytes = 1 << 16; // an atom above that is not copied

template <class Atom>
void copyOne(QTAtom& atom) {
    if (typeid(atom) != typeid(Atom)) return;
    auto& original = static_cast<Atom&>(atom);
    Atom copy(original);
    attempt([&] { copy.updateSize(); });
    attempt([&] { consume(copy.serialize()); });
    Atom assigned;
    assigned = copy;
    const Atom& same = assigned;
    assigned = same;
    attempt([&] { consume(assigned.serialize()); });
}

void copy(QTAtom& atom) {
    eachAtomType([&]<class Atom>() { copyOne<Atom>(atom); });
}

/// Walks a table through its iterator, its index and its list, then gives it its own records back.
template <class Table, class Entry>
void table(QTAtom& atom, Entry* (Table::*at)(unsigned int) const, Entry* (Table::*current)() const,
           std::vector<Entry*> (Table::*list)() const, int (Table::*replace)(const std::vector<Entry*>&)) {
    auto* t = dynamic_cast<Table*>(&atom);
    if (!t || t->getNumberOfEntries() > kEntries) return;
    t->resetTableIterator();
    for (unsigned int i = 0, n = t->getNumberOfEntries(); i <= n; ++i) {
        (t->*current)();
        t->increaseIterator();
        (t->*at)(i);
    }
    t->setIterator(1);
    t->setIterator(t->getNumberOfEntries() + 1);
    attempt([&] { consume(t->serialize()); });
    const std::vector<Entry*> entries = (t->*list)();
    (t->*replace)(entries);
    attempt([&] { consume(t->serialize()); });
}

void tables(QTAtom& a) {
    table<STTS, STTSData>(a, &STTS::getTimeToSampleData, &STTS::getCurrentTimeToSampleData,
                          &STTS::getTimeToSampleTable, &STTS::setTimeToSampleTable);
    table<CTTS, CTTSData>(a, &CTTS::getCompositionTimeData, &CTTS::getCurrentCompositionTimeData,
                          &CTTS::getCompositionTimeTable, &CTTS::setCompositionTimeTable);
    table<STSS, STSSData>(a, &STSS::getSyncSampleData, &STSS::getCurrentSyncSampleData,
                          &STSS::getSyncSampleTable, &STSS::setSyncSampleTable);
    table<STPS, STSSData>(a, &STPS::getSyncSampleData, &STPS::getCurrentSyncSampleData,
                          &STPS::getSyncSampleTable, &STPS::setSyncSampleTable);
    table<STDP, STDPData>(a, &STDP::getDegradationPriorityData, &STDP::getCurrentDegradationPriorityData,
                          &STDP::getDegradationPriorityTable, &STDP::setDegradationPriorityTable);
    table<STSC, STSCData>(a, &STSC::getSampleToChunkData, &STSC::getCurrentSampleToChunkData,
                          &STSC::getSampleToChunkTable, &STSC::setSampleToChunkTable);
    table<STCO, STCOData>(a, &STCO::getChunkOffsetData, &STCO::getCurrentChunkOffsetData,
                          &STCO::getChunkOffsetTable, &STCO::setChunkOffsetTable);
    table<ELST, ELSTData>(a, &ELST::getEditListData, &ELST::getCurrentEditListData, &ELST::getEditListTable,
                          &ELST::setEditListTable);
    table<STSD, STSDData>(a, &STSD::getSampleDescriptionData, &STSD::getCurrentSampleDescriptionData,
                          &STSD::getSampleDescriptionTable, &STSD::setSampleDescriptionTable);
}

void sums(QTAtom& atom) {
    if (auto* stts = dynamic_cast<STTS*>(&atom)) {
        stts->getSumOfDurations();
        stts->getSumOfEntries();
        stts->getCurrentIndex();
    }
    if (auto* ctts = dynamic_cast<CTTS*>(&atom)) {
        ctts->resetDecodeOffset();
        for (int i = 0; i < 100; ++i) {
            ctts->getNextDecodeOffset();
        }
        ctts->compact();
    }
    if (auto* stsz = dynamic_cast<STSZ*>(&atom)) {
        stsz->getCalculatedSize();
        for (unsigned int i = 0; i < std::min(stsz->getNumberOfEntries(), 64u); ++i) {
            stsz->getSampleSizeData(i);
        }
        if (stsz->getNumberOfEntries() <= kEntries) stsz->setSampleSizeTable(stsz->getSampleSizeTable());
    }
    if (auto* stco = dynamic_cast<STCO*>(&atom)) {
        stco->is64Bit();
        stco->addToOffsets(16);
        stco->addToOffsets(static_cast<std::uint64_t>(-16));
    }
}

void descriptors(const std::vector<MP4ObjectData*>& list, int depth) {
    for (MP4ObjectData* one : list) {
        if (!one || depth > 8) continue;
        one->getDescriptorTag(5);
        attempt([&] { consume(one->serialize()); });
        descriptors(one->getDescriptors(), depth + 1);
    }
}

void records(QTAtom& atom) {
    if (auto* udta = dynamic_cast<UDTA*>(&atom)) {
        udta->getDataAtom(fourCC("name"));
        for (QTDataAtom* entry : udta->getDataAtoms()) {
            attempt([&] { consume(entry->serialize()); });
            const QTDataAtom twin(*entry);
        }
    }
    if (auto* hnti = dynamic_cast<HNTI*>(&atom)) hnti->getDataAtom(0);
    if (auto* hinf = dynamic_cast<HINF*>(&atom)) hinf->getDataAtom(3);
    if (auto* dref = dynamic_cast<DREF*>(&atom)) {
        for (DREFEntry* entry : dref->getDataReferenceTable()) {
            attempt([&] { consume(entry->serialize()); });
        }
    }
    if (auto* ftyp = dynamic_cast<FTYP*>(&atom)) ftyp->getCompatibleBrand(0xFFFFFFFF);
    if (auto* tsel = dynamic_cast<TSEL*>(&atom)) tsel->getAttributeList();
    if (auto* esds = dynamic_cast<ESDS*>(&atom)) descriptors(esds->getDescriptors(), 0);
    if (auto* iods = dynamic_cast<IODS*>(&atom)) {
        iods->getInitialObjectDescriptor();
        descriptors(iods->getDescriptors(), 0);
    }
    if (auto* stsd = dynamic_cast<STSD*>(&atom)) {
        for (STSDData* entry : stsd->getSampleDescriptionTable()) {
            entry->getData();
            entry->getExtensions();
            entry->getExtensionSize();
            if (QTAtom* typed = entry->getExtraData()) attempt([&] { consume(typed->serialize()); });
        }
    }
}

} // namespace

void consume(QTFrame* frame) {
    const std::unique_ptr<QTFrame> owned(frame);
    if (!frame || !frame->getData()) return;
    static volatile unsigned int sink;
    unsigned int sum = 0;
    for (unsigned int i = 0; i < frame->getDataLength(); ++i) {
        sum += frame->getData()[i];
    }
    sink = sink + sum;
}

void visitAtom(QTAtom& atom) {
    atom.getChildren();
    atom.getAtomOfType(fourCC("stbl"));
    attempt([&] { consume(atom.serialize()); });
    if (atom.getSize() <= kCopyBytes) copy(atom);
    tables(atom);
    sums(atom);
    records(atom);
    attempt([&] { atom.updateSize(); });
    attempt([&] { consume(atom.serialize()); });
}

void visitAtoms(QTUtils& reader) {
    std::vector<QTAtom*> atoms = reader.getAllAtoms(reader.getRoot());
    reader.getAtomOfType(fourCC("stsd"));
    reader.getAtomsOfType(fourCC("trak"), nullptr);
    if (atoms.size() > kAtoms) atoms.resize(kAtoms);
    for (QTAtom* atom : atoms) {
        visitAtom(*atom);
    }
}

bool exerciseAtoms(const unsigned char* bytes, std::size_t size, Fault fault) {
    Ketra::Ferro::RStream source(new FaultyStream(bytes, size, fault));
    QTCMStream stream(&source);
    QTUtils reader(&stream, nullptr);
    std::unique_ptr<QTAtom> head(reader.getNextAtom(0));
    if (!head) return false;
    // Any class may be handed any bytes: it is the header's type modulo the classes that says which.
    unsigned int classes = 0;
    eachAtomType([&]<class Atom>() { ++classes; });
    const unsigned int wanted = (head->getType() & 0xFF) % classes;
    unsigned int turn = 0;
    bool parsed = false;
    eachAtomType([&]<class Atom>() {
        if (turn++ != wanted) return;
        Atom atom(head.release());
        attempt([&] { parsed = atom.parse() == 0; });
        visitAtom(atom);
    });
    return parsed;
}

} // namespace hostile
