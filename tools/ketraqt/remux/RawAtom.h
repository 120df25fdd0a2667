// Atoms that are carried over byte by byte.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTStream.h>

#include <memory>
#include <vector>

namespace Ketra::Tool {

using Bytes = std::vector<unsigned char>;

/// A frame around a copy of the bytes, without times.
std::unique_ptr<QT::QTFrame> frameOf(const unsigned char* bytes, std::size_t count);

/// A block from malloc with a copy of the bytes, as setters adopt it.
unsigned char* blockOf(const Bytes& bytes);

/// A whole atom, header included, that is written as it is.
class RawAtom : public QT::QTAtom {
public:
    explicit RawAtom(Bytes bytes); ///< at least the 8 bytes of a header

    std::uint64_t updateSize() override;
    QT::QTFrame* serialize() override;

private:
    Bytes bytes_;
};

/// The atom with its header as it stands in the file; empty where it cannot be had (it came out of a
/// compressed header, or is larger than any that is worth carrying).
Bytes bytesOf(QT::QTStream& stream, const QT::QTAtom& atom);

/// The same by the atom's own writing; empty when it has nothing to write.
Bytes bytesOf(QT::QTAtom& atom);

} // namespace Ketra::Tool
