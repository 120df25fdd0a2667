// The base of the MPEG-4 descriptors.
#pragma once

#include <qt/QTFrame.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT {

/// A descriptor: a tag byte, a size and a payload. It owns the descriptors nested in it. The size is that of
/// the payload and is valid after updateSize().
class KETRA_QT_API MP4ObjectData {
public:
    MP4ObjectData();
    MP4ObjectData(unsigned int size, unsigned char tag);
    MP4ObjectData(const MP4ObjectData&) = delete;
    MP4ObjectData& operator=(const MP4ObjectData&) = delete;
    virtual ~MP4ObjectData();

    /// Reads the payload behind tag and size, of which getSize() bytes must exist, and advances the cursor
    /// over what was read. Always 0. The base skips the payload.
    virtual int getInfo(unsigned char** cursor);
    /// Tag, four size bytes and payload; the caller owns the frame. Sizes from 256 on lose their high bits.
    virtual QTFrame* serialize();
    virtual unsigned int updateSize(); ///< recomputes, stores and returns the payload size

    unsigned char getTag() const { return tag_; }
    unsigned int getSize() const { return size_; }

    int addDescriptor(MP4ObjectData* descriptor);             ///< adopts; -1 for null or itself
    std::vector<MP4ObjectData*> getDescriptors() const;       ///< borrowed
    MP4ObjectData* getDescriptorNumber(unsigned int n) const; ///< from 0; null out of range
    MP4ObjectData* getDescriptorTag(unsigned char tag) const; ///< the last one with the tag, or null

    /// Reads an expandable size (seven bits a byte, high bit = more follows) and counts the bytes down.
    static unsigned int getMP4ObjectSize(unsigned char** cursor, unsigned int* remaining);
    // Big-endian numbers at *cursor, which advances. None checks bounds.
    static unsigned char getUInt8(unsigned char** cursor);
    static unsigned short getUInt16(unsigned char** cursor);
    static unsigned int getUInt24(unsigned char** cursor);
    static unsigned int getUInt32(unsigned char** cursor);
    static int putUInt8(unsigned char** cursor, unsigned char v);
    static int putUInt16(unsigned char** cursor, unsigned short v);
    static int putUInt32(unsigned char** cursor, unsigned int v);

protected:
    unsigned int nestedSize(); ///< all nested descriptors with tag and size bytes, after their updateSize()
    unsigned int nestedStoredSize() const; ///< the same with the sizes that they hold

    unsigned int size_ = 0; ///< of the payload, in bytes
    unsigned char tag_ = 0; ///< which descriptor it is

private:
    std::vector<std::unique_ptr<MP4ObjectData>> descriptors_;
};

} // namespace Ketra::QT
