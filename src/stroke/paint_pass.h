// The second pass: every row is built from the same row of the source (or
// the background colour) and every stroke that crosses it. Strokes are
// activated when the row reaches their top, laid into the ActiveList by the
// layering, painted a span a row, and dropped when done.
#pragma once

#include <cstdint>

#include "stroke/stroke_state.h"

namespace fancy {

// Between the passes: the table in the order of first touch, the index back
// at its start and the list empty.
void PaintPassBegin(StrokeEngineState* state);

// Paints row r. in is the canvas (three bytes a pixel); out's channel 0
// serves as the row's coverage plane, and out receives the painted row.
void PaintRow(StrokeEngineState* state, uint8_t* in, uint8_t* out, int32_t r);

}  // namespace fancy
