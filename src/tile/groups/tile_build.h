// Pieces shared by the groups' tile builders (internal to the groups):
// pixel layouts known at compile time, the cell read top down whatever
// its row order, the progress and abort ticker, spans mapped into the cell
// and the copies each computed pixel is written to.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/fixed.h"
#include "frame/result_codes.h"
#include "tile/build_hooks.h"
#include "tile/symmetry.h"
#include "tile/tile_pixel.h"

namespace fancy::tile_build {

// A source and a destination layout: C channels, read at byte SO of an
// SB-byte pixel and written at byte DO of a DB-byte pixel.
template <int C, int SB, int SO, int DB, int DO>
struct Px {
  static constexpr int kChannels = C;
  static constexpr int kSrcBytes = SB;
  static constexpr int kDstBytes = DB;

  static void Copy(uint8_t* dst, const uint8_t* src) {
    for (int c = 0; c < C; ++c) dst[DO + c] = src[SO + c];
  }
  // SampleBilinear over the pixel, its right neighbour and the next row
  // in memory, stride bytes on.
  static void Sample(uint8_t* dst, const uint8_t* src, int32_t stride, Fixed fx, Fixed fy) {
    for (int c = 0; c < C; ++c) dst[DO + c] = FixedBilinear1(src + SO + c, SB, stride, fx, fy);
  }
  // The used bytes of a destination pixel, from a scratch pixel in the
  // same layout; a skipped byte is left as it is.
  static void Store(uint8_t* dst, const uint8_t* scratch) {
    for (int c = 0; c < C; ++c) dst[DO + c] = scratch[DO + c];
  }
  // Channel c of a source pixel and of a destination pixel.
  static uint8_t Get(const uint8_t* src, int c) { return src[SO + c]; }
  static void Put(uint8_t* dst, int c, uint8_t v) { dst[DO + c] = v; }
};

// Calls fn(Px<...>{}) for a source and a destination type with the same
// channels and returns its result; kErrFilterFailure for any other pair.
template <class Fn>
int16_t WithLayouts(int32_t sourceType, int32_t destinationType, Fn&& fn) {
  const int32_t pair = sourceType * 100 + destinationType;
  switch (pair) {
    case kTilePixelGray * 100 + kTilePixelGray:
      return fn(Px<1, 1, 0, 1, 0>{});
    case kTilePixelCmyk * 100 + kTilePixelCmyk:
      return fn(Px<4, 4, 0, 4, 0>{});
    case kTilePixelRgb * 100 + kTilePixelRgb:
      return fn(Px<3, 3, 0, 3, 0>{});
    case kTilePixelRgb * 100 + kTilePixelRgb4:
      return fn(Px<3, 3, 0, 4, 1>{});
    case kTilePixelRgb4 * 100 + kTilePixelRgb:
      return fn(Px<3, 4, 1, 3, 0>{});
    case kTilePixelRgb4 * 100 + kTilePixelRgb4:
      return fn(Px<3, 4, 1, 4, 1>{});
    default:
      return kErrFilterFailure;
  }
}

// The cell, rows x cols pixels, read top down. With flip its rows lie
// bottom up in memory.
struct CellRows {
  const uint8_t* base;
  int32_t stride;
  int32_t rows;
  int32_t cols;
  int32_t bytes;
  bool flip;

  const uint8_t* Row(int32_t r) const {
    return base + static_cast<ptrdiff_t>(flip ? rows - 1 - r : r) * stride;
  }
  const uint8_t* At(int32_t r, int32_t c) const {
    return Row(r) + static_cast<ptrdiff_t>(c) * bytes;
  }
  // The bilinear sampler blends towards the next row in memory, which
  // must belong to the cell.
  bool HasNextMemoryRow(int32_t r) const { return flip ? r > 0 : r < rows - 1; }
};

// The tile: width x height pixels of `bytes` bytes, rows stride apart.
struct TileRows {
  uint8_t* base;
  int32_t stride;
  int32_t width;
  int32_t height;
  int32_t bytes;

  // Null for a row outside the tile.
  uint8_t* Row(int32_t r) const {
    return r >= 0 && r < height ? base + static_cast<ptrdiff_t>(r) * stride : nullptr;
  }
};

// BuildTile's arguments, as one record for the shared builders.
struct BuildArgs {
  const uint8_t* source;
  int32_t sourceStride;
  int32_t sourceType;
  int32_t progressMode;
  uint8_t* tile;
  int32_t tileStride;
  int32_t tileType;
  TileBuildHooks* hooks;
};

// Checks the buffers against the cell and the tile of a group, and makes
// the two views. False when a pointer is null, a type unknown, the types'
// channels differ, a size is empty or a stride too short.
bool MakeViews(const Symmetry& symmetry, const BuildArgs& args, CellRows* cell, TileRows* tileRows);

// Progress and abort once per cell row.
class RowTicker {
 public:
  RowTicker(TileBuildHooks* hooks, int32_t progressMode, int32_t rows, int32_t targetHeight);
  // Reports row (rows done so far) and asks the abort test; false to stop.
  bool Next(int32_t row);
  // Records that every row is done.
  void Finish();

