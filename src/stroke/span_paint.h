// Painting one row's span of a stroke: the brush value at each pixel, by
// 16.16 brush coordinates, blended into the canvas by the normal rule or the
// paint rule. Integers only; nothing is allocated.
#pragma once

#include <cstdint>

namespace fancy {

struct Span {
  const uint8_t* raster;  // brush values, `stride` to a row
  int32_t stride;
  int32_t uLimit;         // brush width << 16; a value equal to the limit is inside
  int32_t vLimit;
  int32_t u, v;           // brush coordinates at the first column
  int32_t dudx, dvdx;     // per column
  uint8_t colour[3];
  uint8_t opacity;
};

// Normal rule: the canvas moves toward the colour by the brush value times
// the opacity, a = (m x o + 128) >> 8, so that an opaque full stroke leaves
// 1/256 of what was there.
void PaintSpanNormal(const Span& span, uint8_t* canvas, int32_t count);

// Paint rule: a pixel takes a stroke only where its brush value is above
// the coverage that the row's earlier strokes left there. The brush value
// counts twice, in the colour (which darkens toward the stroke's edge) and
// in the blend; the coverage becomes the brush value.
void PaintSpanPaint(const Span& span, uint8_t* canvas, uint8_t* coverage, int32_t count);

}  // namespace fancy
