// The relief surface: the selection's mask raised into a height field.
#pragma once

#include <cstdint>

#include "relief/relief_maps.h"
#include "relief/relief_progress.h"

namespace fancy {

// Steps of the progress count that BuildHeightField takes for a field of
// this size: a row each in the distance pass, then with smoothness every
// second row and every second column in the blur.
int32_t HeightFieldSteps(int32_t fieldWidth, int32_t fieldHeight, int32_t smoothness);

// Distance field through the drop-off table, then (smoothness > 0) the blur
// with sigma = smoothness pixels, then (height > 0) every sample times
// height / 10. The field's pixel (x, y) lies at (x + offsetX, y + offsetY) in
// the mask. The mask is consumed: *mask is freed and set to null whatever
// happens. On failure *field is freed and set to null too. Returns 0, -108
// or -128.
int16_t BuildHeightField(ByteMap** mask, HeightMap** field, int32_t width, int32_t smoothness,
                         int32_t dropOff, int32_t height, int32_t offsetX, int32_t offsetY,
                         ReliefProgress* progress);

}  // namespace fancy
