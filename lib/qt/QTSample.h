// One sample of a hint track: RTP packets and their payloads.
#pragma once

#include <qt/QTFrame.h>
#include <qt/QTRTPPacket.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// Collects the packets of a hint sample and builds its bytes:
///
/// 0 packet count (16), 2 reserved (16), then for each packet an entry: 0 relative transmission time (32), 4
/// RTP header bits (P 13, X 12, M 7, payload type), 6 sequence number, 8 flags, 10 entry count (16 each), 12
/// the TLV data if flag 4 is set, and a data constructor: type, track reference (8 each), payload size (16),
/// sample number, offset (32 each), bytes and samples of a compression block (16 each). Behind the entries
/// stand the payloads, to which the offsets point.
///
/// Entry lengths and offsets follow from the TLV size of the first packet: give every packet the same.
class KETRA_QT_API QTSample {
public:
    explicit QTSample(unsigned int sampleNumber); ///< from 1
    QTSample(const QTSample&) = delete;
    QTSample& operator=(const QTSample&) = delete;
    ~QTSample();

    /// Adopts the packet and sets its sample number and offset. The first packet gives the play time, every
    /// one adds its size and duration. -1, nothing taken, for null.
    int addRTPPacket(QTRTPPacket* packet);
    /// The sample's bytes with play time and duration; the caller owns the frame. A sample without packets
    /// gives four zero bytes; null above 4 GiB.
    QTFrame* makeQTFrame();

    unsigned int getSampleNumber() const { return sampleNumber_; } ///< from 1
    unsigned int getDataSize() const { return dataSize_; }         ///< bytes of all payloads
    double getPlayTime() const { return playTime_; }               ///< seconds
    int setPlayTime(double seconds) { return playTime_ = seconds, 0; }
    double getDuration() const { return duration_; } ///< seconds
    int setDuration(double seconds) { return duration_ = seconds, 0; }

    // Each writes big-endian at *cursor and advances it; none checks bounds.
    static int putUInt8(unsigned char** cursor, unsigned char v);
    static int putUInt16(unsigned char** cursor, unsigned short v);
    static int putUInt32(unsigned char** cursor, unsigned int v);
    static int putSInt32(unsigned char** cursor, int v);

private:
    unsigned int sampleNumber_;
    unsigned int dataSize_ = 0;
    double playTime_ = 0;
    double duration_ = 0;
    std::vector<std::unique_ptr<QTRTPPacket>> packets_;
};

} // namespace Ketra::QT
