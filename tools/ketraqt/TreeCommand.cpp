#include "Commands.h"
#include "Output.h"
#include "Source.h"
#include "ToolError.h"
#include "Tree.h"

#include <qt/QTAtoms.h>

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

void describe(QT::QTAtom& atom, Node& node) {
    static const std::array rooms = {&fileDescribers(),   &trackDescribers(), &mediaDescribers(),
                                     &sampleDescribers(), &entryDescribers(), &systemsDescribers(),
                                     &userDescribers()};
    for (const Describers* room : rooms) {
        for (const Describer& describer : *room) {
            if (describer(atom, node)) return;
        }
    }
}

/// Until its size is computed anew, a file type atom that was read counts its brands twice, and the chunk
/// runs of a sample table count an entry for each chunk: they end where the next atom begins.
std::uint64_t sizeInFile(const QT::QTAtom& atom, std::uint64_t end) {
    if (dynamic_cast<const QT::STSC*>(&atom) && end > atom.getOffset()) {
        return std::min(atom.getSize(), end - atom.getOffset());
    }
    constexpr std::uint64_t kBrand = 4;
    const auto* ftyp = dynamic_cast<const QT::FTYP*>(&atom);
    const std::uint64_t counted = ftyp ? kBrand * ftyp->getCompatibleBrands().size() : 0;
    return atom.getSize() > counted ? atom.getSize() - counted : atom.getSize();
}

std::string fieldText(const Json& value) {
    return value.is_string() ? "\"" + oneLine(value.get<std::string>()) + "\""
                             : value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void printNode(Output& output, const Json& node, std::size_t depth) {
    constexpr std::size_t kIndent = 2;
    std::string line(depth * kIndent, ' ');
    line += oneLine(node["type"].get<std::string>());
    if (!node["offset"].is_null()) {
        line += fmt::format(" offset={} header={}", node["offset"].dump(), node["header_size"].dump());
    }
    line += " size=" + node["size"].dump();
    for (const auto& [name, value] : node["fields"].items()) {
        line += fmt::format(" {}={}", name, fieldText(value));
    }
    output.write(line + "\n");
    for (const auto& child : node["children"]) {
        printNode(output, child, depth + 1);
    }
}

void printTree(const std::string& file, QT::QTAtom& root, bool json) {
    Output output;
    const Json tree = atomJson(root);
    if (json) {
        Json whole{{"schema", kSchema}, {"file", validUtf8(file)}};
        whole.update(tree);
        output.write(jsonLine(whole));
    } else {
        printNode(output, tree, 0);
    }
    output.finish();
}

} // namespace

Json itemJson(const std::string& type, std::uint64_t size, Node node) {
    return {{"type", type},
            {"offset", nullptr},
            {"header_size", nullptr},
            {"size", size},
            {"fields", std::move(node.fields)},
            {"children", std::move(node.children)}};
}

Json atomJson(QT::QTAtom& atom, std::uint64_t end) {
    Node node;
    describe(atom, node);
    const std::uint64_t size = sizeInFile(atom, end);
    const std::vector<QT::QTAtom*> children = atom.getChildren();
    for (std::size_t i = 0; i < children.size(); ++i) {
        const std::uint64_t behind =
            i + 1 < children.size() ? children[i + 1]->getOffset() : atom.getOffset() + size;
        node.children.push_back(atomJson(*children[i], behind));
    }
    Json json = itemJson(codeText(atom.getType()), size, std::move(node));
    if (atom.getHeaderSize() == 0) return json; // not read as an atom of its own
    json["offset"] = atom.getOffset();
    json["header_size"] = atom.getHeaderSize();
    return json;
}

void runTree(const std::string& file, bool json) {
    Source source(file);
    if (const auto movie = readMovie(source)) {
        printTree(file, *movie->getRoot(), json);
        return;
    }
    // What atoms there are may tell why it is no movie.
    AtomTree tree(source.stream());
    if (!tree.root().getChildren().empty()) printTree(file, tree.root(), json);
    refuse(tree);
}

} // namespace Ketra::Tool
