// P1: translations only. The cell is a parallelogram whose bottom edge
// lies `shear` pixels right of its top edge; its bounding box is width +
// |shear| wide. Each tile row is one row of the parallelogram, cut at its
// break column and put together again so that it starts at the box's
// column 0 (shear >= 0) or |shear| (shear < 0): the tile is width x height
// and repeats with each next band of tiles moved by the shear.
//
// With k = shear / height, x starts at k/2 (shear >= 0) or width + k/2
// (shear < 0) and grows by k per row; the row's break is b = floor(x - 0.5
// + 1e-7), the parallelogram's edge at the row's centre. shear >= 0: tile
// (r, c) = box (r, width + c) for c <= b, box (r, c) after it. shear < 0:
// box (r, |shear| + c) for c <= b, box (r, |shear| + c - width) after.
// Where |shear| is a width or more the edge passes whole widths, and both
// runs move by as many widths (x is taken less those widths for b).
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "tile/groups/groups.h"
#include "tile/groups/tile_build.h"

namespace fancy {
namespace {

using tile_build::CellRows;
using tile_build::RowTicker;
using tile_build::TileRows;

template <class P>
int16_t BuildRuns(const CellRows& cell, const TileRows& tile, int32_t width, int32_t shear,
                  RowTicker& ticker) {
  const double k = static_cast<double>(shear) / cell.rows;
  double x = shear >= 0 ? k / 2 : width + k / 2;
  // Box column of tile column 0 in the first run and in the second.
  const int32_t first = shear >= 0 ? width : -shear;
  const int32_t second = first - width;
  for (int32_t r = 0; r < cell.rows; ++r, x += k) {
    if (!ticker.Next(r)) return kTileBuildCancelled;
    // A shear of a width or more carries the edge past a whole width: the
    // runs move with it by whole widths.
    const int32_t widths = TruncToInt(std::floor(x / width));
    const int32_t shift = widths * width;
    int32_t b = tile_build::SpanFloor(x - shift - 0.5 + 1e-7);
    // Both runs stay inside the box even where the float edge drifts.
    if (b > cell.cols - 1 - first - shift) b = cell.cols - 1 - first - shift;
    if (b < -1 - second - shift) b = -1 - second - shift;
    if (b > width - 1) b = width - 1;
    if (b < -1) b = -1;
    const uint8_t* src = cell.Row(r);
    uint8_t* dst = tile.Row(r);
    for (int32_t c = 0; c < width; ++c) {
      int32_t column = (c <= b ? first : second) + shift + c;
      column = column < 0 ? 0 : (column >= cell.cols ? cell.cols - 1 : column);
      P::Copy(dst + static_cast<ptrdiff_t>(c) * P::kDstBytes,
              src + static_cast<ptrdiff_t>(column) * P::kSrcBytes);
    }
  }
  ticker.Finish();
  return kNoError;
}

}  // namespace

int16_t P1::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                      int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                      TileBuildHooks* hooks) {
  CellRows cell;
  TileRows tileRows;
  if (!tile_build::MakeViews(
          *this,
          {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
          &cell, &tileRows)) {
    return kErrFilterFailure;
  }
  if (height <= 0 || width <= 0 || cell.rows != height ||
      cell.cols < int64_t{width} + std::llabs(shear) || tileRows.width != width ||
      tileRows.height != height) {
    return kErrFilterFailure;
  }
  RowTicker ticker(hooks, progressMode, height, targetHeight);
  const int16_t result = tile_build::WithLayouts(sourceType, tileType, [&](auto px) {
    return BuildRuns<decltype(px)>(cell, tileRows, width, shear, ticker);
  });
  if (result == kNoError) tile_build::FinishTile(*this, tileRows);
  return result;
}

}  // namespace fancy
