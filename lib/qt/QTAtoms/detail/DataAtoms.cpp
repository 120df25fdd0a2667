#include <qt/QTAtoms/detail/DataAtoms.h>
#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>

#include <algorithm>

namespace Ketra::QT::wire {

namespace {
constexpr std::uint64_t kHeader = 8;
} // namespace

std::uint64_t readDataAtoms(HeldList<QTDataAtom>& list, const unsigned char* data, std::uint64_t size) {
    std::uint64_t at = 0;
    while (size - at >= kHeader) {
        const std::uint64_t stated = load32(data + at);
        if (stated < kHeader) break;
        const std::uint64_t length = std::min(stated, size - at);
        // The constructor only copies from the block.
        auto* payload = const_cast<unsigned char*>(data + at + kHeader);
        list.append(std::make_unique<QTDataAtom>(length, load32(data + at + 4), payload));
        at += length;
    }
    return at;
}

std::uint64_t dataAtomBytes(const HeldList<QTDataAtom>& list) {
    std::uint64_t total = 0;
    for (const QTDataAtom* atom : list.items()) {
        total += static_cast<unsigned int>(atom->getSize());
    }
    return total;
}

void writeDataAtoms(FrameList& to, const HeldList<QTDataAtom>& list) {
    for (QTDataAtom* atom : list.items()) {
        std::unique_ptr<QTFrame> frame(atom->serialize());
        if (!frame) continue;
        // On its own a data atom writes its header least significant byte first.
        store32(frame->getData(), frame->getDataLength());
        store32(frame->getData() + 4, atom->getType());
        to.push_back(std::move(frame));
    }
}

} // namespace Ketra::QT::wire
