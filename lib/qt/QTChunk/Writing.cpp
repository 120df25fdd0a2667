// Collecting the frames of a chunk that is being written.
#include <qt/QTAtoms.h>
#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTChunk.h>
#include <qt/wire/Access.h>
#include <qt/wire/Block.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace Ketra::QT {

using wire::Access;

namespace {

constexpr std::uint64_t kMaxChunk = std::numeric_limits<unsigned int>::max();

/// Appends a packed entry to a table atom and grows its stored size, as the public append does.
template <class Atom, class Value>
void append(Atom* atom, const Value& value, std::uint64_t bytes) {
    if (!atom) return;
    Access::table(*atom).append(value);
    Access::setSize(*atom, atom->QTAtom::getSize() + bytes);
}

} // namespace

QTChunk::Collected::Collected(const Collected& other) {
    if (other.size_) append(other.data_, other.size_);
}

QTChunk::Collected::Collected(Collected&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)),
      room_(std::exchange(other.room_, 0)) {}

QTChunk::Collected& QTChunk::Collected::operator=(Collected other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(room_, other.room_);
    return *this;
}

QTChunk::Collected::~Collected() { std::free(data_); }

bool QTChunk::Collected::append(const unsigned char* bytes, std::uint64_t count) {
    if (count > room_ - size_) {
        const std::uint64_t room = std::max(size_ + count, room_ + room_ / 2);
        auto* grown = static_cast<unsigned char*>(std::realloc(data_, static_cast<std::size_t>(room)));
        if (!grown) return false;
        data_ = grown;
        room_ = room;
    }
    if (count) {
        if (bytes) {
            std::memcpy(data_ + size_, bytes, static_cast<std::size_t>(count));
        } else {
            std::memset(data_ + size_, 0, static_cast<std::size_t>(count));
        }
    }
    size_ += count;
    return true;
}

void QTChunk::Collected::expect(std::uint64_t size) {
    constexpr std::uint64_t kMost = 1 << 20; // a guess may be wrong
    const std::uint64_t room = std::min(size, kMost);
    if (data_ || room == 0) return;
    data_ = wire::allocateRaw(room).release();
    room_ = data_ ? room : 0;
}

unsigned char* QTChunk::Collected::release() {
    // What was reserved beyond the chunk goes back before the block leaves.
    if (size_ && size_ < room_) {
        auto* exact = static_cast<unsigned char*>(std::realloc(data_, static_cast<std::size_t>(size_)));
        if (exact) data_ = exact;
    }
    size_ = 0;
    room_ = 0;
    return std::exchange(data_, nullptr);
}

void QTChunk::Collected::clear() { std::free(release()); }

int QTChunk::beginChunk() {
    collected_.clear();
    chunkSamples_ = 0;
    hasFrames_ = false;
    return 0;
}

int QTChunk::addSample(QTFrame* frame) {
    if (!frame || !collected_.append(frame->getData(), frame->getDataLength())) return -1;
    append(stsz_, frame->getDataLength(), 4);
    chunkSamples_ += std::max(1U, frame->getSamplesInFrame());
    if (!hasFrames_) {
        hasFrames_ = true;
        firstTime_ = frame->getTime();
        firstDecodeTime_ = frame->getDecodeTime();
    }
    return 0;
}

int QTChunk::addSyncSample(QTFrame* frame, unsigned int n) {
    if (addSample(frame) != 0) return -1;
    append(writtenSync_, n, 4);
    return 0;
}

int QTChunk::addPartialSyncSample(QTFrame* frame, unsigned int n) {
    if (addSample(frame) != 0) return -1;
    append(writtenPartialSync_, n, 4);
    return 0;
}

int QTChunk::addSampleDep(unsigned int flags) {
    append(sdtp_, flags, 1);
    return 0;
}

int QTChunk::addSamplesToChunk(const std::vector<QTFrame*>& frames) {
    for (QTFrame* frame : frames) {
        if (addSample(frame) != 0) return -1;
    }
    return 0;
}

QTFrame* QTChunk::closeChunk(std::uint64_t offset) {
    const std::uint64_t size = collected_.size();
    if (size > kMaxChunk) return nullptr;
    if (stco_) Access::appendOffset(*stco_, offset);
    append(stsc_, wire::ChunkRun{chunkNr_, chunkSamples_, 1, 0}, 12);
    wire::MallocPtr bytes(collected_.release());
    auto* frame = new QTFrame(static_cast<unsigned int>(size), bytes.get(), 0, 0, false, 1, 0, 0, false);
    if (size) static_cast<void>(bytes.release());
    return frame;
}

} // namespace Ketra::QT
