// fancyhost apply: one effect on one picture.
#pragma once

#include "cli.h"

namespace fancy {

// Returns the exit code.
int RunApply(const ApplyOptions& options);

}  // namespace fancy
