// Compressed matte of a track.
#pragma once

#include <qt/QTAtom.h>

#include <memory>

namespace Ketra::QT {

/// "kmat": 8 version, 9 flags, 12 an image description and the matte image, kept raw.
class KETRA_QT_API KMAT : public QTAtom {
public:
    KMAT();
    explicit KMAT(QTAtom* header);
    KMAT(const KMAT& other);
    KMAT& operator=(const KMAT& other);
    ~KMAT() override;

    std::uint64_t updateSize() override; ///< 12 and the matte data
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned char* getMatteData() const; ///< borrowed; null when there is none
    unsigned int getMatteDataSize() const;
    int setMatteData(unsigned int size, unsigned char* data); ///< adopts a malloc block; null clears

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::unique_ptr<wire::Block> matte_;
};

} // namespace Ketra::QT
