// The copy groups and P1: a tile, repeated, is a wallpaper with its
// group's symmetries, exactly. Every cell pixel carries its own position
// (red = row, green = column, blue = a mark), so each tile pixel tells
// which cell pixel it copies.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "frame/result_codes.h"
#include "tile/tile_buffer.h"
#include "tile_test_util.h"

namespace fancy {
namespace {

using testing::BuildTileOf;
using testing::MakeGroup;
using testing::Pixels;

constexpr uint8_t kMark = 200;

// The cell's bounding box, each pixel coded with its position.
Pixels CodedCell(const Symmetry& s) {
  Pixels cell(s.extentWidth, s.extentHeight, kTilePixelRgb);
  for (int32_t r = 0; r < cell.height; ++r) {
    for (int32_t c = 0; c < cell.width; ++c) {
      uint8_t* p = cell.At(r, c);
      p[0] = static_cast<uint8_t>(r);
      p[1] = static_cast<uint8_t>(c);
      p[2] = kMark;
    }
  }
  return cell;
}

// The tile repeated over the plane (no row shift).
struct Wallpaper {
  const Pixels& tile;
  const uint8_t* At(int32_t y, int32_t x) const {
    const int32_t r = ((y % tile.height) + tile.height) % tile.height;
    const int32_t c = ((x % tile.width) + tile.width) % tile.width;
    return tile.At(r, c);
  }
  bool Same(int32_t y0, int32_t x0, int32_t y1, int32_t x1) const {
    const uint8_t* a = At(y0, x0);
    const uint8_t* b = At(y1, x1);
    return a[0] == b[0] && a[1] == b[1] && a[2] == b[2];
  }
};

// A symmetry in pixel form: (y, x) -> (yy y + yx x + y0, xy y + xx x + x0).
struct PixelMap {
  const char* name;
  int32_t yy, yx, y0, xy, xx, x0;
};

struct CopyCase {
  int32_t id;
  bool triangle;  // the cell is the part c <= r of its box
  std::vector<PixelMap> symmetries;
};

// The symmetries each group's wallpaper must have, for a cell W x H or s.
std::vector<CopyCase> CopyCases(int32_t w, int32_t h, int32_t s) {
  return {
      {kGroupPm,
       false,
       {{"mirror x = 0", 1, 0, 0, 0, -1, -1}, {"mirror x = W", 1, 0, 0, 0, -1, 2 * w - 1}}},
      {kGroupPg, false, {{"glide", -1, 0, h - 1, 0, 1, w}}},
      {kGroupP2,
       false,
       {{"half turn (0, H/2)", -1, 0, h - 1, 0, -1, -1},
        {"half turn (W, H/2)", -1, 0, h - 1, 0, -1, 2 * w - 1}}},
      {kGroupPgg,
       false,
       {{"half turn (0, 0)", -1, 0, -1, 0, -1, -1},
        {"glide down", 1, 0, h, 0, -1, w - 1},
        {"glide across", -1, 0, h - 1, 0, 1, w}}},
      {kGroupPmm,
       false,
       {{"mirror x = 0", 1, 0, 0, 0, -1, -1},
        {"mirror y = 0", -1, 0, -1, 0, 1, 0},
        {"mirror x = W", 1, 0, 0, 0, -1, 2 * w - 1}}},
      {kGroupPmg,
       false,
       {{"mirror x = 0", 1, 0, 0, 0, -1, -1},
        {"half turn (W, H/2)", -1, 0, h - 1, 0, -1, 2 * w - 1}}},
      {kGroupP4,
       false,
       {{"quarter turn about the centre", 0, 1, 0, -1, 0, 2 * s - 1},
        {"quarter turn about the corner", 0, 1, 0, -1, 0, -1}}},
      {kGroupP4g,
       true,
       {{"quarter turn about (s, 0)", 0, -1, s - 1, 1, 0, s},
        {"mirror in the diagonal", 0, 1, 0, 1, 0, 0},
        {"glide", -1, 0, s - 1, 0, 1, s}}},
      {kGroupP4m,
       true,
       {{"quarter turn about the centre", 0, 1, 0, -1, 0, 2 * s - 1},
        {"mirror x = 0", 1, 0, 0, 0, -1, -1},
        {"mirror in the diagonal", 0, 1, 0, 1, 0, 0}}},
      {kGroupCm, true, {{"mirror in the diagonal", 0, 1, 0, 1, 0, 0}}},
      {kGroupCmm,
       true,
       {{"mirror x = 0", 1, 0, 0, 0, -1, -1},
        {"mirror y = 0", -1, 0, -1, 0, 1, 0},
        {"centring translation", 1, 0, s, 0, 1, s}}},
  };
}

bool InCell(const CopyCase& c, int32_t r, int32_t col, int32_t rows, int32_t cols) {
  return r >= 0 && col >= 0 && r < rows && col < cols && (!c.triangle || col <= r);
}

TEST(Wallpaper, CopyGroupsHaveTheirSymmetriesAndCopyOnlyCellPixels) {
  constexpr int32_t kW = 13, kH = 9, kS = 11;
  for (const CopyCase& c : CopyCases(kW, kH, kS)) {
    SCOPED_TRACE(c.id);
    const bool rect = c.id != kGroupP4 && !c.triangle;
    auto s = MakeGroup(c.id, rect ? kW : kS, rect ? kH : 0);
    const Pixels cell = CodedCell(*s);
    int16_t result;
    const Pixels tile = BuildTileOf(*s, cell, kTilePixelRgb, 0, &result);
    ASSERT_EQ(result, kNoError);

    // Every tile pixel is a copy of a cell pixel, and the cell itself
    // sits at the tile's origin.
    const int32_t rows = rect ? kH : kS, cols = rect ? kW : kS;
    for (int32_t y = 0; y < tile.height; ++y) {
      for (int32_t x = 0; x < tile.width; ++x) {
        const uint8_t* p = tile.At(y, x);
        ASSERT_EQ(p[2], kMark) << "unwritten at " << y << ", " << x;
        ASSERT_TRUE(InCell(c, p[0], p[1], rows, cols)) << y << ", " << x;
        // Along a triangle's diagonal a later row's copy may land on the
        // cell's own pixel; the later write wins.
        if (InCell(c, y, x, rows, cols) && !(c.triangle && x == y)) {
          ASSERT_EQ(p[0], y);
          ASSERT_EQ(p[1], x);
        }
      }
    }
    const Wallpaper wallpaper{tile};
    for (const PixelMap& m : c.symmetries) {
      for (int32_t y = 0; y < tile.height; ++y) {
        for (int32_t x = 0; x < tile.width; ++x) {
          ASSERT_TRUE(wallpaper.Same(y, x, m.yy * y + m.yx * x + m.y0, m.xy * y + m.xx * x + m.x0))
              << m.name << " at " << y << ", " << x;
        }
      }
    }
  }
}

// P1's tile, laid down by TileRowOrigin with its row shift, reproduces the
// parallelogram over the cell and repeats by the parallelogram's sides.
TEST(Wallpaper, P1RepeatsTheParallelogramByItsSides) {
  // Shears of more than a width too.
  for (int32_t shear : {0, 7, -5, 23, -31, 16, -17}) {
    SCOPED_TRACE(shear);
    constexpr int32_t kW = 17, kH = 12;
    auto s = MakeGroup(kGroupP1, kW, kH, shear);
    ASSERT_EQ(s->rowShift, shear);
    const Pixels cell = CodedCell(*s);
    int16_t result;
    const Pixels tile = BuildTileOf(*s, cell, kTilePixelRgb, 0, &result);
    ASSERT_EQ(result, kNoError);

    // The image pixel (x, y) of a wallpaper whose origin is the cell box's
    // corner.
    TileBuffer buffer{};
    buffer.width = tile.width;
    buffer.height = tile.height;
    buffer.rowShift = s->rowShift;
    buffer.offsetX = shear < 0 ? -shear : 0;
    auto at = [&](int32_t y, int32_t x) {
      int32_t column, row;
      TileRowOrigin(buffer, 0, y, &column, &row);
      const int64_t c = ((column + int64_t{x}) % tile.width + tile.width) % tile.width;
      return tile.At(row, static_cast<int32_t>(c));
    };
    for (int32_t r = 0; r < kH; ++r) {
      // The parallelogram's pixels on row r: centres right of its left
      // edge, width of them.
      const double left = (shear < 0 ? -shear : 0) + shear * (r + 0.5) / kH;
      const int32_t first = static_cast<int32_t>(std::floor(left - 0.5)) + 1;
      for (int32_t x = first; x < first + kW; ++x) {
        ASSERT_EQ(at(r, x)[0], r) << r << ", " << x;
        ASSERT_EQ(at(r, x)[1], x) << r << ", " << x;
      }
    }
    for (int32_t y = -2 * kH; y < 2 * kH; ++y) {
      for (int32_t x = -40; x < 40; ++x) {
        ASSERT_EQ(0, std::memcmp(at(y, x), at(y + kH, x + shear), 3)) << y << ", " << x;
        ASSERT_EQ(0, std::memcmp(at(y, x), at(y, x + kW), 3)) << y << ", " << x;
      }
    }
  }
}

// On the final path the cell's rows lie bottom up and the tile comes out
// bottom up too: the same tile, rows reversed.
TEST(Wallpaper, FlipRowsBuildsTheSameTileUpsideDown) {
  const int32_t ids[] = {kGroupP1,  kGroupPm, kGroupPg,  kGroupP2,  kGroupPgg, kGroupPmm,
                         kGroupPmg, kGroupP4, kGroupP4g, kGroupP4m, kGroupCm,  kGroupCmm};
  for (int32_t id : ids) {
    SCOPED_TRACE(id);
    auto s = MakeGroup(id, 10, 7, 4);
    const Pixels cell = CodedCell(*s);
    const Pixels plain = BuildTileOf(*s, cell, kTilePixelRgb);
    Pixels flipped(cell.width, cell.height, cell.type);
    for (int32_t r = 0; r < cell.height; ++r) {
      std::memcpy(flipped.Row(cell.height - 1 - r), cell.Row(r), cell.stride);
    }
    s->flipRows = 1;
    int16_t result;
    const Pixels tile = BuildTileOf(*s, flipped, kTilePixelRgb, 0, &result);
    ASSERT_EQ(result, kNoError);
    for (int32_t r = 0; r < tile.height; ++r) {
      ASSERT_EQ(0, std::memcmp(tile.Row(r), plain.Row(tile.height - 1 - r), tile.stride)) << r;
    }
  }
}

// Gray, CMYK and RGB in three or four bytes build the same tile channel
// by channel; RGB may change between three and four bytes on the way, and
// the skipped first byte of a four-byte pixel is never written.
TEST(Wallpaper, EveryPixelTypeBuildsTheSameTile) {
  auto s = MakeGroup(kGroupPgg, 9, 6);
  const Pixels rgb = CodedCell(*s);
  const Pixels reference = BuildTileOf(*s, rgb, kTilePixelRgb);
  struct Pair {
    int32_t from, to;
  };
  for (Pair pair : {Pair{kTilePixelGray, kTilePixelGray}, Pair{kTilePixelCmyk, kTilePixelCmyk},
                    Pair{kTilePixelRgb, kTilePixelRgb4}, Pair{kTilePixelRgb4, kTilePixelRgb},
                    Pair{kTilePixelRgb4, kTilePixelRgb4}}) {
    SCOPED_TRACE(std::to_string(pair.from) + " to " + std::to_string(pair.to));
    TilePixelLayout from, to;
    ASSERT_TRUE(GetTilePixelLayout(pair.from, &from));
    ASSERT_TRUE(GetTilePixelLayout(pair.to, &to));
    Pixels cell(rgb.width, rgb.height, pair.from, 0x5A);
    for (int32_t r = 0; r < cell.height; ++r) {
      for (int32_t c = 0; c < cell.width; ++c) {
        for (int ch = 0; ch < from.channels; ++ch) {
          cell.At(r, c)[from.offset + ch] = rgb.At(r, c)[ch % 3];
        }
      }
    }
    int16_t result;
    const Pixels tile = BuildTileOf(*s, cell, pair.to, 0xAB, &result);
    ASSERT_EQ(result, kNoError);
    for (int32_t y = 0; y < tile.height; ++y) {
      for (int32_t x = 0; x < tile.width; ++x) {
        for (int ch = 0; ch < to.channels; ++ch) {
          ASSERT_EQ(tile.At(y, x)[to.offset + ch], reference.At(y, x)[ch % 3]) << y << ", " << x;
        }
        if (to.offset) {
          ASSERT_EQ(tile.At(y, x)[0], 0xAB);
        }
      }
    }
  }
}

struct Calls {
  std::vector<std::pair<int32_t, int32_t>> progress;
  int32_t asked = 0;
  int32_t stopAt = -1;
};

TEST(Wallpaper, ProgressAndAbortRunOncePerCellRow) {
  TileBuildHooks hooks{};
  Calls calls;
  hooks.context = &calls;
  hooks.progress = [](void* c, int32_t done, int32_t total) {
    static_cast<Calls*>(c)->progress.emplace_back(done, total);
  };
  hooks.abort = [](void* c) {
    auto* calls = static_cast<Calls*>(c);
    return calls->asked++ == calls->stopAt;
  };
  auto s = MakeGroup(kGroupP4, 8);
  s->targetHeight = 100;
  const Pixels cell = CodedCell(*s);

  // Mode 1 counts the cell's rows against rows + targetHeight.
  int16_t result;
  BuildTileOf(*s, cell, kTilePixelRgb, 0, &result, &hooks, 1);
  EXPECT_EQ(result, kNoError);
  ASSERT_EQ(calls.progress.size(), 8u);
  for (int32_t r = 0; r < 8; ++r) EXPECT_EQ(calls.progress[r], std::make_pair(r, 108));
  EXPECT_EQ(calls.asked, 8);
  EXPECT_EQ(hooks.done, 8);
  EXPECT_EQ(hooks.total, 108);

  // Mode 2 against rows + 1; mode 0 makes no progress calls but still asks.
  calls = {};
  BuildTileOf(*s, cell, kTilePixelRgb, 0, &result, &hooks, 2);
  EXPECT_EQ(calls.progress.back(), std::make_pair(7, 9));
  calls = {};
  BuildTileOf(*s, cell, kTilePixelRgb, 0, &result, &hooks, 0);
  EXPECT_TRUE(calls.progress.empty());
  EXPECT_EQ(calls.asked, 8);

  // A stop at the fourth row ends the build there, cancelled.
  for (int32_t id : {kGroupP4, kGroupP1, kGroupP3, kGroupP3m1, kGroupP31m, kGroupP6, kGroupP6m}) {
    SCOPED_TRACE(id);
    auto g = MakeGroup(id, 24, 20, 3);
    const Pixels c = CodedCell(*g);
    calls = {};
    calls.stopAt = 3;
    BuildTileOf(*g, c, kTilePixelRgb, 0, &result, &hooks, 1);
    EXPECT_EQ(result, kTileBuildCancelled);
    EXPECT_EQ(calls.asked, 4);
    EXPECT_EQ(calls.progress.size(), 4u);
  }
}

TEST(Wallpaper, ArgumentsThatDoNotFitAreRefusedWithoutWriting) {
  auto s = MakeGroup(kGroupPm, 8, 6);
  const Pixels cell = CodedCell(*s);
  Pixels tile(s->tileWidth, s->tileHeight, kTilePixelRgb, 0x33);
  const std::vector<uint8_t> before = tile.data;
  // Channels that differ, an unknown type, a short stride, null buffers.
  EXPECT_EQ(s->BuildTile(cell.data.data(), cell.stride, kTilePixelRgb, 0, tile.data.data(),
                         tile.stride, kTilePixelGray, nullptr),
            kErrFilterFailure);
  EXPECT_EQ(
      s->BuildTile(cell.data.data(), cell.stride, 7, 0, tile.data.data(), tile.stride, 7, nullptr),
      kErrFilterFailure);
  EXPECT_EQ(s->BuildTile(cell.data.data(), cell.stride - 1, kTilePixelRgb, 0, tile.data.data(),
                         tile.stride, kTilePixelRgb, nullptr),
            kErrFilterFailure);
  EXPECT_EQ(s->BuildTile(nullptr, cell.stride, kTilePixelRgb, 0, tile.data.data(), tile.stride,
                         kTilePixelRgb, nullptr),
            kErrFilterFailure);
  // A tile size the group's cell does not make.
  s->tileWidth = 15;
  EXPECT_EQ(s->BuildTile(cell.data.data(), cell.stride, kTilePixelRgb, 0, tile.data.data(),
                         tile.stride, kTilePixelRgb, nullptr),
            kErrFilterFailure);
  EXPECT_EQ(tile.data, before);
}

}  // namespace
}  // namespace fancy
