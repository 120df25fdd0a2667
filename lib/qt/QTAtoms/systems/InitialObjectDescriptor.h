// Initial object descriptor: the entry point of an MPEG-4 presentation.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>

namespace Ketra::QT {

/// Tag 0x10 (read with tag 2 too, always written with 0x10): a word of ID (10 bits), URL flag (1), inline
/// profile level flag (1) and four reserved bits; with the URL flag a URL (a length byte and the bytes), else
/// five profile-level bytes; then elementary streams (tag 3) and references to tracks (tag 0x0E).
class KETRA_QT_API InitialObjectDescriptor : public MP4ObjectData {
public:
    InitialObjectDescriptor();
    InitialObjectDescriptor(unsigned int size, unsigned char tag);
    ~InitialObjectDescriptor() override;

    int getInfo(unsigned char** cursor) override;
    QTFrame* serialize() override;
    /// 7 (or the URL and 3) and what is nested, by the sizes that the nested descriptors hold.
    unsigned int updateSize() override;

    unsigned short getID() const { return id_; } ///< 10 bits
    int setID(unsigned short v) { return id_ = v, 0; }
    unsigned char getURLFlag() const { return urlFlag_; }
    int setURLFlag(unsigned char v) { return urlFlag_ = v, 0; }
    unsigned char getIncludeInlineProfileLevelFlag() const { return includeInlineProfileLevelFlag_; }
    int setIncludeInlineProfileLevelFlag(unsigned char v) { return includeInlineProfileLevelFlag_ = v, 0; }
    unsigned char getReserved() const { return reserved_; } ///< as read; always written as 15
    int setReserved(unsigned char v) { return reserved_ = v, 0; }
    unsigned char getODProfileLevelIndication() const { return odProfileLevel_; }
    int setODProfileLevelIndication(unsigned char v) { return odProfileLevel_ = v, 0; }
    unsigned char getSceneProfileLevelIndication() const { return sceneProfileLevel_; }
    int setSceneProfileLevelIndication(unsigned char v) { return sceneProfileLevel_ = v, 0; }
    unsigned char getAudioProfileLevelIndication() const { return audioProfileLevel_; }
    int setAudioProfileLevelIndication(unsigned char v) { return audioProfileLevel_ = v, 0; }
    unsigned char getVisualProfileLevelIndication() const { return visualProfileLevel_; }
    int setVisualProfileLevelIndication(unsigned char v) { return visualProfileLevel_ = v, 0; }
    unsigned char getGraphicsProfileLevelIndication() const { return graphicsProfileLevel_; }
    int setGraphicsProfileLevelIndication(unsigned char v) { return graphicsProfileLevel_ = v, 0; }

    int setURL(unsigned char* bytes,
               unsigned char length); ///< adopts a malloc block; -1 for null with a length
    unsigned char* getURL() const;    ///< borrowed, without a terminating zero
    unsigned char getURLLength() const;

    int addESIDIncReference(unsigned int trackID); ///< appends a reference to a track

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned short id_ = 0;
    std::unique_ptr<wire::Block> url_;
    unsigned char urlFlag_ = 0;
    unsigned char includeInlineProfileLevelFlag_ = 0;
    unsigned char reserved_ = 0x0F;
    unsigned char odProfileLevel_ = 0;
    unsigned char sceneProfileLevel_ = 0;
    unsigned char audioProfileLevel_ = 0;
    unsigned char visualProfileLevel_ = 0;
    unsigned char graphicsProfileLevel_ = 0;
};

} // namespace Ketra::QT
