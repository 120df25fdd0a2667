#include "ToolError.h"

#include "Text.h"

#include <base/CException.h>

#include <cstdio>
#include <fmt/format.h>
#include <new>

namespace Ketra::Tool {

void complain(const std::string& file, const std::string& text) {
    fmt::print(stderr, "ketraqt: {}: {}\n", oneLine(file), oneLine(validUtf8(text)));
}

int guarded(const std::string& file, const std::function<void()>& work) {
    try {
        work();
        return kSuccess;
    } catch (const ToolError& error) {
        complain(file, error.what());
        return error.code();
    } catch (const CException& error) {
        complain(file, error.what());
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
