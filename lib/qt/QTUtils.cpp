#include <base/os/LargePages.h>
#include <qt/QTUtils.h>
#include <qt/wire/Access.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Payload.h>
#include <qt/wire/Throw.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

namespace Ketra::QT {

namespace {

constexpr unsigned int kPlainHeader = 8;
constexpr unsigned int kLargeHeader = 16;
constexpr std::uint64_t kBeyondEnd = 8; // what the size of an atom that runs to the end counts too much
constexpr std::uint64_t kSlack = 16;    // zero bytes behind every payload, so that any number read there ends
constexpr std::int64_t kStep = 2147483647;
// In a stream every atom costs eight bytes of the file, in an inflated block next to nothing.
constexpr unsigned int kMostBlockHeaders = 1U << 18;
constexpr std::int64_t kMaxSteps = std::int64_t{1} << 20;

std::uint64_t payloadLength(const QTAtom& atom) {
    return atom.getSize() > atom.getHeaderSize() ? atom.getSize() - atom.getHeaderSize() : 0;
}

/// A payload of `length` bytes in a block with room for the slack behind it; what did not arrive is zero.
wire::Payload filledUp(wire::MallocPtr block, std::uint64_t length, std::uint64_t delivered) {
    std::memset(block.get() + delivered, 0, static_cast<std::size_t>(length + kSlack - delivered));
    wire::Payload payload;
    payload.data = std::move(block);
    payload.length = length;
    payload.delivered = delivered;
    return payload;
}

void collect(QTAtom* atom, std::vector<QTAtom*>& into) {
    into.push_back(atom);
    for (QTAtom* child : wire::Access::children(*atom)) {
        collect(child, into);
    }
}

} // namespace

QTUtils::QTUtils(QTStream* stream, QTAtom* root) : stream_(stream), root_(root) {}

QTUtils::~QTUtils() { std::free(alternateData_); }

QTUtils* QTUtils::getInstance() { return valid_ ? this : nullptr; }

int QTUtils::setRoot(QTAtom* root) {
    if (root) root_ = root;
    return 0;
}

std::int64_t QTUtils::streamPosition() { return stream_ ? stream_->lseek(0, 1) : 0; }

std::int64_t QTUtils::streamSize() { return stream_ ? std::max<std::int64_t>(0, stream_->size()) : 0; }

std::uint64_t QTUtils::position() {
    if (alternateRemaining_) return alternateSize_ - alternateRemaining_;
    return static_cast<std::uint64_t>(std::max<std::int64_t>(0, streamPosition()));
}

std::uint64_t QTUtils::deliverable() {
    const std::int64_t left = streamSize() - std::max<std::int64_t>(0, streamPosition());
    return alternateRemaining_ + static_cast<std::uint64_t>(std::max<std::int64_t>(0, left));
}

QTAtom* QTUtils::getNextAtom(std::uint64_t position) {
    std::uint64_t start = position;
    if (!position) {
        start = this->position();
    } else if (!alternateRemaining_ || position > alternateSize_) {
        alternateRemaining_ = 0;
        if (stream_) stream_->lseek(static_cast<std::int64_t>(position), 0);
    } else {
        alternateRemaining_ = alternateSize_ - position;
    }
    headerInBlock_ = alternateRemaining_ != 0;
    if (headerInBlock_ && ++blockHeaders_ > kMostBlockHeaders) return nullptr;

    unsigned char bytes[kPlainHeader];
    if (readFully(bytes, sizeof bytes) < sizeof bytes) return nullptr;
    std::uint64_t size = wire::load32(bytes);
    const unsigned int type = wire::load32(bytes + 4);
    unsigned int headerSize = kPlainHeader;
    bool toEnd = false;
    if (size == 0 && (type >> 24) && (type & 0xFF)) {
        const auto end = static_cast<std::uint64_t>(streamSize());
        size = (start < end ? end - start : 0) + kBeyondEnd;
        toEnd = true;
    } else if (size == 1) {
        if (readFully(bytes, sizeof bytes) < sizeof bytes) return nullptr;
        size = wire::load64(bytes);
        headerSize = kLargeHeader;
    }
    auto* header = new QTAtom(size, type, start, static_cast<unsigned char>(headerSize), this, false);
    header->toEnd_ = toEnd;
    return header;
}

unsigned int QTUtils::readData(unsigned char* buffer, unsigned int length) {
    if (!buffer)
        QT_THROW(wire::area::kUtils, "Ketra::QT::QTUtils::readData", "Can't put data in empty buffer");
    const auto fromBlock = static_cast<unsigned int>(std::min<std::uint64_t>(length, alternateRemaining_));
    if (fromBlock) {
        std::memcpy(buffer, alternateData_ + (alternateSize_ - alternateRemaining_), fromBlock);
        alternateRemaining_ -= fromBlock;
    }
    unsigned int delivered = fromBlock;
    if (fromBlock < length && stream_) {
        const std::int64_t asked = length - fromBlock;
        const std::int64_t got = stream_->read(buffer + fromBlock, asked);
        delivered += static_cast<unsigned int>(std::clamp<std::int64_t>(got, 0, asked));
    }
    bytesRead_ += delivered;
    return delivered;
}

std::uint64_t QTUtils::readFully(unsigned char* buffer, std::uint64_t length) {
    constexpr std::uint64_t kPiece = 1U << 30;
    std::uint64_t done = 0;
    while (done < length) {
        const unsigned int got =
            readData(buffer + done, static_cast<unsigned int>(std::min(kPiece, length - done)));
        if (!got) break;
        done += got;
    }
    return done;
}

wire::Payload QTUtils::fetch(std::uint64_t length) {
    if (!length) return {};
    if (length > alternateRemaining_ && stream_ && streamSize() == 0) return fetchUntold(length);
    // A size field may say anything; no more is allocated than the source can fill.
    const std::uint64_t limit = deliverable() + kBeyondEnd;
    length = std::min(length, limit);
    wire::MallocPtr block = wire::allocateRaw(length + kSlack);
    if (!block) return {};
    os::preferLargePages(block.get(), static_cast<std::size_t>(length));
    const std::uint64_t delivered = readFully(block.get(), length);
    if (!delivered) return {};
    return filledUp(std::move(block), length, delivered);
}

/// From a stream that does not tell its size: the block grows with what arrives.
wire::Payload QTUtils::fetchUntold(std::uint64_t length) {
    constexpr std::uint64_t kFirst = 1U << 16;
    wire::MallocPtr block;
    std::uint64_t room = 0;
    std::uint64_t delivered = 0;
    const auto resize = [&block](std::uint64_t bytes) {
        auto* grown = static_cast<unsigned char*>(std::realloc(block.get(), static_cast<std::size_t>(bytes)));
        if (!grown) return false;
        static_cast<void>(block.release());
        block.reset(grown);
        return true;
    };
    while (delivered == room && room < length) {
        room = std::min(length, std::max(kFirst, room * 2));
        if (!resize(room + kSlack)) return {};
        delivered += readFully(block.get() + delivered, room - delivered);
    }
    if (!delivered) return {};
    length = std::min(length, delivered + kBeyondEnd);
    if (!resize(length + kSlack)) return {};
    return filledUp(std::move(block), length, delivered);
}

unsigned char* QTUtils::getData(QTAtom* atom) {
    return atom ? fetch(payloadLength(*atom)).data.release() : nullptr;
}

std::int64_t QTUtils::moveBy(std::int64_t distance) {
    if (alternateRemaining_) {
        const std::uint64_t consumed = alternateSize_ - alternateRemaining_;
        if (distance >= 0 && static_cast<std::uint64_t>(distance) <= alternateRemaining_) {
            alternateRemaining_ -= static_cast<std::uint64_t>(distance);
            return static_cast<std::int64_t>(alternateSize_ - alternateRemaining_);
        }
        if (distance < 0) {
            const std::uint64_t back = 0 - static_cast<std::uint64_t>(distance);
            if (consumed > back) {
                alternateRemaining_ += back;
                return static_cast<std::int64_t>(consumed - back);
            }
            if (stream_) stream_->lseek(-static_cast<std::int64_t>(consumed), 1);
        }
        alternateRemaining_ = 0;
    }
    return stream_ ? stream_->lseek(distance, 1) : 0;
}

int QTUtils::skipData(QTAtom* atom) {
    if (!atom) return -1;
    const std::uint64_t end = atom->getOffset() + atom->getSize();
    const auto rest = static_cast<std::int64_t>(atom->getSize() - atom->getHeaderSize());
    if (atom->getSize() > atom->getHeaderSize()) {
        const std::uint64_t here = position();
        constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        if (rest < 0 || static_cast<std::uint64_t>(rest) > kMax - here || rest / kStep > kMaxSteps) return -1;
    }
    // A header that used the block up has its empty payload there too, not in the stream.
    if (rest == 0 && headerInBlock_ && !alternateRemaining_ && end == alternateSize_) return 0;

    std::int64_t left = rest;
    while (left > kStep) {
        moveBy(kStep);
        left -= kStep;
    }
    const std::int64_t reached = moveBy(left);
    if (static_cast<std::uint64_t>(reached) == end) return 0;
    return atom->toEnd_ && reached == streamSize() ? 0 : -1;
}

std::int64_t QTUtils::skipData(std::int64_t offset, unsigned char relative) {
    if (relative) return moveBy(offset);
    if (alternateRemaining_) {
        if (offset >= 0 && static_cast<std::uint64_t>(offset) <= alternateSize_) {
            alternateRemaining_ = alternateSize_ - static_cast<std::uint64_t>(offset);
            return offset;
        }
        alternateRemaining_ = 0;
    }
    return stream_ ? stream_->lseek(offset, 0) : 0;
}

std::int64_t QTUtils::rewind(int count) { return moveBy(-static_cast<std::int64_t>(count)); }

int QTUtils::setAlternateData(std::uint64_t size, unsigned char* data) {
    if (!size || !data) return -1;
    wire::MallocPtr copy = wire::allocateRaw(size);
    if (!copy) return -1;
    std::memcpy(copy.get(), data, static_cast<std::size_t>(size)); // `data` may lie in the old block
    std::free(alternateData_);
    alternateData_ = copy.release();
    alternateSize_ = size;
    alternateRemaining_ = size;
    blockHeaders_ = 0;
    return 0;
}

QTAtom* QTUtils::findAtom(QTAtom* atom, unsigned int type) {
    if (!atom) return nullptr;
    if (atom->getType() == type) return atom;
    if (!atom->isContainer()) return nullptr;
    // The match under the last child counts, so the first one found from the back is it.
    const std::vector<QTAtom*>& children = wire::Access::children(*atom);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (QTAtom* found = findAtom(*child, type)) return found;
    }
    return nullptr;
}

QTAtom* QTUtils::getAtomOfType(unsigned int type) { return findAtom(root_, type); }

std::vector<QTAtom*> QTUtils::getAllAtoms(QTAtom* atom) {
    std::vector<QTAtom*> all;
    if (atom) collect(atom, all);
    return all;
}

std::vector<QTAtom*> QTUtils::getAtomsOfType(unsigned int type, QTAtom* from) {
    std::vector<QTAtom*> atoms = getAllAtoms(from ? from : root_);
    atoms.erase(std::remove_if(atoms.begin(), atoms.end(),
                               [type](const QTAtom* atom) { return atom->getType() != type; }),
                atoms.end());
    return atoms;
}

unsigned int QTUtils::BE32(unsigned int v) { return QTAtom::BE32(v); }

} // namespace Ketra::QT
