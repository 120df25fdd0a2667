// A stream over bytes in memory of which one call goes wrong.
#pragma once

#include "support/Bytes.h"

#include <qt/QTStream.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace test {

enum class Trouble : unsigned char {
    readFails,    ///< the call returns -1
    readIsEmpty,  ///< it delivers nothing
    readIsShort,  ///< it delivers half of what there is
    readsFailOn,  ///< it and all that follow return -1
    seekFails,    ///< the call returns -1 and does not move
    seekIsIgnored ///< it says that it moved, and did not
};

class FaultyAt : public Ketra::QT::QTStream {
public:
    static constexpr unsigned int kNever = std::numeric_limits<unsigned int>::max();

    /// Borrows the bytes. Reads and seeks are counted apart, from 0.
    explicit FaultyAt(const Bytes& bytes, Trouble trouble = Trouble::readFails, unsigned int call = kNever)
        : bytes_(bytes), trouble_(trouble), call_(call) {}

    unsigned int reads = 0;
    unsigned int seeks = 0;

    std::int64_t read(unsigned char* buffer, std::int64_t length) override {
        const unsigned int n = reads++;
        std::int64_t left = std::clamp<std::int64_t>(length_() - at_, 0, std::max<std::int64_t>(length, 0));
        if (trouble_ == Trouble::readsFailOn && n >= call_) return -1;
        if (n == call_) {
            if (trouble_ == Trouble::readFails) return -1;
            if (trouble_ == Trouble::readIsEmpty) left = 0;
            if (trouble_ == Trouble::readIsShort) left /= 2;
        }
        if (left) std::memcpy(buffer, bytes_.data() + at_, static_cast<std::size_t>(left));
        at_ += left;
        return left;
    }
    std::int64_t write(unsigned char*, std::int64_t) override { return -1; }
    std::int64_t lseek(std::int64_t offset, unsigned char relative) override {
        const unsigned int n = seeks++;
        const std::int64_t target = relative ? at_ + offset : offset;
        if (target < 0 || (n == call_ && trouble_ == Trouble::seekFails)) return -1;
        if (n == call_ && trouble_ == Trouble::seekIsIgnored) return target;
        return at_ = target;
    }
    int open() override { return 0; }
    int close() override { return 0; }
    std::int64_t size() override { return length_(); }

private:
    std::int64_t length_() const { return static_cast<std::int64_t>(bytes_.size()); }

    const Bytes& bytes_;
    Trouble trouble_;
    unsigned int call_;
    std::int64_t at_ = 0;
};

} // namespace test
