// The groups whose tile is made by copying: every cell pixel (r, c) goes
// unchanged to a few places of the tile. W, H are the rectangle's width
// and height, s the size of the square and triangle cells, TW, TH the
// tile's. Copies are listed in the order they are written; where two
// land on one pixel (along the triangles' diagonals) the later one, and
// so the later cell row, wins.
//
//   Pm    (r, c) (r, TW-1-c)                     mirror in the centre line
//   Pg    (r, c) (TH-1-r, W+c)                   glide
//   P2    (r, c) (H-1-r, 2W-1-c)                 half turn
//   Pmm   (r, c) (r, TW-1-c) (TH-1-r, c) (TH-1-r, TW-1-c)
//   Pmg   (r, c) (TH-1-r, 2W-1-c) (TH-1-r, 2W+c) (r, TW-1-c)
//   Pgg   (r, c) (H-1-r, W+c) (H+r, W-1-c) (TH-1-r, TW-1-c)
//   P4    (r, c) (c, TW-1-r) (TH-1-c, r) (TH-1-r, TW-1-c)
//                                  turns by 0, 90, 270, 180 degrees
//   Cm    c <= r: (r, c) (c, r)   the triangle under the diagonal, mirrored
//   Cmm   c <= r: (r, c) (r, 2s-1-c) (s-1-r, s-1-c) (s-1-r, s+c)
//                 (s+r, s-1-c) (s+r, s+c) (2s-1-r, c) (2s-1-r, 2s-1-c)
//
// P4g and P4m first complete the triangle to a square by its diagonal
// mirror, Q(r, j) = cell (r, j) for j <= r and cell (j, r) above, and copy
// Q(r, j):
//   P4g   (r, j) (s-1-r, s+j) (s+r, s-1-j) (TH-1-r, TW-1-j)
//   P4m   (r, j) (r, TW-1-j) (TH-1-r, j) (TH-1-r, TW-1-j)
#include <cstddef>

#include "tile/groups/groups.h"
#include "tile/groups/tile_build.h"

namespace fancy {
namespace {

using tile_build::CellRows;
using tile_build::RowTicker;
using tile_build::TileRows;

// Tile row = rr r + rc c + r0, tile column = cr r + cc c + c0.
struct CopyRule {
  int32_t rr, rc, r0;
  int32_t cr, cc, c0;
};

constexpr CopyRule Rule(int32_t rr, int32_t rc, int32_t r0, int32_t cr, int32_t cc, int32_t c0) {
  return {rr, rc, r0, cr, cc, c0};
}
// (r, c) itself.
constexpr CopyRule kSame = {1, 0, 0, 0, 1, 0};

enum class CellPart {
  kRectangle,           // every (r, c)
  kTriangle,            // c <= r
  kSquareFromTriangle,  // every (r, j), read from the triangle by its diagonal
};

// The rule keeps the cell's rows x cols pixels inside the tile: an affine
// rule reaches its extremes at the corners.
bool RuleFits(const CopyRule& rule, int32_t rows, int32_t cols, const TileRows& tile) {
  for (int32_t r : {0, rows - 1}) {
    for (int32_t c : {0, cols - 1}) {
      const int64_t row = int64_t{rule.rr} * r + int64_t{rule.rc} * c + rule.r0;
      const int64_t column = int64_t{rule.cr} * r + int64_t{rule.cc} * c + rule.c0;
      if (row < 0 || row >= tile.height || column < 0 || column >= tile.width) return false;
    }
  }
  return true;
}

template <class P>
int16_t CopyCell(const CellRows& cell, const TileRows& tile, int32_t rows, int32_t cols,
                 CellPart part, const CopyRule* rules, int32_t ruleCount, RowTicker& ticker) {
  ptrdiff_t offset[8];
  ptrdiff_t delta[8];
  for (int32_t r = 0; r < rows; ++r) {
    if (!ticker.Next(r)) return kTileBuildCancelled;
    // Along a row every copy moves by a fixed number of bytes per column.
    for (int32_t k = 0; k < ruleCount; ++k) {
      const CopyRule& rule = rules[k];
      offset[k] = static_cast<ptrdiff_t>(rule.rr * r + rule.r0) * tile.stride +
                  static_cast<ptrdiff_t>(rule.cr * r + rule.c0) * P::kDstBytes;
      delta[k] = static_cast<ptrdiff_t>(rule.rc) * tile.stride +
                 static_cast<ptrdiff_t>(rule.cc) * P::kDstBytes;
    }
    const int32_t count = part == CellPart::kTriangle ? r + 1 : cols;
    const uint8_t* row = cell.Row(r);
    for (int32_t c = 0; c < count; ++c) {
      const uint8_t* src = part == CellPart::kSquareFromTriangle && c > r
                               ? cell.At(c, r)
                               : row + static_cast<ptrdiff_t>(c) * P::kSrcBytes;
      for (int32_t k = 0; k < ruleCount; ++k) P::Copy(tile.base + offset[k] + c * delta[k], src);
    }
  }
  ticker.Finish();
  return kNoError;
}

template <size_t N>
int16_t BuildByCopies(const Symmetry& symmetry, const tile_build::BuildArgs& args, int32_t rows,
                      int32_t cols, CellPart part, int32_t tileWidth, int32_t tileHeight,
                      const CopyRule (&rules)[N]) {
  CellRows cell;
  TileRows tileRows;
  if (!tile_build::MakeViews(symmetry, args, &cell, &tileRows)) return kErrFilterFailure;
  if (rows <= 0 || cols <= 0 || rows > cell.rows || cols > cell.cols ||
      tileRows.width != tileWidth || tileRows.height != tileHeight ||
      (part != CellPart::kRectangle && rows != cols)) {
    return kErrFilterFailure;
  }
  for (const CopyRule& rule : rules) {
    if (!RuleFits(rule, rows, cols, tileRows)) return kErrFilterFailure;
  }
  RowTicker ticker(args.hooks, args.progressMode, rows, symmetry.targetHeight);
  const int16_t result = tile_build::WithLayouts(args.sourceType, args.tileType, [&](auto px) {
    return CopyCell<decltype(px)>(cell, tileRows, rows, cols, part, rules, static_cast<int32_t>(N),
                                  ticker);
  });
  if (result == kNoError) tile_build::FinishTile(symmetry, tileRows);
  return result;
}

}  // namespace

int16_t Pm::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                      int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                      TileBuildHooks* hooks) {
  const CopyRule rules[] = {kSame, Rule(1, 0, 0, 0, -1, tileWidth - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      height, width, CellPart::kRectangle, 2 * width, height, rules);
}

int16_t Pg::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                      int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                      TileBuildHooks* hooks) {
  const CopyRule rules[] = {kSame, Rule(-1, 0, tileHeight - 1, 0, 1, width)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      height, width, CellPart::kRectangle, 2 * width, height, rules);
}

