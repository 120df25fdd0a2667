#include "ToolError.h"

#include "FrameWalk.h"
#include "Source.h"
#include "Text.h"
#include "check/Check.h"

#include <base/CException.h>

#include <cstdio>
#include <fmt/format.h>
#include <new>
#include <optional>
#include <unordered_set>

namespace Ketra::Tool {

namespace {

/// Where the damage is, as far as that is to be seen. The file is read again, and may be gone.
std::string placed(const std::string& file, const std::string& text, std::optional<unsigned int> track) {
    try {
        Source source(file);
        return withPlace(source, text, track);
    } catch (const std::exception&) {
        return text;
    }
}

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

int guarded(const std::string& file, const std::function<void()>& work) {
    try {
        work();
        return kSuccess;
    } catch (const TrackError& error) {
        complain(file, placed(file, error.what(), error.track()));
        return error.code();
    } catch (const ToolError& error) {
        complain(file, error.code() == kMalformed ? placed(file, error.what(), {}) : error.what());
        return error.code();
    } catch (const CException& error) {
        complain(file, placed(file, error.what(), {}));
        return kMalformed;
    } catch (const std::bad_alloc&) {
        complain(file, "not enough memory");
        return kCannotRead;
    } catch (const std::exception& error) {
        complain(file, error.what());
        return kMalformed;
    }
}

} // namespace Ketra::Tool
