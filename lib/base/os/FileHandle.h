// The operating-system calls behind a file stream; the only place that differs between platforms.
#pragma once

#include <cstdint>

namespace Ketra::Ferro::os {

constexpr std::intptr_t kNoFile = -1;

enum class Access { kRead, kReadWrite, kCreate };

// A file that can be read at any place, or kNoFile. Directories, pipes and the like are refused, without
// waiting.
std::intptr_t openFile(const char* utf8Path, Access access, std::int64_t& size);
int closeFile(std::intptr_t file); // 0, -1

// One transfer at an offset; both move as many bytes as they can. Fewer than length: the end of the file or
// an error behind the bytes moved. -1: an error before the first one.
std::int64_t readAt(std::intptr_t file, unsigned char* buffer, std::int64_t length, std::int64_t offset);
std::int64_t writeAt(std::intptr_t file, const unsigned char* buffer, std::int64_t length,
                     std::int64_t offset);

} // namespace Ketra::Ferro::os
