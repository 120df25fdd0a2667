#include "FrameWalk.h"
#include "Source.h"
#include "ToolError.h"
#include "check/Check.h"

#include <base/CException.h>

#include <new>
#include <optional>

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

} // namespace

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