 private:
  TileBuildHooks* hooks_;
  int32_t mode_;
  int32_t rows_;
  int32_t total_;
};

// The end of the tile build: reverses the rows on the flipRows path.
void FinishTile(const Symmetry& symmetry, const TileRows& tile);

// Span ends: floor(v) for v > 0, and truncation minus one at or below 0
// (so that 0 itself ends a span before column 0).
inline int32_t SpanFloor(double v) {
  const int32_t t = TruncToInt(v);
  return v > 0.0 ? t : t - 1;
}

// An affine map from tile to cell in 16.16: u = m0 x + m1 y + m4, v = m2 x
// + m3 y + m5 (column u, row v of the cell). centred maps take the pixel
// centre (x + 0.5, y + 0.5); the others the pixel's integer position.
struct SpanMap {
  Fixed m0, m1, m2, m3, m4, m5;
  bool centred;
};

// Fixed values of the maps' constants.
inline constexpr Fixed kFixedHalf = 32768;                 // 0.5
inline constexpr Fixed kFixedSin60 = 56756;                // 0.8660254
inline constexpr Fixed kFixedRoot3 = 113512;               // 1.7320508
inline constexpr Fixed kFixedTwoRoot3 = 227023;            // 3.4641016
inline constexpr Fixed kFixedLongCorrection = 89524 / 2;   // 0.683, half of 1.366
inline constexpr Fixed kFixedShortCorrection = 23988 / 2;  // 0.183, half of 0.366
inline constexpr Fixed FixedFromDouble(double v) { return static_cast<Fixed>(v * 65536.0); }

// One place a computed pixel goes: tile row `row` (null: none), column
// base + dir x for cell column x.
struct CopyTarget {
  uint8_t* row;
  int32_t base;
  int32_t dir;
};
inline constexpr int kMaxTargets = 8;

// Writes a computed pixel (in a destination-layout scratch pixel) to every
// target that lies inside the tile.
template <class P>
inline void Emit(const uint8_t* pixel, int32_t x, const CopyTarget* targets, int32_t count,
                 int32_t tileWidth) {
  for (int32_t k = 0; k < count; ++k) {
    if (!targets[k].row) continue;
    const int32_t column = targets[k].base + targets[k].dir * x;
    if (column < 0 || column >= tileWidth) continue;
    P::Store(targets[k].row + static_cast<ptrdiff_t>(column) * P::kDstBytes, pixel);
  }
}

// Tile pixels x0..x1 of row y straight from the cell (columns and the row
// held inside it).
template <class P>
void CopySpan(const CellRows& cell, int32_t y, int32_t x0, int32_t x1, const CopyTarget* targets,
              int32_t count, int32_t tileWidth) {
  if (x1 < x0) return;
  const int32_t row = y < 0 ? 0 : (y >= cell.rows ? cell.rows - 1 : y);
  const uint8_t* src = cell.Row(row);
  uint8_t pixel[4] = {};
  for (int32_t x = x0; x <= x1; ++x) {
    const int32_t column = x < 0 ? 0 : (x >= cell.cols ? cell.cols - 1 : x);
    P::Copy(pixel, src + static_cast<ptrdiff_t>(column) * P::kSrcBytes);
    Emit<P>(pixel, x, targets, count, tileWidth);
  }
}

// Tile pixels x0..x1 of row y through the map: (u, v) at both ends with
// FixedMul, stepped by (end - start) / (count - 1), clamped to the cell's
// box; bilinear inside, copied on the last column or row.
template <class P>
void MapSpan(const CellRows& cell, const SpanMap& map, int32_t y, int32_t x0, int32_t x1,
             const CopyTarget* targets, int32_t count, int32_t tileWidth) {
  if (x1 < x0) return;
  const Fixed half = map.centred ? kFixedHalf : 0;
  const Fixed fy = WrapAdd(WrapShl(y, 16), half);
  const Fixed fx0 = WrapAdd(WrapShl(x0, 16), half);
  const Fixed fx1 = WrapAdd(WrapShl(x1, 16), half);
  const Fixed u0 = WrapAdd(WrapAdd(FixedMul(map.m0, fx0), FixedMul(map.m1, fy)), map.m4);
  const Fixed v0 = WrapAdd(WrapAdd(FixedMul(map.m2, fx0), FixedMul(map.m3, fy)), map.m5);
  const Fixed u1 = WrapAdd(WrapAdd(FixedMul(map.m0, fx1), FixedMul(map.m1, fy)), map.m4);
  const Fixed v1 = WrapAdd(WrapAdd(FixedMul(map.m2, fx1), FixedMul(map.m3, fy)), map.m5);
  const int32_t steps = x1 - x0;
  const int64_t du = steps > 0 ? (int64_t{u1} - u0) / steps : 0;
  const int64_t dv = steps > 0 ? (int64_t{v1} - v0) / steps : 0;
  const int64_t uMax = int64_t{cell.cols - 1} << 16;
  const int64_t vMax = int64_t{cell.rows - 1} << 16;
  int64_t u = u0, v = v0;
  uint8_t pixel[4] = {};
  for (int32_t x = x0; x <= x1; ++x, u += du, v += dv) {
    const int64_t uc = u < 0 ? 0 : (u > uMax ? uMax : u);
    const int64_t vc = v < 0 ? 0 : (v > vMax ? vMax : v);
    const int32_t iu = static_cast<int32_t>(uc >> 16);
    const int32_t iv = static_cast<int32_t>(vc >> 16);
    const uint8_t* src = cell.At(iv, iu);
    if (iu < cell.cols - 1 && cell.HasNextMemoryRow(iv)) {
      P::Sample(pixel, src, cell.stride, static_cast<Fixed>(uc & 0xFFFF),
                static_cast<Fixed>(vc & 0xFFFF));
    } else {
      P::Copy(pixel, src);
    }
    Emit<P>(pixel, x, targets, count, tileWidth);
  }
}

// A map's span or a straight copy when map is null.
template <class P>
void RunSpan(const CellRows& cell, const SpanMap* map, int32_t y, int32_t x0, int32_t x1,
             const CopyTarget* targets, int32_t count, int32_t tileWidth) {
  if (map) {
    MapSpan<P>(cell, *map, y, x0, x1, targets, count, tileWidth);
  } else {
    CopySpan<P>(cell, y, x0, x1, targets, count, tileWidth);
  }
}

}  // namespace fancy::tile_build
