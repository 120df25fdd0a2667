#include <base/CData.h>

#include <algorithm>
#include <cstring>

namespace Ketra {

CData::CData() = default;
CData::CData(const CBuffer& bytes) : CBuffer(bytes) {}
CData::CData(const void* data, unsigned int size) : CBuffer(data, size) {}
CData::CData(const CData&) = default;
CData& CData::operator=(const CData&) = default;
CData::~CData() = default;

int CData::get(void* dst, unsigned int n) {
    if (n > getRemaining() || (!dst && n > 0)) return -1;
    const unsigned int position = getPosition();
    if (n > 0) std::memmove(dst, getData() + position, n);
    position_ = position + n;
    return 0;
}

int CData::put(const void* src, unsigned int n) {
    const unsigned int position = getPosition();
    if (overwrite(position, src, n) != 0) return -1;
    position_ = position + n;
    return 0;
}

unsigned int CData::getPosition() const { return std::min(position_, getSize()); }

int CData::setPosition(unsigned int position) {
    if (position > getSize()) return -1;
    position_ = position;
    return 0;
}

unsigned int CData::getRemaining() const { return getSize() - getPosition(); }

} // namespace Ketra
