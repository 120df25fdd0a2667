#include "writing/WriteHarness.h"

#include <qt/QTFrame.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace Ketra::QT;

namespace writing {

void exerciseWriting(const unsigned char* bytes, std::size_t size) {
    if (size == 0) return;
    Script script(bytes, size);
    script.flag() ? writeOrderly(script) : writeInAnyOrder(script);
}

QTMovieConstructionFlags chooseFlavour(Script& script) {
    return script.pick({kMOV, kMP4, kM4V, kM4A, k3GP, k3G2, kAMC, kPSP});
}

Bytes take(QTFrame* frame) {
    const std::unique_ptr<QTFrame> owned(frame);
    if (!owned || !owned->getData()) return {};
    return Bytes(owned->getData(), owned->getData() + owned->getDataLength());
}

unsigned char* copyOf(const Bytes& bytes) {
    if (bytes.empty()) return nullptr;
    auto* block = static_cast<unsigned char*>(std::malloc(bytes.size()));
    if (!block) std::abort();
    std::copy(bytes.begin(), bytes.end(), block);
    return block;
}

void append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }

Bytes mediaData(const Bytes& media) {
    const auto size = static_cast<unsigned int>(media.size() + 8);
    Bytes atom;
    for (const unsigned int word : {size, fourCC("mdat")}) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            atom.push_back(static_cast<unsigned char>(word >> shift));
        }
    }
    append(atom, media);
    return atom;
}

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "fuzz_write: %s\n", what);
    std::abort();
}

} // namespace writing
