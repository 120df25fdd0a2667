#include <base/CMemoryStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTMovie.h>

#include <cstdio>
#include <memory>

// Bytes that are no movie give no movie: the program links, calls into the library and comes back.
int main() {
    const unsigned char garbage[] = "This is no movie, whatever its first bytes may claim.";
    Ketra::Ferro::RStream memory(new Ketra::Ferro::CMemoryStream(garbage, sizeof garbage));
    Ketra::QT::QTCMStream stream(&memory);
    const std::unique_ptr<Ketra::QT::QTMovie> movie(
        Ketra::QT::QTMovie::createNewQTMovieFromStream(&stream, Ketra::QT::kMOV));
    std::puts(movie ? "opened garbage as a movie" : "ok");
    return movie ? 1 : 0;
}
