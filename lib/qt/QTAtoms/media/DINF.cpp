#include <qt/QTAtoms/media/DINF.h>
#include <qt/QTAtoms/media/DREF.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("dref"), wire::make<DREF>},
};

} // namespace

DINF::DINF() : QTAtom(8, fourCC("dinf")) { container_ = true; }

DINF::DINF(QTAtom* header) : QTAtom(header) { container_ = true; }

DINF::~DINF() = default;

int DINF::parse() { return wire::parseChildren(*this, kChildren); }

QTFrame* DINF::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
