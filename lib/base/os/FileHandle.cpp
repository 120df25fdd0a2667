#if !defined(_WIN32) && !defined(_FILE_OFFSET_BITS)
#define _FILE_OFFSET_BITS 64 // 64-bit offsets on 32-bit systems too
#endif

#include <base/os/FileHandle.h>

#include <algorithm>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <string>
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace Ketra::Ferro::os {
namespace {

// What one system call moves at most: below the limits of every system.
constexpr std::int64_t kLargestTransfer = std::int64_t{1} << 30;

// Repeats a single transfer, moved(done, length), until all is moved, nothing moves or an error comes.
template <class Transfer>
std::int64_t transferAll(std::int64_t length, Transfer transfer) {
    std::int64_t done = 0;
    while (done < length) {
        const std::int64_t moved = transfer(done, std::min(length - done, kLargestTransfer));
        if (moved < 0 && done == 0) return -1;
        if (moved <= 0) break;
        done += moved;
    }
    return done;
}

} // namespace

#if defined(_WIN32)

namespace {

HANDLE toHandle(std::intptr_t file) { return reinterpret_cast<HANDLE>(file); }

std::wstring toWide(const char* utf8) {
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, nullptr, 0);
    if (length <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, wide.data(), length);
    wide.pop_back(); // the zero, which the string has already
    return wide;
}

OVERLAPPED at(std::int64_t offset) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

} // namespace

std::intptr_t openFile(const char* utf8Path, Access access, std::int64_t& size) {
    const std::wstring path = toWide(utf8Path);
    if (path.empty()) return kNoFile;
    const DWORD rights = access == Access::kRead ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    const HANDLE handle = CreateFileW(path.c_str(), rights, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      access == Access::kCreate ? CREATE_ALWAYS : OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return kNoFile;
    LARGE_INTEGER length;
    if (GetFileType(handle) != FILE_TYPE_DISK || !GetFileSizeEx(handle, &length)) {
        CloseHandle(handle);
        return kNoFile;
    }
    size = length.QuadPart;
    return reinterpret_cast<std::intptr_t>(handle);
}

int closeFile(std::intptr_t file) { return CloseHandle(toHandle(file)) ? 0 : -1; }

std::int64_t readAt(std::intptr_t file, unsigned char* buffer, std::int64_t length, std::int64_t offset) {
    return transferAll(length, [&](std::int64_t done, std::int64_t part) -> std::int64_t {
        OVERLAPPED place = at(offset + done);
        DWORD moved = 0;
        if (ReadFile(toHandle(file), buffer + done, static_cast<DWORD>(part), &moved, &place))
            return static_cast<std::int64_t>(moved);
        return GetLastError() == ERROR_HANDLE_EOF ? 0 : -1;
    });
}

std::int64_t writeAt(std::intptr_t file, const unsigned char* buffer, std::int64_t length,
                     std::int64_t offset) {
    return transferAll(length, [&](std::int64_t done, std::int64_t part) -> std::int64_t {
        OVERLAPPED place = at(offset + done);
        DWORD moved = 0;
        if (!WriteFile(toHandle(file), buffer + done, static_cast<DWORD>(part), &moved, &place)) return -1;
        return static_cast<std::int64_t>(moved);
    });
}

#else

static_assert(sizeof(off_t) == 8, "file offsets have 64 bits");

namespace {

int toDescriptor(std::intptr_t file) { return static_cast<int>(file); }

// Repeats a call that a signal broke off.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

// The size of a regular file or a block device; -1 for whatever has none.
std::int64_t sizeOf(int descriptor) {
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0) return -1;
    if (S_ISREG(status.st_mode)) return status.st_size;
    return S_ISBLK(status.st_mode) ? ::lseek(descriptor, 0, SEEK_END) : -1;
}

} // namespace

std::intptr_t openFile(const char* utf8Path, Access access, std::int64_t& size) {
    int flags = O_CLOEXEC | O_NONBLOCK; // not blocking: a pipe is refused instead of waited for
    flags |= access == Access::kRead ? O_RDONLY : O_RDWR;
    if (access == Access::kCreate) flags |= O_CREAT | O_TRUNC;
    const int descriptor = uninterrupted([&] { return ::open(utf8Path, flags, 0666); });
    if (descriptor < 0) return kNoFile;
    size = sizeOf(descriptor);
    if (size >= 0) return descriptor;
    ::close(descriptor);
    return kNoFile;
}

// Not repeated after a signal: the descriptor is gone by then, and may already be another file's.
int closeFile(std::intptr_t file) { return ::close(toDescriptor(file)) == 0 || errno == EINTR ? 0 : -1; }

std::int64_t readAt(std::intptr_t file, unsigned char* buffer, std::int64_t length, std::int64_t offset) {
    return transferAll(length, [&](std::int64_t done, std::int64_t part) -> std::int64_t {
        return uninterrupted([&] {
            return ::pread(toDescriptor(file), buffer + done, static_cast<std::size_t>(part), offset + done);
        });
    });
}

std::int64_t writeAt(std::intptr_t file, const unsigned char* buffer, std::int64_t length,
                     std::int64_t offset) {
    return transferAll(length, [&](std::int64_t done, std::int64_t part) -> std::int64_t {
        return uninterrupted([&] {
            return ::pwrite(toDescriptor(file), buffer + done, static_cast<std::size_t>(part), offset + done);
        });
    });
}

#endif

} // namespace Ketra::Ferro::os
