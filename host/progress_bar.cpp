#include "progress_bar.h"

#include <unistd.h>

#include <cstdio>

namespace fancy {

namespace {
constexpr int kBarWidth = 40;
}

void ProgressBarInit(ProgressBar* bar, const char* label, bool quiet) {
  *bar = ProgressBar{};
  bar->enabled = !quiet && isatty(STDERR_FILENO);
  bar->label = label;
}

void ProgressBarUpdate(ProgressBar* bar, int32_t done, int32_t total) {
  if (!bar->enabled || total <= 0 || done < 0) return;
  int64_t percent = int64_t(done) * 100 / total;
  if (percent > 100) percent = 100;
  if (percent == bar->lastPercent) return;
  bar->lastPercent = int(percent);
  char cells[kBarWidth + 1];
  int filled = int(percent * kBarWidth / 100);
  for (int i = 0; i < kBarWidth; ++i) cells[i] = i < filled ? '#' : '.';
  cells[kBarWidth] = '\0';
  std::fprintf(stderr, "\r%s [%s] %3d%%", bar->label, cells, int(percent));
  std::fflush(stderr);
  bar->shown = true;
}

void ProgressBarClear(ProgressBar* bar) {
  if (!bar->shown) return;
  std::fprintf(stderr, "\r\033[K");
  std::fflush(stderr);
  bar->shown = false;
  bar->lastPercent = -1;
}

}  // namespace fancy
