#include "frame/phase_bar.h"

#include <algorithm>

namespace fancy {

void PhaseBarReport(const FilterRecord* record, int32_t stage, int32_t position, int32_t count) {
  if (!record || !record->progressProc || stage < 0 || stage > kPhaseBarEnd) return;
  if (stage == kPhaseBarEnd) {
    record->progressProc(-3, 100);
    return;
  }
  double start = kPhaseBarStops[stage];
  double width = kPhaseBarStops[stage + 1] - kPhaseBarStops[stage];
  double fraction = count > 0 ? static_cast<double>(position) / count : 0.0;
  // Positions beyond the count are the caller's slip; keep them convertible.
  double done = std::clamp(fraction * width + start, -2147483648.0, 2147483647.0);
  record->progressProc(static_cast<int32_t>(done), 100);
}

}  // namespace fancy
