// What the fuzzer has found, once more: every file of fuzz/corpus through the function that the fuzzer calls.
#include "hostile/Harness.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

TEST(HostileCorpus, EveryFindStaysHarmless) {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KETRAQT_FUZZ_CORPUS)) {
        if (!entry.is_regular_file() || entry.path().extension() != ".bin") continue;
        SCOPED_TRACE(entry.path().filename().string());
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        ASSERT_FALSE(bytes.empty());
        hostile::exerciseInput(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        ++files;
    }
    EXPECT_GT(files, 0u);
}
