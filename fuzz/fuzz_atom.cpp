// One atom of any class out of arbitrary bytes; the last byte chooses how the stream behaves.
#include "hostile/Harness.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size == 0) return 0;
    hostile::exerciseAtoms(data, size - 1, static_cast<hostile::Fault>(data[size - 1] & 7));
    return 0;
}
