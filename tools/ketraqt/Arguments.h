// What the program was called with.
#pragma once

#include <string>
#include <vector>

namespace Ketra::Tool {

/// The arguments behind the program's name, in UTF-8 on every system. On Windows those of main() have lost
/// whatever the code page of the machine cannot hold.
std::vector<std::string> arguments(int argc, char** argv);

} // namespace Ketra::Tool
