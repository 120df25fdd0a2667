#include <base/os/LargePages.h>

#if defined(__linux__)
#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace Ketra::os {

#if defined(__linux__)

void preferLargePages(void* block, std::size_t length) {
    // Below that a large page, cleared as a whole before its first byte comes, may cost more than it saves.
    constexpr std::size_t kWorthwhile = std::size_t{8} << 20;
    if (!block || length < kWorthwhile) return;
    // The pages at its ends are shared with other blocks.
    static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto first = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t inner = (first + page - 1) / page * page;
    const std::uintptr_t behind = (first + length) / page * page;
    static_cast<void>(madvise(reinterpret_cast<void*>(inner), behind - inner, MADV_HUGEPAGE));
}

#else

void preferLargePages(void*, std::size_t) {}

#endif

} // namespace Ketra::os
