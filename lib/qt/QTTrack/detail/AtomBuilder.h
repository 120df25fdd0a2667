// Building extension atoms field by field.
#pragma once

#include <qt/QTFrame.h>
#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT::wire {

/// An atom that grows; its size field is set when it is taken.
class AtomBuilder {
public:
    explicit AtomBuilder(unsigned int type) { u32(0).u32(type); }

    AtomBuilder& u8(unsigned int v) { return put<U8>(v); }
    AtomBuilder& u16(unsigned int v) { return put<U16>(v); }
    AtomBuilder& u32(unsigned int v) { return put<U32>(v); }
    AtomBuilder& zeros(std::size_t count) {
        bytes_.resize(bytes_.size() + count);
        return *this;
    }
    AtomBuilder& bytes(const unsigned char* data, std::size_t count) {
        bytes_.insert(bytes_.end(), data, data + count);
        return *this;
    }
    AtomBuilder& bytes(const std::vector<unsigned char>& data) { return bytes(data.data(), data.size()); }
    AtomBuilder& frame(const QTFrame& data) { return bytes(data.getData(), data.getDataLength()); }
    AtomBuilder& atom(AtomBuilder& child) { return bytes(child.take()); }

    const std::vector<unsigned char>& take() {
        store32(bytes_.data(), bytes_.size());
        return bytes_;
    }
    std::unique_ptr<QTFrame> takeFrame() {
        take();
        MallocPtr block = allocate(bytes_.size());
        if (!block) return nullptr;
        std::copy(bytes_.begin(), bytes_.end(), block.get());
        return std::unique_ptr<QTFrame>(
            makeFrame(static_cast<unsigned int>(bytes_.size()), std::move(block)));
    }

private:
    template <class Codec>
    AtomBuilder& put(unsigned int v) {
        unsigned char field[Codec::width];
        Codec::write(field, v);
        for (const unsigned char byte : field) {
            bytes_.push_back(byte);
        }
        return *this;
    }

    std::vector<unsigned char> bytes_;
};

} // namespace Ketra::QT::wire
