// Object descriptor: one object of an MPEG-4 presentation.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>

namespace Ketra::QT {

/// Tag 0x11: a word of ID (10 bits), URL flag (1) and five reserved bits; with the URL flag a URL (a length
/// byte and the bytes); then references to elementary streams, which are read with tag 0x11 and written with
/// 0x0F.
class KETRA_QT_API ObjectDescriptor : public MP4ObjectData {
public:
    ObjectDescriptor();
    ObjectDescriptor(unsigned int size, unsigned char tag);
    ~ObjectDescriptor() override;

    int getInfo(unsigned char** cursor) override;
    QTFrame* serialize() override;
    /// 2 (or the URL and 3) and what is nested, by the sizes that the nested descriptors hold.
    unsigned int updateSize() override;

    unsigned short getID() const { return id_; } ///< 10 bits
    int setID(unsigned short v) { return id_ = v, 0; }
    unsigned char getURLFlag() const { return urlFlag_; }
    int setURLFlag(unsigned char v) { return urlFlag_ = v, 0; }
    unsigned char getReserved() const { return reserved_; } ///< as read; always written as 31
    int setReserved(unsigned char v) { return reserved_ = v, 0; }

    int setURL(unsigned char* bytes,
               unsigned char length); ///< adopts a malloc block; -1 for null with a length
    unsigned char* getURL() const;    ///< borrowed, without a terminating zero
    unsigned char getURLLength() const;

    int addESIDRefReference(unsigned int esid); ///< appends a reference to an elementary stream

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned short id_ = 0;
    std::unique_ptr<wire::Block> url_;
    unsigned char urlFlag_ = 0;
    unsigned char reserved_ = 0x1F;
};

} // namespace Ketra::QT
