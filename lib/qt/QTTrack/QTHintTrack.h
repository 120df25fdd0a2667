// Hint tracks: how a streaming server packs a media track into RTP packets.
#pragma once

#include <base/CString.h>
#include <qt/QTTrack/QTTrack.h>

#include <memory>
#include <utility>
#include <vector>

namespace Ketra::QT {

class HINF;
class QTRTPPacket;
class QTSample;

/// What video and audio hint tracks share. The application sets encoding, clock rate, payload type and
/// transport, numbers its packets, adds them, and ends each hint sample with finishSample(), whose frame it
/// adds as a sample of this track. Setters return 0 unless said otherwise.
class KETRA_QT_API QTHintTrack : public QTTrack {
public:
    QTHintTrack();
    /// Reads the track's header, and payload type, encoding and clock rate from its hint statistics. Throws
    /// CException without "tkhd" or "mdia".
    explicit QTHintTrack(QTAtom* trak);
    QTHintTrack(const QTHintTrack& other); ///< begins a sample of its own
    QTHintTrack& operator=(const QTHintTrack& other);
    ~QTHintTrack() override;

    int prepareForWriting() override;     ///< 0: without a medium there is nothing to prepare
    unsigned int getType() override;      ///< "hint"
    int parseStsd(QTAtom* stsd) override; ///< takes the data format; always 0
    int addSdpFile() override;            ///< 0: no text without a medium

    unsigned int getPayloadType() const { return payloadType_; } ///< RTP payload type, 0 to 127
    int setPayloadType(unsigned int v) { return payloadType_ = v, 0; }
    unsigned int getClockRate() const { return clockRate_; } ///< RTP ticks a second
    int setClockRate(unsigned int v) { return clockRate_ = v, 0; }
    unsigned int getParameter() const { return parameter_; } ///< of the encoding: audio channels
    int setParameter(unsigned int v) { return parameter_ = v, 0; }
    CString getEncoding() const { return encoding_; } ///< RTP encoding name, such as "AMR"
    int setEncoding(CString v) { return encoding_ = std::move(v), 0; }
    CString getTransport() const { return transport_; } ///< such as "RTP/AVP"
    int setTransport(CString v) { return transport_ = std::move(v), 0; }
    /// Further lines of the session description, without line ends.
    std::vector<CString> getAttributes() const { return attributes_; }
    int setAttributes(const std::vector<CString>& v) { return attributes_ = v, 0; }
    unsigned short getRTPPacketNumber() const { return rtpPacketNumber_; } ///< also the packets of the track
    int setRTPPacketNumber(unsigned short v) { return rtpPacketNumber_ = v, 0; }
    unsigned short getNextRTPPacketNumber() { return ++rtpPacketNumber_; } ///< 1 the first time; wraps

    // Fields of the hint media header; -1 without one (QuickTime movies have none).
    int setHintMaxBitrate(unsigned int bitsPerSecond);
    int setHintAvgBitrate(unsigned int bitsPerSecond);
    int setHintSlidingAvgBitrate(unsigned int bitsPerMinute);
    int setHintMaxPacketSize(unsigned short bytes);
    int setHintAvgPacketSize(unsigned short bytes);

    int addRTPPacket(QTRTPPacket* packet); ///< adopts into the current sample; -1, not taken, for null
    /// The current sample as a frame, which the caller owns; the next sample begins.
    QTFrame* finishSample();

    unsigned int getSDPBandwidth() const { return sdpBandwidth_; }             ///< kbit/s, once prepared
    unsigned int getHintAverageBitRate() const { return hintAverageBitRate_; } ///< bit/s, once prepared
    /// Appends a set of hint statistics to "hinf", which is made when it is missing: kind "vide" or "audi".
    /// -1 for a track without a tree.
    int addHinfAtoms(unsigned int kind);

protected:
    QTHintTrack(QTAtom* trak, const char* function); ///< the function for the exception

    // The steps of prepareForWriting() that video and audio hint tracks share.
    void prepareHeaders(); ///< averages, handler, bandwidth, header flags, sample entry
    void prepareMediaHeader(unsigned short averagePacketSize); ///< fills in "hmhd"
    void storeHintDescription();                               ///< into the sample description
    int addSdpText(const CString& text);                       ///< to "hnti"; -1 without one
    CString getAttributeLines() const;

private:
    void begin(unsigned int sampleNumber);
    void readStatistics();

    std::unique_ptr<QTSample> sample_;
    unsigned short rtpPacketNumber_ = 0;
    unsigned short largestPacket_ = 0; // payload bytes
    CString encoding_;
    unsigned int clockRate_ = 0;
    unsigned int parameter_ = 0;
    CString transport_;
    unsigned int payloadType_ = 0;
    std::vector<CString> attributes_;
    unsigned int hintAverageBitRate_ = 0;
    unsigned int sdpBandwidth_ = 0;
};

} // namespace Ketra::QT
