#include "support/AtomFile.h"

#include <qt/QTAtom.h>
#include <qt/QTAtoms/file/FREE.h>
#include <qt/QTAtoms/file/UUIDA.h>
#include <qt/QTAtoms/movie/MOOV.h>
#include <qt/QTAtoms/movie/MVHD.h>
#include <qt/QTTypes.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// Counts how many of its kind are alive; writes nothing.
class Counted : public QTAtom {
public:
    Counted(std::uint64_t size, unsigned int type) : QTAtom(size, type, 0, 8, nullptr, false) { ++alive; }
    ~Counted() override { --alive; }
    static inline int alive = 0;
};

/// A container whose children know what they do.
std::unique_ptr<MOOV> container() { return std::make_unique<MOOV>(); }

TEST(QTAtomFields, AreEmptyAtFirst) {
    const QTAtom atom;
    EXPECT_EQ(atom.getSize(), 0U);
    EXPECT_EQ(atom.getType(), 0U);
    EXPECT_EQ(atom.getOffset(), 0U);
    EXPECT_EQ(atom.getHeaderSize(), 0);
    EXPECT_EQ(atom.getUtils(), nullptr);
    EXPECT_FALSE(atom.isContainer());
    EXPECT_TRUE(atom.getChildren().empty());
}

TEST(QTAtomFields, AreAsGiven) {
    const QTAtom inMemory(16U, fourCC("abcd"));
    EXPECT_EQ(inMemory.getSize(), 16U);
    EXPECT_EQ(inMemory.getType(), 0x61626364U);
    EXPECT_EQ(inMemory.getHeaderSize(), 0);
    EXPECT_FALSE(inMemory.isContainer());

    QTUtils utils(nullptr, nullptr);
    const QTAtom header(0x100000000U, fourCC("moov"), 0x200000000U, 16, &utils, true);
    EXPECT_EQ(header.getSize(), 0x100000000U);
    EXPECT_EQ(header.getType(), fourCC("moov"));
    EXPECT_EQ(header.getOffset(), 0x200000000U);
    EXPECT_EQ(header.getHeaderSize(), 16);
    EXPECT_EQ(header.getUtils(), &utils);
    EXPECT_TRUE(header.isContainer());
}

TEST(QTAtomAdoption, TakesTheHeaderOverAndDestroysIt) {
    Counted::alive = 0;
    QTUtils utils(nullptr, nullptr);
    const QTAtom plain(new QTAtom(std::uint64_t{77}, fourCC("abcd"), 99, 16, &utils, true));
    EXPECT_EQ(plain.getSize(), 77U);
    EXPECT_EQ(plain.getType(), fourCC("abcd"));
    EXPECT_EQ(plain.getOffset(), 99U);
    EXPECT_EQ(plain.getHeaderSize(), 16);
    EXPECT_EQ(plain.getUtils(), &utils);
    EXPECT_FALSE(plain.isContainer()); // not taken over
    const QTAtom other(new Counted(8, 1));
    EXPECT_EQ(Counted::alive, 0);
    const QTAtom nothing(nullptr);
    EXPECT_EQ(nothing.getSize(), 0U);
    const MOOV movie(new QTAtom(std::uint64_t{8}, fourCC("moov"), 0, 8, &utils, false));
    EXPECT_TRUE(movie.isContainer());
}

