// Reads a movie through a stream of one's own: here over bytes that the program has in memory already.
//
//     own_stream movie.mov
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTStream.h>
#include <qt/QTTrack.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <vector>

using namespace Ketra;

namespace {

using Bytes = std::vector<unsigned char>;

//! [stream]
/// Bytes in memory, which must outlive the stream. Nothing is copied but what is read.
class MemoryView : public QT::QTStream {
public:
    explicit MemoryView(const Bytes& bytes) : bytes_(bytes) {}

    /// As many bytes as there are left; 0 at the end.
    std::int64_t read(unsigned char* buffer, std::int64_t length) override {
        const std::int64_t count = std::clamp<std::int64_t>(size() - position_, 0, length);
        if (count > 0) std::memcpy(buffer, bytes_.data() + position_, static_cast<std::size_t>(count));
        position_ += count;
        return count;
    }

    /// The library writes nothing by itself, so a stream to read from may refuse.
    std::int64_t write(unsigned char*, std::int64_t) override { return -1; }

    /// A place behind the end is allowed: nothing can be read there, that is all.
    std::int64_t lseek(std::int64_t offset, unsigned char relative) override {
        if (relative && offset > std::numeric_limits<std::int64_t>::max() - position_) return -1;
        const std::int64_t target = relative ? position_ + offset : offset;
        return target < 0 ? -1 : position_ = target;
    }

    int open() override { return 0; }
    int close() override { return 0; }
    std::int64_t size() override { return static_cast<std::int64_t>(bytes_.size()); }

private:
    const Bytes& bytes_;
    std::int64_t position_ = 0;
};
//! [stream]

int readMovie(const Bytes& bytes) {
    //! [open]
    MemoryView stream(bytes); // outlives the movie, which borrows it
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
    if (!movie) return 1; // no movie
    //! [open]
    for (QT::QTTrack* track : movie->getTracks()) {
        unsigned int frames = 0;
        unsigned long long length = 0;
        if (track->initWithSample(1) == 0) {
            while (std::unique_ptr<QT::QTFrame> frame{track->getChunk()->getNextFrame()}) {
                ++frames;
                length += frame->getDataLength();
            }
        }
        std::printf("track %u: %u frames, %llu bytes\n", track->getID(), frames, length);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "own_stream MOVIE\n");
        return 2;
    }
    try {
        std::ifstream file(argv[1], std::ios::binary);
        const Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        const int result = readMovie(bytes);
        if (result != 0) std::fprintf(stderr, "%s is no movie\n", argv[1]);
        return result;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
