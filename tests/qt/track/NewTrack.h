// A track for writing with its fresh tree, and the tables in it.
#pragma once

#include "qt/movie/MovieTree.h"

#include <qt/QTAtoms.h>
#include <qt/QTTrack.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace test {

struct NewTrack {
    explicit NewTrack(unsigned int type, Ketra::QT::QTMovieConstructionFlags flavour = Ketra::QT::kMOV)
        : track(Ketra::QT::QTTrack::createNewQTTrackFromType(3, type, flavour)), trak(track->getTrak()) {}

    Ketra::QT::QTTrack* operator->() const { return track.get(); }
    Ketra::QT::QTAtom* at(std::initializer_list<const char*> path) const {
        Ketra::QT::QTAtom* atom = trak.get();
        for (const char* step : path) {
            const unsigned int type =
                static_cast<unsigned int>(step[0]) << 24 | static_cast<unsigned int>(step[1]) << 16 |
                static_cast<unsigned int>(step[2]) << 8 | static_cast<unsigned int>(step[3]);
            atom = atom ? atom->getAtomOfType(type) : nullptr;
        }
        return atom;
    }
    template <class Table>
    Table& table(const char* type) const {
        return dynamic_cast<Table&>(*at({"mdia", "minf", "stbl", type}));
    }

    using Pairs = std::vector<std::pair<unsigned int, int>>;
    Pairs durations() const {
        Pairs list;
        for (const auto* run : table<Ketra::QT::STTS>("stts").getTimeToSampleTable()) {
            list.emplace_back(run->getSampleCount(), static_cast<int>(run->getDuration()));
        }
        return list;
    }
    Pairs offsets() const {
        Pairs list;
        for (const auto* run : table<Ketra::QT::CTTS>("ctts").getCompositionTimeTable()) {
            list.emplace_back(run->getSampleCount(), run->getSampleOffset());
        }
        return list;
    }
    std::vector<unsigned int> sizes() const {
        std::vector<unsigned int> list;
        for (const auto* size : table<Ketra::QT::STSZ>("stsz").getSampleSizeTable()) {
            list.push_back(size->getSize());
        }
        return list;
    }
    static std::vector<unsigned int> numbers(const std::vector<Ketra::QT::STSSData*>& entries) {
        std::vector<unsigned int> list;
        for (const auto* entry : entries) {
            list.push_back(entry->getNumber());
        }
        return list;
    }

    std::unique_ptr<Ketra::QT::QTTrack> track; // goes first
    std::unique_ptr<Ketra::QT::QTAtom> trak;
};

/// A frame of so many bytes of one value; times in seconds.
inline std::unique_ptr<Ketra::QT::QTFrame> frameOf(unsigned int length, unsigned char fill, double time,
                                                   double duration, double decodeTime,
                                                   unsigned int samples = 0, bool alpha = false) {
    auto* bytes = static_cast<unsigned char*>(std::malloc(length ? length : 1));
    std::memset(bytes, fill, length);
    auto frame = std::make_unique<Ketra::QT::QTFrame>(length, bytes, time, duration, false, samples,
                                                      time + duration, decodeTime, alpha);
    if (!length) std::free(bytes);
    return frame;
}

} // namespace test
