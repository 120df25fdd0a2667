// The base of the sample entries that codecs have as atoms of their own.
#pragma once

#include <qt/QTAtom.h>

#include <memory>

namespace Ketra::QT {

/// An entry that may hold one configuration atom behind its fields. It owns that atom; a copy lists it.
class KETRA_QT_API CodecEntry : public QTAtom {
public:
    ~CodecEntry() override;

protected:
    CodecEntry(unsigned int size, unsigned int type); ///< a new one
    explicit CodecEntry(QTAtom* header);
    CodecEntry(const CodecEntry& other);
    CodecEntry& operator=(const CodecEntry& other);

    QTAtom* child() const; ///< borrowed, or null
    int setChild(QTAtom* atom);
    std::uint64_t childSize(); ///< after its updateSize()
    /// Reads the next atom as the configuration when it has the type; any other is left to be read again.
    void parseChild(unsigned int type, std::unique_ptr<QTAtom> (*make)(QTAtom* header));

private:
    friend struct wire::Access;

    std::unique_ptr<wire::HeldList<QTAtom>> child_;
};

} // namespace Ketra::QT
