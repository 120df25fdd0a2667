// The values of a track that live in its atoms.
#include <qt/QTAtoms.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Bytes.h>

namespace Ketra::QT {

int QTTrack::initAtoms() {
    Atoms& a = atoms_;
    a = {}; // of another tree, or of one that has changed
    if (!trak_) return -1;
    a.tkhd = wire::child<TKHD>(trak_, fourCC("tkhd"));
    a.mdia = wire::child<QTAtom>(trak_, fourCC("mdia"));
    if (!a.mdia) return -1;
    a.udta = wire::child<UDTA>(trak_, fourCC("udta"));
    a.elst = wire::child<ELST>(wire::child<QTAtom>(trak_, fourCC("edts")), fourCC("elst"));
    a.tref = wire::child<QTAtom>(trak_, fourCC("tref"));
    a.mdhd = wire::child<MDHD>(a.mdia, fourCC("mdhd"));
    a.minf = wire::child<QTAtom>(a.mdia, fourCC("minf"));
    if (!a.minf) return -1;
    a.mediaHandler = wire::child<HDLR>(a.mdia, fourCC("hdlr"));
    a.vmhd = wire::child<VMHD>(a.minf, fourCC("vmhd"));
    a.smhd = wire::child<QTAtom>(a.minf, fourCC("smhd"));
    a.gmhd = wire::child<QTAtom>(a.minf, fourCC("gmhd"));
    a.hmhd = wire::child<HMHD>(a.minf, fourCC("hmhd"));
    a.dref = wire::child<DREF>(wire::child<QTAtom>(a.minf, fourCC("dinf")), fourCC("dref"));
    a.stbl = wire::child<QTAtom>(a.minf, fourCC("stbl"));
    if (!a.stbl) return -1;
    a.dataHandler = wire::child<HDLR>(a.minf, fourCC("hdlr"));
    a.stts = wire::child<STTS>(a.stbl, fourCC("stts"));
    a.ctts = wire::child<CTTS>(a.stbl, fourCC("ctts"));
    a.stsd = wire::child<STSD>(a.stbl, fourCC("stsd"));
    a.stco = wire::child<STCO>(a.stbl, fourCC("stco"));
    a.stsz = wire::child<STSZ>(a.stbl, fourCC("stsz"));
    return 0;
}

namespace {

/// Setter and getter through an atom that may be absent.
template <class Atom, class Value>
int set(Atom* atom, int (Atom::*setter)(Value), Value value) {
    return atom ? (atom->*setter)(value) : -1;
}

template <class Atom, class Value>
Value get(const Atom* atom, Value (Atom::*getter)() const) {
    return atom ? (atom->*getter)() : Value{};
}

} // namespace

int QTTrack::setAtomHeaderDuration(unsigned int units) { return set(atoms_.tkhd, &TKHD::setDuration, units); }
unsigned int QTTrack::getAtomHeaderDuration() const { return get(atoms_.tkhd, &TKHD::getDuration); }
int QTTrack::setAtomHeaderFlags(unsigned int flags) { return set(atoms_.tkhd, &TKHD::setFlags, flags); }
unsigned int QTTrack::getAtomHeaderFlags() const { return get(atoms_.tkhd, &TKHD::getFlags); }
int QTTrack::setAtomHeaderWidth(float pixels) { return set(atoms_.tkhd, &TKHD::setWidth, pixels); }
int QTTrack::setAtomHeaderHeight(float pixels) { return set(atoms_.tkhd, &TKHD::setHeight, pixels); }
float QTTrack::getAtomHeaderWidth() const { return get(atoms_.tkhd, &TKHD::getWidth); }
float QTTrack::getAtomHeaderHeight() const { return get(atoms_.tkhd, &TKHD::getHeight); }

int QTTrack::setAtomMediaDuration(std::uint64_t units) { return set(atoms_.mdhd, &MDHD::setDuration, units); }
std::uint64_t QTTrack::getAtomMediaDuration() const { return get(atoms_.mdhd, &MDHD::getDuration); }
int QTTrack::setAtomMediaTimeScale(unsigned int scale) {
    return set(atoms_.mdhd, &MDHD::setTimeScale, scale);
}
unsigned int QTTrack::getAtomMediaTimeScale() const { return get(atoms_.mdhd, &MDHD::getTimeScale); }
int QTTrack::setAtomMediaLanguage(unsigned short code) { return set(atoms_.mdhd, &MDHD::setLanguage, code); }
unsigned short QTTrack::getAtomMediaLanguage() const { return get(atoms_.mdhd, &MDHD::getLanguage); }

int QTTrack::setAtomMediaHandlerComponentType(unsigned int type) {
    return set(atoms_.mediaHandler, &HDLR::setComponentType, type);
}

int QTTrack::setAtomMediaHandlerComponentSubType(unsigned int type) {
    return set(atoms_.mediaHandler, &HDLR::setComponentSubType, type);
}

int QTTrack::setAtomMediaHandlerManufacturer(unsigned int code) {
    return set(atoms_.mediaHandler, &HDLR::setComponentManufacturer, code);
}

int QTTrack::setAtomMediaHandlerComponentName(const char* name, unsigned int length, bool pascal) {
    return atoms_.mediaHandler ? atoms_.mediaHandler->setComponentName(name, length, pascal) : -1;
}

int QTTrack::setAtomDataHandlerComponentType(unsigned int type) {
    return set(atoms_.dataHandler, &HDLR::setComponentType, type);
}

int QTTrack::setAtomDataHandlerComponentSubType(unsigned int type) {
    return set(atoms_.dataHandler, &HDLR::setComponentSubType, type);
}

int QTTrack::setAtomDataHandlerManufacturer(unsigned int code) {
    return set(atoms_.dataHandler, &HDLR::setComponentManufacturer, code);
}

int QTTrack::setAtomDataHandlerComponentName(const char* name, unsigned int length, bool pascal) {
    return atoms_.dataHandler ? atoms_.dataHandler->setComponentName(name, length, pascal) : -1;
}

unsigned int QTTrack::getAtomMediaHandlerNameSize() const {
    return get(atoms_.mediaHandler, &HDLR::getComponentNameSize);
}
unsigned int QTTrack::getAtomDataHandlerNameSize() const {
    return get(atoms_.dataHandler, &HDLR::getComponentNameSize);
}

int QTTrack::setAtomVideoMediaGraphicsMode(unsigned short mode) {
    return set(atoms_.vmhd, &VMHD::setGraphicsMode, mode);
}
unsigned short QTTrack::getAtomVideoMediaGraphicsMode() const {
    return get(atoms_.vmhd, &VMHD::getGraphicsMode);
}
int QTTrack::setAtomVideoMediaOpColors(unsigned short color) {
    return set(atoms_.vmhd, &VMHD::setOpColor, color);
}
unsigned short QTTrack::getAtomVideoMediaOpColor() const { return get(atoms_.vmhd, &VMHD::getOpColor); }

unsigned int QTTrack::getAtomNumberOfDataReferenceEntries() const {
    return get(atoms_.dref, &DREF::getNumberOfEntries);
}
unsigned int QTTrack::getAtomNumberOfEditListEntries() const {
    return get(atoms_.elst, &ELST::getNumberOfEntries);
}
int QTTrack::addAtomDataReference(DREFEntry* entry) {
    return set(atoms_.dref, &DREF::addDataReference, entry);
}
int QTTrack::addAtomEditListEntry(ELSTData* entry) {
    return set(atoms_.elst, &ELST::addEditListEntry, entry);
}
int QTTrack::addAtomTimeToSample(STTSData* entry) { return set(atoms_.stts, &STTS::addTimeToSample, entry); }
int QTTrack::addAtomCodingTimeToSample(CTTSData* entry) {
    return set(atoms_.ctts, &CTTS::addCompositionTime, entry);
}
int QTTrack::addToAtomStcoOffsets(std::uint64_t delta) {
    return set(atoms_.stco, &STCO::addToOffsets, delta);
}

unsigned char QTTrack::getUInt8(unsigned char** cursor) { return *(*cursor)++; }

unsigned short QTTrack::getUInt16(unsigned char** cursor) {
    *cursor += 2;
    return wire::load16(*cursor - 2);
}

unsigned int QTTrack::getUInt32(unsigned char** cursor) {
    *cursor += 4;
    return wire::load32(*cursor - 4);
}

std::uint64_t QTTrack::getUInt48(unsigned char** cursor) {
    *cursor += 6;
    return (static_cast<std::uint64_t>(wire::load16(*cursor - 6)) << 32) | wire::load32(*cursor - 4);
}

std::uint64_t QTTrack::getUInt64(unsigned char** cursor) {
    *cursor += 8;
    return wire::load64(*cursor - 8);
}

int QTTrack::putUInt8(unsigned char** cursor, unsigned char v) {
    *(*cursor)++ = v;
    return 0;
}

int QTTrack::putUInt16(unsigned char** cursor, unsigned short v) {
    wire::store16(*cursor, v);
    *cursor += 2;
    return 0;
}

int QTTrack::putUInt32(unsigned char** cursor, unsigned int v) {
    wire::store32(*cursor, v);
    *cursor += 4;
    return 0;
}

int QTTrack::putUInt48(unsigned char** cursor, std::uint64_t v) {
    wire::store16(*cursor, v >> 32);
    wire::store32(*cursor + 2, v);
    *cursor += 6;
    return 0;
}

int QTTrack::putUInt64(unsigned char** cursor, std::uint64_t v) {
    wire::store64(*cursor, v);
    *cursor += 8;
    return 0;
}

unsigned short QTTrack::switchEndian16(unsigned short v) { return QTAtom::BE16(v); }
unsigned int QTTrack::switchEndian32(unsigned int v) { return QTAtom::BE32(v); }
unsigned int QTTrack::BE32(unsigned int v) { return QTAtom::BE32(v); }

} // namespace Ketra::QT
