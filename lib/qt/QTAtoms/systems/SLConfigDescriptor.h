// Sync layer configuration descriptor.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>

namespace Ketra::QT {

/// Tag 6: a byte that names a predefined configuration (2 in movie files). Further bytes are not kept; as
/// many zeros are written.
class KETRA_QT_API SLConfigDescriptor : public MP4ObjectData {
public:
    explicit SLConfigDescriptor(unsigned char predefined); ///< a new one
    SLConfigDescriptor(unsigned int size, unsigned char tag);
    ~SLConfigDescriptor() override;

    int getInfo(unsigned char** cursor) override;
    QTFrame* serialize() override;
    unsigned int updateSize() override; ///< the size held

    unsigned char getPredefined() const { return predefined_; }
    int setPredefined(unsigned char v) { return predefined_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned char predefined_ = 0;
};

} // namespace Ketra::QT
