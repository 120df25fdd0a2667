// The RTP hint form of a sample description.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// The 8 bytes behind the entry header: 0 hint track version, 2 last compatible version (16), 4 max packet
/// size (32). serialize() returns these bytes without an atom header; parse() does nothing.
class KETRA_QT_API STSDHint : public QTAtom {
public:
    STSDHint();
    explicit STSDHint(QTAtom* header);
    STSDHint(const STSDHint&) = default;
    STSDHint& operator=(const STSDHint&) = default;
    ~STSDHint() override;

    std::uint64_t updateSize() override; ///< 8
    int parse() override;                ///< 0
    QTFrame* serialize() override;

    unsigned short getHintTrackVersion() const { return hintTrackVersion_; }
    int setHintTrackVersion(unsigned short v) { return hintTrackVersion_ = v, 0; }
    unsigned short getLastCompatibleVersion() const { return lastCompatibleVersion_; }
    int setLastCompatibleVersion(unsigned short v) { return lastCompatibleVersion_ = v, 0; }
    unsigned int getMaxPacketSize() const { return maxPacketSize_; } ///< bytes
    int setMaxPacketSize(unsigned int v) { return maxPacketSize_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned short hintTrackVersion_ = 1;
    unsigned short lastCompatibleVersion_ = 1;
    unsigned int maxPacketSize_ = 0;
};

} // namespace Ketra::QT
