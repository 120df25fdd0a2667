// How `tree` describes atoms: one function for each class, in tables by kind of atom.
#pragma once

#include "Json.h"
#include "Text.h"

#include <qt/QTAtom.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace Ketra::Tool {

/// What is told of an atom beside its header. `children` is for what it holds that is no child atom.
struct Node {
    Json fields = Json::object();
    Json children = Json::array();
};

/// Fills the node when the atom is of the describer's class.
using Describer = std::function<bool(QT::QTAtom& atom, Node& node)>;
using Describers = std::vector<Describer>;

const Describers& fileDescribers();
const Describers& trackDescribers();
const Describers& mediaDescribers();
const Describers& sampleDescribers();
const Describers& entryDescribers();
const Describers& systemsDescribers();
const Describers& userDescribers();

/// {type, offset, header_size, size, fields, children} of an atom and all that is in it. `end` is where in
/// the file something else begins.
Json atomJson(QT::QTAtom& atom, std::uint64_t end = 0);

/// The same keys for what is no atom of the tree; its place in the file is not known.
Json itemJson(const std::string& type, std::uint64_t size, Node node);

/// The entry for a class in a table of describers; `describe` takes the class and the node.
template <class Atom, class Function>
Describer on(Function describe) {
    return [describe](QT::QTAtom& atom, Node& node) {
        auto* known = dynamic_cast<Atom*>(&atom);
        if (!known) return false;
        describe(*known, node);
        return true;
    };
}

template <class Atom>
void addVersion(const Atom& atom, Node& node) {
    node.fields["version"] = atom.getVersion();
    node.fields["flags"] = atom.getFlags();
}

/// The count of a table and its first entries. Asking for an entry turns a whole table into objects, which
/// only small ones are worth. `entry` gives the JSON of an index, null where there is none.
template <class Function>
void addTable(unsigned int count, Node& node, Function entry) {
    constexpr unsigned int kSmall = 1000;
    constexpr unsigned int kShown = 4;
    node.fields["entries"] = count;
    if (count > kSmall) return;
    Json first = Json::array();
    for (unsigned int i = 0; i < std::min(count, kShown); ++i) {
        Json value = entry(i);
        if (value.is_null()) break;
        first.push_back(std::move(value));
    }
    node.fields["first"] = std::move(first);
}

/// A colour of three 16-bit parts.
inline Json colorJson(unsigned int r, unsigned int g, unsigned int b) { return Json::array({r, g, b}); }

} // namespace Ketra::Tool
