// Having memory on its way before it is looked at.
#pragma once

#include <cstdint>

// For functions that only expect(): as calls without a result or effect they would be left out.
#if defined(__GNUC__)
#define KETRA_QT_INLINED [[gnu::always_inline]] inline
#else
#define KETRA_QT_INLINED inline
#endif

namespace Ketra::QT::wire {

#if defined(__GNUC__)
KETRA_QT_INLINED void expect(const unsigned char* bytes, std::uint64_t length) {
    constexpr std::uint64_t kLine = 64;
    for (std::uint64_t at = 0; at < length; at += kLine) {
        __builtin_prefetch(bytes + at);
    }
    if (length) __builtin_prefetch(bytes + length - 1); // its line may begin behind the last step
}
#else
KETRA_QT_INLINED void expect(const unsigned char*, std::uint64_t) {}
#endif

} // namespace Ketra::QT::wire
