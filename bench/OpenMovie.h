// A movie opened from a file the way a caller does it: file stream, counted stream, adapter, movie.
#pragma once

#include <base/CFileStream.h>
#include <base/CMemoryStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTFrame.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace measure {

using Frame = std::unique_ptr<Ketra::QT::QTFrame>;

class OpenMovie {
public:
    explicit OpenMovie(const char* path) : OpenMovie(openFile(path)) {}

    Ketra::QT::QTMovie& movie() { return *movie_; }
    Ketra::QT::QTTrack& video() {
        Ketra::QT::QTTrack* track = movie_->getTrackOfType(Ketra::QT::fourCC("vide"));
        if (!track) throw std::runtime_error("no video track");
        return *track;
    }
    std::uint64_t samples() const {
        std::uint64_t sum = 0;
        for (Ketra::QT::QTTrack* track : movie_->getTracks()) {
            sum += sizes(*track).getNumberOfEntries();
        }
        return sum;
    }
    static Ketra::QT::STSZ& sizes(Ketra::QT::QTTrack& track) {
        Ketra::QT::QTAtom* at = track.getTrak();
        for (const char* type : {"mdia", "minf", "stbl", "stsz"}) {
            if (at) at = at->getAtomOfType(code(type));
        }
        auto* stsz = dynamic_cast<Ketra::QT::STSZ*>(at);
        if (!stsz) throw std::runtime_error("no sample sizes");
        return *stsz;
    }

private:
    explicit OpenMovie(Ketra::Ferro::CStreamP* stream)
        : source_(stream), stream_(&source_),
          movie_(Ketra::QT::QTMovie::createNewQTMovieFromStream(&stream_, Ketra::QT::kMOV)) {
        if (!movie_) throw std::runtime_error("not a movie");
    }
    static Ketra::Ferro::CStreamP* openFile(const char* path) {
        auto file = std::make_unique<Ketra::Ferro::CFileStream>(path, Ketra::Ferro::CFileStream::kRead);
        if (!file->isOpen()) throw std::runtime_error(std::string("cannot open ") + path);
        return file.release();
    }
    static unsigned int code(const char* type) {
        unsigned int value = 0;
        for (int i = 0; i < 4; ++i) {
            value = value << 8 | static_cast<unsigned char>(type[i]);
        }
        return value;
    }

    Ketra::Ferro::RStream source_;
    Ketra::QT::QTCMStream stream_;
    std::unique_ptr<Ketra::QT::QTMovie> movie_;
};

} // namespace measure
