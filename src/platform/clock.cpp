#include "platform/clock.h"

#include <ctime>

namespace fancy {

// Negative: no pin, the clock answers.
static int64_t gCrtTimeOverride = -1;

int64_t CrtTime() {
  if (gCrtTimeOverride >= 0) return gCrtTimeOverride;
  return static_cast<int64_t>(std::time(nullptr));
}

void CrtTimeOverride(int64_t seconds) { gCrtTimeOverride = seconds < 0 ? -1 : seconds; }

}  // namespace fancy
