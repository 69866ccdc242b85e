// The band mask of a feathered cell whose edges are not axes: an 8-bit
// image of the cell and its surroundings in which each pixel's level is
// its weight in the cross-fade. Levels run from 2F + 1 deep inside the
// cell down one level per pixel to F + 1 on the cell's outline, and on
// down to 1 at F pixels outside it; farther out they are 0. A pixel inside
// at distance i from the edge and its partner i + 1 outside thus weigh F +
// 1 + i and F - i, the ramp of the band rule.
#pragma once

#include <cstdint>
#include <memory>

namespace fancy {

// A convex cell outline in cell coordinates: pixel (x, y) covers [x, x+1)
// x [y, y+1), and belongs to the cell when its centre lies inside.
inline constexpr int kMaskPolygonMax = 4;
struct MaskPolygon {
  double x[kMaskPolygonMax];
  double y[kMaskPolygonMax];
  int32_t count;
};

struct BandMask {
  std::unique_ptr<uint8_t[]> data;
  int32_t left;  // cell column of the mask's first column
  int32_t top;   // cell row of the mask's first row
  int32_t width;
  int32_t height;
  int32_t rowBytes;  // a multiple of 4

  // The level at cell position (x, y); 0 outside the mask.
  uint8_t At(int32_t x, int32_t y) const {
    const int64_t mx = int64_t{x} - left, my = int64_t{y} - top;
    if (mx < 0 || my < 0 || mx >= width || my >= height) return 0;
    return data[static_cast<size_t>(my) * rowBytes + static_cast<size_t>(mx)];
  }
};

// Builds the mask of `polygon` over the width x height pixels whose first
// lies at cell position (left, top): the polygon is filled with level 2F +
// 1 and its outline (cell pixels with a side on a pixel outside) with F +
// 1; then a chain-code contour walker peels the ramps. For each level L =
// F + 1 .. 2F it traces the contour of the pixels at L or above, starting
// at the first such pixel on the row of the polygon's first vertex, and
// gives L + 1 to the deeper pixels beside it; then for L = F .. 1 it traces
// the contour of the pixels above L and gives L to the pixels outside
// beside it. F must lie in 0..127. Returns 0, -108 when the mask cannot be
// allocated (mask left empty), or kErrFilterFailure for a bad size or
// feather.
int16_t BuildBandMask(const MaskPolygon& polygon, int32_t feather, int32_t left, int32_t top,
                      int32_t width, int32_t height, BandMask* mask);

}  // namespace fancy
