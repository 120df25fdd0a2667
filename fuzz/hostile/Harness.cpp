#include "hostile/Harness.h"

#include <base/Ferro.h>
#include <qt/QTCMStream.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>
#include <qt/QTUtils.h>

#include <memory>
#include <vector>

using namespace Ketra::QT;

namespace hostile {

namespace {

constexpr std::size_t kTracks = 16; // of a movie that are looked at closely

struct Opened {
    Ketra::Ferro::RStream source;
    QTCMStream stream{&source};
    std::unique_ptr<QTMovie> movie;

    Opened(const unsigned char* bytes, std::size_t size, const How& how)
        : source(new FaultyStream(bytes, size, how.fault)) {
        attempt([&] { movie.reset(QTMovie::createNewQTMovieFromStream(&stream, how.flavour)); });
    }
};

template <class Action>
void eachTrack(QTMovie& movie, Action action) {
    std::vector<QTTrack*> tracks = movie.getTracks();
    if (tracks.size() > kTracks) tracks.resize(kTracks);
    for (QTTrack* track : tracks) {
        action(*track);
    }
}

void askMovie(QTMovie& movie) {
    movie.getTrackID(1);
    for (const unsigned int type : {fourCC("vide"), fourCC("audi"), fourCC("tmcd"), fourCC("hint"), 0u}) {
        movie.getTrackOfType(type);
    }
    movie.getDuration();
    movie.getTimeScale();
    movie.getAtomTimeScale();
    movie.getAtomDuration();
    movie.getInitialObjectDescriptor();
    attempt([&] { movie.getTimeCode(); });
    movie.getAllowTranscoding();
    movie.getBytesRead();
    movie.initAtoms();
}

void editMovie(QTMovie& movie) {
    static const char kText[] = "words";
    attempt([&] { movie.getNewTrackID(); });
    attempt([&] { movie.addUserData(fourCC("name"), sizeof kText, kText); });
    eachTrack(movie, editTrack);
}

std::vector<unsigned char> write(QTMovie& movie) {
    std::vector<unsigned char> bytes;
    attempt([&] { movie.updateAtomSizes(); });
    attempt([&] {
        const std::unique_ptr<QTFrame> header(movie.serializeRoot());
        if (header && header->getData()) {
            bytes.assign(header->getData(), header->getData() + header->getDataLength());
        }
    });
    return bytes;
}

} // namespace

bool exercise(const unsigned char* bytes, std::size_t size, const How& how) {
    Opened opened(bytes, size, how);
    if (!opened.movie) return false;
    QTMovie& movie = *opened.movie;

    askMovie(movie);
    eachTrack(movie, [&](QTTrack& track) {
        readTrack(track, opened.stream);
        askTrack(track, opened.stream);
    });
    if (how.thorough) {
        visitAtoms(*movie.getUtils());
        eachTrack(movie,
                  [&](QTTrack& track) { readTrack(track, opened.stream); }); // with the tables unpacked
    }
    if (how.write) editMovie(movie);

    const std::vector<unsigned char> written = write(movie);
    if (!written.empty()) {
        Opened again(written.data(), written.size(), {Fault::none, how.flavour, false, false});
        if (again.movie) {
            askMovie(*again.movie);
            eachTrack(*again.movie, [&](QTTrack& track) { readTrack(track, again.stream); });
            write(*again.movie);
        }
    }
    return true;
}

bool exerciseInput(const unsigned char* input, std::size_t size) {
    static const QTMovieConstructionFlags kFlavours[] = {kMOV, kMP4, k3GP, kPSP};
    if (size == 0) return false;
    const unsigned char choice = input[size - 1];
    How how;
    how.fault = static_cast<Fault>(choice & 7);
    how.flavour = kFlavours[choice >> 3 & 3];
    how.write = (choice & 32) != 0;
    return exercise(input, size - 1, how);
}

unsigned char inputByte(const How& how) {
    unsigned int flavour = 0;
    if (how.flavour == kMP4) flavour = 1;
    if (how.flavour == k3GP) flavour = 2;
    if (how.flavour == kPSP) flavour = 3;
    return static_cast<unsigned char>(static_cast<unsigned int>(how.fault) | flavour << 3 |
                                      (how.write ? 32u : 0u));
}

} // namespace hostile
