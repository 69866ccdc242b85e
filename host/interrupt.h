// Ctrl-C. The first SIGINT only raises a flag, which the host's abortProc
// answers with; a second one ends the process at once.
#pragma once

namespace fancy {

void InstallInterruptHandler();
bool Interrupted();

}  // namespace fancy
