#include <qt/QTAtoms/media/DINF.h>
#include <qt/QTAtoms/media/GMHD.h>
#include <qt/QTAtoms/media/GMIN.h>
#include <qt/QTAtoms/media/HDLR.h>
#include <qt/QTAtoms/media/HMHD.h>
#include <qt/QTAtoms/media/MINF.h>
#include <qt/QTAtoms/media/NMHD.h>
#include <qt/QTAtoms/media/SMHD.h>
#include <qt/QTAtoms/media/VMHD.h>
#include <qt/QTAtoms/samples/STBL.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("vmhd"), wire::make<VMHD>}, {fourCC("smhd"), wire::make<SMHD>},
    {fourCC("hmhd"), wire::make<HMHD>}, {fourCC("nmhd"), wire::make<NMHD>},
    {fourCC("gmhd"), wire::make<GMHD>}, {fourCC("gmin"), wire::make<GMIN>},
    {fourCC("hdlr"), wire::make<HDLR>}, {fourCC("dinf"), wire::make<DINF>},
    {fourCC("stbl"), wire::make<STBL>},
};

} // namespace

MINF::MINF() : QTAtom(8, fourCC("minf")) { container_ = true; }

MINF::MINF(QTAtom* header) : QTAtom(header) { container_ = true; }

MINF::~MINF() = default;

int MINF::parse() { return wire::parseChildren(*this, kChildren); }

QTFrame* MINF::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
