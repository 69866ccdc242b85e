// P3: three-fold turns. The cell is a rhombus of height H = size with a 60
// degree corner at the box's origin: corners (0, 0), (t, 0), (1.5 t, H),
// (0.5 t, H) with t = 1.1547 H, in a box W' = xmax + 1 wide, xmax =
// trunc(1.732 H - 0.5). The tile is 2 W' x 2 H; its left half is computed
// row by row and each pixel is written again to ((y + H) mod 2H, W' + x).
//
// Rows y < H are cut by the rhombus's slanted edges A(y) = 0.28867515 +
// 0.5773503 y and B(y) = 1.1547005 H + A(y): left of A is region A (the
// cell turned by 120 degrees about its lower left corner), between them
// the cell itself, right of B region C (turned about the top right
// corner). Rows y >= H are cut by C(y) = 0.5773503 (H - 0.5) - 0.5773503
// (y - H) and D(y) = 0.5773503 (3H - 0.5) - 0.5773503 (y - H): region A,
// region D (turned by -120 degrees about the lower left corner) and
// region E (turned about the lower right corner). Spans end at floor(edge
// - 0.5 + 1e-7), the third at xmax.
//
// The maps, with 0.683 and 0.183 the half-pixel corrections:
//   A  (-.5 -.866  .866 -.5)  1.7320508 H - 0.683, H + 0.183
//   C  (-.5 -.866  .866 -.5)  -0.683 + 0.5 W' + 0.866 H, 0.183 - 0.866 W' + 0.5 H
//   D  (-.5  .866 -.866 -.5)  0.183, 2H - 0.683
//   E  (-.5 -.866  .866 -.5)  -0.683 + 0.5 W' + 2.598 H, 0.183 - 0.866 W' + 1.5 H
#include "tile/groups/groups.h"
#include "tile/groups/tile_build.h"

namespace fancy {
namespace {

using namespace tile_build;

struct P3Maps {
  SpanMap a, c, d, e;
};

P3Maps MakeMaps(int32_t h, int32_t wide) {
  const Fixed half = kFixedHalf, sin60 = kFixedSin60;
  const Fixed lc = kFixedLongCorrection, sc = kFixedShortCorrection;
  P3Maps maps;
  maps.a = {-half,
            -sin60,
            sin60,
            -half,
            WrapSub(WrapMul(kFixedRoot3, h), lc),
            WrapAdd(WrapShl(h, 16), sc),
            false};
  maps.c = {-half,
            -sin60,
            sin60,
            -half,
            WrapAdd(WrapAdd(-lc, WrapMul(half, wide)), WrapMul(sin60, h)),
            WrapAdd(WrapSub(sc, WrapMul(sin60, wide)), WrapMul(half, h)),
            false};
  maps.d = {-half, sin60, -sin60, -half, sc, WrapSub(WrapShl(h, 17), lc), false};
  maps.e = {-half,
            -sin60,
            sin60,
            -half,
            WrapAdd(WrapAdd(-lc, WrapMul(half, wide)), WrapMul(WrapMul(sin60, 3), h)),
            WrapAdd(WrapSub(sc, WrapMul(sin60, wide)), WrapMul(3 * half, h)),
            false};
  return maps;
}

template <class P>
int16_t BuildRows(const CellRows& cell, const TileRows& tile, int32_t h, int32_t wide,
                  RowTicker& ticker) {
  const P3Maps maps = MakeMaps(h, wide);
  const int32_t xmax = wide - 1;
  for (int32_t y = 0; y < 2 * h; ++y) {
    if (!ticker.Next(y)) return kTileBuildCancelled;
    double first, second;
    const SpanMap* middle;
    const SpanMap* last;
    if (y < h) {
      first = 0.28867515 + 0.5773503 * y;
      second = 1.1547005 * h + 0.28867515 + 0.5773503 * y;
      middle = nullptr;
      last = &maps.c;
    } else {
      first = 0.5773503 * (h - 0.5) - 0.5773503 * (y - h);
      second = 0.5773503 * (3 * h - 0.5) - 0.5773503 * (y - h);
      middle = &maps.d;
      last = &maps.e;
    }
    const CopyTarget targets[2] = {{tile.Row(y), 0, 1}, {tile.Row((y + h) % (2 * h)), wide, 1}};
    int32_t x = 0;
    const int32_t ends[3] = {SpanFloor(first - 0.5 + 1e-7), SpanFloor(second - 0.5 + 1e-7), xmax};
    const SpanMap* spanMaps[3] = {&maps.a, middle, last};
    for (int s = 0; s < 3; ++s) {
      const int32_t end = ends[s] > xmax ? xmax : ends[s];
      RunSpan<P>(cell, spanMaps[s], y, x, end, targets, 2, tile.width);
      if (end + 1 > x) x = end + 1;
    }
  }
  ticker.Finish();
  return kNoError;
}

}  // namespace

int16_t P3::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
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
  const int32_t wide = TruncToInt(h * 1.1547005 * 1.5 - 0.5) + 1;
  if (h <= 0 || wide <= 0 || tileRows.width != 2 * wide || tileRows.height != 2 * h ||
      cell.rows < h || cell.cols < wide) {
    return kErrFilterFailure;
  }
  RowTicker ticker(hooks, progressMode, 2 * h, targetHeight);
  const int16_t result = WithLayouts(sourceType, tileType, [&](auto px) {
    return BuildRows<decltype(px)>(cell, tileRows, h, wide, ticker);
  });
  if (result == kNoError) FinishTile(*this, tileRows);
  return result;
}

}  // namespace fancy
