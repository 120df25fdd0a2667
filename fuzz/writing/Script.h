// Arbitrary bytes as the choices of a caller. When they are used up, every choice is 0.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <vector>

namespace writing {

class Script {
public:
    Script(const unsigned char* bytes, std::size_t size) : at_(bytes), end_(bytes + size) {}

    bool isDone() const { return at_ == end_; }
    unsigned char u8() { return isDone() ? 0 : *at_++; }
    bool flag() { return (u8() & 1) != 0; }
    unsigned short u16() { return static_cast<unsigned short>(big(2)); }
    unsigned int u32() { return static_cast<unsigned int>(big(4)); }
    std::uint64_t u64() { return big(8); }
    unsigned int below(std::size_t count) { return static_cast<unsigned int>(u8() % count); }

    template <class T, std::size_t N>
    T pick(const T (&choices)[N]) {
        return choices[below(N)];
    }

    /// Mostly a small number of six hundredths, at times what no caller should say.
    double number() {
        using Limits = std::numeric_limits<double>;
        static const double kOdd[] = {Limits::quiet_NaN(),
                                      Limits::infinity(),
                                      -Limits::infinity(),
                                      Limits::max(),
                                      -Limits::max(),
                                      Limits::denorm_min(),
                                      -1.0,
                                      -0.0,
                                      4294967295.5,
                                      9.3e18};
        const unsigned char kind = u8();
        if (kind < 160) return kind / 600.0;
        if (kind < 200) return u16() / 600.0;
        if (kind < 230) return kOdd[kind % std::size(kOdd)];
        const std::uint64_t bits = u64();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    /// At most `most` bytes, as a length in front of them says.
    std::vector<unsigned char> bytes(std::size_t most) {
        const auto left = static_cast<std::size_t>(end_ - at_);
        const std::size_t count = std::min({static_cast<std::size_t>(u8()), most, left ? left - 1 : 0});
        std::vector<unsigned char> taken(at_, at_ + count);
        at_ += count;
        return taken;
    }

private:
    std::uint64_t big(int width) {
        std::uint64_t value = 0;
        for (int i = 0; i < width; ++i) {
            value = value << 8 | u8();
        }
        return value;
    }

    const unsigned char* at_;
    const unsigned char* end_;
};

} // namespace writing
