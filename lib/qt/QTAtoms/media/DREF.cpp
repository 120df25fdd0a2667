#include <qt/QTAtoms/media/DREF.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

#include <algorithm>
#include <memory>

namespace Ketra::QT {

namespace {

constexpr unsigned int kSize = 16;
constexpr unsigned int kEntryHeader = 12;
constexpr std::uint64_t kAtomHeader = 8;
constexpr unsigned int kSelfContained = 1;

} // namespace

DREFEntry::DREFEntry() : QTAtom(kEntryHeader, 0) {}

DREFEntry::DREFEntry(unsigned int type, unsigned int flags) : QTAtom(kEntryHeader, type), flags_(flags) {}

DREFEntry::DREFEntry(QTAtom* header) : QTAtom(header) {}

DREFEntry::~DREFEntry() = default;

template <class Self, class Io>
void DREFEntry::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    if constexpr (Io::kReads) {
        // A handler reference carries nothing that the file format defines.
        const bool bare = a.flags_ == kSelfContained || a.getType() == fourCC("hndl");
        a.data_.resize(bare ? 0 : static_cast<std::size_t>(io.left()));
        io.bytes(a.data_.data(), a.data_.size());
    } else {
        io.bytes(a.data_.data(), a.data_.size());
    }
}

std::uint64_t DREFEntry::updateSize() { return size_ = wire::leafBytes(*this); }

int DREFEntry::parse() { return wire::parseLeaf(*this); }

QTFrame* DREFEntry::serialize() { return wire::writeLeaf(*this); }

unsigned char* DREFEntry::getData() const {
    return data_.empty() ? nullptr : const_cast<unsigned char*>(data_.data());
}

int DREFEntry::setData(unsigned int size, unsigned char* data) {
    if (!data && size) return -1;
    if (data == data_.data() && data) return 0;
    const wire::MallocPtr taken(data);
    data_.assign(data, data + size);
    size_ = kEntryHeader + size;
    return 0;
}

DREF::DREF() : QTAtom(kSize, fourCC("dref")) {}

DREF::DREF(QTAtom* header) : QTAtom(header) {}

DREF::DREF(const DREF& other)
    : QTAtom(other), version_(other.version_), flags_(other.flags_), count_(other.count_),
      entries_(other.entries_), ownsEntries_(false) {}

DREF& DREF::operator=(const DREF& other) {
    if (this == &other) return *this;
    release();
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    count_ = other.count_;
    entries_ = other.entries_;
    ownsEntries_ = false;
    return *this;
}

DREF::~DREF() { release(); }

void DREF::release() {
    if (ownsEntries_) {
        for (DREFEntry* entry : entries_) {
            delete entry;
        }
    }
    entries_.clear();
}

template <class Self, class Io>
void DREF::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u32(a.count_);
    if constexpr (Io::kReads) {
        // An entry needs its own header, and may not state less than that; a longer one is cut at the end.
        for (unsigned int i = 0; i < a.count_ && io.left() >= kEntryHeader; ++i) {
            unsigned int size = 0;
            unsigned int type = 0;
            io.u32(size);
            io.u32(type);
            if (size < kEntryHeader) break;
            const std::uint64_t payload = std::min<std::uint64_t>(size - kAtomHeader, io.left());
            auto entry = std::make_unique<DREFEntry>(type, 0U);
            entry->size_ = payload + kAtomHeader;
            wire::Reader in(io.cursor(), payload);
            DREFEntry::layout(*entry, in);
            io.skip(payload);
            a.entries_.push_back(entry.get());
            static_cast<void>(entry.release());
        }
    } else {
        for (const DREFEntry* entry : a.entries_) {
            wire::Writer measure;
            DREFEntry::layout(*entry, measure);
            io.u32(kAtomHeader + measure.written());
            io.u32(entry->getType());
            DREFEntry::layout(*entry, io);
        }
    }
}

std::uint64_t DREF::updateSize() {
    size_ = kSize;
    for (DREFEntry* entry : entries_) {
        size_ += entry->updateSize();
    }
    return size_;
}

int DREF::parse() { return wire::parseLeaf(*this); }

QTFrame* DREF::serialize() {
    if (count_ != entries_.size()) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::DREF::serialize", "Wrong number of entries in DREF-table");
    }
    return wire::writeLeaf(*this);
}

int DREF::addDataReference(DREFEntry* entry) {
    if (!entry) return -1;
    entries_.push_back(entry);
    ++count_;
    size_ += entry->getSize();
    return 0;
}

DREFEntry* DREF::getDataReferenceEntry(unsigned int index) const {
    return index < entries_.size() ? entries_[index] : nullptr;
}

} // namespace Ketra::QT
