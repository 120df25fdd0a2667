// A "trak" tree for writing, and what stands in it after a track was prepared.
#pragma once

#include "support/Bytes.h"

#include <qt/QTAtoms.h>
#include <qt/QTTrack/QTTrack.h>

#include <initializer_list>
#include <memory>

namespace test {

template <class Parent>
Parent* adoptAll(Parent* parent, std::initializer_list<Ketra::QT::QTAtom*> children) {
    for (Ketra::QT::QTAtom* child : children) {
        parent->addChild(child);
    }
    return parent;
}

/// The tree of one track; the track is made first and destroyed first.
template <class Track>
struct WritingTree {
    std::unique_ptr<Ketra::QT::QTAtom> trak;
    Ketra::QT::STSD* stsd;
    Ketra::QT::STTS* stts = new Ketra::QT::STTS;
    Ketra::QT::CTTS* ctts = new Ketra::QT::CTTS;
    Ketra::QT::STSZ* stsz = new Ketra::QT::STSZ;
    Ketra::QT::STBL* stbl = new Ketra::QT::STBL;
    Ketra::QT::HDLR* handler = new Ketra::QT::HDLR;
    Ketra::QT::MDHD* mdhd = new Ketra::QT::MDHD;
    Ketra::QT::TKHD* tkhd = new Ketra::QT::TKHD(1U);
    Ketra::QT::DREF* dref = new Ketra::QT::DREF;
    Ketra::QT::TREF* tref = new Ketra::QT::TREF;
    Track track;

    WritingTree(unsigned int mediaType, Ketra::QT::QTMovieConstructionFlags flavour,
                Ketra::QT::QTAtom* mediaHeader, std::initializer_list<Ketra::QT::QTAtom*> more = {})
        : stsd(new Ketra::QT::STSD(mediaType)) {
        using namespace Ketra::QT;
        adoptAll(stbl, {stsd, stts, ctts, new STSS, new SDTP, stsz});
        auto* minf = adoptAll(new MINF, {mediaHeader, adoptAll(new DINF, {dref}), stbl});
        trak.reset(adoptAll(new TRAK, {tkhd, tref, adoptAll(new MDIA, {mdhd, handler, minf})}));
        adoptAll(trak.get(), more);
        mdhd->setTimeScale(600);
        track.setMovieType(flavour);
        track.setMediaType(mediaType);
        track.setTrak(trak.get());
        track.initAtoms();
    }

    Ketra::QT::STSDData& entry() const { return *stsd->getSampleDescriptionData(0); }
    template <class Description>
    Description& description() const {
        return dynamic_cast<Description&>(*entry().getExtraData());
    }
    /// All extensions behind one another.
    Bytes extensions() const {
        Bytes all;
        for (const Ketra::QT::QTFrame* frame : entry().getExtensions()) {
            all.insert(all.end(), frame->getData(), frame->getData() + frame->getDataLength());
        }
        return all;
    }
    /// The extension of the type, or nothing.
    Bytes extension(const char (&type)[5]) const {
        for (const Ketra::QT::QTFrame* frame : entry().getExtensions()) {
            if (std::equal(type, type + 4, frame->getData() + 4)) {
                return Bytes(frame->getData(), frame->getData() + frame->getDataLength());
            }
        }
        return {};
    }
    std::string handlerName() const {
        return std::string(reinterpret_cast<const char*>(handler->getComponentName()),
                           handler->getComponentNameSize());
    }
};

inline Ketra::QT::QTFrame* frameOf(const Bytes& bytes) {
    auto* data = static_cast<unsigned char*>(std::malloc(bytes.size() + 1));
    std::copy(bytes.begin(), bytes.end(), data);
    return new Ketra::QT::QTFrame(static_cast<unsigned int>(bytes.size()), data, 0, 0, false, 1, 0, 0, false);
}

} // namespace test
