// Clock, memory readings, the sum over everything that was read, and the lines that bench/report.py collects.
// Keys, sums and the pseudo-random walk are those of the peers' programs, so equal lines mean equal samples.
#pragma once

#include <chrono>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <malloc.h>

namespace measure {

inline double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct Memory {
    long residentKb = 0;
    long peakKb = 0;
    std::size_t heap = 0;
};

inline Memory memory() {
    Memory m;
    if (std::FILE* status = std::fopen("/proc/self/status", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, status)) {
            std::sscanf(line, "VmRSS: %ld", &m.residentKb);
            std::sscanf(line, "VmHWM: %ld", &m.peakKb);
        }
        std::fclose(status);
    }
    const struct mallinfo2 info = mallinfo2();
    m.heap = info.uordblks + info.hblkhd;
    return m;
}

/// The kernel's peak starts again from what is resident now.
inline void resetPeak() {
    if (std::FILE* f = std::fopen("/proc/self/clear_refs", "w")) {
        std::fputs("5", f);
        std::fclose(f);
    }
}

struct Sum {
    std::uint64_t count = 0, bytes = 0, touch = 0, dts = 0, cts = 0, keys = 0, errors = 0;

    void add(const unsigned char* data, std::size_t size, std::int64_t decode, std::int64_t shown, bool key) {
        ++count;
        bytes += size;
        dts += static_cast<std::uint64_t>(decode);
        cts += static_cast<std::uint64_t>(shown);
        keys += key ? 1 : 0;
        if (size) touch += data[0] + 3u * data[size / 2] + 7u * data[size - 1];
    }
};

/// xorshift, 64 bits; the high half scaled to [0, bound).
class Walk {
public:
    std::uint32_t next(std::uint32_t bound) {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<std::uint32_t>(((state_ >> 32) * bound) >> 32);
    }

private:
    std::uint64_t state_ = 0x9E3779B97F4A7C15u;
};

constexpr std::uint32_t kSeeks = 10000;

inline const char* fileName(const char* path) {
    const char* slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

inline void printOpen(const char* file, double seconds, const Memory& before, const Memory& after,
                      std::uint64_t samples) {
    const double n = samples ? static_cast<double>(samples) : 1.0;
    const double heap = static_cast<double>(after.heap) - static_cast<double>(before.heap);
    const double peak = static_cast<double>(after.peakKb - before.residentKb) * 1024;
    std::printf("{\"peer\":\"ketraqt\",\"measure\":\"open\",\"file\":\"%s\",\"seconds\":%.6f,\"peak_kb\":%ld,"
                "\"rss_kb\":%ld,\"heap\":%.0f,\"samples\":%" PRIu64
                ",\"heap_per_sample\":%.2f,\"peak_per_sample\":%.2f}\n",
                fileName(file), seconds, after.peakKb - before.residentKb,
                after.residentKb - before.residentKb, heap, samples, heap / n, peak / n);
}

inline void printRead(const char* measure, const char* file, double seconds, const Sum& s) {
    std::printf("{\"peer\":\"ketraqt\",\"measure\":\"%s\",\"file\":\"%s\",\"seconds\":%.6f,\"n\":%" PRIu64
                ",\"per_s\":%.0f,\"bytes\":%" PRIu64 ",\"touch\":%" PRIu64 ",\"dts\":%" PRIu64
                ",\"cts\":%" PRIu64 ",\"keys\":%" PRIu64 ",\"errors\":%" PRIu64 "}\n",
                measure, fileName(file), seconds, s.count, static_cast<double>(s.count) / seconds, s.bytes,
                s.touch, s.dts, s.cts, s.keys, s.errors);
}

inline void printWrite(double seconds, double closing, const Memory& before, const Memory& after,
                       std::uint64_t count) {
    const double peak = static_cast<double>(after.peakKb - before.residentKb) * 1024;
    std::printf("{\"peer\":\"ketraqt\",\"measure\":\"write\",\"n\":%" PRIu64
                ",\"seconds\":%.6f,\"close_seconds\":%.6f,\"per_s\":%.0f,\"peak_kb\":%ld,"
                "\"peak_per_sample\":%.2f}\n",
                count, seconds, closing, static_cast<double>(count) / seconds,
                after.peakKb - before.residentKb, peak / static_cast<double>(count));
}

} // namespace measure
