// A file that is there whole or not at all.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace Ketra::Tool {

/// Written beside its target under a name of its own, and renamed when it is complete and on the disk. Throws
/// ToolError when something cannot be written; without commit() nothing remains.
class AtomicFile {
public:
    /// An existing target is refused unless it may be replaced. A link stays, and what it names is replaced.
    AtomicFile(const std::string& target, bool replace);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    ~AtomicFile();

    void write(const void* bytes, std::size_t count);
    void patch(std::uint64_t offset, const void* bytes, std::size_t count); ///< what was written before
    std::uint64_t position() const { return position_; }
    /// What was written can now be read under this name (UTF-8).
    std::string flush();
    void commit();

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    [[noreturn]] void fail(const char* what) const;
    void seek(std::uint64_t offset);

    std::string name_;
    std::filesystem::path target_;
    std::filesystem::path path_;
    std::unique_ptr<std::FILE, Close> file_;
    bool replace_;
    std::uint64_t position_ = 0;
};

} // namespace Ketra::Tool
