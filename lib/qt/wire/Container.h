// Reading a container: one loop, and a constant table of its children.
#pragma once

#include <qt/QTAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT::wire {

/// One row of a container's child table: what class an atom of the type becomes.
struct ChildType {
    unsigned int type;
    std::unique_ptr<QTAtom> (*make)(QTAtom* header);
};

/// The usual factory of a row: the class's adopting constructor.
template <class Atom>
std::unique_ptr<QTAtom> make(QTAtom* header) {
    return std::make_unique<Atom>(header);
}

struct ChildTable {
    const ChildType* rows;
    std::size_t count;

    template <std::size_t N>
    constexpr ChildTable(const ChildType (&table)[N])
        : rows(table), count(N) // NOLINT: converts on purpose
    {}
    /// An atom of the listed class, or a plain one; the header is consumed.
    std::unique_ptr<QTAtom> create(std::unique_ptr<QTAtom> header) const;
};

/// What becomes of a child whose type is not in the table: its payload is skipped and it is not written
/// again, or its bytes are kept and written back.
enum class Unlisted { kSkip, kKeep };

/// What a container does with a child that has been read, before it is appended.
class ChildHook {
public:
    virtual ~ChildHook() = default;
    /// True when the child was dealt with and is not to be appended; `consumed` may be set anew.
    virtual bool take(QTAtom& child, std::uint64_t& consumed) = 0;
};

/// Reads the children of `parent`, whose header the reader has just delivered. 0, or the first child's
/// non-zero parse() result (that child is not appended). Ends quietly where the file ends. Always makes
/// progress: a header that states less than its own length ends the container. `fieldBytes` is what the
/// parent has of its own in front of its children; the reader stands behind it.
int parseChildren(QTAtom& parent, const ChildTable& table, Unlisted unlisted = Unlisted::kSkip,
                  std::uint64_t mostChildren = ~std::uint64_t{0}, ChildHook* hook = nullptr,
                  std::uint64_t fieldBytes = 0);

/// The part of that loop that other readers of atoms share: parses one child that `create` made, keeping an
/// unlisted one's bytes when asked, and afterwards stands at its end.
int parseChild(QTAtom& child, bool keepBytes);

/// Moves the reader to byte `end` of the stream if that lies inside it and nothing is read from memory.
void resumeAt(QTUtils& utils, std::uint64_t end);

} // namespace Ketra::QT::wire
