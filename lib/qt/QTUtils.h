// The atom reader: headers, payloads, skipping, and the search operations over a parsed tree.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTStream.h>

#include <cstdint>
#include <vector>

namespace Ketra::QT {

namespace wire {
struct Payload;
}

/// Reads from a stream or, while one is installed and not used up, from a block in memory that is served in
/// front of it (a decompressed movie header). Positions count from the start of whichever is being read.
/// Borrows stream and root; every atom that it reads points back to it.
class KETRA_QT_API QTUtils {
public:
    /// Borrows both; a reader of blocks alone needs no stream, and the root may come later.
    QTUtils(QTStream* stream, QTAtom* root);
    ~QTUtils();
    QTUtils(const QTUtils&) = delete;
    QTUtils& operator=(const QTUtils&) = delete;

    QTStream* getStream() const { return stream_; }
    QTAtom* getRoot() const { return root_; }
    std::uint64_t getBytesRead() const { return bytesRead_; } ///< all bytes delivered so far
    QTUtils* getInstance();                                   ///< this
    int setRoot(QTAtom* root);                                ///< null is ignored; 0

    /// Reads the atom header at `position`, or where the source stands when that is 0. The caller owns the
    /// header atom; null at the end. A 32-bit size of 0 means to the end of the stream (and counts 8 bytes
    /// beyond it), unless the type begins or ends with a zero byte: then the size stays 0. Sizes are not
    /// checked.
    QTAtom* getNextAtom(std::uint64_t position);

    /// Reads up to `length` bytes and returns how many there were. Throws CException for a null buffer.
    unsigned int readData(unsigned char* buffer, unsigned int length);
    /// The payload of an atom whose header was just read, as a malloc block that the caller frees: zeroed
    /// where the source ends early, never longer than the source can fill (plus a little slack), null when
    /// there is nothing to deliver.
    unsigned char* getData(QTAtom* atom);

    /// Skips the payload of an atom whose header was just read. 0 when that lands on its end, else -1.
    int skipData(QTAtom* atom);
    /// Moves the read position (`relative` 0: to the offset, 1: by it) and returns the new one.
    std::int64_t skipData(std::int64_t offset, unsigned char relative);
    std::int64_t rewind(int count); ///< moves back by `count` bytes; the new position

    /// Copies a block that is served before the stream from now on. -1 for a null or empty block.
    int setAlternateData(std::uint64_t size, unsigned char* data);

    /// The atom itself when it has the type, else the match in the last child whose subtree has one, or null.
    QTAtom* findAtom(QTAtom* atom, unsigned int type);
    QTAtom* getAtomOfType(unsigned int type);       ///< findAtom from the root: the last match in the tree
    std::vector<QTAtom*> getAllAtoms(QTAtom* atom); ///< the subtree, parents before children
    /// The atoms of the type in the subtree of `from` (null: the root), parents before children.
    std::vector<QTAtom*> getAtomsOfType(unsigned int type, QTAtom* from);

    static unsigned int BE32(unsigned int v); ///< byte reversal

private:
    friend struct wire::Access;

    std::int64_t streamPosition();
    std::int64_t streamSize();
    std::uint64_t position();
    std::uint64_t deliverable();
    std::int64_t moveBy(std::int64_t distance);
    std::uint64_t readFully(unsigned char* buffer, std::uint64_t length);
    wire::Payload fetch(std::uint64_t length);
    KETRA_QT_LOCAL wire::Payload fetchUntold(std::uint64_t length);

    bool valid_ = true;
    QTStream* stream_;
    QTAtom* root_;
    unsigned char* alternateData_ = nullptr;
    std::uint64_t alternateSize_ = 0;
    std::uint64_t alternateRemaining_ = 0;
    std::uint64_t bytesRead_ = 0;
    unsigned int blockHeaders_ = 0; // served out of the alternate block
    bool headerInBlock_ = false;    // the last header came out of the alternate block
};

} // namespace Ketra::QT
