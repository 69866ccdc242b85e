// Glass: the picture seen through the raised surface, bent, tinted by how
// much glass a ray crosses, and with a highlight.
#pragma once

#include <cstdint>

#include "frame/fixed.h"
#include "relief/emboss.h"
#include "relief/relief_maps.h"
#include "relief/relief_params.h"
#include "relief/relief_progress.h"

namespace fancy {

// What the light does to Glass besides the derived numbers.
struct GlassLook {
  ReliefNumbers numbers;
  uint8_t tint[4];  // in the pixels' own byte order
};

// The rows that a band's rays may sample: window rows of the field from
// fieldTop on, each row's pixels (planes interleaved, as the band's) behind
// its own pointer.
struct GlassWindow {
  int32_t fieldTop;
  int32_t rows;
  const uint8_t* const* row;
};

// How far (in whole rows) a ray can be bent for this look over a field whose
// highest sample is top: a band's window must reach this far beyond it for
// the band to come out as if the whole picture were at hand.
int32_t GlassReach(const ReliefNumbers& numbers, Fixed top);

// Writes every pixel of the band (band.source is not read; window is). The
// window stands for the image: a ray that leaves it is cut at its border.
// Returns 0, -128 when the abort callback (asked once a row) says stop, or
// -30100 (kErrImageTooSmallRelief) for a field or window under 2 x 2 pixels.
int32_t GlassBand(const HeightMap* field, const ReliefBand& band, const GlassWindow& window,
                  const GlassLook& look, ReliefProgress* progress);

}  // namespace fancy
