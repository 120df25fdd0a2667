// Sound media header.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "smhd", 16 bytes: 8 version, 9 flags, 12 balance (16), 14 reserved (16).
class KETRA_QT_API SMHD : public QTAtom {
public:
    SMHD();
    explicit SMHD(QTAtom* header);
    SMHD(const SMHD&) = default;
    SMHD& operator=(const SMHD&) = default;
    ~SMHD() override;

    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
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
    unsigned short balance_ = 0;
    unsigned short reserved_ = 0;
};

} // namespace Ketra::QT
