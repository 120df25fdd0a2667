#include "CommandLine.h"

namespace Ketra::Tool {

CLI::App* addCommand(CLI::App& app, const std::string& name, const std::string& description,
                     std::initializer_list<const char*> examples) {
    CLI::App* command = app.add_subcommand(name, description);
    std::string footer = examples.size() == 1 ? "Example:" : "Examples:";
    for (const char* example : examples) {
        footer += std::string("\n  ketraqt ") + example;
    }
    command->footer(footer);
    return command;
}

} // namespace Ketra::Tool
