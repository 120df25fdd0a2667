// A file being read: its stream, and the movie or at least the atoms in it.
#pragma once

#include <base/Ferro.h>
#include <qt/QTAtoms/file/ROOT.h>
#include <qt/QTCMStream.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>
#include <qt/QTUtils.h>

#include <memory>
#include <string>

namespace Ketra::Tool {

/// A stream that can stop delivering media: what the tables say of a sample needs none of its bytes, and they
/// may not even be in the file.
class SourceStream : public QT::QTCMStream {
public:
    using QTCMStream::QTCMStream;

    /// Until it is taken back, reading succeeds without reading anything.
    void leaveMediaOut(bool out) { mediaLeftOut_ = out; }

    std::int64_t read(unsigned char* buffer, std::int64_t length) override;
    std::int64_t size() override;

private:
    bool mediaLeftOut_ = false;
};

/// Throws ToolError when the file cannot be opened.
class Source {
public:
    explicit Source(const std::string& path);

    QT::QTStream& stream() { return stream_; }
    void leaveMediaOut(bool out = true) { stream_.leaveMediaOut(out); }
    std::uint64_t fileSize() const { return fileSize_; }
    /// Nothing more is read. Not every system replaces a file that is open.
    void close() { stream_.close(); }

private:
    struct Release {
        void operator()(Ferro::RStream* stream) const { stream->release(); }
    };

    std::unique_ptr<Ferro::RStream, Release> file_;
    SourceStream stream_;
    std::uint64_t fileSize_;
};

/// The atoms of a file that need not be a movie.
class AtomTree {
public:
    explicit AtomTree(QT::QTStream& stream);
    QT::ROOT& root() { return *root_; }

private:
    QT::QTUtils reader_;
    std::unique_ptr<QT::ROOT> root_;
};

/// Null when there is no movie header, or no track that can be read.
std::unique_ptr<QT::QTMovie> readMovie(Source& source);

/// Throws ToolError, saying which of these it is.
std::unique_ptr<QT::QTMovie> openMovie(Source& source);
[[noreturn]] void refuse(AtomTree& tree);

/// The track with the ID. Throws ToolError without one.
QT::QTTrack& trackOf(QT::QTMovie& movie, unsigned int id);

} // namespace Ketra::Tool
