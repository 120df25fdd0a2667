// serve --check MOVIE: the hints against themselves.
// serve MOVIE SPEED PORT...: sends the packets of the hint tracks, in their order in the movie, to one port
// of 127.0.0.1 each, SPEED times as fast as they say, and says goodbye.
#include "HintedTrack.h"
#include "Sockets.h"

#include <base/CFileStream.h>
#include <base/Ferro.h>
#include <qt/QTCMStream.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

using namespace serve;
using Bytes = std::vector<unsigned char>;

constexpr double kMostSeconds = 60; // of sending

struct Movie {
    explicit Movie(const char* path)
        : file(new Ketra::Ferro::RStream(
              new Ketra::Ferro::CFileStream(path, Ketra::Ferro::CFileStream::kRead))),
          stream(file), movie(Ketra::QT::QTMovie::createNewQTMovieFromStream(&stream, Ketra::QT::kMP4)) {
        if (!movie) throw std::runtime_error("not a movie");
        for (Ketra::QT::QTTrack* track : movie->getTracks()) {
            if (isHintTrack(*track)) tracks.push_back(track);
        }
        if (tracks.empty()) throw std::runtime_error("no hint tracks");
    }
    ~Movie() {
        movie.reset();
        file->release();
    }

    Ketra::Ferro::RStream* file;
    Ketra::QT::QTCMStream stream;
    std::unique_ptr<Ketra::QT::QTMovie> movie;
    std::vector<Ketra::QT::QTTrack*> tracks;
};

int check(const char* path) {
    Movie movie(path);
    int code = 0;
    for (Ketra::QT::QTTrack* track : movie.tracks) {
        const HintedTrack hints = readHints(*movie.movie, *track);
        std::vector<std::string> problems = hints.problems;
        for (std::string& text : checkStatistics(*track, hints)) {
            problems.push_back(std::move(text));
        }
        for (const std::string& text : problems) {
            std::fprintf(stderr, "track %u: %s\n", hints.id, text.c_str());
            code = 1;
        }
        std::printf("track %u: %zu packets in %llu samples\n", hints.id, hints.packets.size(),
                    static_cast<unsigned long long>(hints.samples));
    }
    return code;
}

void put32(Bytes& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        out.push_back(static_cast<unsigned char>(value >> shift));
    }
}

/// Which timestamp is which time of the movie.
Bytes senderReport(const HintedTrack& track, double seconds, std::uint32_t sent) {
    constexpr std::uint32_t kStart = 0xE0000000; // in seconds of the network time protocol
    Bytes report{0x80, 200, 0, 6};
    put32(report, track.id);
    put32(report, kStart + static_cast<std::uint32_t>(seconds));
    put32(report, static_cast<std::uint32_t>((seconds - static_cast<std::uint32_t>(seconds)) * 4294967296.0));
    put32(report, HintedTrack::kTimestampBase + static_cast<std::uint32_t>(seconds * track.clockRate));
    put32(report, sent);
    put32(report, 0);
    return report;
}

Bytes goodbye(const HintedTrack& track) {
    Bytes packet = senderReport(track, 0, 0);
    packet.insert(packet.end(), {0x81, 203, 0, 1});
    put32(packet, track.id);
    return packet;
}

struct Event {
    double at;
    std::uint16_t port;
    const Bytes* bytes;
};

int send(const char* path, double speed, const std::vector<std::uint16_t>& ports) {
    Movie movie(path);
    if (ports.size() != movie.tracks.size()) throw std::runtime_error("as many ports as hint tracks, please");
    std::vector<HintedTrack> tracks;
    for (Ketra::QT::QTTrack* track : movie.tracks) {
        tracks.push_back(readHints(*movie.movie, *track));
        if (!tracks.back().problems.empty()) throw std::runtime_error(tracks.back().problems.front());
    }
    std::vector<Event> events;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        for (const TimedPacket& packet : tracks[i].packets) {
            events.push_back({packet.sendAt, ports[i], &packet.bytes});
        }
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const Event& a, const Event& b) { return a.at < b.at; });
    if (events.empty() || events.back().at / speed > kMostSeconds)
        throw std::runtime_error("too long, or empty");

    LoopbackSender sender;
    const auto say = [&](std::size_t i, const Bytes& bytes) {
        sender.send(static_cast<std::uint16_t>(ports[i] + 1), bytes.data(), bytes.size());
    };
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        say(i, senderReport(tracks[i], 0, 0));
    }
    const auto start = std::chrono::steady_clock::now();
    for (const Event& event : events) {
        std::this_thread::sleep_until(start + std::chrono::duration<double>(event.at / speed));
        sender.send(event.port, event.bytes->data(), event.bytes->size());
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(500)); // what is on its way comes first
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        say(i, goodbye(tracks[i]));
    }
    std::printf("%zu packets\n", events.size());
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 3 && std::string(argv[1]) == "--check") return check(argv[2]);
        if (argc < 4) throw std::runtime_error("serve --check MOVIE, or serve MOVIE SPEED PORT...");
        std::vector<std::uint16_t> ports;
        for (int i = 3; i < argc; ++i) {
            ports.push_back(static_cast<std::uint16_t>(std::strtoul(argv[i], nullptr, 10)));
        }
        const double speed = std::strtod(argv[2], nullptr);
        if (!(speed > 0)) throw std::runtime_error("speeds are positive");
        return send(argv[1], speed, ports);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "serve: %s\n", error.what());
        return 2;
    }
}
