// A reference from an object descriptor to an elementary stream.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>

namespace Ketra::QT {

/// Tag 0x0F: the ES_ID (16). Always written with that tag and a size of 2.
class KETRA_QT_API ESIDRef : public MP4ObjectData {
public:
    explicit ESIDRef(unsigned int esid); ///< a new one
    ESIDRef(unsigned int size, unsigned char tag);
    ~ESIDRef() override;

    int getInfo(unsigned char** cursor) override;
    QTFrame* serialize() override;
    unsigned int updateSize() override; ///< the size held

    unsigned int getESID() const { return esid_; } ///< its low 16 bits are written

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int esid_ = 0;
};

} // namespace Ketra::QT
