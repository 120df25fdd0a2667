// Decoder specific information: the configuration bytes of a codec.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>

namespace Ketra::QT {

/// Tag 5: bytes that only the codec understands.
class KETRA_QT_API DecoderSpecificInfo : public MP4ObjectData {
public:
    DecoderSpecificInfo(unsigned int size, unsigned char tag);    ///< without bytes: written as zeros
    DecoderSpecificInfo(unsigned int size, unsigned char* bytes); ///< copies
    DecoderSpecificInfo(const DecoderSpecificInfo& other);
    ~DecoderSpecificInfo() override;

    int getInfo(unsigned char** cursor) override;
    QTFrame* serialize() override;
    unsigned int updateSize() override; ///< the size held

    int setInfo(unsigned int size, unsigned char* bytes); ///< adopts a malloc block; -1 for null
    unsigned char* getDecoderSpecificInfo() const;        ///< borrowed, or null
    unsigned int getDecoderSpecificInfoSize() const; ///< bytes behind it; the size given where it is null

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    std::unique_ptr<wire::Block> info_;
};

} // namespace Ketra::QT
