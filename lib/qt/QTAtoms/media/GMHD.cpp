#include <qt/QTAtoms/media/GMHD.h>
#include <qt/QTAtoms/media/GMIN.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("gmin"), wire::make<GMIN>},
};

} // namespace

GMHD::GMHD() : QTAtom(8, fourCC("gmhd")) { container_ = true; }

GMHD::GMHD(QTAtom* header) : QTAtom(header) { container_ = true; }

GMHD::~GMHD() = default;

int GMHD::parse() { return wire::parseChildren(*this, kChildren); }

QTFrame* GMHD::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
