// The trees of two movies, atom by atom.
#include "Atoms.h"
#include "Text.h"
#include "Tree.h"
#include "check/Bytes.h"
#include "diff/Difference.h"

#include <qt/QTAtoms/movie/MVHD.h>

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <map>
#include <string_view>

namespace Ketra::Tool {

namespace {

using Names = std::initializer_list<std::string_view>;

bool isOneOf(std::string_view name, Names names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Where chunks lie is told by the samples, what free space and media data hold by nobody.
bool isContentIgnored(std::string_view type) {
    return isOneOf(type, {"mdat", "free", "skip", "wide", "stco", "co64"});
}

/// Everything in them is a field.
bool isTold(std::string_view type) { return isOneOf(type, {"mvhd", "tkhd", "mdhd"}); }

std::string typeOf(const Json& node) { return node["type"].get<std::string>(); }

/// Tracks are told apart by their ID, others by their number among those of the type.
struct Children {
    std::vector<std::string> keys; // in their order
    std::map<std::string, const Json*> byKey;
    std::map<std::string, std::string> steps; // of the path
};

std::string trackKey(const Json& trak) {
    for (const Json& child : trak["children"]) {
        if (typeOf(child) == "tkhd") return "trak " + child["fields"].value("track_id", Json()).dump();
    }
    return "trak";
}

Children childrenOf(const Json& node) {
    Children children;
    std::map<std::string, unsigned int> numbers;
    for (const Json& child : node["children"]) {
        const std::string type = typeOf(child);
        const unsigned int number = ++numbers[type];
        std::string key = type == "trak" ? trackKey(child) : fmt::format("{} {}", type, number);
        while (children.byKey.count(key)) {
            key += '\''; // an ID that is there twice
        }
        std::string step = oneLine(type);
        if (type == "trak" || number > 1) step += fmt::format("[{}]", number);
        children.keys.push_back(key);
        children.byKey.emplace(key, &child);
        children.steps.emplace(key, std::move(step));
    }
    return children;
}

class TreeDiff {
public:
    TreeDiff(Side& a, Side& b, const DiffOptions& options, std::vector<Difference>& differences)
        : a_(a.source.stream()), b_(b.source.stream()), options_(options), differences_(differences) {}

    void compare(const Json& a, const Json& b, const std::string& path) {
        const std::size_t before = differences_.size();
        compareFields(a, b, path);
        compareChildren(a, b, path);
        if (differences_.size() == before) compareContent(a, b, path);
    }

private:
    void compareFields(const Json& a, const Json& b, const std::string& path) {
        const std::string type = typeOf(a);
        for (const auto& [name, value] : a["fields"].items()) {
            const Json other = b["fields"].value(name, Json());
            if (value != other && isCompared(type, name)) add({Difference::kField, path, name, value, other});
        }
        for (const auto& [name, value] : b["fields"].items()) {
            if (!a["fields"].contains(name) && isCompared(type, name))
                add({Difference::kField, path, name, Json(), value});
        }
    }

    /// The first entries of a table are shown for edit lists only: those of the samples are compared as such.
    bool isCompared(std::string_view type, std::string_view name) const {
        if (name == "first") return type == "elst";
        return !options_.ignoreTimes || !isOneOf(name, {"creation_time", "modification_time"});
    }

    void compareChildren(const Json& a, const Json& b, const std::string& path) {
        const Children left = childrenOf(a);
        const Children right = childrenOf(b);
        const std::string prefix = path.empty() ? "" : path + "/";
        std::vector<std::string> commonA;
        std::vector<std::string> commonB;
        for (const std::string& key : left.keys) {
            const std::string childPath = prefix + left.steps.at(key);
            const auto other = right.byKey.find(key);
            if (other == right.byKey.end()) {
                add({Difference::kOnlyA, childPath});
                continue;
            }
            commonA.push_back(key);
            compare(*left.byKey.at(key), *other->second, childPath);
        }
        for (const std::string& key : right.keys) {
            if (left.byKey.count(key)) {
                commonB.push_back(key);
            } else {
                add({Difference::kOnlyB, prefix + right.steps.at(key)});
            }
        }
        if (commonA != commonB) add({Difference::kOrder, path});
    }

    /// What no field tells of. Items that have no place of their own belong to the bytes around them.
    void compareContent(const Json& a, const Json& b, const std::string& path) {
        const auto hasPlace = [](const Json& node) { return !node["offset"].is_null(); };
        const std::string type = typeOf(a);
        if (!hasPlace(a) || !hasPlace(b) || isTold(type) || path.empty()) return;
        if (std::any_of(a["children"].begin(), a["children"].end(), hasPlace)) return;
        const auto size = [](const Json& node) {
            return node["size"].get<std::uint64_t>() -
                   std::min(node["size"].get<std::uint64_t>(), node["header_size"].get<std::uint64_t>());
        };
        if (size(a) != size(b)) {
            add({Difference::kField, path, "size", a["size"], b["size"]});
            return;
        }
        if (isContentIgnored(type)) return;
        const auto body = [](const Json& node) {
            return node["offset"].get<std::uint64_t>() + node["header_size"].get<std::uint64_t>();
        };
        compareBytes(body(a), body(b), size(a), path);
    }

    void compareBytes(std::uint64_t atA, std::uint64_t atB, std::uint64_t size, const std::string& path) {
        constexpr std::uint64_t kBlock = 4096;
        std::array<unsigned char, kBlock> left;
        std::array<unsigned char, kBlock> right;
        for (std::uint64_t done = 0; done < size; done += kBlock) {
            const auto count = static_cast<std::size_t>(std::min(kBlock, size - done));
            const std::size_t gotA = a_.read(atA + done, left.data(), count);
            const std::size_t gotB = b_.read(atB + done, right.data(), count);
            const auto* different = std::mismatch(left.begin(), left.begin() + count, right.begin()).first;
            if (different != left.begin() + count) {
                add({Difference::kContent, path, {}, {}, {}, done + std::uint64_t(different - left.begin())});
                return;
            }
            if (gotA < count || gotB < count) return; // the files end here
        }
    }

    void add(Difference difference) { differences_.push_back(std::move(difference)); }

    Bytes a_;
    Bytes b_;
    const DiffOptions& options_;
    std::vector<Difference>& differences_;
};

} // namespace

Side::Side(const std::string& path) : source(path), movie(readMovie(source)) {
    if (movie) return;
    tree = std::make_unique<AtomTree>(source.stream());
    if (!atomAt<QT::MVHD>(&tree->root(), {QT::fourCC("moov"), QT::fourCC("mvhd")})) refuse(*tree);
}

QT::QTAtom& Side::root() { return movie ? *movie->getRoot() : tree->root(); }

void compareAtoms(Side& a, Side& b, const DiffOptions& options, std::vector<Difference>& differences) {
    const Json left = atomJson(a.root());
    const Json right = atomJson(b.root());
    TreeDiff(a, b, options, differences).compare(left, right, {});
}

} // namespace Ketra::Tool
