#include <qt/QTAtoms/systems/MPOD.h>
#include <qt/QTAtoms/track/TREF.h>
#include <qt/QTAtoms/track/TrackReferences.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("tmcd"), wire::make<TMCD>}, {fourCC("chap"), wire::make<CHAP>},
    {fourCC("sync"), wire::make<SYNC>}, {fourCC("scpt"), wire::make<SCPT>},
    {fourCC("ssrc"), wire::make<SSRC>}, {fourCC("hint"), wire::make<HINT>},
    {fourCC("dpnd"), wire::make<DPND>}, {fourCC("ipir"), wire::make<IPIR>},
    {fourCC("mpod"), wire::make<MPOD>},
};

} // namespace

TREF::TREF() : QTAtom(8, fourCC("tref")) { container_ = true; }

TREF::TREF(QTAtom* header) : QTAtom(header) { container_ = true; }

TREF::~TREF() = default;

int TREF::parse() { return wire::parseChildren(*this, kChildren); }

QTFrame* TREF::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
