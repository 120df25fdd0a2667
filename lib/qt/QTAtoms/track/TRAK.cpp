#include <qt/QTAtoms/media/MDIA.h>
#include <qt/QTAtoms/movie/UDTA.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/QTAtoms/track/CLIP.h>
#include <qt/QTAtoms/track/EDTS.h>
#include <qt/QTAtoms/track/IMAP.h>
#include <qt/QTAtoms/track/LOAD.h>
#include <qt/QTAtoms/track/MATT.h>
#include <qt/QTAtoms/track/TAPT.h>
#include <qt/QTAtoms/track/TKHD.h>
#include <qt/QTAtoms/track/TRAK.h>
#include <qt/QTAtoms/track/TREF.h>
#include <qt/wire/Access.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("tkhd"), wire::make<TKHD>}, {fourCC("mdia"), wire::make<MDIA>},
    {fourCC("edts"), wire::make<EDTS>}, {fourCC("tref"), wire::make<TREF>},
    {fourCC("udta"), wire::make<UDTA>}, {fourCC("clip"), wire::make<CLIP>},
    {fourCC("matt"), wire::make<MATT>}, {fourCC("load"), wire::make<LOAD>},
    {fourCC("imap"), wire::make<IMAP>}, {fourCC("tapt"), wire::make<TAPT>},
};

bool hasSamples(const QTAtom& trak) {
    const QTAtom* mdia = wire::child<QTAtom>(&trak, fourCC("mdia"));
    const QTAtom* minf = wire::child<QTAtom>(mdia, fourCC("minf"));
    const QTAtom* stbl = wire::child<QTAtom>(minf, fourCC("stbl"));
    const STTS* times = wire::child<STTS>(stbl, fourCC("stts"));
    return times && times->getNumberOfEntries() != 0;
}

} // namespace

TRAK::TRAK() : QTAtom(8, fourCC("trak")) { container_ = true; }

TRAK::TRAK(QTAtom* header) : QTAtom(header) { container_ = true; }

TRAK::~TRAK() = default;

std::uint64_t TRAK::updateSize() { return hasSamples(*this) ? QTAtom::updateSize() : size_ = 0; }

int TRAK::parse() { return wire::parseChildren(*this, kChildren); }

QTFrame* TRAK::serialize() { return updateSize() == 0 ? nullptr : serializeContainer(); }

} // namespace Ketra::QT
