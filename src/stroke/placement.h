// Stroke placement: how many strokes a picture gets, where they stand, what
// each one is (evaluated at its anchor row in the first pass), and the two
// orders of the StrokeTable.
#pragma once

#include <cstdint>

#include "stroke/stroke_scan.h"
#include "stroke/stroke_table.h"
#include "stroke/style_model.h"

namespace fancy {

// The grid of a picture W x H at a density d: with M = max(W, H) and
// S = sqrt(M x M x d x 0.00056), cols = trunc(max(W / M x S, 1) + 0.5) and
// rows likewise from H, about 0.00056 x d strokes a pixel. Density 0 (or
// anything that gives no number) makes one stroke.
struct StrokeGrid {
  int32_t cols;
  int32_t rows;
  int64_t count;
};
StrokeGrid StrokeGridOf(int32_t width, int32_t height, int32_t density);

// Lays the grid's strokes into a zeroed table of grid.count entries, rows
// outer and columns inner, each at its grid point moved by up to the
// style's variation of half a cell. Two draws a stroke, even with no
// variation, so that the later draws do not depend on it.
void PlaceStrokes(StrokeEntry* table, const StrokeGrid& grid, int32_t width, int32_t height,
                  double jitterX, double jitterY);

// The table in anchor order (y, then x), for the first pass; and in the
// order of first touch (top, then left), for the second. Both sorts are
// stable, so strokes with equal keys keep the order they had and the result
// is the same on every system.
void SortByAnchor(StrokeEntry* table, int32_t count);
void SortByTop(StrokeEntry* table, int32_t count);

// Bits of the flag word that asks for the sample's H, S and V: 2, 4 and 8
// for groups using the hue, saturation and brightness modes.
uint32_t ColourModeFlags(const StrokeWorking& working);

// Evaluates a stroke whose anchor row is `row` (three bytes a pixel, width
// pixels): samples its colour at the anchor column, then size,
// transparency, angle and colour in that order of draws, and stores its box.
// Returns false when the box misses the picture (width x height).
bool EvaluateStroke(StrokeEntry* stroke, const uint8_t* row, int32_t width, int32_t height,
                    const StrokeWorking& working, uint32_t colourModes,
                    const InstalledBrush& brush);

// The box test: the corners with the angle byte / 255 x 6.28 (a little less
// than the renderer's turn; this box decides left and top). Stores the
// truncated least x and y and answers whether the box meets the picture.
bool StrokeBoxMeets(StrokeEntry* stroke, const InstalledBrush& brush, int32_t width,
                    int32_t height);

}  // namespace fancy
