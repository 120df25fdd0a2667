// Reading and writing MPEG-4 descriptors: a tag, a size of seven-bit groups, fields, nested descriptors.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>
#include <qt/wire/Frames.h>
#include <qt/wire/Reader.h>
#include <qt/wire/Writer.h>

#include <memory>
#include <vector>

namespace Ketra::QT::wire {

/// A nested descriptor that its parent accepts: what class its tag becomes.
struct NestedDescriptor {
    unsigned char tag;
    std::unique_ptr<MP4ObjectData> (*make)(unsigned int size, unsigned char tag);
};

/// The usual factory of a row.
template <class Descriptor>
std::unique_ptr<MP4ObjectData> makeNested(unsigned int size, unsigned char tag) {
    return std::make_unique<Descriptor>(size, tag);
}

struct Nesting {
    const NestedDescriptor* rows;
    std::size_t count;

    template <std::size_t N>
    constexpr Nesting(const NestedDescriptor (&table)[N])
        : rows(table), count(N) // NOLINT: converts on purpose
    {}
    const NestedDescriptor* find(unsigned char tag) const;
};

/// Reads descriptors up to the end of `in`. One that is not accepted ends the walk: neither it nor what
/// follows it is read. A descriptor that says it is longer than what is left is cut to that.
std::vector<std::unique_ptr<MP4ObjectData>> readDescriptors(Reader& in, const Nesting& accepted);

/// The public form of reading: the payload has the size that the descriptor holds, and the cursor ends where
/// reading did.
template <class Descriptor>
int readInfo(Descriptor& descriptor, unsigned char** cursor) {
    Reader in(*cursor, descriptor.getSize());
    Access::layout(descriptor, in);
    *cursor += in.position();
    return 0;
}

/// Descriptors as bytes. Those that carry a URL have a byte more than they declare; it lies behind the length
/// of their frame, within its block.
class DescriptorFrames {
public:
    explicit DescriptorFrames(const std::vector<MP4ObjectData*>& descriptors);

    std::uint64_t bytes() const { return bytes_; }           ///< all bytes
    std::uint64_t undeclared() const { return undeclared_; } ///< those that no size counts
    void write(Writer& out) const;

private:
    FrameList frames_;
    std::uint64_t bytes_ = 0;
    std::uint64_t undeclared_ = 0;
};

/// A block that holds everything in a frame as long as what is declared.
QTFrame* declaredFrame(std::uint64_t declared, std::uint64_t bytes, MallocPtr block);

/// Tag, four size bytes, the fields of the layout and the nested descriptors. `size` is the payload by the
/// descriptor's own rule and `undeclared` the bytes of its fields that this rule leaves out.
template <class Descriptor>
QTFrame* writeDescriptor(const Descriptor& descriptor, unsigned char tag, unsigned int size,
                         unsigned int undeclared = 0) {
    constexpr std::uint64_t kHead = 5;
    const DescriptorFrames nested(descriptor.getDescriptors());
    Writer count;
    Access::layout(descriptor, count);
    const std::uint64_t bytes = count.written() + nested.bytes();
    const std::uint64_t declared =
        std::max<std::uint64_t>(size, bytes - std::min(bytes, undeclared + nested.undeclared()));
    const std::uint64_t length = kHead + std::max(declared, bytes);
    MallocPtr block = allocate(length);
    if (!block) return nullptr;
    Writer out(block.get());
    out.u8(tag);
    out.as<odd::DescriptorSize>(declared);
    Access::layout(descriptor, out);
    nested.write(out);
    return declaredFrame(kHead + declared, length, std::move(block));
}

/// A full atom of descriptors ("esds", "iods"): header, version, flags, descriptors.
template <class Atom>
QTFrame* writeDescriptorAtom(const Atom& atom) {
    constexpr std::uint64_t kHead = 12;
    const DescriptorFrames nested(atom.getDescriptors());
    const std::uint64_t bytes = kHead + nested.bytes();
    const std::uint64_t declared = std::max<std::uint64_t>(atom.getSize(), bytes - nested.undeclared());
    const std::uint64_t length = std::max(declared, bytes);
    MallocPtr block = allocate(length);
    if (!block) return nullptr;
    Writer out(block.get());
    out.u32(declared);
    out.u32(atom.getType());
    out.versionAndFlags(atom);
    nested.write(out);
    return declaredFrame(declared, length, std::move(block));
}

/// The last descriptor of the list with the tag, or null.
MP4ObjectData* lastOfTag(const std::vector<MP4ObjectData*>& descriptors, unsigned char tag);

/// The size of such an atom.
std::uint64_t descriptorAtomSize(const std::vector<MP4ObjectData*>& descriptors);

} // namespace Ketra::QT::wire
