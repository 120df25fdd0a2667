// A movie out of arbitrary bytes: opened, walked, read, changed, written, and opened again.
#include "hostile/Harness.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    hostile::exerciseInput(data, size);
    return 0;
}
