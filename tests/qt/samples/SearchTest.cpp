// The search from a guess against the plain walk.
#include <qt/wire/Search.h>

#include <gtest/gtest.h>
#include <vector>

namespace test {
namespace {

using Ketra::QT::wire::evenGuess;
using Ketra::QT::wire::firstFrom;

TEST(Search, FindsTheBorderFromEveryGuess) {
    for (std::uint64_t count = 0; count <= 20; ++count) {
        for (std::uint64_t border = 0; border <= count; ++border) {
            for (std::uint64_t guess = 0; guess <= count + 2; ++guess) {
                EXPECT_EQ(firstFrom(guess, count, [=](std::uint64_t i) { return i >= border; }), border)
                    << count << ' ' << guess;
            }
        }
    }
}

TEST(Search, AsksLittleWhenTheGuessIsGood) {
    for (const std::uint64_t guess : {999'999ULL, 1'000'000ULL, 1'000'001ULL}) {
        int asked = 0;
        const auto passes = [&asked](std::uint64_t i) { return ++asked, i >= 1'000'000; };
        EXPECT_EQ(firstFrom(guess, std::uint64_t{1} << 40, passes), 1'000'000U);
        EXPECT_LE(asked, 5) << guess;
    }
}

TEST(Search, AsksOnlyWhatIsThere) {
    for (const std::uint64_t border : {0ULL, 5ULL, 77ULL, 100ULL}) {
        for (std::uint64_t guess = 0; guess <= 101; ++guess) {
            firstFrom(guess, 100, [=](std::uint64_t i) {
                EXPECT_LT(i, 100U);
                return i >= border;
            });
        }
    }
}

TEST(Search, GuessesWithinTheTable) {
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    EXPECT_EQ(evenGuess(5, 0, 10, 0), 0U);
    EXPECT_EQ(evenGuess(5, 0, 10, 11), 5U);
    EXPECT_EQ(evenGuess(0, 1, 10, 11), 0U);
    EXPECT_EQ(evenGuess(10, 1, 10, 11), 10U);
    EXPECT_EQ(evenGuess(11, 1, 10, 11), 10U);
    EXPECT_EQ(evenGuess(3, 3, 3, 11), 0U);
    EXPECT_EQ(evenGuess(kMost, 9, 3, 11), 0U) << "nothing rises";
    EXPECT_LE(evenGuess(kMost - 1, 0, kMost, 1000), 999U);
    EXPECT_EQ(evenGuess(kMost, 0, kMost, 1000), 999U);
}

} // namespace
} // namespace test
