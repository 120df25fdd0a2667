// Memory in larger pages than usual.
#pragma once

#include <cstddef>

namespace Ketra::os {

/// Asks the system to back what lies within the block with large pages. Filling a table of many megabytes
/// takes fewer page faults then, and reading it here and there finds its addresses cached. Only a wish, to be
/// made before the block is written to; nothing for small blocks or where a system has no such call.
void preferLargePages(void* block, std::size_t length);

} // namespace Ketra::os
