// The URL of a descriptor: a length byte and as many bytes.
#pragma once

#include <qt/wire/Block.h>

namespace Ketra::QT::wire {

template <class Io, class Url>
void urlLayout(Url& url, Io& io) {
    auto length = static_cast<unsigned char>(url.size());
    io.u8(length);
    io.raw(url, length);
}

inline int adoptURL(Block& url, unsigned char* bytes, unsigned char length) {
    if (length && !bytes) return -1;
    url.adopt(bytes, length);
    return 0;
}

} // namespace Ketra::QT::wire
