// The seed movies as parameters of the tests that do them harm.
#pragma once

#include "hostile/Harness.h"
#include "hostile/Seeds.h"

#include <gtest/gtest.h>
#include <string>

namespace test {

inline const std::vector<hostile::Seed>& seeds() {
    static const std::vector<hostile::Seed> all = hostile::allSeeds();
    return all;
}

/// Copied into a block of its own length, so that a sanitizer sees the first byte read past it.
inline bool exercise(const hostile::Bytes& bytes, const hostile::How& how) {
    const std::unique_ptr<unsigned char[]> block(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    return hostile::exercise(block.get(), bytes.size(), how);
}

/// Where the movie header begins: what stands before it is no more than file type and media.
inline std::size_t headerStart(const hostile::Bytes& bytes) {
    static const char kCode[] = {'m', 'o', 'o', 'v'};
    const auto at = std::search(bytes.begin(), bytes.end(), std::begin(kCode), std::end(kCode));
    return at == bytes.end() ? 0 : static_cast<std::size_t>(at - bytes.begin()) - 4;
}

class HostileSeeds : public testing::TestWithParam<std::size_t> {
protected:
    const hostile::Seed& seed() const { return seeds()[GetParam()]; }
};

inline std::string seedName(const testing::TestParamInfo<std::size_t>& info) {
    return seeds()[info.param].name;
}

} // namespace test
