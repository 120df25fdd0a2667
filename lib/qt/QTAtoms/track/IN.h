// One input of a track: who it is and what it acts on.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "  in" (two spaces): 8 atom ID (32), 12 reserved (16), 14 child count (16), 16 reserved (32), 20 that many
/// atoms: "  ty", "obid"; those of other types keep their bytes.
class KETRA_QT_API __IN : public QTAtom { // NOLINT: the four characters of the code
public:
    __IN();
    explicit __IN(QTAtom* header);
    __IN(const __IN&) = default;
    __IN& operator=(const __IN&) = default;
    ~__IN() override;

    std::uint64_t updateSize() override; ///< 20 and the children
    int parse() override;                ///< at most child count children
    QTFrame* serialize() override;       ///< calls updateSize() first

    unsigned int getAtomID() const { return atomID_; }
    int setAtomID(unsigned int v) { return atomID_ = v, 0; }
    unsigned short getReserved() const { return reserved16_; }
    int setReserved(unsigned short v) { return reserved16_ = v, 0; }
    unsigned short getChildCount() const { return childCount_; } ///< as read, whatever children there are
    int setChildCount(unsigned short v) { return childCount_ = v, 0; }
    unsigned int getReserved2() const { return reserved32_; }
    int setReserved2(unsigned int v) { return reserved32_ = v, 0; }

    /// Adopts the child; size and child count grow. -1, nothing taken, for null or the atom itself.
    int addChild(QTAtom* child);

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int atomID_ = 0;
    unsigned short reserved16_ = 0;
    unsigned short childCount_ = 0;
    unsigned int reserved32_ = 0;
};

} // namespace Ketra::QT
