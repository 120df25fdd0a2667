#include <qt/QTAtoms/entries/CodecEntry.h>
#include <qt/QTUtils.h>
#include <qt/wire/Held.h>

namespace Ketra::QT {

CodecEntry::CodecEntry(unsigned int size, unsigned int type)
    : QTAtom(size, type), child_(new wire::HeldList<QTAtom>) {}

CodecEntry::CodecEntry(QTAtom* header) : QTAtom(header), child_(new wire::HeldList<QTAtom>) {}

CodecEntry::CodecEntry(const CodecEntry& other)
    : QTAtom(other), child_(new wire::HeldList<QTAtom>(*other.child_)) {}

CodecEntry& CodecEntry::operator=(const CodecEntry& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    *child_ = *other.child_;
    return *this;
}

CodecEntry::~CodecEntry() = default;

QTAtom* CodecEntry::child() const { return child_->first(); }

int CodecEntry::setChild(QTAtom* atom) {
    child_->set(atom);
    return 0;
}

std::uint64_t CodecEntry::childSize() { return child() ? child()->updateSize() : 0; }

void CodecEntry::parseChild(unsigned int type, std::unique_ptr<QTAtom> (*make)(QTAtom* header)) {
    std::unique_ptr<QTAtom> header(utils_->getNextAtom(0));
    if (!header) return;
    if (header->getType() != type) {
        utils_->rewind(header->getHeaderSize());
        return;
    }
    std::unique_ptr<QTAtom> atom = make(header.release());
    atom->parse();
    setChild(atom.release());
}

} // namespace Ketra::QT
