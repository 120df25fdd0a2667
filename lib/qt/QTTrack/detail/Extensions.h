// The extension atoms behind the typed part of a raw sample description.
#pragma once

#include <qt/QTAtoms/systems/DecoderConfigDescriptor.h>
#include <qt/QTAtoms/systems/DecoderSpecificInfo.h>
#include <qt/QTAtoms/systems/ESDS.h>
#include <qt/QTAtoms/systems/ESDescriptor.h>
#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Reader.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace Ketra::QT::wire {

constexpr std::uint64_t kExtensionHeader = 8;

/// One extension atom, header included, cut to the bytes that are there.
class Extension {
public:
    Extension(const unsigned char* data, std::uint64_t size) : data_(data), size_(size) {}

    std::uint64_t size() const { return size_; }
    bool has(std::uint64_t bytes) const { return size_ >= bytes; }
    const unsigned char* data() const { return data_; }
    /// Numbers at an offset that has() granted.
    unsigned int u8(std::uint64_t offset) const { return data_[offset]; }
    unsigned int u16(std::uint64_t offset) const { return load16(data_ + offset); }
    unsigned int u32(std::uint64_t offset) const { return load32(data_ + offset); }
    unsigned int type() const { return u32(4); }
    Reader payload() const { return Reader(data_ + kExtensionHeader, size_ - kExtensionHeader); }

private:
    const unsigned char* data_;
    std::uint64_t size_;
};

/// The header at the reader's position, of which eight bytes must be left; nothing is consumed.
struct ExtensionHeader {
    unsigned int size;
    unsigned int type;

    explicit ExtensionHeader(const Reader& in) : size(load32(in.cursor())), type(load32(in.cursor() + 4)) {}
};

/// The extension at the reader's position, which moves behind it.
inline Extension takeExtension(Reader& in, unsigned int size) {
    const Extension extension(in.cursor(), std::min<std::uint64_t>(size, in.left()));
    in.skip(size);
    return extension;
}

/// A frame with a copy of the bytes.
inline std::unique_ptr<QTFrame> copyToFrame(const unsigned char* data, std::uint64_t size) {
    MallocPtr block = allocate(size);
    if (!block) return nullptr;
    std::copy_n(data, size, block.get());
    return std::unique_ptr<QTFrame>(makeFrame(static_cast<unsigned int>(size), std::move(block)));
}

/// What a track wants to know of an "esds"; null where the tree does not have it.
struct DecoderConfiguration {
    std::shared_ptr<ESDS> esds;
    const DecoderConfigDescriptor* config = nullptr;
    const DecoderSpecificInfo* info = nullptr;

    explicit DecoderConfiguration(const Extension& atom)
        : esds(std::make_shared<ESDS>(new QTAtom(static_cast<unsigned int>(atom.size()), atom.type()))) {
        auto* cursor = const_cast<unsigned char*>(atom.data() + kExtensionHeader);
        esds->getInfo(&cursor);
        if (const MP4ObjectData* stream = esds->getDescriptorTag(0x03)) {
            config = dynamic_cast<const DecoderConfigDescriptor*>(stream->getDescriptorTag(0x04));
        }
        if (config) info = dynamic_cast<const DecoderSpecificInfo*>(config->getDescriptorTag(0x05));
    }
    /// The specific information as a frame of its own, or null.
    std::unique_ptr<QTFrame> specificInfo() const {
        if (!info || !info->getDecoderSpecificInfo() || !info->getDecoderSpecificInfoSize()) return nullptr;
        return copyToFrame(info->getDecoderSpecificInfo(), info->getDecoderSpecificInfoSize());
    }
};

} // namespace Ketra::QT::wire
