// Runs the built fancyhost as a user would, in a folder of its own: the
// configuration goes under that folder (XDG_CONFIG_HOME), never the user's.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "picture.h"

namespace fancy::testing {

struct RunResult {
  int exitCode = -1;  // 128 + signal when killed by one
  std::string out;
  std::string err;
};

std::string FancyhostPath();

// home: the folder given as XDG_CONFIG_HOME; env: further variables.
// onLine, when given, sees each line of standard output as it comes and the
// child's pid, and may signal it.
RunResult RunFancyhost(const std::vector<std::string>& args, const std::string& home,
                       const std::map<std::string, std::string>& env = {},
                       const std::function<void(const std::string& line, int pid)>& onLine = {});

// Runs fancyhost with FANCYHOST_TEST_STEP_DELAY_MS set to delayMs, so that
// the run is surely still going, and sends it SIGINT when standard output
// first shows the line `at`. *sent tells whether the signal went.
RunResult RunInterruptedAt(const std::vector<std::string>& args, const std::string& home,
                           const std::string& delayMs, const std::string& at, bool* sent);

// Whether text holds part.
bool Contains(const std::string& text, const std::string& part);

// Lines of a text.
std::vector<std::string> Lines(const std::string& text);

// Writes a picture through fancyhost's own writers (the format from the
// name) and reads one back; both fail the test on error.
void WritePicture(const std::string& path, const FilePicture& picture);
FilePicture ReadPicture(const std::string& path);

// A picture with something in every channel: gradients and a checker.
FilePicture TestPicture(int32_t width, int32_t height, PixelMode mode);

bool Exists(const std::string& path);

}  // namespace fancy::testing
