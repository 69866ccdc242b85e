// PhaseBar: the stroke engine's progress, one bar of 100 split into stages.
#pragma once

#include <cstdint>

#include "frame/host_record.h"

namespace fancy {

// Stage s runs from kPhaseBarStops[s] to kPhaseBarStops[s + 1].
constexpr int32_t kPhaseBarStops[5] = {0, 10, 40, 95, 100};
constexpr int32_t kPhaseBarEnd = 4;  // not a position: tells the host the bar is done

// Reports position of count in stage 0..3 as (done, 100), done =
// trunc(position / count x stage width + stage start); stage 4 sends
// (-3, 100). Other stages, and a host without progressProc, report nothing.
// A count of 0 or less reports the stage's start.
void PhaseBarReport(const FilterRecord* record, int32_t stage, int32_t position, int32_t count);

}  // namespace fancy
