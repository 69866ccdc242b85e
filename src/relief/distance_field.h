// The height before the blur: the distance of every field pixel from the
// nearest set mask pixel, passed through the drop-off table.
#pragma once

#include <cstdint>

#include "frame/fixed.h"
#include "relief/relief_maps.h"
#include "relief/relief_progress.h"

namespace fancy {

// Distances saturate at this value.
constexpr int32_t kFarDistance = 255;

// The vertical pass, in place: afterwards every sample holds the distance to
// the nearest set pixel (above 127) of its column, above or below, 0 on set
// pixels and at most kFarDistance. A set pixel below a long run of clear ones
// rewrites only the nearer half of what the counter had reached (at most 127
// rows), so a column's far end keeps kFarDistance. counters is a scratch line
// of the mask's width.
void VerticalDistances(ByteMap* mask, int32_t* counters);

// The field's value for every squared distance b = 0 .. (n - 1)^2 from a
// drop-off table of n entries: with smoothness 0 the entry at the whole
// distance, otherwise the two entries round the distance (six fraction bits
// of it) mixed by its fraction. Every larger b gives the last entry. out has
// room for (n - 1)^2 + 1 values.
void HeightsBySquare(const Fixed* table, int32_t n, int32_t smoothness, Fixed* out);

// The horizontal pass and the table lookup, on a mask that VerticalDistances
// has passed over. Field pixel (x, y) lies at (x + offsetX, y + offsetY) in
// the mask; rows and columns beyond the mask repeat its edge, and rows add
// the distance by which they were moved. Finds the Euclidean distance to the
// nearest set pixel among the columns searched and stores heights[b] for its
// square b, held at (n - 1)^2. nearest is a scratch line of the mask's width.
// Returns 0, or -128 when the abort callback, asked once a field row, says
// stop.
int16_t DistanceToHeight(const ByteMap* mask, HeightMap* field, const Fixed* heights, int32_t n,
                         int32_t offsetX, int32_t offsetY, int32_t* nearest,
                         ReliefProgress* progress);

// Both passes with the drop-off table for width and dropOff: 0, -108 when the
// table cannot be had, or -128.
int16_t ScaledDistanceField(ByteMap* mask, HeightMap* field, int32_t width, int32_t smoothness,
                            int32_t dropOff, int32_t offsetX, int32_t offsetY,
                            ReliefProgress* progress);

}  // namespace fancy
