// Writes the seed movies into a folder, each once read plainly, once written anew, once over a bad stream.
#include "hostile/Harness.h"
#include "hostile/Seeds.h"

#include <cstdio>
#include <fstream>
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
    return 0;
}
