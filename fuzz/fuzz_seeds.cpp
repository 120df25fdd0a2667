// Writes the seed movies into a folder, each once read plainly, once written anew, once over a bad stream;
// and the steps of callers that write movies.
#include "hostile/Harness.h"
#include "hostile/Seeds.h"

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

using hostile::Bytes;
using hostile::How;

namespace {

bool save(const std::string& path, Bytes bytes, const How& how) {
    bytes.push_back(hostile::inputByte(how));
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.good();
}

/// Callers of every flavour, one with care and one without, whose steps are anybody's guess.
bool saveCallers(const std::string& folder) {
    constexpr unsigned int kFlavours = 8;
    constexpr unsigned int kSteps = 600;
    std::minstd_rand steps(1);
    for (unsigned int i = 0; i < 2 * kFlavours; ++i) {
        std::ofstream file(folder + "/caller_" + std::to_string(i), std::ios::binary);
        file.put(static_cast<char>(i & 1)).put(static_cast<char>(i / 2));
        for (unsigned int k = 0; k < kSteps; ++k) {
            file.put(static_cast<char>(steps() >> 8 & 0xFF));
        }
        if (!file.good()) return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: fuzz_seeds DIR\n", stderr);
        return 2;
    }
    const std::string folder = argv[1];
    unsigned int next = 1;
    for (const hostile::Seed& seed : hostile::allSeeds()) {
        const How plain;
        const How written{hostile::Fault::none, Ketra::QT::kMP4, true, true};
        const How faulty{static_cast<hostile::Fault>(next++ % hostile::kFaults), Ketra::QT::k3GP, false,
                         true};
        if (!save(folder + "/" + seed.name, seed.bytes, plain) ||
            !save(folder + "/" + seed.name + "_written", seed.bytes, written) ||
            !save(folder + "/" + seed.name + "_faulty", seed.bytes, faulty)) {
            std::fprintf(stderr, "cannot write into %s\n", folder.c_str());
            return 1;
        }
    }
    if (!saveCallers(folder)) {
        std::fprintf(stderr, "cannot write into %s\n", folder.c_str());
        return 1;
    }
    return 0;
}
