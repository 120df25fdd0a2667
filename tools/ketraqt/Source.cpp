#include "Source.h"

#include "Atoms.h"
#include "Output.h"
#include "ToolError.h"

#include <base/CFileStream.h>
#include <qt/QTAtoms/movie/MVHD.h>

#include <algorithm>
#include <fmt/format.h>
#include <system_error>

namespace Ketra::Tool {

namespace {

/// Why a file did not open, as far as its name tells.
std::string reasonFor(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(nativePath(path), error);
    if (!std::filesystem::exists(status)) return "no such file";
    if (std::filesystem::is_directory(status)) return "is a directory";
    return "cannot be opened for reading";
}

Ferro::RStream* openFile(const std::string& path) {
    auto file = std::make_unique<Ferro::CFileStream>(path.c_str(), Ferro::CFileStream::kRead);
    if (!file->isOpen()) throw ToolError(kCannotRead, reasonFor(path));
    auto* holder = new Ferro::RStream(file.get());
    static_cast<void>(file.release());
    return holder;
}

} // namespace

std::int64_t SourceStream::read(unsigned char* buffer, std::int64_t length) {
    return mediaLeftOut_ ? length : QTCMStream::read(buffer, length);
}

std::int64_t SourceStream::size() {
    // A sample larger than the whole stream is taken for damage, which it need not be without the media.
    constexpr std::int64_t kLargestSample = std::int64_t{1} << 30;
    return mediaLeftOut_ ? std::max(kLargestSample, QTCMStream::size()) : QTCMStream::size();
}

Source::Source(const std::string& path)
    : file_(openFile(path)), stream_(file_.get()),
      fileSize_(static_cast<std::uint64_t>(std::max<std::int64_t>(0, stream_.size()))) {}

AtomTree::AtomTree(QT::QTStream& stream) : reader_(&stream, nullptr) {
    constexpr unsigned char kHeaderSize = 8;
    stream.lseek(0, 0);
    const auto length = static_cast<std::uint64_t>(std::max<std::int64_t>(0, stream.size()));
    root_ = std::make_unique<QT::ROOT>(
        new QT::QTAtom(length, QT::fourCC("root"), 0, kHeaderSize, &reader_, true));
    reader_.setRoot(root_.get());
    root_->parse(); // whatever could be read stays
}

std::unique_ptr<QT::QTMovie> readMovie(Source& source) {
    // The flavour matters to writing only.
    return std::unique_ptr<QT::QTMovie>(QT::QTMovie::createNewQTMovieFromStream(&source.stream(), QT::kMOV));
}

std::unique_ptr<QT::QTMovie> openMovie(Source& source) {
    auto movie = readMovie(source);
    if (movie) return movie;
    AtomTree tree(source.stream());
    refuse(tree);
}

void refuse(AtomTree& tree) {
    if (!atomAt<QT::MVHD>(&tree.root(), {QT::fourCC("moov"), QT::fourCC("mvhd")})) {
        throw ToolError(kMalformed, "not a movie: there is no movie header");
    }
    throw ToolError(kMalformed, "the movie has no track that can be read");
}

QT::QTTrack& trackOf(QT::QTMovie& movie, unsigned int id) {
    if (QT::QTTrack* track = movie.getTrackID(id)) return *track;
    throw ToolError(kUsage, fmt::format("there is no track {} that can be read", id));
}

} // namespace Ketra::Tool
