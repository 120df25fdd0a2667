#include <qt/QTAtoms/media/HDLR.h>
#include <qt/QTAtoms/media/MDHD.h>
#include <qt/QTAtoms/media/MDIA.h>
#include <qt/QTAtoms/media/MINF.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("mdhd"), wire::make<MDHD>},
    {fourCC("hdlr"), wire::make<HDLR>},
    {fourCC("minf"), wire::make<MINF>},
};

} // namespace

MDIA::MDIA() : QTAtom(8, fourCC("mdia")) { container_ = true; }

MDIA::MDIA(QTAtom* header) : QTAtom(header) { container_ = true; }

MDIA::~MDIA() = default;

int MDIA::parse() { return wire::parseChildren(*this, kChildren); }

QTFrame* MDIA::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
