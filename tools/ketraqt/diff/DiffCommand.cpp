#include "Commands.h"
#include "Output.h"
#include "Terminal.h"
#include "Text.h"
#include "ToolError.h"
#include "diff/Difference.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

const char* kindName(Difference::Kind kind) {
    constexpr const char* kNames[] = {"only_a", "only_b", "field", "content", "order", "samples", "moved"};
    return kNames[kind];
}

Json differenceJson(const Difference& d) {
    Json told{{"kind", kindName(d.kind)}, {"path", d.path}};
    if (!d.name.empty()) told["name"] = d.name;
    if (d.kind == Difference::kField || d.kind == Difference::kSamples) {
        told["a"] = d.a;
        told["b"] = d.b;
    }
    if (d.kind == Difference::kMoved) told["distance"] = d.b;
    if (d.kind == Difference::kSamples) told["first_sample"] = d.where;
    if (d.kind == Difference::kContent) told["first_byte"] = d.where;
    if (d.kind == Difference::kSamples || d.kind == Difference::kMoved) told["count"] = d.count;
    return told;
}

std::string valueText(const Json& value) {
    constexpr std::size_t kMost = 160;
    if (value.is_null()) return "nothing";
    std::string text = value.is_string() ? "\"" + oneLine(value.get<std::string>()) + "\""
                                         : value.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (text.size() > kMost) text = validUtf8(text.substr(0, kMost)) + "...";
    return text;
}

std::string movedText(const Difference& d) {
    const std::string what =
        fmt::format("{} frame{} lie{} ", d.count, d.count == 1 ? "" : "s", d.count == 1 ? "s" : "");
    const std::string where = d.path.empty() ? "all tracks: " : d.path + ": ";
    if (d.b.is_null()) return where + what + "elsewhere";
    const auto distance = d.b.get<std::int64_t>();
    return fmt::format("{}{}{} bytes {}", where, what, std::llabs(distance),
                       distance < 0 ? "earlier" : "later");
}

std::string changeText(const Difference& d) {
    switch (d.kind) {
    case Difference::kField:
        return fmt::format("{}: {} {} -> {}", d.path, d.name, valueText(d.a), valueText(d.b));
    case Difference::kContent:
        return fmt::format("{}: its bytes differ from {} on", d.path, d.where);
    case Difference::kOrder:
        return (d.path.empty() ? std::string("the file") : d.path) + ": the same atoms are in another order";
    case Difference::kSamples:
        return fmt::format("{}: sample {}: {} {} -> {}{}", d.path, d.where, d.name, valueText(d.a),
                           valueText(d.b), d.count > 1 ? fmt::format(" (and {} more)", d.count - 1) : "");
    default:
        return movedText(d);
    }
}

std::string lineOf(const Difference& d, bool colours) {
    if (d.kind == Difference::kOnlyA) return coloured("- " + d.path, Colour::kRed, colours) + "\n";
    if (d.kind == Difference::kOnlyB) return coloured("+ " + d.path, Colour::kGreen, colours) + "\n";
    return coloured("~", Colour::kYellow, colours) + " " + oneLine(changeText(d)) + "\n";
}

/// Whatever is thrown while it is opened is about this file, not the other.
std::unique_ptr<Side> openSide(const std::string& file, int& code) {
    std::unique_ptr<Side> side;
    code = std::max(code, guarded(file, [&] { side = std::make_unique<Side>(file); }));
    return side;
}

void print(const DiffOptions& options, const std::vector<Difference>& differences) {
    Output output;
    if (options.json) {
        Json list = Json::array();
        for (const Difference& d : differences) {
            list.push_back(differenceJson(d));
        }
        output.write(jsonLine({{"schema", kSchema},
                               {"a", validUtf8(options.a)},
                               {"b", validUtf8(options.b)},
                               {"equal", differences.empty()},
                               {"differences", std::move(list)}}));
    } else {
        const bool colours = wantsColours(stdout);
        for (const Difference& d : differences) {
            output.write(lineOf(d, colours));
        }
    }
    output.finish();
}

} // namespace

int runDiff(const DiffOptions& options) {
    int code = kSuccess;
    const auto a = openSide(options.a, code);
    const auto b = openSide(options.b, code);
    if (!a || !b) return code;
    std::vector<Difference> differences;
    // What was found before the damage is worth having.
    const std::string both = options.a + " and " + options.b;
    code = guarded(both, [&] { compareAtoms(*a, *b, options, differences); });
    code = std::max(code, guarded(both, [&] { compareSamples(*a, *b, differences); }));
    code = std::max(code, guarded("standard output", [&] { print(options, differences); }));
    return code != kSuccess ? code : differences.empty() ? kSuccess : kFindings;
}

} // namespace Ketra::Tool
