// A stream over bytes in memory that misbehaves in one chosen way.
#pragma once

#include <base/Ferro.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace hostile {

enum class Fault : unsigned char {
    none,
    shortReads,    // never more than a few bytes a call
    failingReads,  // an error on every fifth call
    deadReads,     // an error on every call after the hundredth
    clampingSeeks, // a seek past either end stops there
    failingSeeks,  // an error on every third seek
    negativeSize,  // size() is an error
    lyingSize      // size() tells more than there is
};
constexpr unsigned int kFaults = 8;

std::string nameOf(Fault fault);

/// Borrows the bytes.
class FaultyStream : public Ketra::Ferro::CStreamP {
public:
    FaultyStream(const unsigned char* bytes, std::size_t size, Fault fault)
        : bytes_(bytes), size_(static_cast<std::int64_t>(size)), fault_(fault) {}

    std::int64_t read(unsigned char* buffer, std::int64_t length) override;
    std::int64_t write(const unsigned char*, std::int64_t) override { return -1; }
    int open(unsigned int, unsigned int) override { return position_ = 0, 0; }
    std::int64_t seek(std::int64_t offset, unsigned char relative) override;
    int close() override { return 0; }
    std::int64_t size() override;

private:
    const unsigned char* bytes_;
    std::int64_t size_;
    std::int64_t position_ = 0;
    Fault fault_;
    unsigned int reads_ = 0;
    unsigned int seeks_ = 0;
};

} // namespace hostile
