#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/DecoderSpecificInfo.h>

namespace Ketra::QT {

namespace {
constexpr unsigned char kTag = 0x05;
} // namespace

DecoderSpecificInfo::DecoderSpecificInfo(unsigned int size, unsigned char tag)
    : MP4ObjectData(size, tag), info_(new wire::Block) {}

DecoderSpecificInfo::DecoderSpecificInfo(unsigned int size, unsigned char* bytes)
    : DecoderSpecificInfo(size, kTag) {
    if (size) info_->assign(bytes, size);
}

DecoderSpecificInfo::DecoderSpecificInfo(const DecoderSpecificInfo& other)
    : MP4ObjectData(other.size_, other.tag_), info_(new wire::Block(*other.info_)) {}

DecoderSpecificInfo::~DecoderSpecificInfo() = default;

template <class Self, class Io>
void DecoderSpecificInfo::layout(Self& a, Io& io) {
    io.raw(*a.info_, a.size_);
    if constexpr (!Io::kReads) {
        if (a.size_ > a.info_->size()) io.skip(a.size_ - a.info_->size());
    }
}

int DecoderSpecificInfo::getInfo(unsigned char** cursor) { return wire::readInfo(*this, cursor); }

QTFrame* DecoderSpecificInfo::serialize() { return wire::writeDescriptor(*this, tag_, size_); }

unsigned int DecoderSpecificInfo::updateSize() { return size_; }

int DecoderSpecificInfo::setInfo(unsigned int size, unsigned char* bytes) {
    if (!bytes) return -1;
    info_->adopt(bytes, size);
    size_ = size;
    return 0;
}

unsigned char* DecoderSpecificInfo::getDecoderSpecificInfo() const { return info_->data(); }

unsigned int DecoderSpecificInfo::getDecoderSpecificInfoSize() const {
    return info_->data() ? static_cast<unsigned int>(info_->size()) : size_;
}

} // namespace Ketra::QT
