#include <base/CMemoryStream.h>

#include <cstdio>

// The program links, calls into the library and comes back with what it put in.
int main() {
    const unsigned char bytes[] = "moov";
    const Ketra::Ferro::CMemoryStream stream(bytes, sizeof bytes);
    std::puts(stream.getData()[0] == 'm' ? "ok" : "bad");
    return 0;
}
