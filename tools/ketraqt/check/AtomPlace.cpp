#include "check/AtomPlace.h"

#include "Text.h"

#include <qt/QTTypes.h>

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <map>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kHeader = 8;
constexpr unsigned int kLongHeader = 16;
constexpr std::size_t kMostAtoms = 200000;
constexpr unsigned int kRoot = 0;

struct Nesting {
    unsigned int parent;
    unsigned int child;
};

/// Atoms that hold others, and where they count as such: depth is bounded by this table.
constexpr Nesting kContainers[] = {
    {kRoot, fourCC("moov")},          {fourCC("moov"), fourCC("trak")}, {fourCC("moov"), fourCC("udta")},
    {fourCC("moov"), fourCC("mvex")}, {fourCC("trak"), fourCC("edts")}, {fourCC("trak"), fourCC("tref")},
    {fourCC("trak"), fourCC("mdia")}, {fourCC("trak"), fourCC("udta")}, {fourCC("trak"), fourCC("tapt")},
    {fourCC("mdia"), fourCC("minf")}, {fourCC("minf"), fourCC("dinf")}, {fourCC("minf"), fourCC("stbl")},
    {fourCC("minf"), fourCC("gmhd")}, {fourCC("moov"), fourCC("cmov")},
};

bool isContainer(unsigned int parent, unsigned int child) {
    return std::any_of(std::begin(kContainers), std::end(kContainers),
                       [=](const Nesting& n) { return n.parent == parent && n.child == child; });
}

bool isReadable(unsigned int type) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        const unsigned int c = type >> shift & 0xFF;
        if (c != 0xA9 && (c < 0x20 || c > 0x7E)) return false;
    }
    return true;
}

class Walk {
public:
    Walk(Bytes& bytes, Findings& findings) : bytes_(bytes), findings_(findings) {}

    void readChildren(AtomPlace& parent) {
        std::map<unsigned int, unsigned int> numbers;
        std::uint64_t at = parent.body();
        while (parent.end() - at >= kHeader) {
            if (endsHere(parent, at)) return;
            if (++atoms_ > kMostAtoms) {
                findings_.add(Severity::Warning, "too-many-atoms", parent.path, at,
                              "the atoms from here on are not looked at");
                return;
            }
            AtomPlace child;
            child.offset = at;
            child.type = bytes_.u32(at + 4);
            child.path = pathOf(parent, child.type, ++numbers[child.type]);
            const bool whole = measure(parent, child);
            if (child.size < child.headerSize) return; // there is no way on
            at = child.end();
            if (isContainer(parent.type, child.type)) readChildren(child);
            parent.children.push_back(std::move(child));
            if (!whole) return;
        }
        if (at < parent.end() && !isTerminator(parent, at)) addTrailing(parent, at);
    }

private:
    static std::string pathOf(const AtomPlace& parent, unsigned int type, unsigned int number) {
        std::string path = parent.path.empty() ? "" : parent.path + "/";
        path += oneLine(codeText(type));
        if (type == fourCC("trak") || number > 1) path += fmt::format("[{}]", number);
        return path;
    }

    /// User data may end with a zero where the next size would be.
    bool isTerminator(const AtomPlace& parent, std::uint64_t at) {
        return parent.end() - at == 4 && bytes_.u32(at) == 0 && parent.type == fourCC("udta");
    }

    /// Zeros, or noise at the end of the file, are no atom.
    bool endsHere(const AtomPlace& parent, std::uint64_t at) {
        const unsigned int size = bytes_.u32(at);
        const unsigned int type = bytes_.u32(at + 4);
        if (size == 0 && type == 0) {
            addTrailing(parent, at);
            return true;
        }
        if (isReadable(type)) return false;
        // User data has names of its own.
        if (parent.type == fourCC("udta") || parent.type == fourCC("tref")) return false;
        findings_.add(Severity::Warning, "atom-type", parent.path, at,
                      [type] { return fmt::format("no atom has the type 0x{:08x}", type); });
        return parent.type == kRoot;
    }

    void addTrailing(const AtomPlace& parent, std::uint64_t at) {
        findings_.add(Severity::Warning, "trailing-bytes", parent.path, at, [&] {
            return fmt::format("{} bytes behind the last atom are none", parent.end() - at);
        });
    }

    /// Sets the sizes. False when nothing can follow it.
    bool measure(const AtomPlace& parent, AtomPlace& atom) {
        const std::uint64_t room = parent.end() - atom.offset;
        std::uint64_t size = bytes_.u32(atom.offset);
        atom.headerSize = kHeader;
        if (size == 1) {
            atom.headerSize = kLongHeader;
            size = room < kLongHeader ? 0 : bytes_.u64(atom.offset + kHeader);
        } else if (size == 0) {
            addOpenSize(parent, atom);
            atom.size = room;
            return false;
        }
        if (size < atom.headerSize) {
            findings_.add(Severity::Error, "atom-size", atom.path, atom.offset, [&] {
                return fmt::format("its size of {} bytes is less than its header has", size);
            });
            atom.size = 0;
            return false;
        }
        atom.size = std::min(size, room);
        if (size > room) {
            findings_.add(Severity::Error, "atom-size", atom.path, atom.offset, [&] {
                return fmt::format("{} bytes of it run over the end of {}", size - room,
                                   parent.path.empty() ? "the file" : parent.path);
            });
        }
        return size <= room;
    }

    void addOpenSize(const AtomPlace& parent, const AtomPlace& atom) {
        if (parent.type == kRoot && atom.type != fourCC("moov")) {
            findings_.add(Severity::Note, "open-size", atom.path, atom.offset,
                          "it has no size and goes on to the end of the file");
        } else {
            findings_.add(Severity::Error, "atom-size", atom.path, atom.offset, "its size is 0");
        }
    }

    Bytes& bytes_;
    Findings& findings_;
    std::size_t atoms_ = 0;
};

} // namespace

const AtomPlace* AtomPlace::child(unsigned int childType) const {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [=](const AtomPlace& c) { return c.type == childType; });
    return found != children.end() ? &*found : nullptr;
}

AtomPlace readPlaces(Bytes& bytes, Findings& findings) {
    AtomPlace root;
    root.size = bytes.size();
    Walk(bytes, findings).readChildren(root);
    return root;
}

} // namespace Ketra::Tool
