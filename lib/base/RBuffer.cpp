#include <base/RBuffer.h>

namespace Ketra {

RBuffer::RBuffer() = default;
RBuffer::RBuffer(const CBuffer& bytes) : CBuffer(bytes) {}
RBuffer::RBuffer(const RBuffer&) = default;
RBuffer& RBuffer::operator=(const RBuffer&) = default;
RBuffer::~RBuffer() = default;

RData::RData() = default;
RData::RData(const CData& data) : CData(data) {}
RData::RData(const RData&) = default;
RData& RData::operator=(const RData&) = default;
RData::~RData() = default;

RString::RString() = default;
RString::RString(const CString& text) : CString(text) {}
RString::RString(const RString&) = default;
RString& RString::operator=(const RString&) = default;
RString::~RString() = default;

} // namespace Ketra
