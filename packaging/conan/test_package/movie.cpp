#include <base/CMemoryStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTMovie.h>

#include <cstdio>
#include <memory>

// Calls into the library and comes back: eight bytes are no movie.
int main() {
    const unsigned char bytes[8] = {0, 0, 0, 8, 'f', 'r', 'e', 'e'};
    Ketra::Ferro::RStream memory(new Ketra::Ferro::CMemoryStream(bytes, sizeof bytes));
    Ketra::QT::QTCMStream stream(&memory);
    const std::unique_ptr<Ketra::QT::QTMovie> movie(
        Ketra::QT::QTMovie::createNewQTMovieFromStream(&stream, Ketra::QT::kMOV));
    std::puts(movie ? "a movie of no atoms" : "no movie, as it should be");
    return movie ? 1 : 0;
}
