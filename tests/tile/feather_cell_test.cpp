// Feathered cells: the cross-fade towards what the tile shows across each
// border, its weights, the band mask and the groups' band maps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "frame/result_codes.h"
#include "hex_geometry.h"
#include "tile/band_mask.h"
#include "tile/groups/feather_maps.h"
#include "tile/tile_buffer.h"
#include "tile/tile_work.h"
#include "tile_test_util.h"

namespace fancy {
namespace {

using testing::BuildTileOf;
using testing::MakeGroup;
using testing::Pixels;

// A picture holding the cell's box and a margin of m pixels on every side.
struct Picture {
  Pixels pixels;
  int32_t margin;
  Picture(int32_t width, int32_t height, int32_t m, int32_t type)
      : pixels(width + 2 * m, height + 2 * m, type), margin(m) {}
  uint8_t* At(int32_t r, int32_t c) { return pixels.At(r + margin, c + margin); }
  const uint8_t* Corner() const { return pixels.At(margin, margin); }
};

// The wallpaper a group's tile makes, at cell position (r, c), for a cell
// of random pixels.
struct RandomWallpaper {
  Pixels tile;
  TileBuffer buffer{};
  RandomWallpaper(Symmetry& s, uint32_t seed) {
    Pixels cell(s.extentWidth, s.extentHeight, kTilePixelRgb);
    testing::Lcg random{seed};
    for (uint8_t& b : cell.data) b = random.Next();
    int16_t result;
    tile = BuildTileOf(s, cell, kTilePixelRgb, 0, &result);
    EXPECT_EQ(result, kNoError);
    buffer.width = tile.width;
    buffer.height = tile.height;
    buffer.rowShift = s.rowShift;
    // P1's tile starts at the box's column 0, or |shear| for a negative one.
    buffer.offsetX = s.rowShift < 0 ? -s.rowShift : 0;
  }
  const uint8_t* At(int32_t r, int32_t c) const {
    int32_t column, row;
    TileRowOrigin(buffer, c, r, &column, &row);
    if (buffer.rowShift != 0) {
      const int64_t w = tile.width;
      column = static_cast<int32_t>(((int64_t{column} + c) % w + w) % w);
    }
    return tile.At(row, column);
  }
  Picture Around(const Symmetry& s) const {
    Picture p(s.extentWidth, s.extentHeight, s.featherMargin[0], kTilePixelRgb);
    for (int32_t r = -p.margin; r < s.extentHeight + p.margin; ++r) {
      for (int32_t c = -p.margin; c < s.extentWidth + p.margin; ++c)
        std::memcpy(p.At(r, c), At(r, c), 3);
    }
    return p;
  }
};

Pixels Feather(Symmetry& s, const Picture& picture, int16_t* result, uint8_t fill = 0) {
  Pixels cell(s.extentWidth, s.extentHeight, picture.pixels.type, fill);
  *result = s.BuildFeatheredCell(picture.Corner(), picture.pixels.stride, picture.pixels.type, 0,
                                 cell.data.data(), cell.stride, cell.type);
  return cell;
}

constexpr int32_t kBandGroups[] = {kGroupPm, kGroupPg, kGroupP2, kGroupPgg, kGroupPmg, kGroupP4};
constexpr int32_t kMaskCopyGroups[] = {kGroupP1, kGroupCm, kGroupCmm, kGroupP4g};

std::unique_ptr<Symmetry> BandGroup(int32_t id, int32_t feather) {
  return id == kGroupP4 ? MakeGroup(id, 16, 0, 0, feather) : MakeGroup(id, 20, 14, 0, feather);
}

// A picture that already repeats by the group does not change when it is
// feathered: every partner equals the pixel it is mixed with. The weights
// sum to a hair under one, which costs at most a level. Two corners read
// one pixel off on purpose (P2's top right, Pgg's bottom left) and are
// left out.
TEST(FeatherCell, BandsLeaveAWallpaperAsItIs) {
  for (int32_t id : kBandGroups) {
    SCOPED_TRACE(id);
    constexpr int32_t kF = 4;
    auto s = BandGroup(id, kF);
    const RandomWallpaper wallpaper(*s, 7 + id);
    const Picture picture = wallpaper.Around(*s);
    int16_t result;
    const Pixels out = Feather(*s, picture, &result);
    ASSERT_EQ(result, kNoError);
    int32_t changed = 0;
    for (int32_t r = 0; r < out.height; ++r) {
      for (int32_t c = 0; c < out.width; ++c) {
        const bool displaced = (id == kGroupP2 && r < kF && c >= out.width - kF) ||
                               (id == kGroupPgg && r >= out.height - kF && c < kF);
        if (displaced) continue;
        for (int ch = 0; ch < 3; ++ch) {
          const int32_t d = wallpaper.At(r, c)[ch] - out.At(r, c)[ch];
          ASSERT_GE(d, 0) << r << ", " << c;
          ASSERT_LE(d, 1) << r << ", " << c;
          changed += d;
        }
      }
    }
    EXPECT_GT(changed, 0);
  }
}

// F = 1: the band pixels weigh 2/3 and their partners 1/3; at corners the
// pixel weighs 1 and its partners 0.
TEST(FeatherCell, OnePixelFeatherWeighsTwoThirdsInBandsAndAllInCorners) {
  for (int32_t id : kBandGroups) {
    SCOPED_TRACE(id);
    auto s = BandGroup(id, 1);
    Picture picture(s->extentWidth, s->extentHeight, 1, kTilePixelGray);
    for (int32_t r = 0; r < s->extentHeight; ++r)
      std::memset(picture.At(r, 0), 255, s->extentWidth);
    int16_t result;
    const Pixels out = Feather(*s, picture, &result);
    ASSERT_EQ(result, kNoError);
    const int32_t h = out.height, w = out.width;
    for (int32_t r = 0; r < h; ++r) {
      for (int32_t c = 0; c < w; ++c) {
        const bool rowEdge = r == 0 || r == h - 1, colEdge = c == 0 || c == w - 1;
        const int32_t v = out.At(r, c)[0];
        if (rowEdge != colEdge) {
          ASSERT_NEAR(v, 170, 1) << r << ", " << c;
        } else {
          ASSERT_EQ(v, 255) << r << ", " << c;
        }
      }
    }
  }
  // The same weights by mask: the outline weighs F + 1 = 2 and its partner
  // F = 1, where one partner lies across the edge. (Across a slanted edge
  // a partner rounded to its pixel may fall beyond a one-pixel ramp.)
  for (int32_t id : {kGroupP1, kGroupCm, kGroupCmm}) {
    SCOPED_TRACE(id);
    auto s = MakeGroup(id, 40, 30, 0, 1);
    Picture picture(s->extentWidth, s->extentHeight, 1, kTilePixelGray);
    for (int32_t r = 0; r < s->extentHeight; ++r)
      std::memset(picture.At(r, 0), 255, s->extentWidth);
    FeatherGeometry geometry;
    ASSERT_TRUE(GetFeatherGeometry(*s, &geometry));
    BandMask mask;
    ASSERT_EQ(
        BuildBandMask(geometry.outline, 1, -3, -3, s->extentWidth + 6, s->extentHeight + 6, &mask),
        kNoError);
    int16_t result;
    const Pixels out = Feather(*s, picture, &result);
    ASSERT_EQ(result, kNoError);
    std::map<int32_t, int32_t> outline;
    for (int32_t r = 0; r < out.height; ++r) {
      for (int32_t c = 0; c < out.width; ++c) {
        if (mask.At(c, r) == 3) {
          ASSERT_EQ(out.At(r, c)[0], 255);
        }
        if (mask.At(c, r) == 2) ++outline[out.At(r, c)[0]];
      }
    }
    const auto most = std::max_element(outline.begin(), outline.end(),
                                       [](auto a, auto b) { return a.second < b.second; });
    EXPECT_EQ(most->first, 170);
  }
}

// In P4 the corner pixel (0, 0) mixes itself with (-1, 0), (0, -1) and
// (-1, -1): with F = 2, by 9/16, 3/16, 3/16 and 1/16.
TEST(FeatherCell, P4CornerMixesFourPixels) {
  auto s = MakeGroup(kGroupP4, 12, 0, 0, 2);
  Picture picture(12, 12, 2, kTilePixelGray);
  std::fill(picture.pixels.data.begin(), picture.pixels.data.end(), 100);
  *picture.At(-1, 0) = 200;
  *picture.At(0, -1) = 40;
  *picture.At(-1, -1) = 252;
  int16_t result;
  const Pixels out = Feather(*s, picture, &result);
  ASSERT_EQ(result, kNoError);
  EXPECT_NEAR(out.At(0, 0)[0], (9 * 100 + 3 * 200 + 3 * 40 + 252) / 16.0, 1.0);
}

// The band maps are symmetries of each group's wallpaper: the picture at a
// map's image of a cell pixel equals the pixel. (The hexagonal groups'
// maps are held to their wallpapers by the two tests below.)
TEST(FeatherCell, BandMapsAreSymmetriesOfTheTile) {
  for (int32_t id : kMaskCopyGroups) {
    for (int32_t shear : {0, 9, -6, 29}) {
      if (id != kGroupP1 && shear != 0) continue;
      SCOPED_TRACE(std::to_string(id) + " shear " + std::to_string(shear));
      auto s = MakeGroup(id, 18, 13, shear);
      const RandomWallpaper wallpaper(*s, 3);
      FeatherGeometry geometry;
      ASSERT_TRUE(GetFeatherGeometry(*s, &geometry));
      EXPECT_EQ(geometry.mapCount, id == kGroupP1 ? 8 : (id == kGroupCm ? 12 : 14));
      for (int32_t k = 0; k < geometry.mapCount; ++k) {
        for (int32_t r = 0; r < s->extentHeight; ++r) {
          for (int32_t c = 0; c < s->extentWidth; ++c) {
            int32_t x, y;
            ApplyFeatherMap(geometry.maps[k], c, r, &x, &y);
            ASSERT_EQ(0, std::memcmp(wallpaper.At(r, c), wallpaper.At(y, x), 3))
                << "map " << k << " at " << r << ", " << c;
          }
        }
      }
    }
  }
}

// Feathering a picture that already has the group's symmetries leaves it
// as it is: a weighted average of equal values. Exact where the maps are
// exact; for the hexagonal groups within the picture's change over a
// pixel.
TEST(FeatherCell, MasksLeaveAWallpaperAsItIs) {
  for (int32_t id : kMaskCopyGroups) {
    for (int32_t shear : {0, 11, -8}) {
      if (id != kGroupP1 && shear != 0) continue;
      SCOPED_TRACE(std::to_string(id) + " shear " + std::to_string(shear));
      auto s = MakeGroup(id, 26, 21, shear, 5);
      const RandomWallpaper wallpaper(*s, 11);
      const Picture picture = wallpaper.Around(*s);
      int16_t result;
      const Pixels out = Feather(*s, picture, &result);
      ASSERT_EQ(result, kNoError);
      for (int32_t r = 0; r < out.height; ++r) {
        ASSERT_EQ(0, std::memcmp(out.Row(r), wallpaper.Around(*s).At(r, 0), out.stride)) << r;
      }
    }
  }
  for (int32_t id : {kGroupP3, kGroupP31m, kGroupP6}) {
    SCOPED_TRACE(id);
    auto s = MakeGroup(id, 60, 0, 0, 6);
    const testing::IdealGroup g = testing::IdealGroupOf(*s);
    Picture picture(s->extentWidth, s->extentHeight, 6, kTilePixelGray);
    for (int32_t r = -6; r < s->extentHeight + 6; ++r) {
      for (int32_t c = -6; c < s->extentWidth + 6; ++c) {
        *picture.At(r, c) = static_cast<uint8_t>(std::lround(g.Value(c + 0.5, r + 0.5)));
      }
    }
    int16_t result;
    const Pixels out = Feather(*s, picture, &result);
    ASSERT_EQ(result, kNoError);
    int32_t worst = 0;
    for (int32_t r = 0; r < out.height; ++r) {
      for (int32_t c = 0; c < out.width; ++c)
        worst = std::max(worst, std::abs(out.At(r, c)[0] - *picture.At(r, c)));
    }
    EXPECT_LE(worst, 4);
  }
}

// City-block distances from every pixel of the grid to the nearest pixel
// of the other kind (inside or outside the fill).
std::vector<int32_t> Distances(const std::vector<bool>& fill, int32_t w, int32_t h) {
  std::vector<int32_t> d(fill.size(), -1);
  std::deque<int32_t> queue;
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) {
      const int32_t i = y * w + x;
      const bool border =
          (x > 0 && fill[i - 1] != fill[i]) || (x + 1 < w && fill[i + 1] != fill[i]) ||
          (y > 0 && fill[i - w] != fill[i]) || (y + 1 < h && fill[i + w] != fill[i]);
      if (border) {
        d[i] = 1;
        queue.push_back(i);
      }
    }
  }
  while (!queue.empty()) {
    const int32_t i = queue.front();
    queue.pop_front();
    const int32_t x = i % w, y = i / w;
    const int32_t next[4] = {x > 0 ? i - 1 : -1, x + 1 < w ? i + 1 : -1, y > 0 ? i - w : -1,
                             y + 1 < h ? i + w : -1};
    for (int32_t n : next) {
      if (n >= 0 && d[n] < 0 && fill[n] == fill[i]) {
        d[n] = d[i] + 1;
        queue.push_back(n);
      }
    }
  }
  return d;
}

