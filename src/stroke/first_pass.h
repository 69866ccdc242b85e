// The first pass: it walks down the picture stopping only at rows where
// strokes are anchored, and there evaluates each stroke from the row's
// pixels. The host is asked for the next anchor row directly, so the pass
// costs one host call per anchor row, not per row.
#pragma once

#include <cstdint>

#include "frame/effect_record.h"
#include "stroke/stroke_state.h"

namespace fancy {

// Once, on the pass's first row: the working numbers, the seed (13 seeds
// from the time), the placed and sorted StrokeTable, the colour-mode flags
// and the brush mask (whose failure is silent: no stroke then reaches the
// picture). Returns 0, or -108 when the table cannot be had.
int16_t FirstPassSetUp(StrokeEngineState* state, StrokeRecord* style);

// One row r of the first pass (row: width pixels, three bytes each).
// Returns how many rows to move on: to the next anchor row, 1 when no
// stroke is left (the next row ends the pass), or 0 when the pass is over.
int32_t FirstPassStep(StrokeEngineState* state, const uint8_t* row, int32_t r);

}  // namespace fancy
