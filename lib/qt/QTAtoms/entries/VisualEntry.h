// The fields that visual sample entries share.
#pragma once

#include <qt/QTAtoms/entries/CodecEntry.h>

namespace Ketra::QT {

/// 8 reserved (48), 14 data reference index (16), 16 reserved (2 x 64), 32 width, 34 height (16), 36
/// horizontal, 40 vertical resolution (16.16), 44 reserved (32), 48 frame count (16), 50 compressor name (32
/// bytes), 82 depth, 84 pre-defined (16), 86 the configuration atom.
class KETRA_QT_API VisualEntry : public CodecEntry {
public:
    ~VisualEntry() override;

    std::uint64_t updateSize() override; ///< 86 and the configuration
    QTFrame* serialize() override;       ///< calls updateSize() first

    unsigned short getDataReferenceIndex() const { return dataReferenceIndex_; } ///< into "dref", from 1
    int setDataReferenceIndex(unsigned short v) { return dataReferenceIndex_ = v, 0; }
    unsigned short getMaxWidth() const { return width_; } ///< pixels
    int setMaxWidth(unsigned short v) { return width_ = v, 0; }
    unsigned short getMaxHeight() const { return height_; }
    int setMaxHeight(unsigned short v) { return height_ = v, 0; }

protected:
    explicit VisualEntry(unsigned int type); ///< a new one
    explicit VisualEntry(QTAtom* header);
    VisualEntry(const VisualEntry&) = default;
    VisualEntry& operator=(const VisualEntry&) = default;

    int parseFields(); ///< everything in front of the configuration

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    std::uint64_t reserved_ = 0;
    unsigned short dataReferenceIndex_ = 1;
    std::uint64_t reserved2_[2] = {0, 0};
    unsigned short width_ = 320;
    unsigned short height_ = 240;
    unsigned int horizontalResolution_ = 0x00480000; // 72 pixels an inch
    unsigned int verticalResolution_ = 0x00480000;
    unsigned int reserved3_ = 0;
    unsigned short frameCount_ = 1;
    unsigned char compressorName_[32] = {};
    unsigned short depth_ = 24;
    unsigned short preDefined_ = 0xFFFF;
};

} // namespace Ketra::QT
