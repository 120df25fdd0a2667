#include <base/Ferro.h>

namespace Ketra::Ferro {

CStreamP::~CStreamP() = default;

RStream::RStream(CStreamP* stream) : stream_(stream) {}
RStream::~RStream() { delete stream_; }

CStreamP* RStream::get() const { return stream_; }
CStreamP* RStream::operator->() const { return stream_; }

} // namespace Ketra::Ferro
