// Reads a movie from a web server without fetching all of it: a stream of one's own over range requests.
// Opening a movie of any length takes the bytes of its header, in at most three requests.
//
//     http_stream http://host/movie.mp4 [FRAMES]
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTStream.h>
#include <qt/QTTrack.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <curl/curl.h>
#include <exception>
#include <limits>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Ketra;
using QT::fourCC;

namespace {

using Bytes = std::vector<unsigned char>;

/// Ranges of one file on a web server. Whatever goes wrong is thrown.
class RangeSource {
public:
    explicit RangeSource(const std::string& url) : curl_(curl_easy_init(), curl_easy_cleanup) {
        if (!curl_) throw std::bad_alloc();
        curl_easy_setopt(curl_.get(), CURLOPT_URL, url.c_str());
        curl_easy_setopt(curl_.get(), CURLOPT_FOLLOWLOCATION, 1L);
        curl_easy_setopt(curl_.get(), CURLOPT_FAILONERROR, 1L);
        curl_easy_setopt(curl_.get(), CURLOPT_CONNECTTIMEOUT, 10L);
        curl_easy_setopt(curl_.get(), CURLOPT_LOW_SPEED_LIMIT, 1L); // bytes a second
        curl_easy_setopt(curl_.get(), CURLOPT_LOW_SPEED_TIME, 30L);
        curl_easy_setopt(curl_.get(), CURLOPT_WRITEFUNCTION, takeBytes);
        curl_easy_setopt(curl_.get(), CURLOPT_HEADERFUNCTION, takeHeader);
        curl_easy_setopt(curl_.get(), CURLOPT_WRITEDATA, this);
        curl_easy_setopt(curl_.get(), CURLOPT_HEADERDATA, this);
    }

    /// The bytes from `start` on, `count` or as many as there are.
    Bytes fetch(std::int64_t start, std::int64_t count) {
        got_.clear();
        most_ = static_cast<std::size_t>(count);
        total_ = -1;
        const std::string range = std::to_string(start) + "-" + std::to_string(start + count - 1);
        curl_easy_setopt(curl_.get(), CURLOPT_RANGE, range.c_str());
        const CURLcode result = curl_easy_perform(curl_.get());
        long status = 0;
        curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status);
        if (status == 200) throw std::runtime_error("the server does not give parts of files");
        if (result != CURLE_OK) throw std::runtime_error(curl_easy_strerror(result));
        if (status != 206 || total_ < 0 || got_.empty()) throw std::runtime_error("not a range of a file");
        if (size_ >= 0 && size_ != total_) throw std::runtime_error("the file has changed");
        size_ = total_;
        ++requests_;
        bytes_ += static_cast<std::int64_t>(got_.size());
        return std::move(got_);
    }

    std::int64_t size() const { return size_; } ///< of the whole file; -1 before the first request
    int requests() const { return requests_; }
    std::int64_t bytes() const { return bytes_; }

private:
    static std::size_t takeBytes(char* data, std::size_t, std::size_t count, void* self) {
        auto& source = *static_cast<RangeSource*>(self);
        if (count > source.most_ - source.got_.size()) return 0; // more than was asked for: stop
        source.got_.insert(source.got_.end(), data, data + count);
        return count;
    }
    static std::size_t takeHeader(char* data, std::size_t, std::size_t count, void* self) {
        long long total = 0; // Content-Range: bytes 0-255/123456
        std::string line(data, count);
        std::transform(line.begin(), line.end(), line.begin(),
                       [](unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c); });
        if (std::sscanf(line.c_str(), "content-range: bytes %*u-%*u/%lld", &total) == 1)
            static_cast<RangeSource*>(self)->total_ = total;
        return count;
    }

    std::unique_ptr<CURL, void (*)(CURL*)> curl_;
    Bytes got_;
    std::size_t most_ = 0;
    std::int64_t total_ = -1;
    std::int64_t size_ = -1;
    int requests_ = 0;
    std::int64_t bytes_ = 0;
};

/// The library reads atom by atom, eight bytes here and a table there; each read as a request of its own
/// would cost a round trip. So the stream fetches windows and keeps the last few. It follows the headers of
/// the outermost atoms as they come by: inside a movie header it fetches all the rest of it at once, where
/// only a header is to be expected it fetches little, and in the media it reads ahead.
class HttpStream : public QT::QTStream {
public:
    explicit HttpStream(const std::string& url) : source_(url) {}

    std::int64_t read(unsigned char* buffer, std::int64_t length) override {
        std::int64_t done = 0;
        while (done < length && position_ < size()) {
            const Window& window = windowAt(position_, length - done);
            const std::int64_t count = std::min(length - done, window.end() - position_);
            std::memcpy(buffer + done, window.bytes.data() + (position_ - window.start),
                        static_cast<std::size_t>(count));
            done += count;
            position_ += count;
        }
        return done;
    }
    std::int64_t write(unsigned char*, std::int64_t) override { return -1; }
    std::int64_t lseek(std::int64_t offset, unsigned char relative) override {
        if (relative && offset > std::numeric_limits<std::int64_t>::max() - position_) return -1;
        const std::int64_t target = relative ? position_ + offset : offset;
        return target < 0 ? -1 : position_ = target;
    }
    int open() override { return 0; }
    int close() override { return 0; }
    std::int64_t size() override {
        if (source_.size() < 0) fetch(0, kFirst); // the first answer tells it
        return source_.size();
    }

