// Samples in, payloads out, for the tests of all formats.
#pragma once

#include "hint/Packetizer.h"
#include "support/Bytes.h"

#include <gtest/gtest.h>

namespace test {

inline Ketra::Tool::MediaSample sampleOf(const Bytes& bytes, std::int64_t time = 0,
                                         std::int64_t duration = 0) {
    return {{bytes.data(), bytes.size()}, time, time, duration, true};
}

/// All payloads of all groups, in order.
inline std::vector<Ketra::Tool::Payload> payloadsOf(const std::vector<Ketra::Tool::PacketGroup>& groups) {
    std::vector<Ketra::Tool::Payload> all;
    for (const auto& group : groups) {
        all.insert(all.end(), group.payloads.begin(), group.payloads.end());
    }
    return all;
}

inline void expectPayloads(const std::vector<Ketra::Tool::PacketGroup>& groups,
                           const std::vector<std::pair<Bytes, bool>>& expected) {
    const auto found = payloadsOf(groups);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(show(found[i].bytes), show(expected[i].first)) << "payload " << i;
        EXPECT_EQ(found[i].marker, expected[i].second) << "marker " << i;
    }
}

} // namespace test
