// Video media header.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "vmhd", 20 bytes: 8 version, 9 flags, 12 graphics mode, 14, 16, 18 red, green and blue of the opcolor (16
/// bits each). One opcolor is held: it is written into all three words and read as red OR blue.
class KETRA_QT_API VMHD : public QTAtom {
public:
    VMHD();
    explicit VMHD(QTAtom* header);
    VMHD(const VMHD&) = default;
    VMHD& operator=(const VMHD&) = default;
    ~VMHD() override;

    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned short getGraphicsMode() const { return graphicsMode_; }
    int setGraphicsMode(unsigned short v) { return graphicsMode_ = v, 0; }
    unsigned short getOpColor() const { return opColor_; }
    int setOpColor(unsigned short v) { return opColor_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 1;
    unsigned short graphicsMode_ = 0x0040;
    unsigned short opColor_ = 0x8000;
};

} // namespace Ketra::QT
