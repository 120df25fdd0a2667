#include "../../lib/qt/wire/Throw.h"

#include <base/CException.h>

#include <exception>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

using Ketra::CException;
using Ketra::CString;

namespace {

static_assert(std::is_nothrow_destructible_v<CException>);

TEST(CException, CarriesItsTexts) {
    const CException e("Ketra::CException", 42, "lib/qt/QTAtoms", "Ketra::QT::STTS::serialize",
                       "Wrong number of entries in STTS-table");
    EXPECT_EQ(e.getName(), "Ketra::CException");
    EXPECT_EQ(e.getLine(), 42);
    EXPECT_EQ(e.getFile(), "lib/qt/QTAtoms");
    EXPECT_EQ(e.getFunction(), "Ketra::QT::STTS::serialize");
    EXPECT_EQ(e.getMessage(), "Wrong number of entries in STTS-table");
    EXPECT_STREQ(e.what(), "Wrong number of entries in STTS-table");
}

TEST(CException, TakesNullTextsAndPercentSigns) {
    const CException e(nullptr, 0, nullptr, nullptr, "100%s");
    EXPECT_EQ(e.getName(), "");
    EXPECT_EQ(e.getFile(), "");
    EXPECT_EQ(e.getFunction(), "");
    EXPECT_STREQ(e.what(), "100%s");
}

TEST(CException, Copies) {
    CException first("Ketra::CException", 1, "a", "b", "first");
    const CException copy(first);
    first = CException("Ketra::CException", 2, "c", "d", "second");
    EXPECT_STREQ(copy.what(), "first");
    EXPECT_EQ(copy.getLine(), 1);
    EXPECT_STREQ(first.what(), "second");
    const CException& same = first;
    first = same;
    EXPECT_STREQ(first.what(), "second");
}

[[noreturn]] void fail(int number) {
    QT_THROW(Ketra::QT::wire::area::kChunk, "Ketra::QT::QTChunk::initWithSample",
             CString::createWithFormat("Couldn't init with sample nr. %d", number));
}

TEST(CException, IsCaughtByEachOfItsBases) {
    EXPECT_THROW(fail(1), CException);
    EXPECT_THROW(fail(1), Lumbra::es::base);
    EXPECT_THROW(fail(1), std::exception);
    try {
        fail(7);
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "Couldn't init with sample nr. 7");
        EXPECT_NE(dynamic_cast<const CException*>(&e), nullptr);
    }
    try {
        fail(7);
    } catch (const Lumbra::es::base& e) {
        const auto* whole = dynamic_cast<const CException*>(&e);
        ASSERT_NE(whole, nullptr);
        EXPECT_EQ(whole->getName(), "Ketra::CException");
        EXPECT_EQ(whole->getFile(), "lib/qt/QTChunk");
        EXPECT_EQ(whole->getFunction(), "Ketra::QT::QTChunk::initWithSample");
        EXPECT_GT(whole->getLine(), 0);
    }
}

TEST(CException, OutlivesItsThrow) {
    std::exception_ptr held;
    try {
        fail(3);
    } catch (...) {
        held = std::current_exception();
    }
    try {
        std::rethrow_exception(held);
    } catch (const CException& e) {
        EXPECT_STREQ(e.what(), "Couldn't init with sample nr. 3");
    }
}

TEST(CException, NamesTheSourceFiles) {
    EXPECT_STREQ(Ketra::QT::wire::area::kAtoms, "lib/qt/QTAtoms");
    EXPECT_STREQ(Ketra::QT::wire::area::kChunk, "lib/qt/QTChunk");
    EXPECT_STREQ(Ketra::QT::wire::area::kMovie, "lib/qt/QTMovie");
    EXPECT_STREQ(Ketra::QT::wire::area::kTrack, "lib/qt/QTTrack");
    EXPECT_STREQ(Ketra::QT::wire::area::kUtils, "lib/qt/QTUtils");
}

} // namespace
