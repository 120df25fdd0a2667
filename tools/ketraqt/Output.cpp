#include "Output.h"

#include "ToolError.h"

#include <cstdio>
#include <fmt/format.h>
#include <system_error>
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace Ketra::Tool {

namespace {

constexpr std::size_t kFlushAt = 1 << 16;

} // namespace

std::filesystem::path nativePath(const std::string& path) {
    return std::filesystem::path(std::u8string(path.begin(), path.end()));
}

Output::Output() : name_("standard output") {
#ifdef _WIN32
    _setmode(_fileno(stdout), _O_BINARY); // media bytes must come out as they are
#endif
}

Output::Output(const std::string& path)
    : name_(path), path_(nativePath(path)),
      file_(std::make_unique<std::ofstream>(path_, std::ios::binary | std::ios::trunc)) {
    if (!*file_) throw ToolError(kCannotRead, fmt::format("{} cannot be created", name_));
    std::error_code ignored;
    removable_ = std::filesystem::is_regular_file(path_, ignored); // a device is nobody's to remove
}

Output::~Output() {
    if (file_) {
        if (!removable_) return;
        file_.reset();
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    } else {
        // What was found before the damage is worth having.
        std::fwrite(pending_.data(), 1, pending_.size(), stdout);
        std::fflush(stdout);
    }
}

void Output::write(std::string_view bytes) {
    if (pending_.size() + bytes.size() >= kFlushAt) flush();
    if (bytes.size() < kFlushAt) {
        pending_ += bytes;
    } else {
        put(bytes);
    }
}

void Output::finish() {
    flush();
    if (file_) {
        file_->close();
        if (!*file_) fail();
        removable_ = false;
    } else if (std::fflush(stdout) != 0) {
        fail();
    }
}

void Output::flush() {
    put(pending_);
    pending_.clear();
}

void Output::put(std::string_view bytes) {
    if (file_) {
        file_->write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!*file_) fail();
    } else if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
        fail();
    }
}

void Output::fail() const { throw ToolError(kCannotRead, fmt::format("{} cannot be written", name_)); }

} // namespace Ketra::Tool
