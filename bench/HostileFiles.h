// Movies of one mebibyte that ask for as much time and memory as the format lets them.
#pragma once

#include "hostile/Seeds.h"

#include <functional>
#include <string>
#include <vector>

namespace hostile {

struct HostileFile {
    std::string name;
    std::function<Bytes()> make; // exactly kHostileSize bytes
};

constexpr std::size_t kHostileSize = std::size_t{1} << 20;

std::vector<HostileFile> hostileFiles();

} // namespace hostile
