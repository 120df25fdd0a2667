#include "AtomicFile.h"

#include "Output.h"
#include "ToolError.h"

#include <fmt/format.h>
#include <random>
#include <system_error>
#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace Ketra::Tool {

namespace {

/// Null when the name is taken, or the folder does not let files be made.
std::FILE* createNew(const std::filesystem::path& path) {
#ifdef _WIN32
    return _wfopen(path.c_str(), L"w+bx");
#else
    return std::fopen(path.c_str(), "w+bx");
#endif
}

bool toDisk(std::FILE* file) {
    if (std::fflush(file) != 0) return false;
#ifdef _WIN32
    return _commit(_fileno(file)) == 0;
#else
    return fsync(fileno(file)) == 0;
#endif
}

/// The new name, too, is to survive a crash. Folders that cannot be synchronised are left to the system.
void folderToDisk([[maybe_unused]] const std::filesystem::path& folder) {
#ifndef _WIN32
    const int opened = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
    if (opened < 0) return;
    fsync(opened);
    close(opened);
#endif
}

} // namespace

AtomicFile::AtomicFile(const std::string& target, bool replace)
    : name_(target), target_(nativePath(target)), replace_(replace) {
    std::error_code ignored;
    if (!replace && std::filesystem::exists(std::filesystem::symlink_status(target_, ignored))) {
        throw ToolError(kNotAllowed, fmt::format("{} exists already; --force replaces it", name_));
    }
    if (std::filesystem::is_directory(target_, ignored)) fail("is a directory");
    if (const auto canonical = std::filesystem::canonical(target_, ignored); !ignored) target_ = canonical;
    constexpr int kAttempts = 16;
    std::random_device random;
    for (int i = 0; i < kAttempts && !file_; ++i) {
        path_ = target_;
        path_.replace_filename(nativePath(fmt::format(".{:08x}.part", random())));
        file_.reset(createNew(path_));
    }
    if (!file_) fail("cannot be created");
}

AtomicFile::~AtomicFile() {
    if (!file_) return;
    file_.reset();
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

void AtomicFile::fail(const char* what) const {
    throw ToolError(kCannotRead, fmt::format("{} {}", name_, what));
}

void AtomicFile::write(const void* bytes, std::size_t count) {
    if (count && std::fwrite(bytes, 1, count, file_.get()) != count) fail("cannot be written");
    position_ += count;
}

void AtomicFile::seek(std::uint64_t offset) {
#ifdef _WIN32
    const int result = _fseeki64(file_.get(), static_cast<__int64>(offset), SEEK_SET);
#else
    const int result = fseeko(file_.get(), static_cast<off_t>(offset), SEEK_SET);
#endif
    if (result != 0) fail("cannot be written");
}

void AtomicFile::patch(std::uint64_t offset, const void* bytes, std::size_t count) {
    seek(offset);
    if (count && std::fwrite(bytes, 1, count, file_.get()) != count) fail("cannot be written");
    seek(position_);
}

std::string AtomicFile::flush() {
    if (std::fflush(file_.get()) != 0) fail("cannot be written");
    const std::u8string name = path_.u8string();
    return std::string(name.begin(), name.end());
}

void AtomicFile::commit() {
    if (!toDisk(file_.get())) fail("cannot be written");
    std::error_code error;
    if (replace_ && std::filesystem::exists(target_, error)) {
        // Who may read and write the file stays as it was.
        const std::filesystem::perms rights = std::filesystem::status(target_, error).permissions();
        std::filesystem::permissions(path_, rights, error);
        error.clear();
    }
    if (!replace_) {
        // A target that has come up in the meantime is not to be lost: linking refuses where renaming would
        // not.
        std::filesystem::create_hard_link(path_, target_, error);
        if (!error) {
            file_.reset();
            std::filesystem::remove(path_, error);
            folderToDisk(target_.parent_path());
            return;
        }
        std::error_code ignored;
        if (std::filesystem::exists(std::filesystem::symlink_status(target_, ignored))) {
            throw ToolError(kNotAllowed, fmt::format("{} exists already; --force replaces it", name_));
        }
        error.clear(); // a file system without links
    }
#ifdef _WIN32
    file_.reset(); // an open file cannot be renamed
#endif
    std::filesystem::rename(path_, target_, error);
    if (error) {
        std::error_code ignored;
        file_.reset();
        std::filesystem::remove(path_, ignored);
        fail("cannot be put in its place");
    }
    file_.reset();
    folderToDisk(target_.parent_path());
}

} // namespace Ketra::Tool
