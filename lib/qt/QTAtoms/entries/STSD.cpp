#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/entries/STSD.h>
#include <qt/QTAtoms/entries/STSDAudio.h>
#include <qt/QTAtoms/entries/STSDHint.h>
#include <qt/QTAtoms/entries/STSDText.h>
#include <qt/QTAtoms/entries/STSDTimeCode.h>
#include <qt/QTAtoms/entries/STSDVideo.h>
#include <qt/wire/Block.h>
#include <qt/wire/Held.h>
#include <qt/wire/Reader.h>
#include <qt/wire/Throw.h>
#include <qt/wire/Writer.h>

#include <algorithm>
#include <limits>

namespace Ketra::QT {

namespace {

constexpr unsigned int kFixed = 16;
constexpr unsigned int kEntryHeader = 16;

/// What a new table for a media type begins with: the size of its entry and the typed description.
struct NewEntry {
    unsigned int mediaType;
    unsigned int size;
    std::unique_ptr<QTAtom> (*describe)();
};

template <class Description>
std::unique_ptr<QTAtom> describe() {
    return std::make_unique<Description>();
}
std::unique_ptr<QTAtom> nothing() { return nullptr; }

constexpr NewEntry kNewEntries[] = {
    {fourCC("vide"), 86, describe<STSDVideo>},
    {fourCC("audi"), 52, describe<STSDAudio>},
    {fourCC("text"), 59, describe<STSDText>},
    {fourCC("tmcd"), 36, describe<STSDTimeCode>},
    {fourCC("vihi"), 24, describe<STSDHint>},
    {fourCC("auhi"), 24, describe<STSDHint>},
    {fourCC("sdsm"), 16, nothing},
    {fourCC("odsm"), 16, nothing},
    {fourCC("mp4s"), 16, nothing},
};

const NewEntry* newEntry(unsigned int mediaType) {
    const auto* row =
        std::find_if(std::begin(kNewEntries), std::end(kNewEntries),
                     [mediaType](const NewEntry& entry) { return entry.mediaType == mediaType; });
    return row == std::end(kNewEntries) ? nullptr : row;
}

/// The 16 bytes in front of an entry's body.
struct EntryHeader {
    unsigned int size = 0;
    unsigned int dataFormat = 0;
    std::uint64_t reserved = 0;
    unsigned short dataReferenceIndex = 0;

    template <class Self, class Io>
    static void layout(Self& a, Io& io) {
        io.u32(a.size);
        io.u32(a.dataFormat);
        io.template as<wire::odd::Reserved48>(a.reserved);
        io.u16(a.dataReferenceIndex);
    }
};

std::unique_ptr<STSDData> readEntry(wire::Reader& in) {
    EntryHeader header;
    EntryHeader::layout(header, in);
    if (header.size < kEntryHeader) return nullptr;
    wire::Block body;
    in.raw(body, header.size - kEntryHeader);
    const auto held = static_cast<unsigned int>(body.size());
    return std::make_unique<STSDData>(held, header.dataFormat, body.release(), header.dataReferenceIndex,
                                      header.reserved);
}

/// An entry on its way into a file: its typed description as bytes, and its length.
struct Piece {
    const STSDData* entry;
    std::unique_ptr<QTFrame> typed;
    std::uint64_t typedLength;
    std::uint64_t length;
};

Piece makePiece(STSDData& entry) {
    entry.updateSize();
    Piece piece{&entry, nullptr, 0, kEntryHeader};
    if (QTAtom* description = entry.getExtraData()) {
        piece.typed.reset(description->serialize());
        const unsigned int bytes = piece.typed ? piece.typed->getDataLength() : 0;
        piece.typedLength = std::max<std::uint64_t>(static_cast<unsigned int>(description->getSize()), bytes);
    }
    piece.length += piece.typedLength;
    for (const QTFrame* extension : entry.getExtensions()) {
        piece.length += extension->getDataLength();
    }
    return piece;
}

/// The frame's bytes in a field of `length`; what it does not have is zero.
void writeFrame(wire::Writer& out, const QTFrame* frame, std::uint64_t length) {
    const unsigned int held = frame ? wire::Access::blockLength(*frame) : 0;
    const std::uint64_t bytes = std::min<std::uint64_t>(held, length);
    if (bytes) out.bytes(frame->getData(), bytes);
    out.skip(length - bytes);
}

void writePiece(wire::Writer& out, const Piece& piece) {
    const EntryHeader header{static_cast<unsigned int>(piece.length), piece.entry->getDataFormat(),
                             piece.entry->getReserved(), piece.entry->getDataReferenceIndex()};
    EntryHeader::layout(header, out);
    writeFrame(out, piece.typed.get(), piece.typedLength);
    for (const QTFrame* extension : piece.entry->getExtensions()) {
        writeFrame(out, extension, extension->getDataLength());
    }
}

} // namespace

STSD::STSD()
    : QTAtom(kFixed, fourCC("stsd")), table_(new wire::HeldList<STSDData>), whole_(new wire::Block) {}

STSD::STSD(unsigned int mediaType) : STSD() {
    const NewEntry* row = newEntry(mediaType);
    if (!row) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::STSD::STSD",
                 CString::createWithFormat("Don't recognize media type %c%c%c%c", mediaType >> 24,
                                           (mediaType >> 16) & 0xFF, (mediaType >> 8) & 0xFF,
                                           mediaType & 0xFF));
    }
    auto entry = std::make_unique<STSDData>(row->size, 0U, wire::allocate(row->size).release(),
                                            static_cast<unsigned short>(1), 0U);
    entry->setExtraData(row->describe().release());
    table_->append(std::move(entry));
    size_ += row->size;
}

