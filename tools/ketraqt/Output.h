// Where data goes: standard output, or a file that disappears again when it cannot be finished.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace Ketra::Tool {

/// A path as the command line has it (UTF-8), for the file system.
std::filesystem::path nativePath(const std::string& path);

/// Collects small pieces. Throws ToolError when something cannot be written.
class Output {
public:
    Output(); ///< standard output
    explicit Output(const std::string& path);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output(); ///< without finish(), a file is removed; standard output gets what there is

    void write(std::string_view bytes);
    void finish(); ///< everything is in its place

private:
    void flush();
    void put(std::string_view bytes);
    [[noreturn]] void fail() const;

    std::string name_;
    std::filesystem::path path_;
    std::unique_ptr<std::ofstream> file_; // null: standard output
    bool removable_ = false;
    std::string pending_;
};

} // namespace Ketra::Tool
