// Every truncation of the seed movies, and every byte of their headers changed.
#include "SeedCases.h"

#include <algorithm>
#include <memory>

using hostile::Bytes;
using hostile::How;

namespace {

class HostileDamage : public test::HostileSeeds {};

const How kRead{hostile::Fault::none, Ketra::QT::kMOV, false, false};
const How kWrite{hostile::Fault::none, Ketra::QT::kMP4, true, false};

std::uint32_t word(const Bytes& bytes, std::size_t at) {
    std::uint32_t v = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        v = v << 8 | bytes[at + i];
    }
    return v;
}

void setWord(Bytes& bytes, std::size_t at, std::uint32_t v) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[at + i] = static_cast<unsigned char>(v >> (24 - 8 * i));
    }
}

bool isLetter(unsigned char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == ' '; }

/// Whether an atom header may stand there: a size that fits, four letters or digits.
bool looksLikeAtom(const Bytes& bytes, std::size_t at) {
    if (at + 8 > bytes.size()) return false;
    const std::uint32_t size = word(bytes, at);
    return size >= 8 && size <= bytes.size() - at &&
           std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(at) + 4,
                       bytes.begin() + static_cast<std::ptrdiff_t>(at) + 8,
                       [](unsigned char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

} // namespace

TEST_P(HostileDamage, SurvivesEveryTruncation) {
    for (std::size_t length = 0; length < seed().bytes.size(); ++length) {
        SCOPED_TRACE(length);
        test::exercise(
            Bytes(seed().bytes.begin(), seed().bytes.begin() + static_cast<std::ptrdiff_t>(length)), kRead);
    }
}

TEST_P(HostileDamage, SurvivesEveryChangedByte) {
    const Bytes& original = seed().bytes;
    Bytes bytes = original;
    for (std::size_t at = test::headerStart(original); at < bytes.size(); ++at) {
        for (const unsigned int value : {0x00u, 0x01u, 0x7Fu, 0x80u, 0xFFu}) {
            if (value == original[at]) continue;
            SCOPED_TRACE(testing::Message() << "byte " << at << " is " << value);
            bytes[at] = static_cast<unsigned char>(value);
            test::exercise(bytes, value == 0xFF ? kWrite : kRead);
        }
        bytes[at] = original[at];
    }
}

TEST_P(HostileDamage, SurvivesEveryGameWithASize) {
    const Bytes& original = seed().bytes;
    Bytes bytes = original;
    for (std::size_t at = 0; at + 8 <= bytes.size(); ++at) {
        if (!looksLikeAtom(original, at)) continue;
        const std::uint32_t size = word(original, at);
        for (const std::uint32_t wrong :
             {0u, 1u, 2u, 7u, 8u, 9u, 12u, 15u, 16u, size - 1, size + 1, size - 4, size + 4, size * 2,
              0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF8u, 0xFFFFFFFFu}) {
            SCOPED_TRACE(testing::Message() << "size at " << at << " is " << wrong);
            setWord(bytes, at, wrong);
            test::exercise(bytes, wrong % 2 ? kWrite : kRead);
        }
        setWord(bytes, at, size);
    }
}

TEST_P(HostileDamage, SurvivesEveryCountOfItsTables) {
    const Bytes& original = seed().bytes;
    Bytes bytes = original;
    for (std::size_t at = 0; at + 16 <= bytes.size(); ++at) {
        if (!looksLikeAtom(original, at)) continue;
        for (const std::size_t field : {std::size_t{12}, std::size_t{16}}) { // "stsz" has its count second
            if (field + 4 > word(original, at)) continue;
            const std::uint32_t count = word(original, at + field);
            for (const std::uint32_t wrong : {0u, 1u, count + 1, 0x10000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
                SCOPED_TRACE(testing::Message() << "word at " << at + field << " is " << wrong);
                setWord(bytes, at + field, wrong);
                test::exercise(bytes, wrong % 2 ? kWrite : kRead);
            }
            setWord(bytes, at + field, count);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, HostileDamage, testing::Range<std::size_t>(0, test::seeds().size()),
                         test::seedName);
