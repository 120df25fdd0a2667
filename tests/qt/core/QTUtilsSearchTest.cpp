// Searching a parsed tree.
#include <qt/QTAtoms/movie/MOOV.h>
#include <qt/QTTypes.h>
#include <qt/QTUtils.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// root { a { x(1), b { x(2) } }, c(leaf), d { x(3) }, e {} }
struct Tree {
    MOOV root;
    QTAtom *a, *b, *c, *d, *e, *x1, *x2, *x3;
    QTUtils utils{nullptr, &root};

    Tree() {
        a = add(root, container("aaaa"));
        x1 = add(*a, new QTAtom(8U, fourCC("xxxx")));
        b = add(*a, container("bbbb"));
        x2 = add(*b, new QTAtom(8U, fourCC("xxxx")));
        c = add(root, new QTAtom(8U, fourCC("cccc")));
        d = add(root, container("dddd"));
        x3 = add(*d, new QTAtom(8U, fourCC("xxxx")));
        e = add(root, container("eeee"));
    }
    static QTAtom* container(const char (&type)[5]) {
        return new QTAtom(std::uint64_t{8}, fourCC(type), 0, 8, nullptr, true);
    }
    static QTAtom* add(QTAtom& parent, QTAtom* child) {
        EXPECT_EQ(parent.addChild(child), 0);
        return child;
    }
};

TEST(ReaderSearch, TheLastMatchCounts) {
    Tree t;
    EXPECT_EQ(t.utils.findAtom(&t.root, fourCC("xxxx")), t.x3);
    EXPECT_EQ(t.utils.getAtomOfType(fourCC("xxxx")), t.x3);
    EXPECT_EQ(t.utils.findAtom(t.a, fourCC("xxxx")), t.x2);
    EXPECT_EQ(t.utils.getAtomOfType(fourCC("bbbb")), t.b);
    EXPECT_EQ(t.utils.getAtomOfType(fourCC("none")), nullptr);
}

TEST(ReaderSearch, TheAtomItselfComesFirst) {
    Tree t;
    Tree::add(*t.d, Tree::container("dddd"));
    EXPECT_EQ(t.utils.findAtom(t.d, fourCC("dddd")), t.d);
    EXPECT_EQ(t.utils.getAtomOfType(fourCC("moov")), &t.root);
    EXPECT_EQ(t.utils.findAtom(t.c, fourCC("xxxx")), nullptr);
    EXPECT_EQ(t.utils.findAtom(nullptr, fourCC("xxxx")), nullptr);
}

TEST(ReaderSearch, OfTwoTracksFindsTheSecond) {
    MOOV movie;
    movie.addChild(new QTAtom(8U, fourCC("trak")));
    auto* second = new QTAtom(8U, fourCC("trak"));
    movie.addChild(second);
    QTUtils utils(nullptr, &movie);
    EXPECT_EQ(utils.getAtomOfType(fourCC("trak")), second);
}

TEST(ReaderSearch, ListsParentsBeforeChildren) {
    Tree t;
    EXPECT_EQ(t.utils.getAllAtoms(&t.root),
              (std::vector<QTAtom*>{&t.root, t.a, t.x1, t.b, t.x2, t.c, t.d, t.x3, t.e}));
    EXPECT_EQ(t.utils.getAllAtoms(t.c), std::vector<QTAtom*>{t.c});
    EXPECT_TRUE(t.utils.getAllAtoms(nullptr).empty());
    EXPECT_EQ(t.utils.getAtomsOfType(fourCC("xxxx"), nullptr), (std::vector<QTAtom*>{t.x1, t.x2, t.x3}));
    EXPECT_EQ(t.utils.getAtomsOfType(fourCC("xxxx"), t.a), (std::vector<QTAtom*>{t.x1, t.x2}));
    EXPECT_TRUE(t.utils.getAtomsOfType(fourCC("none"), nullptr).empty());
}

TEST(ReaderSearch, StartsAtTheRootThatWasSet) {
    Tree t;
    MOOV other;
    EXPECT_EQ(t.utils.setRoot(&other), 0);
    EXPECT_EQ(t.utils.getRoot(), &other);
    EXPECT_EQ(t.utils.getAtomOfType(fourCC("xxxx")), nullptr);
    EXPECT_EQ(t.utils.setRoot(nullptr), 0); // ignored
    EXPECT_EQ(t.utils.getRoot(), &other);
    QTUtils rootless(nullptr, nullptr);
    EXPECT_EQ(rootless.getAtomOfType(fourCC("xxxx")), nullptr);
    EXPECT_TRUE(rootless.getAtomsOfType(fourCC("xxxx"), nullptr).empty());
    EXPECT_EQ(QTUtils::BE32(0x12345678), 0x78563412U);
}

} // namespace
} // namespace test
