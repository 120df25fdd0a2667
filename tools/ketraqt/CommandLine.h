// How the commands come onto the command line: each adds itself, with its options and examples.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <initializer_list>
#include <string>

namespace Ketra::Tool {

/// What the command line asks for. Returns the exit code.
using Action = std::function<int()>;

/// A command whose help ends with the examples, which lack nothing but the name of the program.
CLI::App* addCommand(CLI::App& app, const std::string& name, const std::string& description,
                     std::initializer_list<const char*> examples);

void addInfo(CLI::App& app, Action& action);
void addTree(CLI::App& app, Action& action);
void addSamples(CLI::App& app, Action& action);
void addExtract(CLI::App& app, Action& action);
void addCheck(CLI::App& app, Action& action);
void addDiff(CLI::App& app, Action& action);
void addReport(CLI::App& app, Action& action);
void addHint(CLI::App& app, Action& action);
void addSdp(CLI::App& app, Action& action);
void addRemux(CLI::App& app, Action& action);
void addChapters(CLI::App& app, Action& action);
void addTimecode(CLI::App& app, Action& action);

} // namespace Ketra::Tool