// The mask's levels are the ramp: a cell pixel at distance d from the
// outside (the outline at 1) has F + d, up to 2F + 1; an outside pixel at
// distance d from the cell has F + 1 - d, down to 0.
TEST(FeatherCell, BandMaskLevelsRampOneLevelPerPixel) {
  for (int32_t id : {kGroupP1, kGroupCm, kGroupP3, kGroupP31m, kGroupP6}) {
    for (int32_t f : {1, 3, 8, 20}) {
      SCOPED_TRACE(std::to_string(id) + " feather " + std::to_string(f));
      auto s = MakeGroup(id, 70, 50, 23, f);
      FeatherGeometry geometry;
      ASSERT_TRUE(GetFeatherGeometry(*s, &geometry));
      const int32_t m = f + 5;
      BandMask mask;
      ASSERT_EQ(BuildBandMask(geometry.outline, f, -m, -m, s->extentWidth + 2 * m,
                              s->extentHeight + 2 * m, &mask),
                kNoError);
      EXPECT_EQ(mask.rowBytes % 4, 0);
      const int32_t w = mask.width, h = mask.height;
      std::vector<bool> fill(static_cast<size_t>(w) * h);
      for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) fill[y * w + x] = mask.At(x - m, y - m) > f;
      }
      if (id == kGroupCm) {
        // The triangle's pixels are those under the diagonal, c <= r.
        for (int32_t y = 0; y < h; ++y) {
          for (int32_t x = 0; x < w; ++x) {
            const int32_t r = y - m, c = x - m;
            ASSERT_EQ(fill[y * w + x], c >= 0 && r < 70 && c <= r) << r << ", " << c;
          }
        }
      }
      const std::vector<int32_t> d = Distances(fill, w, h);
      int32_t wrong = 0;
      for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
          const int32_t i = y * w + x;
          const int32_t want = fill[i] ? std::min(2 * f + 1, f + d[i]) : std::max(0, f + 1 - d[i]);
          if (mask.At(x - m, y - m) != want) ++wrong;
        }
      }
      EXPECT_EQ(wrong, 0);
    }
  }
}

