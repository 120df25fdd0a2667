// The inside's way into the public classes: one friend for all of them.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTUtils.h>
#include <qt/wire/Expect.h>
#include <qt/wire/Payload.h>

#include <algorithm>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Ketra::QT::wire {

struct Access {
    // --- atoms
    static std::vector<QTAtom*>& children(QTAtom& atom) { return atom.children_; }
    static const std::vector<QTAtom*>& children(const QTAtom& atom) { return atom.children_; }
    static void setSize(QTAtom& atom, std::uint64_t size) { atom.size_ = size; }
    static void setType(QTAtom& atom, unsigned int type) { atom.type_ = type; }
    static void setContainer(QTAtom& atom) { atom.container_ = true; }
    static bool writeContainer(QTAtom& atom, Output& out) { return atom.writeContainer(out); }
    /// What serialize() of a table gives, behind what `out` holds.
    template <class Atom>
    static bool write(Atom& atom, Output& out) {
        return atom.write(out);
    }
    static bool runsToEnd(const QTAtom& atom) { return atom.toEnd_; }
    /// Keeps payload bytes in the base: it then writes them back.
    static void keepPayload(QTAtom& atom, MallocPtr data, std::uint64_t length) {
        std::free(atom.payload_);
        atom.payload_ = data.release();
        atom.payloadLength_ = length;
    }
    static const unsigned char* keptPayload(const QTAtom& atom) { return atom.payload_; }
    static std::uint64_t keptLength(const QTAtom& atom) { return atom.payloadLength_; }
    static std::uint64_t payloadLength(const QTAtom& atom) {
        return atom.size_ > atom.headerSize_ ? atom.size_ - atom.headerSize_ : 0;
    }

    /// The rate of a sound description, of which the public interface shows a float.
    template <class Audio>
    static double sampleRate(const Audio& audio) {
        return audio.sampleRate_;
    }

    /// Deletes those of a description's extensions that are among `frames`.
    template <class Description>
    static void removeExtensions(Description& description, const std::vector<const QTFrame*>& frames) {
        auto& list = description.extensions_;
        list.erase(std::remove_if(list.begin(), list.end(),
                                  [&](const auto& frame) {
                                      return std::find(frames.begin(), frames.end(), frame.get()) !=
                                             frames.end();
                                  }),
                   list.end());
    }

    /// addChunkOffset() without an object.
    template <class Offsets>
    static void appendOffset(Offsets& offsets, std::uint64_t offset) {
        offsets.append(offset);
    }

    // --- frames
    /// Bytes really behind a frame's data, whatever its length says.
    static unsigned int blockLength(const QTFrame& frame) { return frame.blockLength_; }

    // --- tracks
    template <class Track>
    static bool isPrepared(const Track& track) {
        return track.prepared_;
    }

    // --- packets
    /// Bytes really behind a packet's payload, whatever its size says.
    template <class Packet>
    static std::uint64_t dataLength(const Packet& packet) {
        return packet.data_->size();
    }

    // --- the layout of a leaf and the table of a table atom
    template <class Atom, class Io>
    static void layout(Atom& atom, Io& io) {
        std::remove_const_t<Atom>::layout(atom, io);
    }
    template <class Atom>
    static auto& table(Atom& atom) {
        return *atom.table_;
    }
    /// Where `steps` calls of getNextDecodeOffset() from the start would leave the composition table.
    template <class Atom>
    static void seekDecodeOffset(Atom& atom, std::uint64_t steps) {
        atom.seekDecodeOffset(steps);
    }
    /// Has the entries on their way that seekDecodeOffset(atom, steps) will look at.
    template <class Atom>
    KETRA_QT_INLINED static void expectDecodeOffset(const Atom& atom, std::uint64_t steps) {
        atom.index_->expect(*atom.table_, steps);
    }
    /// What the next getNextDecodeOffset() will give; nothing moves.
    template <class Atom>
    static int peekDecodeOffset(const Atom& atom) {
        return atom.peekDecodeOffset();
    }
    template <class Atom, class Io>
    static void versionAndFlags(Atom& atom, Io& io) {
        io.u8(atom.version_);
        io.flags(atom.flags_);
    }

    // --- the reader
    static Payload fetch(const QTAtom& atom) {
        return atom.utils_ ? atom.utils_->fetch(payloadLength(atom)) : Payload{};
    }
    static Payload fetch(QTUtils& utils, std::uint64_t length) { return utils.fetch(length); }
    static std::uint64_t position(QTUtils& utils) { return utils.position(); }
    static std::int64_t streamSize(QTUtils& utils) { return utils.streamSize(); }
    static std::int64_t streamPosition(QTUtils& utils) { return utils.streamPosition(); }
    static bool inAlternateData(const QTUtils& utils) { return utils.alternateRemaining_ != 0; }
    static std::uint64_t alternateSize(const QTUtils& utils) { return utils.alternateSize_; }
    static void dropAlternateData(QTUtils& utils) { utils.alternateRemaining_ = 0; }
};

/// The first direct child of the type that is also of the class: a type code alone proves nothing.
template <class Atom>
Atom* child(const QTAtom* parent, unsigned int type) {
    if (!parent) return nullptr;
    for (QTAtom* atom : Access::children(*parent)) {
        if (atom->getType() != type) continue;
        if (typeid(*atom) == typeid(Atom)) return static_cast<Atom*>(atom); // nearly always, and cheap to see
        if (auto* typed = dynamic_cast<Atom*>(atom)) return typed;
    }
    return nullptr;
}

} // namespace Ketra::QT::wire
