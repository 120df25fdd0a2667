// Collects findings; those of one rule in one atom become one.
#pragma once

#include "check/Finding.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace Ketra::Tool {

class Findings {
public:
    /// `text` is a function that is asked only when the finding is not folded into one before it.
    template <class Text>
    void add(Severity severity, const char* rule, const std::string& path, std::uint64_t offset,
             const Text& text) {
        if (Finding* first = findingFor(severity, rule, path, offset)) first->text = text();
    }
    void add(Severity severity, const char* rule, const std::string& path, std::uint64_t offset,
             const char* text) {
        if (Finding* first = findingFor(severity, rule, path, offset)) first->text = text;
    }

    /// From here on, every place is this one: what was inflated has no other in the file.
    void pin(std::uint64_t offset);

    std::vector<Finding> take(); ///< by place

private:
    Finding* findingFor(Severity severity, const char* rule, const std::string& path, std::uint64_t offset);

    std::vector<Finding> all_;
    std::unordered_map<std::string, std::size_t> known_; // by rule and path
    std::uint64_t leftOut_ = 0;
    bool pinned_ = false;
    std::uint64_t pin_ = 0;
};

} // namespace Ketra::Tool
