// Media header of media without a header of their own.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "nmhd", 12 bytes: 8 version, 9 flags.
class KETRA_QT_API NMHD : public QTAtom {
public:
    NMHD();
    explicit NMHD(QTAtom* header);
    NMHD(const NMHD&) = default;
    NMHD& operator=(const NMHD&) = default;
    ~NMHD() override;

    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
};

} // namespace Ketra::QT
