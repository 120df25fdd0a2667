// AMR and AMR-WB in RTP, octet-aligned: a table of contents, then the speech of its frames.
#pragma once

#include "Packetizer.h"

namespace Ketra::Tool {

class AmrPacketizer : public Packetizer {
public:
    AmrPacketizer(StreamFormat format, std::size_t largestPayload, bool wideBand);
    void add(const MediaSample& sample) override;
    void finish() override;

private:
    std::size_t speechSize(unsigned char header) const;
    void addFrame(ByteView frame, const MediaSample& timing);

    bool wideBand_;
    PacketGroup waiting_;
    ByteBlock contents_; ///< one byte for each frame that waits
    ByteBlock speech_;
    bool silent_ = true; ///< the next packet begins speech
};

} // namespace Ketra::Tool
