// Small movies of every kind that the library reads, written byte by byte, with no help from the library.
#pragma once

#include "hostile/Writer.h"

#include <string>
#include <vector>

namespace hostile {

struct Seed {
    std::string name;
    Bytes bytes;
};

std::vector<Seed> allSeeds();

// The groups that make it up.
std::vector<Seed> videoSeeds();
std::vector<Seed> audioSeeds();
std::vector<Seed> systemSeeds(); // text, time code, hints, MPEG-4 systems
std::vector<Seed> fileSeeds();   // what surrounds the tracks: file level, compressed headers, user data

} // namespace hostile
