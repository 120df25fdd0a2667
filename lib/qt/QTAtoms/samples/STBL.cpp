#include <qt/QTAtoms/entries/MP4V.h>
#include <qt/QTAtoms/entries/STSD.h>
#include <qt/QTAtoms/samples/STBL.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("stsd"), wire::make<STSD>},
    // Sample entries outside the description table all become visual ones.
    {fourCC("mp4a"), wire::make<MP4V>},
    {fourCC("mp4s"), wire::make<MP4V>},
    {fourCC("mp4v"), wire::make<MP4V>},
    {fourCC("stts"), wire::make<STTS>},
    {fourCC("stsz"), wire::make<STSZ>},
};

} // namespace

STBL::STBL() : QTAtom(8, fourCC("stbl")) { container_ = true; }

STBL::STBL(QTAtom* header) : QTAtom(header) { container_ = true; }

STBL::~STBL() = default;

int STBL::parse() { return wire::parseChildren(*this, kChildren, wire::Unlisted::kKeep); }

QTFrame* STBL::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