// Every pixel of the band inside the cell finds, among its maps, the
// partner across the border at the mirrored level, 2F + 1 less its own:
// exactly across P1's edges; within a level across the triangles' diagonal,
// which runs through pixel centres, and across the hexagonal cells'
// slanted edges, where a rounded image misses it by a level at a few
// pixels next to the sharp corners (at most 1 in 500 here).
TEST(FeatherCell, BandPixelsFindTheirPartners) {
  for (int32_t id : {kGroupP1, kGroupCm, kGroupCmm, kGroupP4g, kGroupP3, kGroupP31m, kGroupP6}) {
    SCOPED_TRACE(id);
    const bool hex = id >= kGroupP3;
    const int32_t slack = id == kGroupP1 ? 0 : 1;
    constexpr int32_t kF = 7;
    auto s = MakeGroup(id, 64, 40, -19, kF);
    FeatherGeometry geometry;
    ASSERT_TRUE(GetFeatherGeometry(*s, &geometry));
    BandMask mask;
    const int32_t m = kF + 5;
    ASSERT_EQ(BuildBandMask(geometry.outline, kF, -m, -m, s->extentWidth + 2 * m,
                            s->extentHeight + 2 * m, &mask),
              kNoError);
    int32_t band = 0, missing = 0;
    for (int32_t r = 0; r < s->extentHeight; ++r) {
      for (int32_t c = 0; c < s->extentWidth; ++c) {
        const int32_t level = mask.At(c, r);
        if (level <= kF || level > 2 * kF) continue;
        ++band;
        bool found = false;
        for (int32_t k = 0; k < geometry.mapCount && !found; ++k) {
          int32_t x, y;
          ApplyFeatherMap(geometry.maps[k], c, r, &x, &y);
          found = std::abs(mask.At(x, y) - (2 * kF + 1 - level)) <= slack;
        }
        if (!found) ++missing;
      }
    }
    EXPECT_GT(band, 0);
    EXPECT_LE(missing, hex ? band / 500 : 0) << "of " << band;
  }
}

