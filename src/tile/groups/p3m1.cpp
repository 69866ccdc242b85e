// P3m1: mirrors on every edge of an equilateral triangle. The cell has its
// base on row 0: corners (0, 0), (H, 0), (H/2, 0.866 H), H = size (which
// ComputeTileSize has lowered by one). Rows 0 .. V, V = trunc(0.8660254 H
// - 0.5), are computed over Q = 3H / 2 columns and each pixel is written
// to (y, x), (V - y, Q + x), (2V + 1 - y, x) and (V + 1 + y, Q + x).
//
// A row is cut by A(y) = 0.28867515 + 0.5773503 y (the left edge), B(y) =
// H - A(y) (the right edge) and C(y) = H + A(y); the last span ends at
// Q - 1. The spans' maps:
//   1  (-.5  .866  .866  .5)  0.18013, 0.66739       mirror in the left edge
//   2  the cell itself
//   3  (-.5 -.866 -.866  .5)  1.5 H - 0.683, 0.866 H - 0.183
//   4  (-.5 -.866  .866 -.5)  1.5 H - 0.683, -0.866 H + 0.183
#include "tile/groups/groups.h"
#include "tile/groups/tile_build.h"

namespace fancy {
namespace {

using namespace tile_build;

template <class P>
int16_t BuildRows(const CellRows& cell, const TileRows& tile, int32_t h, int32_t v, int32_t q,
                  RowTicker& ticker) {
  const Fixed half = kFixedHalf, sin60 = kFixedSin60;
  const Fixed lc = kFixedLongCorrection, sc = kFixedShortCorrection;
  const SpanMap mirror = {
      -half, sin60, sin60, half, FixedFromDouble(0.18013), FixedFromDouble(0.66739), false};
  const SpanMap third = {-half,
                         -sin60,
                         -sin60,
                         half,
                         WrapSub(WrapMul(3 * half, h), lc),
                         WrapSub(WrapMul(sin60, h), sc),
                         false};
  const SpanMap fourth = {-half,
                          -sin60,
                          sin60,
                          -half,
                          WrapSub(WrapMul(3 * half, h), lc),
                          WrapAdd(WrapNeg(WrapMul(sin60, h)), sc),
                          false};
  const SpanMap* maps[4] = {&mirror, nullptr, &third, &fourth};
  for (int32_t y = 0; y <= v; ++y) {
    if (!ticker.Next(y)) return kTileBuildCancelled;
    const double a = 0.28867515 + 0.5773503 * y;
    const int32_t ends[4] = {SpanFloor(a - 0.5 + 1e-7), SpanFloor(h - a - 0.5 + 1e-7),
                             SpanFloor(h + a - 0.5 + 1e-7), q - 1};
    const CopyTarget targets[4] = {{tile.Row(y), 0, 1},
                                   {tile.Row(v - y), q, 1},
                                   {tile.Row(2 * v + 1 - y), 0, 1},
                                   {tile.Row(v + 1 + y), q, 1}};
    int32_t x = 0;
    for (int s = 0; s < 4; ++s) {
      const int32_t end = ends[s] > q - 1 ? q - 1 : ends[s];
      RunSpan<P>(cell, maps[s], y, x, end, targets, 4, tile.width);
      if (end + 1 > x) x = end + 1;
    }
  }
  ticker.Finish();
  return kNoError;
}

}  // namespace

int16_t P3m1::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                        int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                        TileBuildHooks* hooks) {
  CellRows cell;
  TileRows tileRows;
  if (!MakeViews(
          *this,
          {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
          &cell, &tileRows)) {
    return kErrFilterFailure;
  }
  const int32_t h = size;
  const int32_t v = TruncToInt(0.8660254 * h - 0.5);
  const int32_t q = WrapMul(h, 3) / 2;
  if (h <= 1 || v < 0 || tileRows.width != 2 * q || tileRows.height != 2 * v + 2 ||
      cell.rows <= v || cell.cols < h) {
    return kErrFilterFailure;
  }
  RowTicker ticker(hooks, progressMode, v + 1, targetHeight);
  const int16_t result = WithLayouts(sourceType, tileType, [&](auto px) {
    return BuildRows<decltype(px)>(cell, tileRows, h, v, q, ticker);
  });
  if (result == kNoError) FinishTile(*this, tileRows);
  return result;
}

}  // namespace fancy
