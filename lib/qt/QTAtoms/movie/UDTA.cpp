#include <qt/QTAtoms/detail/DataAtoms.h>
#include <qt/QTAtoms/movie/UDTA.h>
#include <qt/QTAtoms/track/TrackReferences.h>
#include <qt/QTAtoms/user/HINF.h>
#include <qt/QTAtoms/user/HNTI.h>
#include <qt/QTAtoms/user/NSAV.h>
#include <qt/QTAtoms/user/TSEL.h>
#include <qt/QTUtils.h>
#include <qt/wire/Access.h>
#include <qt/wire/Container.h>

#include <algorithm>
#include <iterator>

namespace Ketra::QT {

using wire::Access;

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("chap"), wire::make<CHAP>}, {fourCC("hinf"), wire::make<HINF>},
    {fourCC("hnti"), wire::make<HNTI>}, {fourCC("nsav"), wire::make<NSAV>},
    {fourCC("tsel"), wire::make<TSEL>},
};

constexpr std::uint64_t kHeader = 8;
constexpr int kTerminator = 4; // zero bytes that may stand behind the last entry

bool isChild(unsigned int type) {
    return std::any_of(std::begin(kChildren), std::end(kChildren),
                       [type](const wire::ChildType& row) { return row.type == type; });
}

} // namespace

UDTA::UDTA() : QTAtom(kHeader, fourCC("udta")), entries_(new wire::HeldList<QTDataAtom>) {
    container_ = true;
}

UDTA::UDTA(QTAtom* header) : QTAtom(header), entries_(new wire::HeldList<QTDataAtom>) { container_ = true; }

UDTA::UDTA(const UDTA& other) : QTAtom(other), entries_(new wire::HeldList<QTDataAtom>(*other.entries_)) {}

UDTA& UDTA::operator=(const UDTA& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    *entries_ = *other.entries_;
    return *this;
}

UDTA::~UDTA() = default;

int UDTA::parse() {
    container_ = true;
    if (!utils_) return -1;
    const wire::ChildTable table(kChildren);
    const std::uint64_t end = offset_ + size_;
    for (std::uint64_t consumed = headerSize_; consumed < size_;) {
        if (size_ - consumed < kHeader) {
            utils_->skipData(static_cast<std::int64_t>(size_ - consumed), 1);
            return 0;
        }
        std::unique_ptr<QTAtom> header(utils_->getNextAtom(0));
        if (!header) return 0;
        const std::uint64_t size = header->getSize();
        if (size == 0) {
            utils_->rewind(kTerminator); // the zero that ends the list is half as long as a header
            return 0;
        }
        if (size < header->getHeaderSize()) {
            wire::resumeAt(*utils_, end);
            return 0;
        }
        consumed = size > ~consumed ? ~std::uint64_t{0} : consumed + size;
        if (isChild(header->getType())) {
            std::unique_ptr<QTAtom> child = table.create(std::move(header));
            wire::parseChild(*child, false);
            children_.push_back(child.get());
            static_cast<void>(child.release());
            continue;
        }
        const wire::Payload payload = Access::fetch(*header);
        entries_->append(
            std::make_unique<QTDataAtom>(payload.length + kHeader, header->getType(), payload.data.get()));
    }
    return 0;
}

std::uint64_t UDTA::updateSize() {
    std::uint64_t total = kHeader + wire::dataAtomBytes(*entries_);
    for (QTAtom* child : children_) {
        total += static_cast<unsigned int>(child->updateSize());
    }
    return size_ = total;
}

QTFrame* UDTA::serialize() {
    const std::uint64_t counted = updateSize();
    wire::FrameList frames;
    wire::writeDataAtoms(frames, *entries_);
    for (QTAtom* child : children_) {
        if (QTFrame* frame = child->serialize()) frames.emplace_back(frame);
    }
    return wire::joinFrames(*this, counted, frames);
}

int UDTA::addDataAtom(QTDataAtom* entry) {
    if (!entries_->append(entry)) return -1;
    size_ += entry->getSize();
    return 0;
}

QTDataAtom* UDTA::getDataAtom(unsigned int type) const {
    for (QTDataAtom* entry : entries_->items()) {
        if (entry->getType() == type) return entry;
    }
    return nullptr;
}

std::vector<QTDataAtom*> UDTA::getDataAtoms() const { return entries_->records(); }

} // namespace Ketra::QT
