#include <base/CBuffer.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace Ketra {
namespace {

constexpr unsigned int kLargest = std::numeric_limits<unsigned int>::max();

// Runs a change of the bytes; memory that is not there becomes the -1 of the interface.
template <class Change>
int attempt(Change change) {
    try {
        change();
        return 0;
    } catch (const std::bad_alloc&) {
        return -1;
    } catch (const std::length_error&) {
        return -1;
    }
}

bool isMissing(const void* data, unsigned int size) { return !data && size > 0; }

const char* chars(const void* data) { return data ? static_cast<const char*>(data) : ""; }

} // namespace

CBuffer::CBuffer() = default;
CBuffer::CBuffer(unsigned int size) : bytes_(size, '\0') {}
CBuffer::CBuffer(const void* data, unsigned int size) : bytes_(chars(data), data ? size : 0) {}
CBuffer::CBuffer(const CBuffer&) = default;

CBuffer::CBuffer(CBuffer&& other) noexcept : bytes_(std::move(other.bytes_)) { other.bytes_.clear(); }

CBuffer& CBuffer::operator=(const CBuffer&) = default;

CBuffer& CBuffer::operator=(CBuffer&& other) noexcept {
    if (this == &other) return *this;
    bytes_ = std::move(other.bytes_);
    other.bytes_.clear();
    return *this;
}

CBuffer::~CBuffer() = default;

unsigned int CBuffer::getSize() const { return static_cast<unsigned int>(bytes_.size()); }
unsigned char* CBuffer::getData() { return reinterpret_cast<unsigned char*>(bytes_.data()); }
const unsigned char* CBuffer::getData() const {
    return reinterpret_cast<const unsigned char*>(bytes_.data());
}

int CBuffer::set(const void* data, unsigned int size) {
    if (isMissing(data, size)) return -1;
    return attempt([&] { bytes_.assign(chars(data), size); });
}

int CBuffer::append(const void* data, unsigned int size) { return overwrite(getSize(), data, size); }
int CBuffer::append(const CBuffer& other) { return append(other.getData(), other.getSize()); }

int CBuffer::overwrite(unsigned int position, const void* data, unsigned int size) {
    if (isMissing(data, size) || position > getSize() || size > kLargest - position) return -1;
    const unsigned int replaced = std::min(size, getSize() - position);
    return attempt([&] { bytes_.replace(position, replaced, chars(data), size); });
}

int CBuffer::resize(unsigned int size) {
    return attempt([&] { bytes_.resize(size, '\0'); });
}

int CBuffer::zero() {
    std::fill(bytes_.begin(), bytes_.end(), '\0');
    return 0;
}

int CBuffer::compare(const CBuffer& other) const {
    const unsigned int common = std::min(getSize(), other.getSize());
    if (const int order = std::memcmp(getData(), other.getData(), common)) return order;
    return getSize() == other.getSize() ? 0 : getSize() < other.getSize() ? -1 : 1;
}

bool CBuffer::operator==(const CBuffer& other) const { return bytes_ == other.bytes_; }
bool CBuffer::operator!=(const CBuffer& other) const { return bytes_ != other.bytes_; }
bool CBuffer::operator<(const CBuffer& other) const { return compare(other) < 0; }

} // namespace Ketra
