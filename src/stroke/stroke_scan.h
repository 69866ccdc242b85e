// StrokeScan: setting up a stroke's walk over the rows and stepping it one
// row at a time. The span that a row gets is painted by span_paint.h.
#pragma once

#include <cstdint>

#include "stroke/brush_mask.h"
#include "stroke/stroke_table.h"

namespace fancy {

// The mask as installed in the engine for a run.
struct InstalledBrush {
  const uint8_t* raster;  // null when the brush could not be loaded
  int32_t width;
  int32_t height;
  double halfWidth;   // width x 0.5
  double halfHeight;
  int32_t uLimit;     // width << 16
  int32_t vLimit;     // height << 16
  int32_t stride;     // the width, not the file's padded row
};

InstalledBrush InstallBrush(const BrushMask& mask);

// The four corners of a stroke's rectangle: the brush points (-hw, -hh),
// (w - 1 - hw, -hh), (w - 1 - hw, h - 1 - hh), (-hw, h - 1 - hh), scaled by
// scale, turned by radians (clockwise on screen, as y grows downward) and
// moved to the anchor.
void StrokeCorners(const StrokeEntry& stroke, const InstalledBrush& brush, double scale,
                   double radians, double cornerX[4], double cornerY[4]);

// Sets up a zeroed scan for the stroke, in a picture of the given height.
// A stroke wholly above the picture is left with row and lastRow 0.
void StrokeScanSetUp(StrokeScan* scan, const StrokeEntry& stroke, const InstalledBrush& brush,
                     int32_t height);

// Where a row's span is painted.
struct SpanTarget {
  uint8_t* canvas;    // the row, three bytes a pixel
  uint8_t* coverage;  // the coverage plane, every third byte
  int32_t width;
  bool paintRule;
};

// Steps the scan by one row: walks both edges, paints the row's span into
// target (null: only steps) when the scan's row is in the picture, and moves
// the brush coordinates on. Returns true when the stroke is done.
bool StrokeScanStep(StrokeScan* scan, const StrokeEntry& stroke, const InstalledBrush& brush,
                    const SpanTarget* target);

}  // namespace fancy