int16_t P2::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                      int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                      TileBuildHooks* hooks) {
  const CopyRule rules[] = {kSame, Rule(-1, 0, height - 1, 0, -1, 2 * width - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      height, width, CellPart::kRectangle, 2 * width, height, rules);
}

int16_t Pmm::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                       int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                       TileBuildHooks* hooks) {
  const int32_t th = tileHeight, tw = tileWidth;
  const CopyRule rules[] = {kSame, Rule(1, 0, 0, 0, -1, tw - 1), Rule(-1, 0, th - 1, 0, 1, 0),
                            Rule(-1, 0, th - 1, 0, -1, tw - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      height, width, CellPart::kRectangle, 2 * width, 2 * height, rules);
}

int16_t Pmg::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                       int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                       TileBuildHooks* hooks) {
  const int32_t th = tileHeight, tw = tileWidth, w = width;
  const CopyRule rules[] = {kSame, Rule(-1, 0, th - 1, 0, -1, 2 * w - 1),
                            Rule(-1, 0, th - 1, 0, 1, 2 * w), Rule(1, 0, 0, 0, -1, tw - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      height, width, CellPart::kRectangle, 4 * width, height, rules);
}

int16_t Pgg::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                       int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                       TileBuildHooks* hooks) {
  const int32_t th = tileHeight, tw = tileWidth, w = width, h = height;
  const CopyRule rules[] = {kSame, Rule(-1, 0, h - 1, 0, 1, w), Rule(1, 0, h, 0, -1, w - 1),
                            Rule(-1, 0, th - 1, 0, -1, tw - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      height, width, CellPart::kRectangle, 2 * width, 2 * height, rules);
}

int16_t P4::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                      int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                      TileBuildHooks* hooks) {
  const int32_t th = tileHeight, tw = tileWidth;
  const CopyRule rules[] = {kSame, Rule(0, 1, 0, -1, 0, tw - 1), Rule(0, -1, th - 1, 1, 0, 0),
                            Rule(-1, 0, th - 1, 0, -1, tw - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      size, size, CellPart::kRectangle, 2 * size, 2 * size, rules);
}

int16_t Cm::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                      int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                      TileBuildHooks* hooks) {
  const CopyRule rules[] = {kSame, Rule(0, 1, 0, 1, 0, 0)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      size, size, CellPart::kTriangle, size, size, rules);
}

int16_t Cmm::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                       int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                       TileBuildHooks* hooks) {
  const int32_t s = size;
  const CopyRule rules[] = {kSame,
                            Rule(1, 0, 0, 0, -1, 2 * s - 1),
                            Rule(-1, 0, s - 1, 0, -1, s - 1),
                            Rule(-1, 0, s - 1, 0, 1, s),
                            Rule(1, 0, s, 0, -1, s - 1),
                            Rule(1, 0, s, 0, 1, s),
                            Rule(-1, 0, 2 * s - 1, 0, 1, 0),
                            Rule(-1, 0, 2 * s - 1, 0, -1, 2 * s - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      size, size, CellPart::kTriangle, 2 * size, 2 * size, rules);
}

int16_t P4g::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                       int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                       TileBuildHooks* hooks) {
  const int32_t s = size, th = tileHeight, tw = tileWidth;
  const CopyRule rules[] = {kSame, Rule(-1, 0, s - 1, 0, 1, s), Rule(1, 0, s, 0, -1, s - 1),
                            Rule(-1, 0, th - 1, 0, -1, tw - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      size, size, CellPart::kSquareFromTriangle, 2 * size, 2 * size, rules);
}

int16_t P4m::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                       int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                       TileBuildHooks* hooks) {
  const int32_t th = tileHeight, tw = tileWidth;
  const CopyRule rules[] = {kSame, Rule(1, 0, 0, 0, -1, tw - 1), Rule(-1, 0, th - 1, 0, 1, 0),
                            Rule(-1, 0, th - 1, 0, -1, tw - 1)};
  return BuildByCopies(
      *this, {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks},
      size, size, CellPart::kSquareFromTriangle, 2 * size, 2 * size, rules);
}

}  // namespace fancy
