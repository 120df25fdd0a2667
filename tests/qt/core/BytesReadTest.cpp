#include "support/AtomFile.h"

#include <qt/QTAtoms.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

TEST(BytesRead, DoNotCountTheSearchForALostHeader) {
    const Bytes file = atom("mdat", repeat(1, 500));
    AtomFile source(file);
    ROOT root(new QTAtom(file.size(), fourCC("root"), 0, 8, &source.utils(), true));
    EXPECT_EQ(root.parse(), 0);
    EXPECT_EQ(source.utils().getBytesRead(), 8U); // one header
}

TEST(BytesRead, CountWhatALostHeaderHolds) {
    const Bytes file = atom("mdat", hex("10000000 'voom' 00000008 'free'"));
    AtomFile source(file);
    ROOT root(new QTAtom(file.size(), fourCC("root"), 0, 8, &source.utils(), true));
    EXPECT_EQ(root.parse(), 0);
    ASSERT_EQ(root.getChildren().size(), 2U);
    EXPECT_EQ(source.utils().getBytesRead(), 16U); // the headers of "mdat" and of the child
}

} // namespace
} // namespace test
