// P6m: mirrors on every edge of a 30-60-90 triangle. The cell has its 30
// degree corner at the box's origin: corners (0, 0), (0, k), (s, k), k =
// 1.732 s, s = size (even). Rows 0 .. Hh - 1, Hh = trunc(1.7320508 s -
// 0.5) + 1, are computed over Q = 3 (s / 2) columns; the tile is 6 s x 2 Hh
// and each pixel goes to eight places (listed below). Vr = trunc(0.8660254
// s - 0.5) + 1 is the row where the second span's edge turns.
//
// A row is cut by A(y) = 0.28867515 + 0.5773503 y (the hypotenuse); for
// y < Vr by B(y) = 0.8660254 + 1.7320508 y, for y >= Vr by C(y) = Q - (Vr
// + 0.5 - 0.8660254 s) 0.5773503 - 0.5773503 (y - Vr); the third span
// ends at Q - 1. The spans' maps:
//   1  the cell itself
//   2  (-.5  .866  .866  .5)  0.183, 0.683       mirror in the hypotenuse
//   3  (.5  -.866  .866  .5)  -0.183, 0.683      turn by 60 degrees
//   3 for y >= Vr: (-.5 .866 -.866 -.5)  0.183, 3.4641016 s - 0.683
#include "tile/groups/groups.h"
#include "tile/groups/tile_build.h"

namespace fancy {
namespace {

using namespace tile_build;

template <class P>
int16_t BuildRows(const CellRows& cell, const TileRows& tile, int32_t s, int32_t hh, int32_t vr,
                  int32_t q, RowTicker& ticker) {
  const Fixed half = kFixedHalf, sin60 = kFixedSin60;
  const Fixed lc = kFixedLongCorrection, sc = kFixedShortCorrection;
  const SpanMap mirror = {-half, sin60, sin60, half, sc, lc, false};
  const SpanMap turn = {half, -sin60, sin60, half, -sc, lc, false};
  const SpanMap lowTurn = {-half, sin60, -sin60, -half, sc, WrapSub(WrapMul(kFixedTwoRoot3, s), lc),
                           false};
  const int32_t tw = tile.width, th = tile.height;
  for (int32_t y = 0; y < hh; ++y) {
    if (!ticker.Next(y)) return kTileBuildCancelled;
    const double a = 0.28867515 + 0.5773503 * y;
    const double b = y < vr ? 0.8660254 + 1.7320508 * y
                            : q - (vr + 0.5 - 0.8660254 * s) * 0.5773503 - 0.5773503 * (y - vr);
    const int32_t ends[3] = {SpanFloor(a - 0.5 + 1e-7), SpanFloor(b - 0.5 + 1e-7), q - 1};
    const SpanMap* maps[3] = {nullptr, &mirror, y < vr ? &turn : &lowTurn};
    // The eight places, in the order they are written.
    const CopyTarget targets[8] = {{tile.Row(th - 1 - y), tw - 1, -1},
                                   {tile.Row(hh + y), 3 * s, 1},
                                   {tile.Row(hh + y), 3 * s - 1, -1},
                                   {tile.Row(th - 1 - y), 0, 1},
                                   {tile.Row(y), tw - 1, -1},
                                   {tile.Row(hh - 1 - y), 3 * s, 1},
                                   {tile.Row(hh - 1 - y), 3 * s - 1, -1},
                                   {tile.Row(y), 0, 1}};
    int32_t x = 0;
    for (int k = 0; k < 3; ++k) {
      const int32_t end = ends[k] > q - 1 ? q - 1 : ends[k];
      RunSpan<P>(cell, maps[k], y, x, end, targets, 8, tw);
      if (end + 1 > x) x = end + 1;
    }
  }
  ticker.Finish();
  return kNoError;
}

}  // namespace

int16_t P6m::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
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
  const int32_t s = size;
  const int32_t hh = TruncToInt(1.7320508 * s - 0.5) + 1;
  const int32_t vr = TruncToInt(0.8660254 * s - 0.5) + 1;
  const int32_t q = 3 * (s / 2);
  if (s <= 1 || (s & 1) || tileRows.width != 6 * s || tileRows.height != 2 * hh || cell.rows < hh ||
      cell.cols < s) {
    return kErrFilterFailure;
  }
  RowTicker ticker(hooks, progressMode, hh, targetHeight);
  const int16_t result = WithLayouts(sourceType, tileType, [&](auto px) {
    return BuildRows<decltype(px)>(cell, tileRows, s, hh, vr, q, ticker);
  });
  if (result == kNoError) FinishTile(*this, tileRows);
  return result;
}

}  // namespace fancy
