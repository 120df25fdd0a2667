#include <qt/QTAtoms/track/IMAP.h>
#include <qt/QTAtoms/track/IN.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("  in"), wire::make<__IN>},
};

} // namespace

IMAP::IMAP() : QTAtom(8, fourCC("imap")) { container_ = true; }

IMAP::IMAP(QTAtom* header) : QTAtom(header) { container_ = true; }

IMAP::~IMAP() = default;

int IMAP::parse() { return wire::parseChildren(*this, kChildren, wire::Unlisted::kKeep); }

QTFrame* IMAP::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
