// JSON as this program writes it: keys in the order given, one value a line, always valid.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Ketra::Tool {

using Json = nlohmann::ordered_json;

constexpr int kSchema = 1;

inline std::string jsonLine(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace Ketra::Tool
