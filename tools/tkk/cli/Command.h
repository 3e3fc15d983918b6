#ifndef VEKTKK_TOOLS_TKK_CLI_COMMAND_H
#define VEKTKK_TOOLS_TKK_CLI_COMMAND_H

#include <functional>
#include <vector>

#include <CLI/CLI.hpp>

namespace tkk {

// Exit statuses of the tool.
constexpr int kExitOk = 0;
constexpr int kExitCheckFailed = 1;
constexpr int kExitBadInput = 2;

// Runs a command once its arguments are parsed; returns the exit status.
// Throws BadInput for input it cannot use.
using Runner = std::function<int()>;

// One entry of the tool's command table. `attach` declares the command's
// arguments (and subcommands, as `guid new|decode` does) on its CLI11 app and
// returns what runs it; the arguments live in state the runner holds.
struct Command {
  const char* name;
  const char* summary;
  Runner (*attach)(CLI::App& app);
};

// The commands in the order `tkk --help` lists them.
const std::vector<Command>& CommandTable();

// The commands of each group, defined beside their code.
Runner AttachInfo(CLI::App& app);
Runner AttachCheck(CLI::App& app);
Runner AttachNew(CLI::App& app);
Runner AttachExport(CLI::App& app);
Runner AttachRender(CLI::App& app);
Runner AttachGuid(CLI::App& app);
Runner AttachSummary(CLI::App& app);
Runner AttachNearest(CLI::App& app);
Runner AttachDiff(CLI::App& app);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_CLI_COMMAND_H