// Without memory for the mask, the weights or the edge table the result
// is -108 and the output is left as it was. Groups with mirrors on every
// edge take no feather.
TEST(FeatherCell, OutOfMemoryLeavesTheOutputAsItWas) {
  struct Limit {
    Limit() { SetTileWorkLimit(1); }
    ~Limit() { SetTileWorkLimit(0); }
  };
  for (int32_t id : {kGroupPm, kGroupP4, kGroupP1, kGroupCm, kGroupP3, kGroupP6}) {
    SCOPED_TRACE(id);
    auto s = MakeGroup(id, 30, 20, 4, 3);
    Picture picture(s->extentWidth, s->extentHeight, 3, kTilePixelRgb);
    int16_t result;
    Limit limit;
    const Pixels out = Feather(*s, picture, &result, 0x5C);
    EXPECT_EQ(result, kErrOutOfMemory);
    EXPECT_TRUE(std::all_of(out.data.begin(), out.data.end(), [](uint8_t b) { return b == 0x5C; }));
  }
  for (int32_t id : {kGroupP31m, kGroupP6}) {
    auto s = MakeGroup(id, 30);
    Pixels cell(s->extentWidth, s->extentHeight, kTilePixelGray);
    int16_t result;
    Limit limit;
    const Pixels tile = BuildTileOf(*s, cell, kTilePixelGray, 0x5C, &result);
    EXPECT_EQ(result, kErrOutOfMemory);
    EXPECT_TRUE(
        std::all_of(tile.data.begin(), tile.data.end(), [](uint8_t b) { return b == 0x5C; }));
  }
  for (int32_t id : {kGroupPmm, kGroupP4m, kGroupP3m1, kGroupP6m}) {
    auto s = MakeGroup(id, 30, 20, 0, 3);
    Picture picture(s->extentWidth, s->extentHeight, 3, kTilePixelRgb);
    int16_t result;
    Feather(*s, picture, &result);
    EXPECT_EQ(result, kErrFilterFailure) << id;
  }
}

}  // namespace
}  // namespace fancy