STSD::STSD(QTAtom* header) : QTAtom(header), table_(new wire::HeldList<STSDData>), whole_(new wire::Block) {}

STSD::STSD(const STSD& other)
    : QTAtom(other), version_(other.version_), flags_(other.flags_),
      table_(new wire::HeldList<STSDData>(*other.table_)), whole_(new wire::Block(*other.whole_)) {}

STSD& STSD::operator=(const STSD& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    *table_ = *other.table_;
    *whole_ = *other.whole_;
    return *this;
}

STSD::~STSD() = default;

KETRA_TABLE_METHODS(STSD, STSDData, addSampleDescription, SampleDescription, entry->getSize())
KETRA_TABLE_COUNT(STSD)
KETRA_TABLE_SET_ITERATOR(STSD)

STSDData* STSD::getSampleDescriptionData(unsigned int index) const { return table_->record(index); }

int STSD::setSampleDescriptionTable(const std::vector<STSDData*>& table) {
    table_->replace(table);
    return 0;
}

int STSD::parse() {
    wire::Payload payload = wire::Access::fetch(*this);
    if (!payload) return -1;
    wire::Reader in(payload.data.get(), payload.delivered);
    in.versionAndFlags(*this);
    unsigned int count = 0;
    in.u32(count);
    table_->clear();
    for (unsigned int i = 0; i < count && in.left() >= kEntryHeader; ++i) {
        std::unique_ptr<STSDData> entry = readEntry(in);
        if (!entry) break; // an entry shorter than its own header leads nowhere
        table_->append(std::move(entry));
    }
    table_->declared = count;
    return 0;
}

std::uint64_t STSD::updateSize() {
    std::uint64_t total = kFixed + whole_->size();
    if (!*whole_) {
        for (STSDData* entry : table_->items()) {
            total += entry->updateSize();
        }
    }
    return size_ = total;
}

QTFrame* STSD::serialize() {
    updateSize();
    if (!table_->consistent()) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::STSD::serialize", "Wrong number of entries in STSD-table");
    }
    std::vector<Piece> pieces;
    std::uint64_t length = kFixed + whole_->size();
    if (!*whole_) {
        for (STSDData* entry : table_->items()) {
            pieces.push_back(makePiece(*entry));
            length += pieces.back().length;
        }
    }
    if (length > std::numeric_limits<unsigned int>::max()) return nullptr;
    wire::MallocPtr block = wire::allocate(length);
    if (!block) return nullptr;
    wire::Writer out(block.get());
    out.u32(length);
    out.u32(type_);
    out.versionAndFlags(*this);
    out.u32(table_->declared);
    out.rest(*whole_);
    for (const Piece& piece : pieces) {
        writePiece(out, piece);
    }
    return wire::makeFrame(static_cast<unsigned int>(length), std::move(block));
}

int STSD::setSampleDescription(unsigned int size, unsigned char* data) {
    if (!size || !data) return -1;
    whole_->adopt(data, size);
    return 0;
}

unsigned char* STSD::getSampleDescripionData() const { return whole_->data(); }

unsigned int STSD::getSampleDescriptionSize() const { return static_cast<unsigned int>(whole_->size()); }

int STSD::addExtension(unsigned int entryNumber, QTFrame* atom) {
    STSDData* entry = entryNumber ? table_->record(entryNumber - 1) : nullptr;
    if (!entry || entry->addExtension(atom) != 0) return -1;
    size_ += atom->getDataLength();
    return 0;
}

} // namespace Ketra::QT
