// The values of a track that live in its atoms.
#include <qt/QTAtoms.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Bytes.h>

namespace Ketra::QT {

int QTTrack::initAtoms() {
    if (!trak_) return -1;
    tkhd_ = wire::child<TKHD>(trak_, fourCC("tkhd"));
    udta_ = wire::child<UDTA>(trak_, fourCC("udta"));
    elst_ = wire::child<ELST>(wire::child<QTAtom>(trak_, fourCC("edts")), fourCC("elst"));
    tref_ = wire::child<QTAtom>(trak_, fourCC("tref"));
    mdia_ = wire::child<QTAtom>(trak_, fourCC("mdia"));
    if (!mdia_) return -1;
    mdhd_ = wire::child<MDHD>(mdia_, fourCC("mdhd"));
    mediaHandler_ = wire::child<HDLR>(mdia_, fourCC("hdlr"));
    minf_ = wire::child<QTAtom>(mdia_, fourCC("minf"));
    if (!minf_) return -1;
    vmhd_ = wire::child<VMHD>(minf_, fourCC("vmhd"));
    smhd_ = wire::child<QTAtom>(minf_, fourCC("smhd"));
    gmhd_ = wire::child<QTAtom>(minf_, fourCC("gmhd"));
    hmhd_ = wire::child<HMHD>(minf_, fourCC("hmhd"));
    dref_ = wire::child<DREF>(wire::child<QTAtom>(minf_, fourCC("dinf")), fourCC("dref"));
    dataHandler_ = wire::child<HDLR>(minf_, fourCC("hdlr"));
    stbl_ = wire::child<QTAtom>(minf_, fourCC("stbl"));
    if (!stbl_) return -1;
    stts_ = wire::child<STTS>(stbl_, fourCC("stts"));
    ctts_ = wire::child<CTTS>(stbl_, fourCC("ctts"));
    stsd_ = wire::child<STSD>(stbl_, fourCC("stsd"));
    stco_ = wire::child<STCO>(stbl_, fourCC("stco"));
    stsz_ = wire::child<STSZ>(stbl_, fourCC("stsz"));
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

int QTTrack::setAtomHeaderDuration(unsigned int units) { return set(tkhd_, &TKHD::setDuration, units); }
unsigned int QTTrack::getAtomHeaderDuration() const { return get(tkhd_, &TKHD::getDuration); }
int QTTrack::setAtomHeaderFlags(unsigned int flags) { return set(tkhd_, &TKHD::setFlags, flags); }
unsigned int QTTrack::getAtomHeaderFlags() const { return get(tkhd_, &TKHD::getFlags); }
int QTTrack::setAtomHeaderWidth(float pixels) { return set(tkhd_, &TKHD::setWidth, pixels); }
int QTTrack::setAtomHeaderHeight(float pixels) { return set(tkhd_, &TKHD::setHeight, pixels); }
float QTTrack::getAtomHeaderWidth() const { return get(tkhd_, &TKHD::getWidth); }
float QTTrack::getAtomHeaderHeight() const { return get(tkhd_, &TKHD::getHeight); }

int QTTrack::setAtomMediaDuration(std::uint64_t units) { return set(mdhd_, &MDHD::setDuration, units); }
std::uint64_t QTTrack::getAtomMediaDuration() const { return get(mdhd_, &MDHD::getDuration); }
int QTTrack::setAtomMediaTimeScale(unsigned int scale) { return set(mdhd_, &MDHD::setTimeScale, scale); }
unsigned int QTTrack::getAtomMediaTimeScale() const { return get(mdhd_, &MDHD::getTimeScale); }
int QTTrack::setAtomMediaLanguage(unsigned short code) { return set(mdhd_, &MDHD::setLanguage, code); }
unsigned short QTTrack::getAtomMediaLanguage() const { return get(mdhd_, &MDHD::getLanguage); }

int QTTrack::setAtomMediaHandlerComponentType(unsigned int type) {
    return set(mediaHandler_, &HDLR::setComponentType, type);
}

int QTTrack::setAtomMediaHandlerComponentSubType(unsigned int type) {
    return set(mediaHandler_, &HDLR::setComponentSubType, type);
}

int QTTrack::setAtomMediaHandlerManufacturer(unsigned int code) {
    return set(mediaHandler_, &HDLR::setComponentManufacturer, code);
}

int QTTrack::setAtomMediaHandlerComponentName(const char* name, unsigned int length, bool pascal) {
    return mediaHandler_ ? mediaHandler_->setComponentName(name, length, pascal) : -1;
}

int QTTrack::setAtomDataHandlerComponentType(unsigned int type) {
    return set(dataHandler_, &HDLR::setComponentType, type);
}

int QTTrack::setAtomDataHandlerComponentSubType(unsigned int type) {
    return set(dataHandler_, &HDLR::setComponentSubType, type);
}

int QTTrack::setAtomDataHandlerManufacturer(unsigned int code) {
    return set(dataHandler_, &HDLR::setComponentManufacturer, code);
}

int QTTrack::setAtomDataHandlerComponentName(const char* name, unsigned int length, bool pascal) {
    return dataHandler_ ? dataHandler_->setComponentName(name, length, pascal) : -1;
}

unsigned int QTTrack::getAtomMediaHandlerNameSize() const {
    return get(mediaHandler_, &HDLR::getComponentNameSize);
}
unsigned int QTTrack::getAtomDataHandlerNameSize() const {
    return get(dataHandler_, &HDLR::getComponentNameSize);
}

int QTTrack::setAtomVideoMediaGraphicsMode(unsigned short mode) {
    return set(vmhd_, &VMHD::setGraphicsMode, mode);
}
unsigned short QTTrack::getAtomVideoMediaGraphicsMode() const { return get(vmhd_, &VMHD::getGraphicsMode); }
int QTTrack::setAtomVideoMediaOpColors(unsigned short color) { return set(vmhd_, &VMHD::setOpColor, color); }
unsigned short QTTrack::getAtomVideoMediaOpColor() const { return get(vmhd_, &VMHD::getOpColor); }

unsigned int QTTrack::getAtomNumberOfDataReferenceEntries() const {
    return get(dref_, &DREF::getNumberOfEntries);
}
unsigned int QTTrack::getAtomNumberOfEditListEntries() const { return get(elst_, &ELST::getNumberOfEntries); }
int QTTrack::addAtomDataReference(DREFEntry* entry) { return set(dref_, &DREF::addDataReference, entry); }
int QTTrack::addAtomEditListEntry(ELSTData* entry) { return set(elst_, &ELST::addEditListEntry, entry); }
int QTTrack::addAtomTimeToSample(STTSData* entry) { return set(stts_, &STTS::addTimeToSample, entry); }
int QTTrack::addAtomCodingTimeToSample(CTTSData* entry) {
    return set(ctts_, &CTTS::addCompositionTime, entry);
}
int QTTrack::addToAtomStcoOffsets(std::uint64_t delta) { return set(stco_, &STCO::addToOffsets, delta); }

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
