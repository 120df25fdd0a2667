#include <qt/QTAtoms/media/HDLR.h>
#include <qt/QTTrack/QTDescriptionTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Block.h>

namespace Ketra::QT {

QTDescriptionTrack::QTDescriptionTrack() : QTTrack(kMOV), mpod_(new wire::Block) {}

QTDescriptionTrack::QTDescriptionTrack(QTAtom* trak) : QTDescriptionTrack() {
    readTrak(trak, 0, "QT::QTDescriptionTrack::QTDescriptionTrack", "No track header found in track atom",
             "No mdia-atom found in trak-atom");
    const auto* media = wire::child<QTAtom>(trak, fourCC("mdia"));
    if (const auto* handler = wire::child<HDLR>(media, fourCC("hdlr"))) {
        setMediaType(handler->getComponentSubType());
    }
    readDescriptions(false);
}

QTDescriptionTrack::QTDescriptionTrack(const QTDescriptionTrack& other)
    : QTTrack(other), odsmTrackID_(other.odsmTrackID_), sdsmTrackID_(other.sdsmTrackID_),
      mpod_(new wire::Block(*other.mpod_)), extensions_(other.extensions_) {}

QTDescriptionTrack& QTDescriptionTrack::operator=(const QTDescriptionTrack& other) {
    if (this == &other) return *this;
    QTTrack::operator=(other);
    odsmTrackID_ = other.odsmTrackID_;
    sdsmTrackID_ = other.sdsmTrackID_;
    *mpod_ = *other.mpod_;
    extensions_ = other.extensions_;
    return *this;
}

QTDescriptionTrack::~QTDescriptionTrack() = default;

unsigned int QTDescriptionTrack::getType() { return fourCC("desc"); }

int QTDescriptionTrack::parseStsd(QTAtom*) { return 0; }

int QTDescriptionTrack::setMpodData(unsigned int* refs, unsigned int count) {
    if (count && !refs) return -1;
    mpod_->adopt(reinterpret_cast<unsigned char*>(refs), std::uint64_t{count} * sizeof(unsigned int));
    if (!count) mpod_->clear();
    return 0;
}

} // namespace Ketra::QT
