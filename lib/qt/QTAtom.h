// The base of every atom class: header values, owned children, and the byte helpers that all share.
#pragma once

#include <qt/QTFrame.h>

#include <cstdint>
#include <vector>

namespace Ketra::QT {

class QTUtils;

/// One box of a movie file. An atom owns its children and deletes them with itself. It holds the size that it
/// was read with or last given; only updateSize() recomputes it.
class KETRA_QT_API QTAtom {
public:
    QTAtom();
    QTAtom(unsigned int size, unsigned int type); ///< built in memory
    /// A freshly read header: total size in bytes, four-character code, position of the header in the stream.
    QTAtom(std::uint64_t size, unsigned int type, std::uint64_t offset, unsigned char headerSize,
           QTUtils* utils, bool container);
    /// Takes size, type, header size, reader and offset over from a header atom and deletes it.
    explicit QTAtom(QTAtom* header);
    QTAtom(const QTAtom& other);            ///< lists the same children and does not own them
    QTAtom& operator=(const QTAtom& other); ///< likewise; releases what it held before
    virtual ~QTAtom();

    /// Recomputes the size bottom-up, stores and returns it. A leaf returns the size it holds; a container
    /// counts 8 bytes of header plus the low 32 bits of each child's size.
    virtual std::uint64_t updateSize();
    /// Reads the payload from the reader, which stands behind the header. 0, or -1 when the payload cannot be
    /// had. The base skips the payload and returns -1 unless that lands on the end of the atom.
    virtual int parse();
    /// The atom's bytes, header first; the caller owns the frame. Null for an atom that has nothing to write:
    /// its parent leaves it out. The base writes payload bytes that it kept, if any.
    virtual QTFrame* serialize();

    std::uint64_t getSize() const { return size_; }
    unsigned int getType() const { return type_; }
    std::uint64_t getOffset() const { return offset_; }
    unsigned char getHeaderSize() const { return headerSize_; } ///< 8, or 16 with a 64-bit size; 0 in memory
    QTUtils* getUtils() const { return utils_; }
    bool isContainer() const { return container_; }
    std::vector<QTAtom*> getChildren() const { return children_; } ///< borrowed, in file order
    QTAtom* getAtomOfType(unsigned int type) const; ///< first direct child of the type, or null
    /// Adopts the child and grows by its size. -1, nothing taken, for a leaf, null or the atom itself.
    int addChild(QTAtom* child);
    /// Unlinks the first direct child of the type; it belongs to the caller from then on. The size stays.
    void removeAtomOfType(unsigned int type);

    static unsigned int getNewCurrentTime(); ///< now, in seconds since 1904-01-01 UTC

    /// Reads an expandable size (seven bits a byte, high bit = more follows) and counts the bytes down.
    static unsigned int getMP4ObjectSize(unsigned char** cursor, unsigned int* remaining);

    static unsigned short BE16(unsigned short v); ///< byte reversal, like the two below
    static short BES16(short v);                  ///< likewise
    static unsigned int BE32(unsigned int v);     ///< likewise

    // Cursor helpers: each reads or writes at *cursor and advances it. None checks bounds. Big-endian,
    // except: getUInt24 reads least significant byte first, putUInt24 and putUInt48 keep the low four bits of
    // each byte, getUInt48 does not shift its first word and sign-extends its second, and the fixed-point
    // readers return integer parts only (getFixed32 with its two integer bytes in reversed order).
    static unsigned char getUInt8(unsigned char** cursor);
    static unsigned short getUInt16(unsigned char** cursor);
    static unsigned int getUInt24(unsigned char** cursor);
    static unsigned int getUInt32(unsigned char** cursor);
    static std::uint64_t getUInt48(unsigned char** cursor);
    static std::uint64_t getUInt64(unsigned char** cursor);
    static float getFixed16(unsigned char** cursor);
    static float getFixed32(unsigned char** cursor);
    static int putUInt8(unsigned char** cursor, unsigned char v);
    static int putUInt16(unsigned char** cursor, unsigned short v);
    static int putSInt16(unsigned char** cursor, short v);
    static int putUInt24(unsigned char** cursor, unsigned int v);
    static int putUInt32(unsigned char** cursor, unsigned int v);
    static int putUInt48(unsigned char** cursor, std::uint64_t v);
    static int putUInt64(unsigned char** cursor, std::uint64_t v);
    static int putFixed16(unsigned char** cursor, float v);       ///< 8.8, fraction scaled by 255
    static int putFixed32(unsigned char** cursor, float v);       ///< 16.16, fraction scaled by 65535
    static int putFixed32Matrix(unsigned char** cursor, float v); ///< 2.30, fraction scaled by 2^30 - 1
    /// Nine words taken as unsigned integers, 36 bytes: the third column as 2.30, all else as 16.16.
    static int putMatrix(unsigned char** cursor, unsigned int* m);
    // Copy n bytes unchanged and advance by n rounded down to the unit; return dst.
    static unsigned char* copyUInt8Data(unsigned char* dst, unsigned char** cursor, unsigned int n);
    static unsigned char* copyUInt16Data(unsigned char* dst, unsigned char** cursor,
                                         unsigned int n); ///< in words of two bytes
    static unsigned char* copyUInt32Data(unsigned char* dst, unsigned char** cursor,
                                         unsigned int n); ///< in words of four bytes

protected:
    /// updateSize(), then header and every child's bytes; a child without bytes is left out.
    QTFrame* serializeContainer();

    std::uint64_t size_ = 0;           ///< header included, as read or last given
    unsigned int type_ = 0;            ///< four-character code
    unsigned char* payload_ = nullptr; ///< kept payload bytes (malloc), or null
    bool container_ = false;           ///< whether it takes children
    unsigned char headerSize_ = 0;     ///< 8 or 16; 0 in memory
    std::vector<QTAtom*> children_;    ///< owned, but by a copy
    QTUtils* utils_ = nullptr;         ///< not owned; null for an atom built in memory
    std::uint64_t offset_ = 0;         ///< of the header in the stream

private:
    friend struct wire::Access;
    friend class QTUtils;

    void release();
    KETRA_QT_LOCAL bool writeContainer(wire::Output& out); // serializeContainer() behind what `out` holds

    std::uint64_t reserved_ = 0;
    std::uint64_t payloadLength_ = 0;
    unsigned int borrowedChildren_ = 0; // the first ones, of a copy: they stay the original's
    bool toEnd_ = false; // the header's size field was 0: the atom runs to the end of the stream
};

} // namespace Ketra::QT
