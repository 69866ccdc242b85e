// The progress bar on standard error, drawn only when that is a terminal.
#pragma once

#include <cstdint>

namespace fancy {

struct ProgressBar {
  bool enabled = false;
  bool shown = false;
  int lastPercent = -1;
  const char* label = "";
};

// Enabled when standard error is a terminal and quiet is false.
void ProgressBarInit(ProgressBar* bar, const char* label, bool quiet);
// done of total; totals of zero or less are ignored.
void ProgressBarUpdate(ProgressBar* bar, int32_t done, int32_t total);
// Removes the bar from the line.
void ProgressBarClear(ProgressBar* bar);

}  // namespace fancy
