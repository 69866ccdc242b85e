#include "platform/crt_random.h"

namespace fancy {

// One generator per process, as the runtime keeps it; the effects run one at
// a time on the host's thread.
static uint32_t gCrtRandState = 1;

void CrtSrand(uint32_t seed) { gCrtRandState = seed; }

int CrtRand() {
  gCrtRandState = gCrtRandState * 214013u + 2531011u;
  return static_cast<int>((gCrtRandState >> 16) & 0x7FFF);
}

}  // namespace fancy
