// File type: what kind of file this is, and what it is compatible with.
#pragma once

#include <qt/QTAtom.h>

#include <vector>

namespace Ketra::QT {

/// "ftyp": 8 major brand, 12 minor version, 16 compatible brands (32 bits each) to the end. Each brand that
/// is added, on reading too, grows the size held by 4; updateSize() makes it 16 + 4 * brands.
class KETRA_QT_API FTYP : public QTAtom {
public:
    FTYP();
    explicit FTYP(QTAtom* header);
    FTYP(const FTYP&) = default;
    FTYP& operator=(const FTYP&) = default;
    ~FTYP() override;

    std::uint64_t updateSize() override;
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    unsigned int getMajorBrand() const { return majorBrand_; }
    int setMajorBrand(unsigned int brand) { return majorBrand_ = brand, 0; }
    unsigned int getMinorVersion() const { return minorVersion_; }
    int setMinorVersion(unsigned int version) { return minorVersion_ = version, 0; }
    unsigned int getCompatibleBrand(unsigned int index) const; ///< 0 out of range
    std::vector<unsigned int> getCompatibleBrands() const { return brands_; }
    int addCompatibleBrand(unsigned int brand); ///< appends; the size grows by 4
    int setCompatibleBrands(const std::vector<unsigned int>& brands);

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int majorBrand_ = 0;
    unsigned int minorVersion_ = 0;
    std::vector<unsigned int> brands_;
};

} // namespace Ketra::QT
