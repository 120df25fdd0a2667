// Atom trees of single tracks: empty ones for writing, and parsed ones.
#pragma once

#include "support/AtomFile.h"

#include <qt/QTAtoms.h>
#include <qt/QTTrack.h>

#include <memory>

namespace test {

/// A "trak" tree as a writing track needs it; the media header is of the caller's choice.
struct WritingTree {
    std::unique_ptr<Ketra::QT::TRAK> trak = std::make_unique<Ketra::QT::TRAK>();
    Ketra::QT::TKHD* header = add<Ketra::QT::TKHD>(*trak, 3U);
    Ketra::QT::UDTA* userData = nullptr;
    Ketra::QT::MDIA* media = add<Ketra::QT::MDIA>(*trak);
    Ketra::QT::MDHD* mediaHeader = add<Ketra::QT::MDHD>(*media);
    Ketra::QT::HDLR* handler = add<Ketra::QT::HDLR>(*media);
    Ketra::QT::MINF* information = add<Ketra::QT::MINF>(*media);
    Ketra::QT::STBL* samples = add<Ketra::QT::STBL>(*information);
    Ketra::QT::STSD* descriptions;

    explicit WritingTree(unsigned int mediaType) : descriptions(add<Ketra::QT::STSD>(*samples, mediaType)) {}

    template <class Atom, class... Values>
    static Atom* add(Ketra::QT::QTAtom& parent, Values... values) {
        auto* atom = new Atom(values...);
        parent.addChild(atom);
        return atom;
    }
    Ketra::QT::UDTA* addUserData() { return userData = add<Ketra::QT::UDTA>(*trak); }

    /// Lets the track write into this tree.
    void give(Ketra::QT::QTTrack& track, Ketra::QT::QTMovieConstructionFlags flavour = Ketra::QT::kMOV) {
        track.setTrak(trak.get());
        track.setMovieType(flavour);
        track.initAtoms();
    }
    /// The typed description of the only entry.
    template <class Description>
    Description& description() const {
        return dynamic_cast<Description&>(*descriptions->getSampleDescriptionData(0)->getExtraData());
    }
    Bytes entryBytes() const {
        descriptions->updateSize();
        const Bytes all = take(descriptions->serialize());
        return Bytes(all.begin() + 16, all.end());
    }
};

/// One entry of "stsd": size, format, six reserved bytes, data reference 1, body.
Bytes sampleEntry(const char (&format)[5], const Bytes& body);

/// "trak" of a 320 x 240 track 7 of 20 units of 10 a second. `header` is the media header, `first` the offset
/// of the only chunk, `descriptions` the entries of "stsd", of which it claims `claimed`.
Bytes trackBytes(const Bytes& header, const Bytes& descriptions, unsigned char claimed = 1,
                 const Bytes& userData = {}, unsigned int first = 0);

/// The parsed tree, over a file of its own.
class ParsedTree {
public:
    explicit ParsedTree(const Bytes& bytes) : file_(bytes), trak_(file_.parse<Ketra::QT::TRAK>()) {}

    Ketra::QT::TRAK* trak() const { return trak_.get(); }
    Ketra::QT::QTStream& stream() { return file_.stream(); }
    Ketra::QT::QTAtom* descriptions() const;

private:
    AtomFile file_;
    std::unique_ptr<Ketra::QT::TRAK> trak_;
};

} // namespace test
