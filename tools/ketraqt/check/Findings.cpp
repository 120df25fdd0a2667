#include "check/Findings.h"

#include <algorithm>

namespace Ketra::Tool {

namespace {

constexpr std::size_t kMostFindings = 5000; // nobody reads more, and a hostile file has millions

} // namespace

Finding* Findings::findingFor(Severity severity, const char* rule, const std::string& path,
                              std::uint64_t offset) {
    const std::string key = std::string(rule) + ' ' + path;
    if (const auto found = known_.find(key); found != known_.end()) {
        Finding& first = all_[found->second];
        ++first.count;
        first.severity = std::max(first.severity, severity);
        return nullptr;
    }
    if (all_.size() == kMostFindings) {
        ++leftOut_;
        return nullptr;
    }
    known_.emplace(key, all_.size());
    all_.push_back({severity, rule, path, pinned_ ? pin_ : offset, {}});
    return &all_.back();
}

void Findings::pin(std::uint64_t offset) {
    pinned_ = true;
    pin_ = offset;
}

std::vector<Finding> Findings::take() {
    std::stable_sort(all_.begin(), all_.end(),
                     [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
    if (leftOut_) {
        all_.push_back({Severity::Warning, "more-findings", {}, 0, "there are more findings", leftOut_});
    }
    return std::move(all_);
}

} // namespace Ketra::Tool
