#include "qt/atoms/AtomRow.h"

#include <base/CException.h>

#include <algorithm>
#include <ostream>

namespace test {

std::vector<AtomRow>& atomRows() {
    static std::vector<AtomRow> rows;
    return rows;
}

RowList::RowList(std::vector<AtomRow> rows) {
    for (AtomRow& row : rows) {
        atomRows().push_back(std::move(row));
    }
}

void PrintTo(const AtomRow& row, std::ostream* os) { *os << row.name; }

namespace {

using Ketra::CException;
using Ketra::QT::QTAtom;

class AtomSuite : public testing::TestWithParam<AtomRow> {
protected:
    static std::unique_ptr<QTAtom> read(AtomFile& file) {
        std::unique_ptr<QTAtom> header = file.header();
        if (!header) return nullptr;
        std::unique_ptr<QTAtom> atom = GetParam().adopt(header.release());
        result = atom->parse();
        return atom;
    }
    static const Bytes& written() {
        return GetParam().written.empty() ? GetParam().file : GetParam().written;
    }
    /// Whatever is in it, an atom can be measured, written and copied.
    static void exercise(QTAtom& atom) {
        constexpr std::uint64_t kTooSlow = 1 << 24; // a size of gigabytes is written in full length
        try {
            const std::unique_ptr<QTAtom> twin = GetParam().copy(atom);
            if (std::max(twin->updateSize(), twin->getSize()) > kTooSlow) return;
            if (atom.getSize() <= kTooSlow) take(atom.serialize());
            atom.updateSize();
            take(atom.serialize());
            take(twin->serialize());
        } catch (const CException&) {
            // a count that disagrees with its table
        }
    }

    static inline int result = 0;
};

TEST_P(AtomSuite, ReadsItsFields) {
    AtomFile file(GetParam().file + repeat(0xAA, 16));
    const std::unique_ptr<QTAtom> atom = read(file);
    ASSERT_TRUE(atom);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(file.position(), static_cast<std::int64_t>(GetParam().file.size()));
    GetParam().expect(*atom);
}

TEST_P(AtomSuite, WritesItsBytes) {
    AtomFile file(GetParam().file);
    const std::unique_ptr<QTAtom> atom = read(file);
    ASSERT_TRUE(atom);
    atom->updateSize();
    if (GetParam().writesNothing) {
        EXPECT_EQ(take(atom->serialize()), Bytes());
        return;
    }
    const Bytes first = take(atom->serialize());
    EXPECT_EQ(first, written()) << "got  " << show(first) << "\nwant " << show(written());
    EXPECT_EQ(take(atom->serialize()), first) << "writing twice";
}

TEST_P(AtomSuite, CountsTheBytesItWrites) {
    AtomFile file(GetParam().file);
    const std::unique_ptr<QTAtom> atom = read(file);
    ASSERT_TRUE(atom);
    const std::uint64_t size = atom->updateSize();
    EXPECT_EQ(size, GetParam().sizeAfterUpdate.value_or(GetParam().file.size()));
    if (GetParam().writesNothing) return;
    EXPECT_EQ(written().size(), take(atom->serialize()).size());
}

TEST_P(AtomSuite, StartsAtItsDefaultSize) {
    const std::unique_ptr<QTAtom> atom = GetParam().blank();
    EXPECT_EQ(atom->getSize(), GetParam().blankSize);
    EXPECT_EQ(atom->getHeaderSize(), 0);
    exercise(*atom);
    EXPECT_EQ(GetParam().blank()->parse(), -1) << "no reader, no payload";
}

TEST_P(AtomSuite, CopiesAreAlike) {
    AtomFile file(GetParam().file);
    std::unique_ptr<QTAtom> atom = read(file);
    ASSERT_TRUE(atom);
    const std::unique_ptr<QTAtom> copy = GetParam().copy(*atom);
    const std::unique_ptr<QTAtom> assigned = GetParam().blank();
    GetParam().assign(*assigned, *atom);
    GetParam().assign(*assigned, *assigned);
    GetParam().expect(*copy);
    GetParam().expect(*assigned);
    copy->updateSize();
    const Bytes bytes = take(copy->serialize());
    assigned->updateSize();
    EXPECT_EQ(take(assigned->serialize()), bytes);
    EXPECT_EQ(bytes, GetParam().writesNothing ? Bytes() : written());
    atom.reset(); // nothing is released twice
}

TEST_P(AtomSuite, SurvivesEveryTruncation) {
    const Bytes& whole = GetParam().file;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        AtomFile cut(part); // the file ends early
        if (const std::unique_ptr<QTAtom> atom = read(cut)) exercise(*atom);
        if (length < 8) continue;
        Bytes shorter = part; // the atom says that it is short
        for (std::size_t i = 0; i < 4; ++i) {
            shorter[i] = static_cast<unsigned char>(length >> (8 * (3 - i)));
        }
        AtomFile small(shorter + repeat(0xFF, 64));
        if (const std::unique_ptr<QTAtom> atom = read(small)) exercise(*atom);
    }
}

TEST_P(AtomSuite, SurvivesEveryByteChanged) {
    for (std::size_t at = 0; at < GetParam().file.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes changed = GetParam().file;
            changed[at] = static_cast<unsigned char>(value);
            AtomFile file(changed);
            if (const std::unique_ptr<QTAtom> atom = read(file)) exercise(*atom);
        }
    }
}

TEST_P(AtomSuite, BelievesNoEndlessCount) {
    if (!GetParam().countAt) return; // no count field
    Bytes file = GetParam().file;
    for (std::size_t i = 0; i < 4; ++i) {
        file[GetParam().countAt + i] = 0xFF;
    }
    AtomFile endless(file);
    const std::unique_ptr<QTAtom> atom = read(endless);
    ASSERT_TRUE(atom);
    EXPECT_EQ(result, 0);
    exercise(*atom);
}

TEST_P(AtomSuite, ReadsBehindALargeHeader) {
    Bytes file = hex("00000001");
    file.insert(file.end(), GetParam().file.begin() + 4, GetParam().file.begin() + 8);
    const std::uint64_t size = GetParam().file.size() + 8;
    for (int shift = 56; shift >= 0; shift -= 8) {
        file.push_back(static_cast<unsigned char>(size >> shift));
    }
    file.insert(file.end(), GetParam().file.begin() + 8, GetParam().file.end());
    AtomFile large(file);
    const std::unique_ptr<QTAtom> atom = read(large);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->getHeaderSize(), 16);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(large.position(), static_cast<std::int64_t>(size));
    exercise(*atom);
}

INSTANTIATE_TEST_SUITE_P(Atoms, AtomSuite, testing::ValuesIn(atomRows()),
                         [](const testing::TestParamInfo<AtomRow>& row) {
                             return std::string(row.param.name);
                         });

} // namespace

} // namespace test
