#include <qt/QTAtoms/media/MDIA.h>
#include <qt/QTAtoms/media/MINF.h>
#include <qt/QTAtoms/movie/MOOV.h>
#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/samples/SDTP.h>
#include <qt/QTAtoms/samples/STBL.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/track/TRAK.h>
#include <qt/QTFrame.h>
#include <qt/wire/Access.h>
#include <qt/wire/Direct.h>

#include <memory>
#include <typeinfo>

namespace Ketra::QT::wire {

namespace {

bool container(QTAtom& atom, Output& out) { return Access::writeContainer(atom, out); }

bool track(QTAtom& atom, Output& out) { return atom.updateSize() != 0 && Access::writeContainer(atom, out); }

template <class Table>
bool table(QTAtom& atom, Output& out) {
    return Access::write(static_cast<Table&>(atom), out);
}

/// The atoms that have much to write, and how they do without a frame of their own.
struct DirectWriter {
    const std::type_info& type;
    bool (*write)(QTAtom& atom, Output& out);
};

const DirectWriter kWriters[] = {
    {typeid(STSZ), table<STSZ>}, {typeid(CTTS), table<CTTS>}, {typeid(SDTP), table<SDTP>},
    {typeid(STBL), container},   {typeid(MINF), container},   {typeid(MDIA), container},
    {typeid(TRAK), track},       {typeid(MOOV), container},
};

} // namespace

bool writeInto(QTAtom& atom, Output& out) {
    // Of exactly these classes: one made from them may write itself otherwise, which serialize() alone knows.
    const std::type_info& type = typeid(atom);
    for (const DirectWriter& writer : kWriters) {
        if (type == writer.type) return writer.write(atom, out);
    }
    const std::unique_ptr<QTFrame> frame(atom.serialize());
    return frame && out.append(frame->getData(), frame->getDataLength());
}

} // namespace Ketra::QT::wire
