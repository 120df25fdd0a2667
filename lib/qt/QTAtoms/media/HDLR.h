// Handler: what kind of media, or of data, a track has.
#pragma once

#include <qt/QTAtom.h>

#include <vector>

namespace Ketra::QT {

/// "hdlr": 8 version, 9 flags, 12 component type, 16 subtype, 20 manufacturer, 24 flags, 28 flags mask (32
/// bits each), 32 name. A name that was read is kept as it stands, a Pascal length byte included.
class KETRA_QT_API HDLR : public QTAtom {
public:
    HDLR();
    explicit HDLR(unsigned int mediaType); ///< the subtype; "audi" becomes "soun"
    explicit HDLR(int mediaType) : HDLR(static_cast<unsigned int>(mediaType)) {}
    explicit HDLR(QTAtom* header);
    HDLR(const HDLR&) = default;
    HDLR& operator=(const HDLR&) = default;
    ~HDLR() override;

    std::uint64_t updateSize() override; ///< the size held, or the bytes of the layout when those are more
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned int getComponentType() const { return componentType_; }
    int setComponentType(unsigned int v) { return componentType_ = v, 0; }
    unsigned int getComponentSubType() const { return componentSubType_; }
    int setComponentSubType(unsigned int v) { return componentSubType_ = v, 0; }
    unsigned int getComponentManufacturer() const { return componentManufacturer_; }
    int setComponentManufacturer(unsigned int v) { return componentManufacturer_ = v, 0; }
    unsigned int getComponentFlags() const { return componentFlags_; }
    int setComponentFlags(unsigned int v) { return componentFlags_ = v, 0; }
    unsigned int getComponentFlagsMask() const { return componentFlagsMask_; }
    int setComponentFlagsMask(unsigned int v) { return componentFlagsMask_ = v, 0; }

    /// Copies `length` bytes and adds a zero byte; with `pascal` a length byte is written in front. The size
    /// held grows by length (+ 1 with `pascal`) less the former name size. -1 for null with a length.
    int setComponentName(const char* name, unsigned int length, bool pascal);
    unsigned char* getComponentName() const; ///< borrowed; getComponentNameSize() bytes, null when 0
    unsigned int getComponentNameSize() const { return static_cast<unsigned int>(name_.size()); }
    bool getIsPascalString() const { return pascal_; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned int componentType_ = 0;
    unsigned int componentSubType_ = 0;
    unsigned int componentManufacturer_ = 0;
    unsigned int componentFlags_ = 0;
    unsigned int componentFlagsMask_ = 0;
    std::vector<unsigned char> name_;
    bool pascal_ = false;
};

} // namespace Ketra::QT
