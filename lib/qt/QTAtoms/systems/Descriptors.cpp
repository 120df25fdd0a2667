#include <qt/QTAtoms/detail/Descriptors.h>

#include <algorithm>
#include <limits>

namespace Ketra::QT::wire {

namespace {

constexpr std::uint64_t kHead = 5; // tag and size of a descriptor that is written

/// Seven bits a byte, most significant first; the high bit says that more follow.
unsigned int readSize(Reader& in) {
    unsigned int size = 0;
    unsigned char byte = 0x80;
    while ((byte & 0x80) && in.left()) {
        in.u8(byte);
        size = (size << 7) | (byte & 0x7FU);
    }
    return size;
}

} // namespace

const NestedDescriptor* Nesting::find(unsigned char tag) const {
    const NestedDescriptor* row =
        std::find_if(rows, rows + count, [tag](const NestedDescriptor& d) { return d.tag == tag; });
    return row == rows + count ? nullptr : row;
}

std::vector<std::unique_ptr<MP4ObjectData>> readDescriptors(Reader& in, const Nesting& accepted) {
    std::vector<std::unique_ptr<MP4ObjectData>> list;
    std::uint64_t remaining = in.left();
    while (remaining >= 2 && in.left() >= 2) {
        const std::uint64_t start = in.position();
        unsigned char tag = 0;
        in.u8(tag);
        const unsigned int stated = readSize(in);
        const NestedDescriptor* row = accepted.find(tag);
        if (!row) break;
        remaining -= in.position() - start;
        const std::uint64_t size = std::min<std::uint64_t>(stated, std::min(remaining, in.left()));
        // No descriptor reads beyond the size it was made with. Where it met something that it does not
        // accept, it stands there, and that is for the parent to read.
        std::unique_ptr<MP4ObjectData> nested = row->make(static_cast<unsigned int>(size), tag);
        auto* cursor = const_cast<unsigned char*>(in.cursor());
        nested->getInfo(&cursor);
        in.skip(static_cast<std::uint64_t>(cursor - in.cursor()));
        list.push_back(std::move(nested));
        remaining -= size;
    }
    return list;
}

DescriptorFrames::DescriptorFrames(const std::vector<MP4ObjectData*>& descriptors) {
    for (MP4ObjectData* descriptor : descriptors) {
        std::unique_ptr<QTFrame> frame(descriptor->serialize());
        if (!frame) continue;
        const std::uint64_t held = Access::blockLength(*frame);
        bytes_ += held;
        undeclared_ += held - std::min<std::uint64_t>(held, frame->getDataLength());
        frames_.push_back(std::move(frame));
    }
}

void DescriptorFrames::write(Writer& out) const {
    for (const auto& frame : frames_) {
        out.bytes(frame->getData(), Access::blockLength(*frame));
    }
}

QTFrame* declaredFrame(std::uint64_t declared, std::uint64_t bytes, MallocPtr block) {
    if (bytes > std::numeric_limits<unsigned int>::max()) return nullptr;
    QTFrame* frame = makeFrame(static_cast<unsigned int>(bytes), std::move(block));
    if (frame) frame->setDataLength(static_cast<unsigned int>(declared));
    return frame;
}

MP4ObjectData* lastOfTag(const std::vector<MP4ObjectData*>& descriptors, unsigned char tag) {
    const auto last = std::find_if(descriptors.rbegin(), descriptors.rend(),
                                   [tag](const MP4ObjectData* d) { return d->getTag() == tag; });
    return last == descriptors.rend() ? nullptr : *last;
}

std::uint64_t descriptorAtomSize(const std::vector<MP4ObjectData*>& descriptors) {
    std::uint64_t size = 12;
    for (MP4ObjectData* descriptor : descriptors) {
        size += kHead + descriptor->updateSize();
    }
    return size;
}

} // namespace Ketra::QT::wire
