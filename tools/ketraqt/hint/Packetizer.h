// How the samples of a medium become RTP payloads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Ketra::Tool {

using ByteBlock = std::vector<unsigned char>;

/// Bytes of somebody else.
struct ByteView {
    const unsigned char* data = nullptr;
    std::size_t size = 0;

    unsigned char operator[](std::size_t i) const { return data[i]; }
    const unsigned char* begin() const { return data; }
    const unsigned char* end() const { return data + size; }
    ByteView part(std::size_t from, std::size_t count) const { return {data + from, count}; }
};

/// A sample of the media track; times in ticks of the RTP clock.
struct MediaSample {
    ByteView bytes;
    std::int64_t decode = 0;
    std::int64_t presentation = 0;
    std::int64_t duration = 0;
    bool key = false;
};

struct Payload {
    ByteBlock bytes;
    bool marker = false;
};

/// The packets of one hint sample. All carry the RTP timestamp of `presentation`.
struct PacketGroup {
    std::int64_t decode = 0;
    std::int64_t presentation = 0;
    std::int64_t duration = 0;
    bool key = false;
    std::vector<Payload> payloads;
};

/// What the session description says of the stream.
struct StreamFormat {
    bool video = false;
    std::string encoding;       ///< RTP encoding name
    unsigned int clockRate = 0; ///< ticks a second
    unsigned int channels = 0;  ///< of audio
    std::string parameters;     ///< what stands in "a=fmtp" behind the payload type, or empty
};

/// Samples go in by add(), in decode order; groups come out of take() as they are complete.
class Packetizer {
public:
    Packetizer(StreamFormat format, std::size_t largestPayload)
        : format_(std::move(format)), largest_(largestPayload) {}
    Packetizer(const Packetizer&) = delete;
    Packetizer& operator=(const Packetizer&) = delete;
    virtual ~Packetizer() = default;

    /// Throws ToolError for a sample that is not what the format promises.
    virtual void add(const MediaSample& sample) = 0;
    virtual void finish() {} ///< completes what waits for more samples

    std::vector<PacketGroup> take() { return std::exchange(groups_, {}); }
    const StreamFormat& format() const { return format_; }

protected:
    std::size_t largest() const { return largest_; } ///< bytes of a payload
    void put(PacketGroup group) { groups_.push_back(std::move(group)); }
    static PacketGroup groupOf(const MediaSample& sample) {
        return {sample.decode, sample.presentation, sample.duration, sample.key, {}};
    }

private:
    StreamFormat format_;
    std::size_t largest_;
    std::vector<PacketGroup> groups_;
};

} // namespace Ketra::Tool
