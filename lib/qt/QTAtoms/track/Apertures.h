// The three picture sizes of a track: clean aperture, production aperture, encoded pixels.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// What the three have in common, 20 bytes: 8 version, 9 flags, 12 width, 16 height (16.16 pixels). Only
/// whole pixels are held; the fractions of a file are dropped and written as 0.
class KETRA_QT_API ApertureAtom : public QTAtom {
public:
    ~ApertureAtom() override;

    std::uint64_t updateSize() override; ///< 20
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned int getWidth() const { return width_; } ///< whole pixels
    int setWidth(unsigned int v) { return width_ = v, 0; }
    unsigned int getHeight() const { return height_; }
    int setHeight(unsigned int v) { return height_ = v, 0; }

protected:
    explicit ApertureAtom(unsigned int type); ///< a new one
    explicit ApertureAtom(QTAtom* header);
    ApertureAtom(const ApertureAtom&) = default;
    ApertureAtom& operator=(const ApertureAtom&) = default;

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned int width_ = 0;
    unsigned int height_ = 0;
};

/// "clef": the clean aperture: the picture as it is to be shown.
class KETRA_QT_API CLEF : public ApertureAtom {
public:
    CLEF();
    explicit CLEF(QTAtom* header);
    CLEF(const CLEF&) = default;
    CLEF& operator=(const CLEF&) = default;
    ~CLEF() override;
};

/// "prof": the production aperture: the whole picture with its pixel aspect applied.
class KETRA_QT_API PROF : public ApertureAtom {
public:
    PROF();
    explicit PROF(QTAtom* header);
    PROF(const PROF&) = default;
    PROF& operator=(const PROF&) = default;
    ~PROF() override;
};

/// "enof": the encoded pixels.
class KETRA_QT_API ENOF : public ApertureAtom {
public:
    ENOF();
    explicit ENOF(QTAtom* header);
    ENOF(const ENOF&) = default;
    ENOF& operator=(const ENOF&) = default;
    ~ENOF() override;
};

} // namespace Ketra::QT
