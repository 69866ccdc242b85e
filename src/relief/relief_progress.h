// Abort and progress of a relief run: one count over every pass, so that
// the bar moves once from 0 to the total whatever the passes are.
#pragma once

#include <cstdint>

#include "frame/host_record.h"

namespace fancy {

struct ReliefProgress {
  AbortProc abort;        // or null
  ProgressProc progress;  // or null
  int32_t count;
  int32_t total;
};

// One step done: reports (count, total) and asks whether to stop. True when
// the user has cancelled.
inline bool ReliefTick(ReliefProgress* p) {
  if (!p) return false;
  ++p->count;
  if (p->progress) p->progress(p->count, p->total);
  return p->abort && (p->abort() & 0xFF) != 0;
}

}  // namespace fancy
