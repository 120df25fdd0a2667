// Reads several movies at the same time, a thread for each.
//
//     threads movie.mov movie.mp4 ...
#include <base/CFileStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace Ketra;

namespace {

//! [one]
/// All that a thread touches is its own: file, stream, movie, tracks and frames.
std::string readMovie(const char* path) {
    try {
        Ferro::RStream source(new Ferro::CFileStream(path, Ferro::CFileStream::kRead));
        QT::QTCMStream stream(&source);
        const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
        if (!movie) return "no movie";
        unsigned int frames = 0;
        for (QT::QTTrack* track : movie->getTracks()) {
            if (track->initWithSample(1) != 0) continue;
            while (std::unique_ptr<QT::QTFrame>(track->getChunk()->getNextFrame())) {
                ++frames;
            }
        }
        return std::to_string(movie->getNumberOfTracks()) + " tracks, " + std::to_string(frames) + " frames";
    } catch (const std::exception& error) {
        return error.what();
    }
}
//! [one]

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "threads MOVIE...\n");
        return 2;
    }
    //! [all]
    const std::vector<const char*> paths(argv + 1, argv + argc);
    std::vector<std::string> told(paths.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        threads.emplace_back([&, i] { told[i] = readMovie(paths[i]); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    //! [all]
    for (std::size_t i = 0; i < paths.size(); ++i) {
        std::printf("%s: %s\n", paths[i], told[i].c_str());
    }
    return 0;
}
