#include <qt/QTAtoms/file/CMOV.h>
#include <qt/wire/Access.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Throw.h>

#include <algorithm>
#include <limits>
#include <zlib.h>

namespace Ketra::QT {

namespace {

constexpr char kFunction[] = "Ketra::QT::CMOV::parse";
constexpr std::uint64_t kTypeAt = 8;
constexpr std::uint64_t kSizeAt = 12;
constexpr std::uint64_t kLengthAt = 20;
constexpr std::uint64_t kDataAt = 24;
// zlib can make a thousand bytes of one. A movie header does not come near that, and a small file must not
// claim gigabytes: what does not fit into this is taken for damage.
constexpr std::uint64_t kMostExpansion = 8;
constexpr std::uint64_t kAlwaysAllowed = std::uint64_t{8} << 20;

std::unique_ptr<QTFrame> copyOf(const std::unique_ptr<QTFrame>& frame) {
    return frame ? std::make_unique<QTFrame>(*frame) : nullptr;
}

[[noreturn]] void failed() { QT_THROW(wire::area::kAtoms, kFunction, "Error when decompressing data."); }

} // namespace

CMOV::CMOV() : QTAtom(8, fourCC("cmov")) {}

CMOV::CMOV(QTAtom* header) : QTAtom(header) {}

CMOV::CMOV(const CMOV& other) : QTAtom(other), headers_(copyOf(other.headers_)) {}

CMOV& CMOV::operator=(const CMOV& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    headers_ = copyOf(other.headers_);
    return *this;
}

CMOV::~CMOV() = default;

int CMOV::parse() {
    const wire::Payload payload = wire::Access::fetch(*this);
    if (!payload) return -1;
    const auto word = [&payload](std::uint64_t at) {
        return at + 4 <= payload.delivered ? wire::load32(payload.data.get() + at) : 0;
    };
    const unsigned int type = word(kTypeAt);
    if (type != fourCC("zlib")) {
        QT_THROW(wire::area::kAtoms, kFunction,
                 CString::createWithFormat("Compression type not supported (%c%c%c%c).",
                                           static_cast<char>(type), static_cast<char>(type >> 8),
                                           static_cast<char>(type >> 16), static_cast<char>(type >> 24)));
    }
    const std::uint64_t stated = word(kSizeAt) > kSizeAt ? word(kSizeAt) - kSizeAt : 0;
    const std::uint64_t here = payload.delivered > kDataAt ? payload.delivered - kDataAt : 0;
    const std::uint64_t compressed = std::min(stated, here);
    const std::uint64_t room =
        std::min<std::uint64_t>(word(kLengthAt), std::max(kAlwaysAllowed, kMostExpansion * compressed));
    wire::MallocPtr block = wire::allocateRaw(room);
    if (!block || compressed > std::numeric_limits<uLong>::max()) failed();
    uLongf length = static_cast<uLongf>(room);
    if (uncompress(block.get(), &length, payload.data.get() + kDataAt, static_cast<uLong>(compressed)) !=
        Z_OK) {
        failed();
    }
    const auto produced = static_cast<unsigned int>(length);
    headers_.reset(wire::makeFrame(produced, std::move(block)));
    return 0;
}

} // namespace Ketra::QT