    const RangeSource& source() const { return source_; }

private:
    struct Window {
        std::int64_t start;
        Bytes bytes;
        std::int64_t end() const { return start + static_cast<std::int64_t>(bytes.size()); }
    };

    //! [windows]
    static constexpr std::int64_t kFirst = 256;  // the file type and how long the movie header is
    static constexpr std::int64_t kHeaders = 64; // padding and the header of the media behind a movie header
    static constexpr std::int64_t kLongestHeader = 16;
    static constexpr std::int64_t kLeastAhead = 64 << 10;
    static constexpr std::int64_t kMostAhead = 1 << 20;
    static constexpr std::int64_t kMost = 16 << 20; // whatever a header claims
    static constexpr std::size_t kWindows = 8;      // picture and sound lie at different places

    /// How much to fetch at a place in a header, or in the media, that no window holds.
    std::int64_t lengthAt(std::int64_t place, std::int64_t least) {
        if (place >= headerStart_ && place < headerEnd_) return headerEnd_ + kHeaders - place;
        const bool goesOn = !windows_.empty() && windows_.front().end() == place;
        ahead_ = goesOn ? std::min(2 * ahead_, kMostAhead) : kLeastAhead;
        return std::max(least, ahead_);
    }

    /// Notes where the outermost atoms are, as far as their headers are in the window.
    void followAtoms(const Window& window) {
        while (nextAtom_ >= window.start && nextAtom_ + kLongestHeader <= window.end()) {
            const unsigned char* header = window.bytes.data() + (nextAtom_ - window.start);
            std::int64_t size = number(header, 4);
            const std::int64_t type = number(header + 4, 4);
            if (size == 1) size = number(header + 8, 8);
            if (size < 8 || size > source_.size() - nextAtom_) size = source_.size() - nextAtom_;
            if (type == fourCC("moov")) {
                headerStart_ = nextAtom_;
                headerEnd_ = nextAtom_ + size;
            }
            nextAtom_ += size;
        }
    }
    //! [windows]

    static std::int64_t number(const unsigned char* bytes, int count) {
        std::uint64_t value = 0;
        for (int i = 0; i < count; ++i) {
            value = value << 8 | bytes[i];
        }
        return static_cast<std::int64_t>(value);
    }

    /// The window that holds the place, which is within the file. The last one asked for is in front.
    const Window& windowAt(std::int64_t place, std::int64_t least) {
        const auto found = std::find_if(windows_.begin(), windows_.end(), [place](const Window& window) {
            return place >= window.start && place < window.end();
        });
        const bool atHeader = place >= nextAtom_ && place < nextAtom_ + kLongestHeader;
        if (found == windows_.end())
            return atHeader ? fetch(nextAtom_, kHeaders) : fetch(place, lengthAt(place, least));
        windows_.splice(windows_.begin(), windows_, found);
        return windows_.front();
    }

    const Window& fetch(std::int64_t place, std::int64_t length) {
        windows_.push_front({place, source_.fetch(place, std::min(length, kMost))});
        if (windows_.size() > kWindows) windows_.pop_back();
        followAtoms(windows_.front());
        return windows_.front();
    }

    RangeSource source_;
    std::list<Window> windows_;
    std::int64_t position_ = 0;
    std::int64_t ahead_ = kLeastAhead;
    std::int64_t nextAtom_ = 0; // the first outermost atom whose header has not come yet
    std::int64_t headerStart_ = 0;
    std::int64_t headerEnd_ = 0;
};

int readMovie(const std::string& url, unsigned int frames) {
    HttpStream stream(url);
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
    if (!movie) {
        std::fprintf(stderr, "%s is no movie\n", url.c_str());
        return 1;
    }
    std::printf("opened with %d requests, %lld bytes\n", stream.source().requests(),
                static_cast<long long>(stream.source().bytes()));
    for (QT::QTTrack* track : movie->getTracks()) {
        unsigned int count = 0;
        if (track->initWithSample(1) == 0) {
            while (count < frames && std::unique_ptr<QT::QTFrame>(track->getChunk()->getNextFrame())) {
                ++count;
            }
        }
        std::printf("track %u: %.3f s, %u frames read\n", track->getID(), track->getDuration(), count);
    }
    std::printf("in all %d requests, %lld bytes\n", stream.source().requests(),
                static_cast<long long>(stream.source().bytes()));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "http_stream URL [FRAMES]\n");
        return 2;
    }
    try {
        return readMovie(argv[1],
                         argc == 3 ? static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)) : 0);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
