// Clipping region of a track.
#pragma once

#include <qt/QTAtom.h>

#include <memory>

namespace Ketra::QT {

/// "crgn": 8 region size (16), 10 bounding box (64: top, left, bottom, right), 18 region data, kept raw.
class KETRA_QT_API CRGN : public QTAtom {
public:
    CRGN();
    explicit CRGN(QTAtom* header);
    CRGN(const CRGN& other);
    CRGN& operator=(const CRGN& other);
    ~CRGN() override;

    std::uint64_t updateSize() override; ///< 18 and the region data
    int parse() override;
    QTFrame* serialize() override;

    unsigned short getRegionSize() const { return regionSize_; } ///< bytes, itself and the box included
    int setRegionSize(unsigned short v) { return regionSize_ = v, 0; }
    std::uint64_t getRegionBoundaryBox() const { return box_; }
    int setRegionBoundaryBox(std::uint64_t v) { return box_ = v, 0; }
    unsigned char* getClippingRegionData() const; ///< borrowed; null when there is none
    unsigned int getClippingRegionDataSize() const;
    int setClippingRegionData(unsigned int size, unsigned char* data); ///< adopts a malloc block; null clears

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned short regionSize_ = 0;
    std::uint64_t box_ = 0;
    std::unique_ptr<wire::Block> region_;
};

} // namespace Ketra::QT
