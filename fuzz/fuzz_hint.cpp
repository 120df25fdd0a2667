// Hints out of arbitrary movies, read back, and packets out of arbitrary samples.
#include "hinting/HintHarness.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size == 0) return 0;
    // The last byte, which the seeds use for other choices, tells bytes of samples from movies.
    if (data[size - 1] >= 0x80) {
        hinting::exercisePacketizer(data, size - 1);
    } else {
        hinting::exerciseMovie(data, size - 1);
    }
    return 0;
}