TEST(QTAtomChildren, BelongToAContainer) {
    Counted::alive = 0;
    {
        auto parent = container();
        auto* first = new Counted(10, 1);
        auto* second = new Counted(20, 2);
        EXPECT_EQ(parent->addChild(first), 0);
        EXPECT_EQ(parent->addChild(second), 0);
        EXPECT_EQ(parent->getSize(), 38U); // grown by what was added
        EXPECT_EQ(parent->getChildren(), (std::vector<QTAtom*>{first, second}));
        EXPECT_EQ(Counted::alive, 2);
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(QTAtomChildren, AreRefusedByALeaf) {
    QTAtom leaf(8U, 1);
    QTAtom child(8U, 2);
    EXPECT_EQ(leaf.addChild(&child), -1);
    EXPECT_EQ(leaf.getSize(), 8U);
    EXPECT_TRUE(leaf.getChildren().empty());
    auto parent = container();
    EXPECT_EQ(parent->addChild(nullptr), -1);
    EXPECT_EQ(parent->addChild(parent.get()), -1);
    EXPECT_TRUE(parent->getChildren().empty());
}

TEST(QTAtomChildren, AreFoundByTypeOneLevelDeep) {
    auto parent = container();
    auto* inner = new MOOV;
    auto* deep = new Counted(8, 5);
    auto* first = new Counted(8, 7);
    auto* second = new Counted(8, 7);
    inner->addChild(deep);
    parent->addChild(inner);
    parent->addChild(first);
    parent->addChild(second);
    EXPECT_EQ(parent->getAtomOfType(7), first);
    EXPECT_EQ(parent->getAtomOfType(5), nullptr);
    EXPECT_EQ(parent->getAtomOfType(9), nullptr);
}

TEST(QTAtomChildren, CanBeUnlinked) {
    Counted::alive = 0;
    auto parent = container();
    auto* a = new Counted(10, 1);
    const std::unique_ptr<Counted> b(new Counted(20, 2));
    auto* c = new Counted(30, 1);
    auto* d = new Counted(40, 2);
    for (QTAtom* child : {static_cast<QTAtom*>(a), static_cast<QTAtom*>(b.get()), static_cast<QTAtom*>(c),
                          static_cast<QTAtom*>(d)}) {
        parent->addChild(child);
    }
    parent->removeAtomOfType(2);
    EXPECT_EQ(parent->getChildren(), (std::vector<QTAtom*>{a, c, d}));
    EXPECT_EQ(parent->getSize(), 108U); // as before, until it is computed anew
    EXPECT_EQ(parent->updateSize(), 88U);
    parent->removeAtomOfType(99);
    EXPECT_EQ(parent->getChildren().size(), 3U);
    parent.reset();
    EXPECT_EQ(Counted::alive, 1); // the unlinked one lives on
}

TEST(QTAtomSize, IsComputedBottomUp) {
    auto parent = container();
    EXPECT_EQ(parent->updateSize(), 8U);
    auto* inner = new MOOV;
    inner->addChild(new Counted(100, 1));
    parent->addChild(inner); // 108
    inner->addChild(new Counted(50, 1));
    EXPECT_EQ(parent->getSize(), 116U);
    EXPECT_EQ(parent->updateSize(), 166U);
    EXPECT_EQ(inner->getSize(), 158U);
    QTAtom leaf(77U, 1);
    EXPECT_EQ(leaf.updateSize(), 77U);
}

TEST(QTAtomSize, TakesTheLow32BitsOfEachChild) {
    auto parent = container();
    parent->addChild(new Counted(0x100000010U, 1));
    EXPECT_EQ(parent->getSize(), 0x100000018U); // adding takes them all
    EXPECT_EQ(parent->updateSize(), 0x18U);
    auto large = container();
    large->addChild(new Counted(0xFFFFFFFFU, 1));
    large->addChild(new Counted(0xFFFFFFFFU, 1));
    EXPECT_EQ(large->updateSize(), 0x200000006U); // the sum is not cut
    EXPECT_EQ(large->serialize(), nullptr);       // but no frame holds it
}

TEST(QTAtomSize, AssumesAPlainHeader) {
    MOOV parent(new QTAtom(std::uint64_t{16}, fourCC("moov"), 0, 16, nullptr, false));
    EXPECT_EQ(parent.updateSize(), 8U);
}

TEST(ContainerBytes, AreAHeaderWhenThereIsNothingElse) {
    auto parent = container();
    const std::unique_ptr<QTFrame> frame(parent->serialize());
    ASSERT_TRUE(frame);
    EXPECT_EQ(Bytes(frame->getData(), frame->getData() + frame->getDataLength()), hex("00000008 'moov'"));
    EXPECT_EQ(frame->getTime(), 0.0);
    EXPECT_EQ(frame->getDecodeTime(), 0.0);
    EXPECT_EQ(frame->getDuration(), 0.0);
    EXPECT_EQ(frame->getEndTime(), 0.0);
    EXPECT_EQ(frame->getSamplesInFrame(), 1U);
    EXPECT_FALSE(frame->getIsKeyFrame());
    EXPECT_FALSE(frame->getContainsEncodedAlpha());
}

TEST(ContainerBytes, AreThoseOfTheChildrenInOrder) {
    auto parent = container();
    unsigned char one[] = {1};
    unsigned char two[] = {2, 2};
    parent->addChild(new UUIDA(2, two));
    parent->addChild(new UUIDA(1, one));
    EXPECT_EQ(take(parent->serialize()), hex("0000001B 'moov' 0000000A 'uuid' 0202 00000009 'uuid' 01"));
}

TEST(ContainerBytes, CountAChildThatWritesNothing) {
    auto large = container();
    large->addChild(new Counted(12, 1)); // its place becomes padding
    large->addChild(new FREE);
    EXPECT_EQ(take(large->serialize()),
              hex({"00000024 'moov'", "00000010 'free' 0000000000000000", "0000000C 'free' 00000000"}));
    auto small = container();
    small->addChild(new Counted(7, 1)); // too small for a header of padding
    EXPECT_EQ(take(small->serialize()), hex("0000000F 'moov' 00000000000000"));
    auto exact = container();
    exact->addChild(new Counted(8, 1));
    EXPECT_EQ(take(exact->serialize()), hex("00000010 'moov' 00000008 'free'"));
}

/// Writes more than it says.
class Understated : public QTAtom {
public:
    Understated() : QTAtom(2U, 1) {}
    QTFrame* serialize() override {
        auto* block = static_cast<unsigned char*>(std::calloc(20, 1));
        return new QTFrame(20, block, 0, 0, false, 1, 0, 0, false);
    }
};

TEST(ContainerBytes, GrowWithAChildThatWritesMore) {
    auto parent = container();
    parent->addChild(new Understated);
    EXPECT_EQ(take(parent->serialize()), hex("0000001C 'moov'") + repeat(0, 20));
}

TEST(PlainAtom, SkipsItsPayloadAndWritesNothing) {
    AtomFile file(atom("abcd", repeat(1, 10)) + atom("efgh", {}));
    int result = 1;
    const auto first = file.parse<QTAtom>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(file.position(), 18);
    EXPECT_EQ(first->serialize(), nullptr);
    const auto second = file.parse<QTAtom>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(second->getOffset(), 18U);
    QTAtom inMemory(8U, 1);
    EXPECT_EQ(inMemory.parse(), -1);
}

TEST(AtomCopies, ListTheSameChildrenAndDoNotOwnThem) {
    Counted::alive = 0;
    auto parent = container();
    auto* child = new Counted(10, 1);
    parent->addChild(child);
    {
        MOOV copy(*parent);
        EXPECT_EQ(copy.getSize(), 18U);
        EXPECT_TRUE(copy.isContainer());
        EXPECT_EQ(copy.getChildren(), std::vector<QTAtom*>{child});
        MOOV assigned;
        assigned.addChild(new Counted(5, 5));
        EXPECT_EQ(Counted::alive, 2);
        assigned = copy;
        EXPECT_EQ(Counted::alive, 1); // what it owned before is gone
        assigned = *&assigned;
        EXPECT_EQ(assigned.getChildren(), std::vector<QTAtom*>{child});
    }
    EXPECT_EQ(Counted::alive, 1);
    parent.reset();
    EXPECT_EQ(Counted::alive, 0);
}

TEST(AtomCopies, OwnWhatIsAddedToThem) {
    Counted::alive = 0;
    auto parent = container();
    parent->addChild(new Counted(10, 1));
    {
        MOOV copy(*parent);
        copy.addChild(new Counted(10, 2));
        copy.removeAtomOfType(1);
        EXPECT_EQ(Counted::alive, 2);
    }
    EXPECT_EQ(Counted::alive, 1);
    parent.reset();
    EXPECT_EQ(Counted::alive, 0);
}

TEST(AtomCopies, DuplicateKeptBytes) {
    unsigned char bytes[] = {1, 2, 3};
    auto original = std::make_unique<UUIDA>(3, bytes);
    const auto copy = std::make_unique<UUIDA>(*original);
    UUIDA assigned;
    assigned = *original;
    original.reset();
    EXPECT_EQ(take(copy->serialize()), hex("0000000B 'uuid' 010203"));
    EXPECT_EQ(take(assigned.serialize()), hex("0000000B 'uuid' 010203"));
}

TEST(FourCharacterCode, IsMostSignificantFirst) {
    EXPECT_EQ(fourCC("moov"), 0x6D6F6F76U);
    EXPECT_EQ(fourCC("\xA9nam"), 0xA96E616DU);
    EXPECT_EQ(static_cast<unsigned int>(kMOV), fourCC("kMOV"));
    EXPECT_EQ(static_cast<unsigned int>(kMP4), fourCC("kMP4"));
    EXPECT_EQ(static_cast<unsigned int>(kM4V), fourCC("kM4V"));
    EXPECT_EQ(static_cast<unsigned int>(kM4A), fourCC("kM4A"));
    EXPECT_EQ(static_cast<unsigned int>(k3GP), fourCC("k3GP"));
    EXPECT_EQ(static_cast<unsigned int>(k3G2), fourCC("k3G2"));
    EXPECT_EQ(static_cast<unsigned int>(kAMC), fourCC("kAMC"));
    EXPECT_EQ(static_cast<unsigned int>(kPSP), fourCC("kPSP"));
}

} // namespace
} // namespace test
