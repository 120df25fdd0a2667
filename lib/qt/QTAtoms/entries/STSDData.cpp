#include <qt/QTAtoms/entries/STSDData.h>
#include <qt/wire/Growth.h>

#include <cstdlib>

namespace Ketra::QT {

namespace {
constexpr unsigned int kEntryHeader = 16;
} // namespace

STSDData::STSDData() = default;

STSDData::STSDData(unsigned int size, unsigned int dataFormat, unsigned char* data,
                   unsigned short dataReferenceIndex, std::uint64_t reserved)
    : size_(size), dataFormat_(dataFormat), data_(data), dataSize_(data ? size : 0),
      dataReferenceIndex_(dataReferenceIndex), reserved_(reserved) {}

STSDData::~STSDData() { std::free(data_); }

unsigned int STSDData::updateSize() {
    const auto typed = extraData_ ? static_cast<unsigned int>(extraData_->updateSize()) : 0U;
    return size_ = kEntryHeader + typed + getExtensionSize();
}

unsigned char* STSDData::getData() const { return data_; }

unsigned int STSDData::getDataSize() const { return dataSize_; }

int STSDData::setData(unsigned int size, unsigned char* data) {
    if (!size || !data) return -1;
    if (data != data_) std::free(data_);
    data_ = data;
    dataSize_ = size;
    size_ = size;
    return 0;
}

int STSDData::setExtraData(QTAtom* description) {
    if (description != extraData_.get()) extraData_.reset(description);
    return 0;
}

int STSDData::addExtension(QTFrame* atom) {
    if (!atom || !atom->getData() || !atom->getDataLength()) return -1;
    wire::makeRoomForOne(extensions_);
    extensions_.emplace_back(atom);
    size_ += atom->getDataLength();
    return 0;
}

std::vector<QTFrame*> STSDData::getExtensions() const {
    std::vector<QTFrame*> list;
    list.reserve(extensions_.size());
    for (const auto& extension : extensions_) {
        list.push_back(extension.get());
    }
    return list;
}

unsigned int STSDData::getExtensionSize() const {
    unsigned int sum = 0;
    for (const auto& extension : extensions_) {
        sum += extension->getDataLength();
    }
    return sum;
}

} // namespace Ketra::QT
