// Colour table of a movie for displays with a palette.
#pragma once

#include <qt/QTAtom.h>

#include <memory>

namespace Ketra::QT {

/// "ctab": 8 seed (32), 12 flags (16), 14 table size (16: index of the last colour), 16 the colours, kept
/// raw.
class KETRA_QT_API CTAB : public QTAtom {
public:
    CTAB();
    explicit CTAB(QTAtom* header);
    CTAB(const CTAB& other);
    CTAB& operator=(const CTAB& other);
    ~CTAB() override;

    std::uint64_t updateSize() override; ///< 16 and the colours
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getSeed() const { return seed_; }
    int setSeed(unsigned int v) { return seed_ = v, 0; }
    unsigned short getFlags() const { return flags_; }
    int setFlags(unsigned short v) { return flags_ = v, 0; }
    unsigned short getTableSize() const { return tableSize_; } ///< number of colours less one
    int setTableSize(unsigned short v) { return tableSize_ = v, 0; }
    unsigned char* getColorTableData() const; ///< borrowed; null when there is none
    unsigned int getColorTableDataSize() const;
    int setColorTableData(unsigned int size, unsigned char* data); ///< adopts a malloc block; null clears

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int seed_ = 0;
    unsigned short flags_ = 0;
    unsigned short tableSize_ = 0;
    std::unique_ptr<wire::Block> colors_;
};

} // namespace Ketra::QT
