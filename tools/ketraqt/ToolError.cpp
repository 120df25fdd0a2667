#include "ToolError.h"

#include "Text.h"

#include <cstdio>
#include <fmt/format.h>
#include <unordered_set>

namespace Ketra::Tool {

namespace {

/// A message that was there before says nothing new; how many of them there were does.
class Said {
public:
    ~Said() {
        if (again_ > 0) std::fprintf(stderr, "ketraqt: %llu more messages like these\n", again_);
    }

    bool isNew(const std::string& line) {
        constexpr std::size_t kRemembered = 1000;
        if (lines_.count(line)) {
            ++again_;
            return false;
        }
        if (lines_.size() < kRemembered) lines_.insert(line);
        return true;
    }

private:
    std::unordered_set<std::string> lines_;
    unsigned long long again_ = 0;
};

} // namespace

void complain(const std::string& file, const std::string& text) {
    static Said said;
    const std::string line = fmt::format("ketraqt: {}: {}\n", oneLine(file), oneLine(validUtf8(text)));
    if (said.isNew(line)) fmt::print(stderr, "{}", line);
}

} // namespace Ketra::Tool
