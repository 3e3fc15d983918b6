// tkk: builds, inspects, pictures and ships the track files of the loggers.
// Exit status: 0 done, 1 a check failed, 2 bad input or usage. Errors are one
// line on stderr.
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <iostream>
#include <utility>
#include <vector>

#include "BadInput.h"
#include "Command.h"
#include "EventLog.h"

int main(int argc, char** argv) {
  CLI::App app("Builds, inspects, pictures and ships track files.", "tkk");
  app.require_subcommand(1);
  app.fallthrough();
  bool verbose = false;
  app.add_flag("-v,--verbose", verbose, "Show the library's reports on stderr");

  std::vector<std::pair<CLI::App*, tkk::Runner>> commands;
  for (const tkk::Command& c : tkk::CommandTable()) {
    CLI::App* sub = app.add_subcommand(c.name, c.summary);
    commands.emplace_back(sub, c.attach(*sub));
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);  // --help
    std::cerr << "tkk: " << e.what() << " (see tkk --help)\n";
    return tkk::kExitBadInput;
  }

  // The library never seeds rand(); the host does, once, for the random part
  // of the GUIDs and file names it makes.
  srand(static_cast<unsigned>(time(nullptr)) ^ (static_cast<unsigned>(getpid()) << 16));
  if (verbose) tkk::OpenEventLog();
  try {
    for (const auto& command : commands) {
      if (*command.first) return command.second();
    }
  } catch (const tkk::BadInput& e) {
    std::cerr << "tkk: " << e.what() << "\n";
    return tkk::kExitBadInput;
  } catch (const std::exception& e) {
    std::cerr << "tkk: " << e.what() << "\n";
    return tkk::kExitBadInput;
  }
  return tkk::kExitBadInput;
}
