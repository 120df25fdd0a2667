// A stream over a file.
#pragma once

#include <base/Export.h>
#include <base/Ferro.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Ketra::Ferro {

// Reads through a window of its own that grows while reading goes on in order, so that short reads and seeks
// cost no system call each; writes go straight to the file. Only files of a known size that can be read at
// any place are opened, and the size is the one found at opening, kept up by this stream's own writes. Every
// call but open returns -1 while the file is not open. Not copyable.
class KETRA_QT_API CFileStream : public CStreamP {
public:
    // What is opened for.
    enum Mode {
        kRead,
        kReadWrite, // the file has to exist
        kCreate     // read and write; empties a file that exists
    };

    CFileStream(const char* utf8Path, Mode mode); // opens; isOpen() tells whether
    CFileStream(const CFileStream&) = delete;
    CFileStream& operator=(const CFileStream&) = delete;
    ~CFileStream() override; // closes

    bool isOpen() const;

    std::int64_t read(unsigned char* buffer, std::int64_t length) override;
    std::int64_t write(const unsigned char* buffer, std::int64_t length) override; // -1 in kRead
    // Rewinds, or opens a closed file again without emptying it; the arguments change nothing.
    int open(unsigned int mode, unsigned int timeout) override;
    std::int64_t seek(std::int64_t offset, unsigned char relative) override; // past the end too; -1: unmoved
    int close() override;
    std::int64_t size() override;

private:
    void openFile();
    std::int64_t takeFromWindow(unsigned char* buffer, std::int64_t length);
    std::int64_t readFile(unsigned char* buffer, std::int64_t length);

    std::string path_;
    Mode mode_;
    std::intptr_t file_ = -1; // the operating system's handle
    std::int64_t position_ = 0;
    std::int64_t size_ = 0;

    std::unique_ptr<unsigned char[]> window_; // windowLength_ bytes of the file from windowStart_ on
    std::int64_t windowStart_ = 0;
    std::int64_t windowLength_ = 0;
    std::int64_t fill_ = 0;         // how much the window last asked for
    std::int64_t lastReadEnd_ = -1; // where the last reading from the file ended
};

} // namespace Ketra::Ferro
