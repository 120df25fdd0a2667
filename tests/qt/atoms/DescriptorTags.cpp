// Which tag a descriptor is written with.
#include "support/AtomFile.h"

#include <qt/QTAtoms.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

TEST(DescriptorTags, AreWrittenAsTheyAreHeld) {
    DecoderSpecificInfo info(2, static_cast<unsigned char>(0x13));
    EXPECT_EQ(take(info.serialize()), hex("13 80808002 0000"));
    SLConfigDescriptor sync(1, static_cast<unsigned char>(0x14));
    sync.setPredefined(2);
    EXPECT_EQ(take(sync.serialize()), hex("14 80808001 02"));
    DecoderConfigDescriptor config(13, static_cast<unsigned char>(0x15));
    EXPECT_EQ(take(config.serialize()), hex("15 8080800D 00 01 000000 00000000 00000000"));
    ESDescriptor stream(3, static_cast<unsigned char>(0x16));
    EXPECT_EQ(take(stream.serialize()), hex("16 80808003 0000 00"));
}

TEST(DescriptorTags, AreFixedForObjectsAndReferences) {
    InitialObjectDescriptor initial(7, static_cast<unsigned char>(0x02));
    EXPECT_EQ(take(initial.serialize()), hex("10 80808007 000F 00 00 00 00 00"));
    ObjectDescriptor object(2, static_cast<unsigned char>(0x01));
    EXPECT_EQ(take(object.serialize()), hex("11 80808002 001F"));
    ESIDRef reference(2, static_cast<unsigned char>(0x11));
    EXPECT_EQ(take(reference.serialize()), hex("0F 80808002 0000"));
    ESIDInc increment(4, static_cast<unsigned char>(0x11));
    EXPECT_EQ(take(increment.serialize()), hex("0E 80808004 00000000"));
}

} // namespace
} // namespace test
