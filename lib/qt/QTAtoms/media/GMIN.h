// Base media information.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "gmin", 24 bytes: 8 version, 9 flags, 12 graphics mode, 14, 16, 18 opcolor, 20 balance, 22 reserved (16
/// bits each). One opcolor is held, as in VMHD.
class KETRA_QT_API GMIN : public QTAtom {
public:
    GMIN();
    explicit GMIN(QTAtom* header);
    GMIN(const GMIN&) = default;
    GMIN& operator=(const GMIN&) = default;
    ~GMIN() override;

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
    unsigned short getBalance() const { return balance_; }
    int setBalance(unsigned short v) { return balance_ = v, 0; }
    unsigned short getReserved() const { return reserved_; }
    int setReserved(unsigned short v) { return reserved_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned short graphicsMode_ = 0x0040;
    unsigned short opColor_ = 0x8000;
    unsigned short balance_ = 0;
    unsigned short reserved_ = 0;
};

} // namespace Ketra::QT
