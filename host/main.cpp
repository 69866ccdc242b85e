// fancyhost: runs the Fancy effects module on pictures from the command line.
#include <cstdio>
#include <string>
#include <vector>

#include "apply.h"
#include "cli.h"
#include "commands.h"
#include "exit_codes.h"

int main(int argc, char** argv) {
  using namespace fancy;
  std::vector<std::string> args(argv + 1, argv + argc);
  CommandLine line;
  std::string error;
  if (!ParseCommandLine(args, &line, &error)) {
    std::fprintf(stderr, "fancyhost: %s\n\n%s", error.c_str(), UsageText());
    return kExitUsage;
  }
  switch (line.command) {
    case Command::kHelp: std::fputs(UsageText(), stdout); return kExitSuccess;
    case Command::kApply: return RunApply(line.apply);
    case Command::kList: return RunList(line.apply);
    case Command::kAbout: return RunAbout(line.apply);
    case Command::kSetup: return RunSetup(line.setupDir);
    case Command::kSample: return RunSample(line);
  }
  return kExitUsage;
}
