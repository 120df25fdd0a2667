// The object that an input of a track acts on.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "obid": 8 object ID (32).
class KETRA_QT_API OBID : public QTAtom {
public:
    OBID();
    explicit OBID(QTAtom* header);
    OBID(const OBID&) = default;
    OBID& operator=(const OBID&) = default;
    ~OBID() override;

    std::uint64_t updateSize() override; ///< 12
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getObjectID() const { return objectID_; }
    int setObjectID(unsigned int v) { return objectID_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int objectID_ = 0;
};

} // namespace Ketra::QT
