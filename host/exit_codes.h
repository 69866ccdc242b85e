// fancyhost's exit codes.
#pragma once

namespace fancy {

enum ExitCode : int {
  kExitSuccess = 0,
  kExitEffectFailed = 1,  // the module reported an error
  kExitUsage = 2,
  kExitFile = 3,          // an unreadable input or an unwritable output
  kExitCancelled = 130,   // Ctrl-C, or Cancel in the dialog
};

// The meaning of a module result code, for messages.
const char* ResultMeaning(int code);

}  // namespace fancy
