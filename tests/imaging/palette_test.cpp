// Palettes: the built-in kinds, copies and equality, the fast nearest forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "imaging/palette.h"

namespace fancy {
namespace {

int Distance(const PaletteEntry& e, int r, int g, int b) {
  return (e.red - r) * (e.red - r) + (e.green - g) * (e.green - g) + (e.blue - b) * (e.blue - b);
}

TEST(Palette, BuiltInKinds) {
  EXPECT_EQ(PaletteCreate(0, 4), nullptr);
  EXPECT_EQ(PaletteCreate(7, 4), nullptr);
  EXPECT_EQ(PaletteCreate(2, 0), nullptr);
  EXPECT_EQ(PaletteCreate(4, 65536), nullptr);

  Palette* bw = PaletteCreate(1, 99);
  ASSERT_EQ(bw->count, 2);
  EXPECT_EQ(PaletteEntries(bw)[0].red, 0);
  EXPECT_EQ(PaletteEntries(bw)[1].blue, 255);

  Palette* ramp = PaletteCreate(3, 0);
  ASSERT_EQ(ramp->count, 256);
  EXPECT_EQ(PaletteEntries(ramp)[200].green, 200);

  Palette* cube = PaletteCreate(5, 0);
  ASSERT_EQ(cube->count, 236);
  const PaletteEntry* e = PaletteEntries(cube);
  EXPECT_EQ(e[1].blue, 51);   // blue fastest
  EXPECT_EQ(e[36].red, 51);   // red slowest
  EXPECT_EQ(e[215].red, 255);
  EXPECT_EQ(e[215].blue, 255);
  EXPECT_EQ(e[216].red, 0);   // the greys: 255 x n / 19
  EXPECT_EQ(e[217].red, 13);
  EXPECT_EQ(e[235].green, 255);

  Palette* sixteen = PaletteCreate(6, 0);
  ASSERT_EQ(sixteen->count, 16);
  const PaletteEntry* s = PaletteEntries(sixteen);
  EXPECT_EQ(s[7].blue, 128);
  EXPECT_EQ(s[8].green, 192);  // where black would be again
  EXPECT_EQ(s[15].red, 255);

  Palette* custom = PaletteCreate(2, 3);
  ASSERT_EQ(custom->count, 3);
  for (Palette* p : {bw, ramp, cube, sixteen, custom}) PaletteFree(p);
  PaletteFree(nullptr);
}

TEST(Palette, CopiesAndEquality) {
  Palette* a = PaletteCreate(2, 4);
  PaletteEntries(a)[2] = PaletteEntry{1, 2, 3, 0};
  Palette* b = PaletteCopy(a);
  ASSERT_NE(b, nullptr);
  EXPECT_NE(a, b);
  EXPECT_EQ(b->lookup, nullptr);
  EXPECT_TRUE(PaletteSame(a, b));
  PaletteEntries(b)[2].pad = 77;  // the pad byte is no colour
  EXPECT_TRUE(PaletteSame(a, b));
  PaletteEntries(b)[2].red = 4;
  EXPECT_FALSE(PaletteSame(a, b));
  Palette* shorter = PaletteCreate(2, 3);
  EXPECT_FALSE(PaletteSame(a, shorter));
  EXPECT_TRUE(PaletteSame(a, a));
  EXPECT_FALSE(PaletteSame(a, nullptr));
  for (Palette* p : {a, b, shorter}) PaletteFree(p);
}

TEST(Palette, NearestInTheCubeTakesTheNearestLevelOfEachChannel) {
  Palette* cube = PaletteCreate(5, 0);
  const PaletteEntry* e = PaletteEntries(cube);
  for (int r = 0; r < 256; r += 5) {
    for (int g = 0; g < 256; g += 3) {
      for (int b = 1; b < 256; b += 7) {
        if (r == g && g == b) continue;
        int index = PaletteNearestCube(r, g, b);
        ASSERT_GE(index, 0);
        ASSERT_LT(index, 216);
        EXPECT_LE(std::abs(e[index].red - r), 25);
        EXPECT_LE(std::abs(e[index].green - g), 26);
        EXPECT_LE(std::abs(e[index].blue - b), 26);
      }
    }
  }
  EXPECT_EQ(PaletteNearestCube(0, 0, 0), 0);
  EXPECT_EQ(PaletteNearestCube(255, 255, 255), 215);
  EXPECT_EQ(PaletteNearestCube(1, 1, 1), 216);
  EXPECT_EQ(PaletteNearestCube(248, 248, 248), 235);
  EXPECT_EQ(PaletteNearestCube(249, 249, 249), 215);
  for (int v = 1; v < 249; ++v) {
    int index = PaletteNearestCube(v, v, v);
    ASSERT_GE(index, 216);
    EXPECT_LE(std::abs(e[index].red - v), 14) << v;  // half a grey step, and a bit
  }
  PaletteFree(cube);
}

TEST(Palette, NearestOfSixteenIsTheClosestEntry) {
  Palette* sixteen = PaletteCreate(6, 0);
  const PaletteEntry* e = PaletteEntries(sixteen);
  for (int r = 0; r < 256; r += 9) {
    for (int g = 0; g < 256; g += 11) {
      for (int b = 0; b < 256; b += 13) {
        int index = PaletteNearestSixteen(r, g, b);
        ASSERT_GE(index, 0);
        ASSERT_LT(index, 16);
        int best = INT_MAX;
        for (int n = 0; n < 16; ++n) best = std::min(best, Distance(e[n], r, g, b));
        ASSERT_EQ(Distance(e[index], r, g, b), best) << r << "," << g << "," << b;
      }
    }
  }
  // Ties: the 0/128 corner wins; light grey loses to both corners.
  EXPECT_EQ(PaletteNearestSixteen(64, 0, 0), 1);     // 128 or 0 off by 64: the dark corner
  EXPECT_EQ(PaletteNearestSixteen(160, 160, 160), 7);  // (128)x3 and (192)x3 tie
  EXPECT_EQ(PaletteNearestSixteen(192, 192, 192), 8);
  PaletteFree(sixteen);
}

}  // namespace
}  // namespace fancy
