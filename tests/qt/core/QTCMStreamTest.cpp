#include <base/Ferro.h>
#include <qt/QTCMStream.h>

#include <gtest/gtest.h>
#include <string>

namespace test {
namespace {

using namespace Ketra;

/// Notes every call and answers with numbers of its own.
class Recorder : public Ferro::CStreamP {
public:
    explicit Recorder(std::string& log) : log_(log) {}
    std::int64_t read(unsigned char*, std::int64_t length) override { return note("read", length, 0), 11; }
    std::int64_t write(const unsigned char*, std::int64_t length) override {
        return note("write", length, 0), 12;
    }
    int open(unsigned int mode, unsigned int timeout) override { return note("open", mode, timeout), 13; }
    std::int64_t seek(std::int64_t offset, unsigned char relative) override {
        return note("seek", offset, relative), 14;
    }
    int close() override { return note("close", 0, 0), 15; }
    std::int64_t size() override { return note("size", 0, 0), 16; }

private:
    void note(const char* name, std::int64_t a, std::int64_t b) {
        log_ += std::string(name) + ' ' + std::to_string(a) + ' ' + std::to_string(b) + '\n';
    }
    std::string& log_;
};

TEST(StreamAdapter, ForwardsEveryCall) {
    std::string log;
    auto* source = new Ferro::RStream(new Recorder(log));
    {
        QT::QTCMStream adapter(source);
        QT::QTStream& stream = adapter;
        unsigned char byte = 0;
        EXPECT_EQ(stream.read(&byte, 0x100000001), 11);
        EXPECT_EQ(stream.write(&byte, 2), 12);
        EXPECT_EQ(stream.lseek(-3, 1), 14);
        EXPECT_EQ(stream.open(), 13);
        EXPECT_EQ(stream.close(), 15);
        EXPECT_EQ(stream.size(), 16);
        EXPECT_EQ(source->getRefCount(), 1); // borrowed
    }
    EXPECT_EQ(log, "read 4294967297 0\nwrite 2 0\nseek -3 1\nopen 2 1000\nclose 0 0\nsize 0 0\n");
    EXPECT_EQ(source->release(), 0); // still there to be released
}

} // namespace
} // namespace test
