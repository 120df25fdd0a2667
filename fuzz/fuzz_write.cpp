// Movies written by arbitrary callers, and read back.
#include "writing/WriteHarness.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    writing::exerciseWriting(data, size);
    return 0;
}
