#include <qt/QTAtoms/file/CMOV.h>
#include <qt/QTAtoms/movie/IODS.h>
#include <qt/QTAtoms/movie/MOOV.h>
#include <qt/QTAtoms/movie/MVHD.h>
#include <qt/QTAtoms/movie/UDTA.h>
#include <qt/QTAtoms/track/CLIP.h>
#include <qt/QTAtoms/track/CTAB.h>
#include <qt/QTAtoms/track/TRAK.h>
#include <qt/QTUtils.h>
#include <qt/wire/Access.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

using wire::Access;

namespace {

/// A compressed header inside what was inflated would never end: it is an atom like any other there.
std::unique_ptr<QTAtom> makeCompressed(QTAtom* header) {
    if (header->getUtils() && Access::alternateSize(*header->getUtils()) != 0) {
        return std::make_unique<QTAtom>(header);
    }
    return std::make_unique<CMOV>(header);
}

constexpr wire::ChildType kChildren[] = {
    {fourCC("mvhd"), wire::make<MVHD>}, {fourCC("trak"), wire::make<TRAK>},
    {fourCC("udta"), wire::make<UDTA>}, {fourCC("iods"), wire::make<IODS>},
    {fourCC("clip"), wire::make<CLIP>}, {fourCC("ctab"), wire::make<CTAB>},
    {fourCC("cmov"), makeCompressed},
};

/// Puts the reader on the inflated bytes, which begin with a "moov" header of their own.
class Inflate : public wire::ChildHook {
public:
    explicit Inflate(QTAtom& movie) : movie_(movie) {}

    bool take(QTAtom& child, std::uint64_t& consumed) override {
        auto* compressed = dynamic_cast<CMOV*>(&child);
        if (!compressed) return false;
        QTUtils& utils = *movie_.getUtils();
        consumed = ~std::uint64_t{0}; // nothing behind it, unless a header is found
        const QTFrame* bytes = compressed->getUnCompressedHeaders();
        const std::int64_t position = Access::streamPosition(utils);
        if (!bytes || utils.setAlternateData(bytes->getDataLength(), bytes->getData()) != 0) return true;
        resumeAt_ = position;
        const std::unique_ptr<QTAtom> header(utils.getNextAtom(0));
        if (!header || header->getSize() < header->getHeaderSize()) return true;
        Access::setSize(movie_, header->getSize());
        constexpr std::uint64_t kInnerHeader = 8;
        consumed = kInnerHeader;
        return true;
    }
    /// What is left of the block belongs to the header; the file goes on where the stream stood.
    void finish() const {
        if (resumeAt_ < 0) return;
        QTUtils& utils = *movie_.getUtils();
        Access::dropAlternateData(utils);
        utils.skipData(resumeAt_, 0);
    }

private:
    QTAtom& movie_;
    std::int64_t resumeAt_ = -1;
};

} // namespace

MOOV::MOOV() : QTAtom(8, fourCC("moov")) { container_ = true; }

MOOV::MOOV(QTAtom* header) : QTAtom(header) { container_ = true; }

MOOV::~MOOV() = default;

int MOOV::parse() {
    Inflate inflate(*this);
    const int result =
        wire::parseChildren(*this, kChildren, wire::Unlisted::kSkip, ~std::uint64_t{0}, &inflate);
    inflate.finish();
    return result;
}

QTFrame* MOOV::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
