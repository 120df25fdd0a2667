#include <base/Ferro.h>
#include <base/Lumbra.h>
#include <base/RBuffer.h>

#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

using Ketra::CBuffer;
using Ketra::CData;
using Ketra::CString;
using Ketra::RBuffer;
using Ketra::RData;
using Ketra::RString;
using Ketra::Ferro::CStreamP;
using Ketra::Ferro::RStream;

namespace {

static_assert(!std::is_copy_constructible_v<RStream> && !std::is_copy_assignable_v<RStream>);

class Counted : public Lumbra::object_refcount {
public:
    explicit Counted(int& alive) : alive_(alive) { ++alive_; }
    ~Counted() override { --alive_; }

private:
    int& alive_;
};

TEST(RefCount, DeletesAtZero) {
    int alive = 0;
    auto* object = new Counted(alive);
    EXPECT_EQ(object->getRefCount(), 1);
    EXPECT_EQ(object->addRef(), 2);
    EXPECT_EQ(object->addRef(), 3);
    EXPECT_EQ(object->release(), 2);
    EXPECT_EQ(object->getRefCount(), 2);
    EXPECT_EQ(object->release(), 1);
    EXPECT_EQ(alive, 1);
    const Counted* last = object;
    EXPECT_EQ(last->release(), 0);
    EXPECT_EQ(alive, 0);
}

TEST(RefCount, ACopyStartsAtOne) {
    const Lumbra::object_refcount first;
    first.addRef();
    Lumbra::object_refcount second(first);
    EXPECT_EQ(second.getRefCount(), 1);
    second.addRef();
    second.addRef();
    second = first;
    EXPECT_EQ(second.getRefCount(), 3);
    EXPECT_EQ(first.getRefCount(), 2);
}

TEST(RefCount, CountsFromSeveralThreads) {
    int alive = 0;
    auto* object = new Counted(alive);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([object] {
            for (int n = 0; n < 10000; ++n) {
                object->addRef();
                object->release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(object->getRefCount(), 1);
    EXPECT_EQ(object->release(), 0);
    EXPECT_EQ(alive, 0);
}

TEST(RefCount, TheBuffersAreCounted) {
    auto* buffer = new RBuffer("abc", 3);
    EXPECT_EQ(buffer->addRef(), 2);
    auto* copy = new RBuffer(*buffer);
    EXPECT_EQ(copy->getRefCount(), 1);
    EXPECT_TRUE(*copy == *buffer);
    copy->zero();
    *buffer = *copy;
    EXPECT_EQ(buffer->getRefCount(), 2);
    EXPECT_EQ(buffer->getData()[0], 0);
    EXPECT_EQ(buffer->release(), 1);
    EXPECT_EQ(buffer->release(), 0);
    EXPECT_EQ(copy->release(), 0);
    EXPECT_EQ(RBuffer().getSize(), 0u);
    EXPECT_EQ(RBuffer(5).getSize(), 5u);
    EXPECT_EQ(RBuffer(CBuffer(7)).getSize(), 7u);
}

TEST(RefCount, TheDataAndStringsAreCounted) {
    CData source("abc", 3);
    source.setPosition(1);
    auto* data = new RData(source);
    EXPECT_EQ(data->getPosition(), 1u);
    EXPECT_EQ(RData("ab", 2).getRemaining(), 2u);
    EXPECT_EQ(RData().getSize(), 0u);
    EXPECT_EQ(data->release(), 0);

    auto* text = new RString("text");
    EXPECT_STREQ(text->c_str(), "text");
    EXPECT_EQ(RString(*text), "text");
    EXPECT_EQ(RString(CString("other")), "other");
    EXPECT_STREQ(RString().c_str(), "");
    CBuffer* base = text; // deleting through either base is whole
    EXPECT_EQ(base->getSize(), 4u);
    delete base;
    Lumbra::object_refcount* counted = new RString("a text that is long enough to be on the heap");
    EXPECT_EQ(counted->release(), 0);
}

class Stream : public CStreamP {
public:
    explicit Stream(bool& alive) : alive_(alive) { alive_ = true; }
    ~Stream() override { alive_ = false; }
    std::int64_t read(unsigned char*, std::int64_t) override { return 0; }
    std::int64_t write(const unsigned char*, std::int64_t length) override { return length; }
    int open(unsigned int, unsigned int) override { return 0; }
    std::int64_t seek(std::int64_t offset, unsigned char) override { return offset; }
    int close() override { return 0; }
    std::int64_t size() override { return 77; }

private:
    bool& alive_;
};

TEST(RStream, OwnsItsStream) {
    bool alive = false;
    auto* stream = new Stream(alive);
    auto* holder = new RStream(stream);
    EXPECT_EQ(holder->get(), stream);
    EXPECT_EQ((*holder)->size(), 77);
    EXPECT_EQ(holder->addRef(), 2);
    EXPECT_EQ(holder->release(), 1);
    EXPECT_TRUE(alive);
    EXPECT_EQ(holder->release(), 0);
    EXPECT_FALSE(alive);
}

TEST(RStream, MayHoldNone) {
    const auto holder = std::make_unique<RStream>(nullptr);
    EXPECT_EQ(holder->get(), nullptr);
}

} // namespace
