#include <base/CFileStream.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <type_traits>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

using Ketra::Ferro::CFileStream;

namespace {

namespace fs = std::filesystem;

static_assert(!std::is_copy_constructible_v<CFileStream> && !std::is_copy_assignable_v<CFileStream>);

// Every byte tells its place, also far from the start.
unsigned char byteAt(std::int64_t offset) {
    return static_cast<unsigned char>(offset ^ offset >> 8 ^ offset >> 16);
}

std::string pattern(std::int64_t offset, std::int64_t length) {
    std::string text;
    for (std::int64_t i = 0; i < length; ++i)
        text += static_cast<char>(byteAt(offset + i));
    return text;
}

class CFileStreamTest : public testing::Test {
protected:
    void SetUp() override {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = fs::temp_directory_path() /
                  (std::string("ketraqt-") + info->name() + std::to_string(std::random_device{}()));
        fs::create_directories(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string path(const std::string& name = "file.mov") const { return (folder_ / name).string(); }

    std::string make(const std::string& bytes) const {
        std::ofstream(path(), std::ios::binary) << bytes;
        return path();
    }

    std::string contents() const {
        std::ifstream file(path(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    fs::path folder_;
};

std::int64_t write(CFileStream& stream, const std::string& text) {
    return stream.write(reinterpret_cast<const unsigned char*>(text.data()),
                        static_cast<std::int64_t>(text.size()));
}

std::string read(CFileStream& stream, std::int64_t length) {
    std::string text(static_cast<std::size_t>(length), '?');
    const std::int64_t got = stream.read(reinterpret_cast<unsigned char*>(text.data()), length);
    text.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
    return text;
}

std::string readAt(CFileStream& stream, std::int64_t offset, std::int64_t length) {
    EXPECT_EQ(stream.seek(offset, 0), offset);
    return read(stream, length);
}

// How many reading system calls this process has made, where the system tells.
std::optional<long> readCalls() {
    std::ifstream file("/proc/self/io");
    for (std::string key; file >> key;) {
        long value = 0;
        file >> value;
        if (key == "syscr:") return value;
    }
    return std::nullopt;
}

// The reading system calls that an action makes; asking costs some itself.
template <class Action>
long countReadCalls(Action action) {
    const long before = readCalls().value();
    const long asking = readCalls().value() - before;
    const long start = readCalls().value();
    action();
    return readCalls().value() - start - asking;
}

TEST_F(CFileStreamTest, ReadsAFile) {
    CFileStream stream(make("abcdefgh").c_str(), CFileStream::kRead);
    EXPECT_TRUE(stream.isOpen());
    EXPECT_EQ(stream.size(), 8);
    EXPECT_EQ(read(stream, 3), "abc");
    EXPECT_EQ(stream.seek(0, 1), 3);
    EXPECT_EQ(read(stream, 50), "defgh");
    EXPECT_EQ(read(stream, 50), "");
    EXPECT_EQ(stream.seek(0, 1), 8);
}

TEST_F(CFileStreamTest, SeeksByArithmetic) {
    CFileStream stream(make("0123456789").c_str(), CFileStream::kRead);
    EXPECT_EQ(stream.seek(4, 0), 4);
    EXPECT_EQ(stream.seek(3, 1), 7);
    EXPECT_EQ(stream.seek(-2, 1), 5);
    EXPECT_EQ(read(stream, 1), "5");
    EXPECT_EQ(stream.seek(-7, 1), -1);
    EXPECT_EQ(stream.seek(-1, 0), -1);
    EXPECT_EQ(stream.seek(INT64_MIN, 0), -1);
    EXPECT_EQ(stream.seek(INT64_MIN, 1), -1);
    EXPECT_EQ(stream.seek(0, 1), 6);
    EXPECT_EQ(stream.seek(1000, 0), 1000);
    EXPECT_EQ(read(stream, 1), "");
    EXPECT_EQ(stream.seek(0, 1), 1000);
    EXPECT_EQ(stream.seek(INT64_MAX, 0), INT64_MAX);
    EXPECT_EQ(read(stream, 8), "");
    EXPECT_EQ(stream.seek(1, 1), -1);
    EXPECT_EQ(stream.seek(-INT64_MAX, 1), 0);
    EXPECT_EQ(read(stream, 2), "01");
}

TEST_F(CFileStreamTest, DoesNotOpenWhatIsNoFile) {
    EXPECT_FALSE(CFileStream(path("missing").c_str(), CFileStream::kRead).isOpen());
    EXPECT_FALSE(CFileStream(path("missing").c_str(), CFileStream::kReadWrite).isOpen());
    EXPECT_FALSE(fs::exists(path("missing")));
    EXPECT_FALSE(CFileStream(path("missing/file").c_str(), CFileStream::kCreate).isOpen());
    EXPECT_FALSE(CFileStream(folder_.string().c_str(), CFileStream::kRead).isOpen());
    EXPECT_FALSE(CFileStream("", CFileStream::kRead).isOpen());
    EXPECT_FALSE(CFileStream(nullptr, CFileStream::kCreate).isOpen());
}

#if !defined(_WIN32)
TEST_F(CFileStreamTest, DoesNotWaitForAPipe) {
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(CFileStream(path("pipe").c_str(), CFileStream::kRead).isOpen());
    EXPECT_FALSE(CFileStream("/dev/null", CFileStream::kRead).isOpen());
}
#endif

TEST_F(CFileStreamTest, AnswersMinusOneWhenClosed) {
    CFileStream stream(path("missing").c_str(), CFileStream::kRead);
    unsigned char byte = 0;
    EXPECT_EQ(stream.read(&byte, 1), -1);
    EXPECT_EQ(stream.write(&byte, 1), -1);
    EXPECT_EQ(stream.seek(0, 0), -1);
    EXPECT_EQ(stream.size(), -1);
    EXPECT_EQ(stream.close(), -1);
    EXPECT_EQ(stream.open(2, 1000), -1);
    std::ofstream(path("missing")) << "now";
    EXPECT_EQ(stream.open(2, 1000), 0);
    EXPECT_EQ(read(stream, 3), "now");
}

TEST_F(CFileStreamTest, RefusesBadArguments) {
    CFileStream stream(make("abc").c_str(), CFileStream::kReadWrite);
    unsigned char byte = 0;
    EXPECT_EQ(stream.read(&byte, -1), -1);
    EXPECT_EQ(stream.read(nullptr, 1), -1);
    EXPECT_EQ(stream.read(nullptr, 0), 0);
    EXPECT_EQ(stream.write(&byte, -1), -1);
    EXPECT_EQ(stream.write(nullptr, 1), -1);
    EXPECT_EQ(stream.write(nullptr, 0), 0);
    stream.seek(INT64_MAX, 0);
    EXPECT_EQ(write(stream, "x"), -1);
    stream.seek(INT64_MAX - 1, 0);
    EXPECT_EQ(write(stream, "x"), -1); // within 64 bits, beyond what the system can store
    EXPECT_EQ(stream.size(), 3);
    EXPECT_EQ(contents(), "abc");
}

TEST_F(CFileStreamTest, OpenRewindsAndReopens) {
    CFileStream stream(make("abcdef").c_str(), CFileStream::kRead);
    EXPECT_EQ(read(stream, 4), "abcd");
    EXPECT_EQ(stream.open(2, 1000), 0);
    EXPECT_EQ(read(stream, 4), "abcd");
    EXPECT_EQ(stream.close(), 0);
    EXPECT_FALSE(stream.isOpen());
    EXPECT_EQ(stream.close(), -1);
    make("other file");
    EXPECT_EQ(stream.open(2, 1000), 0);
    EXPECT_EQ(stream.size(), 10);
    EXPECT_EQ(read(stream, 5), "other"); // nothing is left of the first window
}

TEST_F(CFileStreamTest, WritesNothingWhenReading) {
    CFileStream stream(make("abc").c_str(), CFileStream::kRead);
    EXPECT_EQ(write(stream, "x"), -1);
    EXPECT_EQ(contents(), "abc");
}

TEST_F(CFileStreamTest, CreatesAndEmpties) {
    make("old bytes");
    CFileStream stream(path().c_str(), CFileStream::kCreate);
    EXPECT_EQ(stream.size(), 0);
    EXPECT_EQ(write(stream, "hello"), 5);
    EXPECT_EQ(stream.size(), 5);
    EXPECT_EQ(stream.seek(0, 1), 5);
    EXPECT_EQ(contents(), "hello"); // no closing needed
    EXPECT_EQ(readAt(stream, 1, 10), "ello");
    EXPECT_EQ(stream.close(), 0);
    EXPECT_EQ(stream.open(2, 1000), 0); // not emptied again
    EXPECT_EQ(read(stream, 5), "hello");
    EXPECT_EQ(write(stream, "!"), 1);
    EXPECT_EQ(contents(), "hello!");
}

TEST_F(CFileStreamTest, FillsAGapWithZeros) {
    CFileStream stream(path().c_str(), CFileStream::kCreate);
    stream.seek(3, 0);
    EXPECT_EQ(write(stream, "a"), 1);
    EXPECT_EQ(stream.size(), 4);
    EXPECT_EQ(readAt(stream, 0, 9), std::string("\0\0\0a", 4));
}

TEST_F(CFileStreamTest, SeesItsOwnWritesInTheWindow) {
    make(pattern(0, 10000));
    CFileStream stream(path().c_str(), CFileStream::kReadWrite);
    std::string expected = pattern(0, 10000);
    const auto change = [&](std::size_t offset, const std::string& text) {
        stream.seek(static_cast<std::int64_t>(offset), 0);
        ASSERT_EQ(write(stream, text), static_cast<std::int64_t>(text.size()));
        if (expected.size() < offset + text.size()) expected.resize(offset + text.size(), '\0');
        expected.replace(offset, text.size(), text);
    };
    // The window holds 2000 to 6096.
    ASSERT_EQ(readAt(stream, 2000, 10), expected.substr(2000, 10));
    change(3000, "inside");
    change(1998, "before");
    change(6090, "across the end");
    change(1990, std::string(5, 'n'));
    change(8000, "behind");
    EXPECT_EQ(readAt(stream, 2000, 4096), expected.substr(2000, 4096));
    ASSERT_EQ(readAt(stream, 2000, 10), expected.substr(2000, 10));
    change(1000, std::string(6000, 'w')); // over the whole window
    EXPECT_EQ(readAt(stream, 2000, 4096), expected.substr(2000, 4096));
    ASSERT_EQ(readAt(stream, 9990, 100), expected.substr(9990));
    change(10000, "longer"); // right behind a window that ended with the file
    change(10100, "with a gap");
    EXPECT_EQ(readAt(stream, 9990, 1000), expected.substr(9990));
    EXPECT_EQ(stream.size(), 10110);
    EXPECT_EQ(readAt(stream, 0, 20000), expected);
    EXPECT_EQ(contents(), expected);
}

TEST_F(CFileStreamTest, ReadsAlikeWhateverTheSteps) {
    constexpr std::int64_t kSize = 1500000;
    const std::string all = pattern(0, kSize);
    make(all);
    CFileStream stream(path().c_str(), CFileStream::kRead);
    EXPECT_EQ(read(stream, kSize + 5), all);
    for (const std::int64_t step : {7, 64, 4096, 4097, 65535, 65536, 65537, 700000}) {
        stream.seek(0, 0);
        std::string joined;
        for (std::string part = read(stream, step); !part.empty(); part = read(stream, step))
            joined += part;
        EXPECT_TRUE(joined == all) << step;
    }
    std::mt19937 random(1); // a fixed walk
    for (int i = 0; i < 3000; ++i) {
        const std::int64_t offset = random() % (kSize + 1000);
        const std::int64_t length = random() % (i % 10 == 0 ? 600000u : 300u);
        const std::string expected =
            offset < kSize ? all.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(length))
                           : "";
        ASSERT_TRUE(readAt(stream, offset, length) == expected) << offset << " " << length;
        ASSERT_EQ(stream.seek(0, 1), offset + static_cast<std::int64_t>(expected.size()));
    }
}

TEST_F(CFileStreamTest, KeepsUpWithAMirrorWhenReadingAndWriting) {
    std::string mirror = pattern(0, 50000);
    make(mirror);
    CFileStream stream(path().c_str(), CFileStream::kReadWrite);
    std::mt19937 random(2);
    for (int i = 0; i < 5000; ++i) {
        const std::size_t offset = random() % 60000;
        const std::size_t length = random() % (i % 20 == 0 ? 9000 : 100);
        stream.seek(static_cast<std::int64_t>(offset), 0);
        if (i % 3 == 0) {
            const std::string text(length, static_cast<char>(i));
            ASSERT_EQ(write(stream, text), static_cast<std::int64_t>(length));
            if (length > 0 && mirror.size() < offset + length) mirror.resize(offset + length, '\0');
            mirror.replace(std::min(offset, mirror.size()), length, text);
        } else {
            const std::string expected = offset < mirror.size() ? mirror.substr(offset, length) : "";
            ASSERT_TRUE(read(stream, static_cast<std::int64_t>(length)) == expected) << i;
        }
        ASSERT_EQ(stream.size(), static_cast<std::int64_t>(mirror.size()));
    }
    EXPECT_TRUE(contents() == mirror);
}

TEST_F(CFileStreamTest, ReachesBeyond32Bits) {
    constexpr std::int64_t kFar = (std::int64_t{5} << 30) + 3;
    CFileStream stream(path().c_str(), CFileStream::kCreate);
    stream.seek(kFar, 0);
    if (write(stream, "far") != 3) GTEST_SKIP() << "no room for a sparse file of 5 GiB";
    EXPECT_EQ(stream.size(), kFar + 3);
    EXPECT_EQ(readAt(stream, kFar - 1, 10), std::string("\0far", 4));
    CFileStream second(path().c_str(), CFileStream::kRead);
    EXPECT_EQ(second.size(), kFar + 3);
    EXPECT_EQ(second.seek(kFar, 1), kFar);
    EXPECT_EQ(read(second, 3), "far");
}

TEST_F(CFileStreamTest, OpensUtf8Names) {
    const std::string name = path("film \xC3\xA5\xE2\x82\xAC\xF0\x9F\x8E\xAC.mov");
    {
        CFileStream stream(name.c_str(), CFileStream::kCreate);
        ASSERT_EQ(write(stream, "abc"), 3);
    }
    EXPECT_TRUE(fs::exists(std::u8string(name.begin(), name.end())));
    CFileStream stream(name.c_str(), CFileStream::kRead);
    EXPECT_EQ(read(stream, 3), "abc");
}

TEST_F(CFileStreamTest, EndsEarlyWhenTheFileShrinks) {
    make(pattern(0, 20000));
    CFileStream stream(path().c_str(), CFileStream::kRead);
    EXPECT_EQ(read(stream, 10), pattern(0, 10));
    fs::resize_file(path(), 5000);
    EXPECT_EQ(readAt(stream, 4990, 100), pattern(4990, 10));
    EXPECT_EQ(readAt(stream, 10000, 100), "");
    EXPECT_EQ(readAt(stream, 4000, 15000), pattern(4000, 1000));
}

TEST_F(CFileStreamTest, ReadsHeadersAndSmallFramesFromTheWindow) {
    if (!readCalls()) GTEST_SKIP() << "the system does not count its calls";
    constexpr std::int64_t kSize = 4 << 20;
    make(pattern(0, kSize));
    unsigned char bytes[64];

    // Headers with a skip of 40 bytes after each: the window doubles seven times (512 bytes to 64
    // KiB), then stays.
    CFileStream headers(path().c_str(), CFileStream::kRead);
    EXPECT_LE(countReadCalls([&] {
                  for (std::int64_t at = 0; at < kSize; at += 48) {
                      headers.seek(at, 0);
                      headers.read(bytes, 8);
                  }
              }),
              7 + 64 + 2);

    CFileStream frames(path().c_str(), CFileStream::kRead);
    EXPECT_LE(countReadCalls([&] {
                  while (frames.read(bytes, 24) > 0) {
                  }
              }),
              7 + 64 + 2);

    // A large read after the window goes to the file once.
    CFileStream large(path().c_str(), CFileStream::kRead);
    std::string room(kSize, '?');
    large.read(bytes, 8);
    EXPECT_EQ(countReadCalls([&] { large.read(reinterpret_cast<unsigned char*>(room.data()), 1 << 20); }), 1);
    room.resize(1 << 20);
    EXPECT_TRUE(room == pattern(8, 1 << 20));

    // Seeks alone, and the end of the file, cost nothing.
    EXPECT_EQ(countReadCalls([&] {
                  for (std::int64_t at = 0; at < 2 * kSize; at += 1000)
                      large.seek(at, 0);
                  large.read(bytes, 8);
                  large.size();
              }),
              0);

    // Far jumps cost one call each.
    EXPECT_EQ(countReadCalls([&] {
                  for (std::int64_t i = 1; i <= 30; ++i) {
                      large.seek(i % 2 ? i * 100000 : kSize - i * 50000, 0);
                      large.read(bytes, 50);
                  }
              }),
              30);
}

} // namespace
