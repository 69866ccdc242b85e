// The groups built by inverse mapping, P3, P3m1, P31m, P6 and P6m. Their
// tiles are sampled, so their symmetries hold to within a few levels: a
// smooth picture that already has the group's symmetries, cut to the
// cell, must come back as the same picture over the whole tile.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "frame/result_codes.h"
#include "hex_geometry.h"
#include "tile_test_util.h"

namespace fancy {
namespace {

using testing::BuildTileOf;
using testing::IdealGroup;
using testing::MakeGroup;
using testing::Pixels;

struct Errors {
  double max = 0, mean = 0;
};

// The cell's box filled from the picture, in the cell's own coordinates
// (which are the tile's: every group copies its cell to the tile's
// origin).
Pixels CellFrom(const Symmetry& s, const IdealGroup& g, int32_t type) {
  Pixels cell(s.extentWidth, s.extentHeight, type);
  for (int32_t r = 0; r < cell.height; ++r) {
    for (int32_t c = 0; c < cell.width; ++c) {
      const uint8_t v = static_cast<uint8_t>(std::lround(g.Value(c + 0.5, r + 0.5)));
      for (int32_t b = 0; b < cell.bytes; ++b) cell.At(r, c)[b] = v;
    }
  }
  return cell;
}

Errors Compare(const Pixels& tile, const IdealGroup& g) {
  Errors e;
  for (int32_t y = 0; y < tile.height; ++y) {
    for (int32_t x = 0; x < tile.width; ++x) {
      const double d = std::fabs(tile.At(y, x)[0] - g.Value(x + 0.5, y + 0.5));
      e.max = std::max(e.max, d);
      e.mean += d;
    }
  }
  e.mean /= double(tile.width) * tile.height;
  return e;
}

// The wallpaper at a real position, bilinear between pixel centres.
double WallpaperAt(const Pixels& tile, double x, double y) {
  auto at = [&](int64_t r, int64_t c) {
    r = ((r % tile.height) + tile.height) % tile.height;
    c = ((c % tile.width) + tile.width) % tile.width;
    return double(tile.At(static_cast<int32_t>(r), static_cast<int32_t>(c))[0]);
  };
  const double fx = x - 0.5, fy = y - 0.5;
  const int64_t c = static_cast<int64_t>(std::floor(fx)), r = static_cast<int64_t>(std::floor(fy));
  const double u = fx - c, v = fy - r;
  return (1 - v) * ((1 - u) * at(r, c) + u * at(r, c + 1)) +
         v * ((1 - u) * at(r + 1, c) + u * at(r + 1, c + 1));
}

// The picture's waves swing about 60 levels either side over a fifth of the
// lattice, and the maps' half-pixel corrections place pixels up to about
// half a pixel off; measured at sizes 60 and 86, tiles stay within 6.4
// levels of the picture (mean error about 1) and within 9 of themselves
// turned or mirrored. A map two pixels off breaks the first bound.
constexpr double kPictureTolerance = 8;
constexpr double kSymmetryTolerance = 10;
constexpr double kFinalPathTolerance = 12;
constexpr int32_t kHexGroups[] = {kGroupP3, kGroupP3m1, kGroupP31m, kGroupP6, kGroupP6m};

TEST(HexWallpaper, TilesMatchAPictureWithTheGroupsSymmetries) {
  for (int32_t id : kHexGroups) {
    for (int32_t size : {60, 86}) {
      SCOPED_TRACE(std::to_string(id) + " size " + std::to_string(size));
      auto s = MakeGroup(id, size);
      const IdealGroup g = testing::IdealGroupOf(*s);
      int16_t result;
      const Pixels tile =
          BuildTileOf(*s, CellFrom(*s, g, kTilePixelGray), kTilePixelGray, 0, &result);
      ASSERT_EQ(result, kNoError);
      const Errors e = Compare(tile, g);
      EXPECT_LE(e.max, kPictureTolerance);
      EXPECT_LE(e.mean, 1.5);
      // The group's turns and mirrors about the centre, applied to the
      // tile itself, repeated.
      for (const auto& m : g.point) {
        double worst = 0;
        for (int32_t y = 0; y < tile.height; ++y) {
          for (int32_t x = 0; x < tile.width; ++x) {
            double px, py;
            g.Apply(m, x + 0.5, y + 0.5, &px, &py);
            worst = std::max(worst, std::fabs(WallpaperAt(tile, px, py) - tile.At(y, x)[0]));
          }
        }
        EXPECT_LE(worst, kSymmetryTolerance);
      }
    }
  }
}

// RGB in three or four bytes and CMYK sample each channel as gray does;
// the final path, with the cell's rows bottom up, makes the same wallpaper
// upside down, but not to the bit: its samples blend towards the row
// above, which moves them by up to a pixel (measured: within 10.2 levels
// of the picture).
TEST(HexWallpaper, PixelTypesAndTheFinalPath) {
  for (int32_t id : kHexGroups) {
    SCOPED_TRACE(id);
    auto s = MakeGroup(id, 60);
    const IdealGroup g = testing::IdealGroupOf(*s);
    const Pixels gray = BuildTileOf(*s, CellFrom(*s, g, kTilePixelGray), kTilePixelGray);
    for (int32_t type : {kTilePixelRgb, kTilePixelRgb4, kTilePixelCmyk}) {
      const int32_t tileType = type == kTilePixelRgb ? kTilePixelRgb4 : type;
      const Pixels tile = BuildTileOf(*s, CellFrom(*s, g, type), tileType, 0xAB);
      TilePixelLayout layout{};
      ASSERT_TRUE(GetTilePixelLayout(tileType, &layout));
      for (int32_t y = 0; y < tile.height; ++y) {
        for (int32_t x = 0; x < tile.width; ++x) {
          for (int32_t ch = 0; ch < layout.channels; ++ch) {
            ASSERT_EQ(tile.At(y, x)[layout.offset + ch], gray.At(y, x)[0]) << type;
          }
        }
      }
    }
    const Pixels cell = CellFrom(*s, g, kTilePixelGray);
    Pixels upsideDown(cell.width, cell.height, cell.type);
    for (int32_t r = 0; r < cell.height; ++r) {
      std::memcpy(upsideDown.Row(cell.height - 1 - r), cell.Row(r), cell.stride);
    }
    s->flipRows = 1;
    const Pixels flipped = BuildTileOf(*s, upsideDown, kTilePixelGray);
    Pixels tile(flipped.width, flipped.height, flipped.type);
    for (int32_t r = 0; r < tile.height; ++r) {
      std::memcpy(tile.Row(r), flipped.Row(tile.height - 1 - r), tile.stride);
    }
    EXPECT_LE(Compare(tile, g).max, kFinalPathTolerance);
  }
}

}  // namespace
}  // namespace fancy
