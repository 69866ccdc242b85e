// The commands of fancyhost besides apply. Each returns the exit code.
#pragma once

#include "cli.h"

namespace fancy {

int RunList(const ApplyOptions& options);
int RunAbout(const ApplyOptions& options);
int RunSetup(const std::string& dir);
int RunSample(const CommandLine& line);

}  // namespace fancy
