// A stream that holds no bytes: it has a length, a position, and a way of seeking.
#pragma once

#include <qt/QTStream.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace test {

class FakeStream : public Ketra::QT::QTStream {
public:
    explicit FakeStream(std::int64_t length) : length_(length) {}

    bool clamps = false;         ///< seeks stop at the end
    std::int64_t readResult = 0; ///< what read() says when it is negative
    std::int64_t at = 0;
    unsigned int seeks = 0; ///< moves, questions for the position not counted
    unsigned char fill = 0; ///< every byte of the stream

    std::int64_t read(unsigned char* buffer, std::int64_t length) override {
        if (readResult < 0) return readResult;
        const std::int64_t got = std::clamp<std::int64_t>(length_ - at, 0, length);
        std::memset(buffer, fill, static_cast<std::size_t>(got));
        at += got;
        return got;
    }
    std::int64_t write(unsigned char*, std::int64_t) override { return -1; }
    std::int64_t lseek(std::int64_t offset, unsigned char relative) override {
        if (!relative || offset) ++seeks;
        const std::int64_t target = relative ? at + offset : offset;
        if (target < 0) return -1;
        at = clamps ? std::min(target, length_) : target;
        return at;
    }
    int open() override { return 0; }
    int close() override { return 0; }
    std::int64_t size() override { return length_; }

private:
    std::int64_t length_;
};

} // namespace test
