#include "hostile/FaultyStream.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace hostile {

std::string nameOf(Fault fault) {
    static const char* const kNames[kFaults] = {"none",          "short reads",    "failing reads",
                                                "dead reads",    "clamping seeks", "failing seeks",
                                                "negative size", "lying size"};
    return kNames[static_cast<unsigned char>(fault) % kFaults];
}

std::int64_t FaultyStream::read(unsigned char* buffer, std::int64_t length) {
    ++reads_;
    if (fault_ == Fault::failingReads && reads_ % 5 == 0) return -1;
    if (fault_ == Fault::deadReads && reads_ > 100) return -1;
    if (fault_ == Fault::shortReads) length = std::min<std::int64_t>(length, 1 + reads_ % 7);
    length = std::clamp<std::int64_t>(length, 0, std::max<std::int64_t>(size_ - position_, 0));
    if (length > 0) std::memcpy(buffer, bytes_ + position_, static_cast<std::size_t>(length));
    position_ += length;
    return length;
}

std::int64_t FaultyStream::seek(std::int64_t offset, unsigned char relative) {
    ++seeks_;
    if (fault_ == Fault::failingSeeks && seeks_ % 3 == 0) return -1;
    const std::int64_t from = relative ? position_ : 0;
    if (offset > 0 && from > std::numeric_limits<std::int64_t>::max() - offset) return -1;
    std::int64_t target = from + offset;
    if (fault_ == Fault::clampingSeeks) target = std::clamp<std::int64_t>(target, 0, size_);
    if (target < 0) return -1;
    return position_ = target;
}

std::int64_t FaultyStream::size() {
    if (fault_ == Fault::negativeSize) return -1;
    if (fault_ == Fault::lyingSize) return 3 * size_ + 4096;
    return size_;
}

} // namespace hostile
