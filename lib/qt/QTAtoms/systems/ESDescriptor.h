// Elementary stream descriptor: one stream and what decodes it.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>

namespace Ketra::QT {

/// Tag 3: ES_ID (16), a byte of stream dependence flag (1 bit), URL flag (1), OCR stream flag (1) and stream
/// priority (5), then by these flags depends-on ES_ID (16), URL (a length byte and the bytes), OCR ES_ID
/// (16), then the nested decoder configuration (tag 4) and sync layer configuration (tag 6).
///
/// The length byte of a URL is not counted in the size: a descriptor with a URL is one byte longer than it
/// says.
class KETRA_QT_API ESDescriptor : public MP4ObjectData {
public:
    ESDescriptor();
    ESDescriptor(unsigned int size, unsigned char tag);
    ~ESDescriptor() override;

    int getInfo(unsigned char** cursor) override;
    QTFrame* serialize() override;
    unsigned int updateSize() override;

    unsigned short getES_ID() const { return esID_; }
    int setES_ID(unsigned short v) { return esID_ = v, 0; }
    unsigned char getStreamDependenceFlag() const { return streamDependenceFlag_; }
    int setStreamDependenceFlag(unsigned char v) { return streamDependenceFlag_ = v, 0; }
    unsigned char getURLFlag() const { return urlFlag_; }
    int setURLFlag(unsigned char v) { return urlFlag_ = v, 0; }
    unsigned char getOCRStreamFlag() const { return ocrStreamFlag_; }
    int setOCRStreamFlag(unsigned char v) { return ocrStreamFlag_ = v, 0; }
    unsigned char getStreamPriority() const { return streamPriority_; } ///< 0 to 31
    int setStreamPriority(unsigned char v) { return streamPriority_ = v, 0; }
    unsigned short getDependsOnES_ID() const { return dependsOnESID_; }
    int setDependsOnES_ID(unsigned short v) { return dependsOnESID_ = v, 0; }
    unsigned short getOCR_ES_ID() const { return ocrESID_; }
    int setOCR_ES_ID(unsigned short v) { return ocrESID_ = v, 0; }

    int setURL(unsigned char* bytes,
               unsigned char length); ///< adopts a malloc block; -1 for null with a length
    unsigned char* getURL() const;    ///< borrowed, without a terminating zero
    unsigned char getURLLength() const;

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned short esID_ = 0;
    unsigned char streamDependenceFlag_ = 0;
    unsigned char urlFlag_ = 0;
    unsigned char ocrStreamFlag_ = 0;
    unsigned char streamPriority_ = 0;
    unsigned short dependsOnESID_ = 0;
    std::unique_ptr<wire::Block> url_;
    unsigned short ocrESID_ = 0;
};

} // namespace Ketra::QT
