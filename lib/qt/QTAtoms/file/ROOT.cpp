#include <qt/QTAtoms/file/FREE.h>
#include <qt/QTAtoms/file/FTYP.h>
#include <qt/QTAtoms/file/MDAT.h>
#include <qt/QTAtoms/file/PNOT.h>
#include <qt/QTAtoms/file/ROOT.h>
#include <qt/QTAtoms/file/SKIP.h>
#include <qt/QTAtoms/file/UUIDA.h>
#include <qt/QTAtoms/file/WIDE.h>
#include <qt/QTAtoms/movie/MOOV.h>
#include <qt/QTAtoms/movie/UDTA.h>
#include <qt/QTUtils.h>
#include <qt/wire/Access.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Container.h>
#include <qt/wire/Direct.h>
#include <qt/wire/Frames.h>
#include <qt/wire/Padding.h>
#include <qt/wire/Throw.h>

#include <algorithm>
#include <vector>

namespace Ketra::QT {

using wire::Access;

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("ftyp"), wire::make<FTYP>}, {fourCC("mdat"), wire::make<MDAT>},
    {fourCC("free"), wire::make<FREE>}, {fourCC("skip"), wire::make<SKIP>},
    {fourCC("wide"), wire::make<WIDE>}, {fourCC("uuid"), wire::make<UUIDA>},
    {fourCC("pnot"), wire::make<PNOT>}, {fourCC("udta"), wire::make<UDTA>},
    {fourCC("moov"), wire::make<MOOV>},
};

constexpr std::int64_t kSearched = 100000;
constexpr std::int64_t kHeader = 8;

unsigned int littleEndian(const unsigned char* p) { return QTAtom::BE32(wire::load32(p)); }

/// Looks in the last bytes of the file for a movie header whose own header stands in the other byte order, as
/// some writers left it behind when they were interrupted. What it parses to does not matter to the file.
void recover(QTAtom& root, QTUtils& utils) {
    QTStream* stream = utils.getStream();
    if (!stream) return;
    const std::int64_t length = Access::streamSize(utils);
    const std::int64_t start = std::max<std::int64_t>(0, length - kSearched);
    if (stream->lseek(start, 0) != start) return;
    // Not through the reader: it counts what the movie's atoms took.
    std::vector<unsigned char> tail(static_cast<std::size_t>(std::min(length, kSearched)));
    std::size_t held = 0;
    while (held < tail.size()) {
        const auto asked = static_cast<std::int64_t>(tail.size() - held);
        const std::int64_t got = stream->read(tail.data() + held, asked);
        if (got <= 0) break;
        held += static_cast<std::size_t>(std::min(got, asked));
    }
    for (std::size_t i = 0; i + kHeader <= held; ++i) {
        const unsigned char* at = tail.data() + i;
        if (littleEndian(at + 4) != fourCC("moov")) continue;
        const std::uint64_t offset = static_cast<std::uint64_t>(start) + i;
        stream->lseek(static_cast<std::int64_t>(offset) + kHeader, 0);
        auto movie = std::make_unique<MOOV>(
            new QTAtom(littleEndian(at), fourCC("moov"), offset, kHeader, &utils, false));
        MOOV& parsed = *movie;
        Access::children(root).push_back(movie.get());
        static_cast<void>(movie.release());
        parsed.parse();
        return;
    }
}

} // namespace

ROOT::ROOT() : QTAtom(0U, fourCC("root")) { container_ = true; }

ROOT::ROOT(QTAtom* header) : QTAtom(header) { container_ = true; }

ROOT::~ROOT() = default;

int ROOT::parse() {
    container_ = true;
    if (!utils_) return -1;
    bool hasMovie = false;
    const wire::ChildTable table(kChildren);
    for (std::uint64_t consumed = 0; consumed < size_;) {
        std::unique_ptr<QTAtom> header(utils_->getNextAtom(0));
        // A header that states less than itself, zero included, ends the file.
        if (!header || header->getSize() < header->getHeaderSize()) return 0;
        const std::uint64_t size = header->getSize();
        consumed = size > ~consumed ? ~std::uint64_t{0} : consumed + size;
        std::unique_ptr<QTAtom> child;
        if (header->getType() == fourCC("moov") && hasMovie) {
            child = std::make_unique<FREE>(header.release()); // only the first header counts
            Access::setType(*child, fourCC("free"));
        } else {
            hasMovie = hasMovie || header->getType() == fourCC("moov");
            child = table.create(std::move(header));
        }
        if (const int result = wire::parseChild(*child, false)) return result;
        children_.push_back(child.get());
        static_cast<void>(child.release());
    }
    if (!hasMovie) recover(*this, *utils_);
    return 0;
}

QTFrame* ROOT::serialize() {
    FTYP* brand = nullptr;
    UUIDA* extension = nullptr;
    MOOV* movie = nullptr;
    std::uint64_t counted = 0;
    for (QTAtom* child : children_) {
        auto* ftyp = dynamic_cast<FTYP*>(child);
        auto* uuid = dynamic_cast<UUIDA*>(child);
        auto* moov = dynamic_cast<MOOV*>(child);
        if (ftyp) brand = ftyp;
        if (uuid) extension = uuid;
        if (moov) movie = moov;
        if (ftyp || uuid || moov) counted += static_cast<unsigned int>(child->getSize());
    }
    if (!movie)
        QT_THROW(wire::area::kAtoms, "Ketra::QT::ROOT::serialize", "Can't serialize moovie, no MOOV-atom.");
    FREE free;
    WIDE wide;
    const std::uint64_t length = counted + free.getSize() + wide.getSize();
    return wire::frameOf([&](wire::Output& out) {
        if (wire::crediblePadding(*this, length, 0)) out.reserve(length);
        for (QTAtom* part :
             {static_cast<QTAtom*>(brand), static_cast<QTAtom*>(extension), static_cast<QTAtom*>(movie),
              static_cast<QTAtom*>(&free), static_cast<QTAtom*>(&wide)}) {
            if (part) wire::writeInto(*part, out);
        }
        return wire::fillUp(*this, out, 0, length);
    });
}

} // namespace Ketra::QT
