// The stroke engine's row protocol. The host delivers one row at a time;
// the engine makes two passes over the picture (the first only at anchor
// rows, the second at every row) and moves inRect/outRect on after each
// step, leaving an empty request when the picture is done. Progress goes to
// the PhaseBar: stage 0 at the first step, 1 through the first pass, 2
// through the second, 3 at the end and at the release, 4 when released.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/effect_record.h"
#include "frame/host_record.h"

namespace fancy {

// Selector 3: keeps the record as the current one, asks the host's
// extension once (when offered; the answer is not used) and asks for the
// first row (three planes). No stroke exists yet: the strokes are counted
// and placed at the first step (StrokeGridOf gives their count).
int16_t StrokeEngineStart(FilterRecord* record, const StrokeRecord* style);

// Selector 4: one step on the delivered row. 0, or -108 when the stroke
// table cannot be had.
int16_t StrokeEngineStep(FilterRecord* record, StrokeRecord* style);

// Selector 5, and the end of a preview: frees the table, the mask and every
// open stroke, if a run was started. Nothing of the engine survives it.
void StrokeEngineRelease(FilterRecord* record);

// Runs the engine over a picture in memory, standing in for the host as the
// style dialog's preview does: for the run, the record's filterRect is the
// whole picture and inData/outData are rows of the engine's own; all three
// are restored afterwards. The picture has three bytes a pixel, rowBytes
// apart. A true answer of the record's abortProc after a step ends the run
// with -128. Returns 0 or the engine's code.
int16_t StrokePaintPicture(FilterRecord* record, StrokeRecord* style, uint8_t* pixels,
                           int32_t width, int32_t height, ptrdiff_t rowBytes);

}  // namespace fancy
