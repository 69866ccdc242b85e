// Resampling through CompositeImage: nearest and smooth, shrinking, growing,
// odd ratios, mirroring, clipping, tiles and mask weighting.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "image_fixtures.h"
#include "imaging/composite.h"
#include "imaging/merge.h"
#include "raster_helpers.h"

namespace fancy {
namespace {

using testing::At;
using testing::Generate;
using testing::ImagePtr;
using testing::MakeImage;
using testing::Pixels;
using testing::Random;

class Resample : public ::testing::Test {
 protected:
  void SetUp() override {
    ImagingInit();
    context_ = DrawContextCreate();
  }
  void TearDown() override {
    DrawContextFree(context_);
    ImagingShutdown();
  }

  // The source scaled to w x h with the filter (a fresh target of the type).
  ImagePtr Scaled(Image* src, int32_t w, int32_t h, int32_t filter, uint32_t mode = 0) {
    ImagePtr dst = MakeImage(src->type, w, h);
    context_->filterMode = filter;
    EXPECT_EQ(CompositeImage(context_, dst.get(), 0, 0, w, h, nullptr, src, 0, 0, src->width,
                             src->height, nullptr, mode),
              1);
    return dst;
  }

  DrawContext* context_ = nullptr;
};

TEST_F(Resample, HalvingAndDoublingRows) {
  auto row = MakeImage(kImageGrey8, 4, 1, {0, 255, 0, 255});
  auto half = Scaled(row.get(), 2, 1, kFilterSmooth);
  EXPECT_EQ(Pixels(half.get()), (std::vector<uint8_t>{127, 127}));

  std::mt19937 rng(1);
  for (int trial = 0; trial < 50; ++trial) {
    int a = static_cast<int>(rng() & 255), b = static_cast<int>(rng() & 255);
    auto pair = MakeImage(kImageGrey8, 2, 1, {static_cast<uint8_t>(a), static_cast<uint8_t>(b)});
    auto twice = Scaled(pair.get(), 4, 1, kFilterSmooth);
    std::vector<uint8_t> expect{static_cast<uint8_t>(a), static_cast<uint8_t>((3 * a + b) / 4),
                                static_cast<uint8_t>((a + 3 * b) / 4), static_cast<uint8_t>(b)};
    ASSERT_EQ(Pixels(twice.get()), expect) << a << " " << b;
    // The same down a column.
    auto column = MakeImage(kImageGrey8, 1, 2, {static_cast<uint8_t>(a), static_cast<uint8_t>(b)});
    ASSERT_EQ(Pixels(Scaled(column.get(), 1, 4, kFilterSmooth).get()), expect);
  }
  // A single pixel grows into a flat field.
  auto dot = MakeImage(kImageBGR24, 1, 1, {3, 140, 250});
  auto field = Scaled(dot.get(), 13, 7, kFilterSmooth);
  for (int y = 0; y < 7; ++y)
    for (int x = 0; x < 13; ++x) ASSERT_EQ(At(field.get(), x, y, 1), 140);
}

TEST_F(Resample, FlatImagesStayFlatAtAnyRatio) {
  const int sizes[][2] = {{1, 1}, {3, 7}, {10, 10}, {17, 5}, {64, 33}, {97, 101}};
  const int32_t types[] = {kImageGrey8, kImageBGR24, kImageCMYK32, kImageRGB48, kImageGrey16};
  for (int32_t type : types) {
    ImagePtr flat(ImageCreate(type, 29, 31, 0, 0, kStorageOptionOneCell, nullptr, nullptr));
    ImageFillWithByte(flat.get(), 201);
    const auto expect = Pixels(flat.get())[0];
    for (auto& s : sizes) {
      for (int filter : {kFilterNearest, kFilterSmooth}) {
        auto out = Scaled(flat.get(), s[0], s[1], filter);
        for (uint8_t v : Pixels(out.get()))
          ASSERT_EQ(v, expect) << "type " << type << " to " << s[0] << "x" << s[1];
      }
    }
  }
}

TEST_F(Resample, IntegerShrinkIsTheBoxAverage) {
  // Along a row the area average is exact: the truncated mean of each box.
  for (int factor : {2, 3, 5}) {
    const int w = 12 * factor;
    const auto row = Random(w, 20 + factor);
    auto source = MakeImage(kImageGrey8, w, 1, row);
    auto out = Scaled(source.get(), 12, 1, kFilterSmooth);
    for (int x = 0; x < 12; ++x) {
      int sum = 0;
      for (int k = 0; k < factor; ++k) sum += row[x * factor + k];
      ASSERT_EQ(At(out.get(), x, 0), sum / factor) << "factor " << factor << " x " << x;
    }
  }
  // Over an area both passes truncate, so a power-of-two factor stays below
  // the mean by less than two steps; other factors weigh the rows in steps
  // of 1/2^k, which moves the result by well under one step more.
  for (int factor : {2, 4, 3}) {
    const int w = 20, h = 240 / factor * factor;
    const auto pixels = Random(size_t{w} * factor * h, 30 + factor);
    auto source = MakeImage(kImageGrey8, w * factor, h, pixels);
    auto out = Scaled(source.get(), w, h / factor, kFilterSmooth);
    for (int y = 0; y < h / factor; ++y)
      for (int x = 0; x < w; ++x) {
        int sum = 0;
        for (int j = 0; j < factor; ++j)
          for (int i = 0; i < factor; ++i) sum += pixels[(y * factor + j) * w * factor + x * factor + i];
        double mean = static_cast<double>(sum) / (factor * factor);
        int v = At(out.get(), x, y);
        if (factor == 3) {
          ASSERT_NEAR(v, mean, 3.0) << x << "," << y;
        } else {
          ASSERT_LE(v, mean) << x << "," << y;
          ASSERT_GT(v, mean - 2) << x << "," << y;
        }
      }
  }
}

TEST_F(Resample, NearestTakesThePixelUnderTheCentre) {
  const int sw = 23, sh = 9;
  const auto pixels = Random(size_t{sw} * sh, 40);
  auto source = MakeImage(kImageGrey8, sw, sh, pixels);
  const int sizes[][2] = {{7, 4}, {50, 19}, {23, 30}, {5, 9}, {46, 2}};
  for (auto& s : sizes) {
    auto out = Scaled(source.get(), s[0], s[1], kFilterNearest);
    for (int y = 0; y < s[1]; ++y)
      for (int x = 0; x < s[0]; ++x) {
        int sx = static_cast<int>(std::floor((x + 0.5) * sw / s[0]));
        int sy = static_cast<int>(std::floor((y + 0.5) * sh / s[1]));
        ASSERT_EQ(At(out.get(), x, y), pixels[sy * sw + sx]) << x << "," << y;
      }
  }
}

TEST_F(Resample, RectanglesTheWrongWayRoundMirror) {
  const auto pixels = Random(6 * 4, 50);
  auto source = MakeImage(kImageGrey8, 6, 4, pixels);
  auto out = MakeImage(kImageGrey8, 6, 4);
  // Edges 6 .. 0 across: the pixels 0 .. 5 read from 5 down.
  Rect from{6, 3, -1, 0};
  Rect to = ImageBounds(out.get());
  for (int filter : {kFilterNearest, kFilterSmooth}) {
    context_->filterMode = filter;
    ASSERT_EQ(CompositeImage(context_, out.get(), 0, 0, 0, 0, &to, source.get(), 0, 0, 0, 0, &from,
                             kMergeNormal),
              1);
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 6; ++x) ASSERT_EQ(At(out.get(), x, y), pixels[y * 6 + (5 - x)]);
  }
  // Upside down, and at twice the size: each pixel of the mirror doubled.
  auto big = MakeImage(kImageGrey8, 12, 8);
  Rect flipped{0, -1, 5, 4};
  Rect whole = ImageBounds(big.get());
  context_->filterMode = kFilterNearest;
  ASSERT_EQ(CompositeImage(context_, big.get(), 0, 0, 0, 0, &whole, source.get(), 0, 0, 0, 0,
                           &flipped, kMergeNormal),
            1);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 12; ++x) ASSERT_EQ(At(big.get(), x, y), pixels[(3 - y / 2) * 6 + x / 2]);
}

TEST_F(Resample, OnlyTheVerticalPassActsWhenWidthsAgree) {
  // Columns of different constant values: a vertical change of size keeps
  // each column's value, whatever the filter.
  auto columns = MakeImage(kImageBGR24, 9, 5, Generate(9, 5, 3, [](int x, int, int c) {
                             return x * 28 + c;
                           }));
  for (int filter : {kFilterNearest, kFilterSmooth})
    for (int h : {2, 3, 11, 13}) {
      auto out = Scaled(columns.get(), 9, h, filter);
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < 9; ++x) ASSERT_EQ(At(out.get(), x, y, 2), x * 28 + 2);
    }
}

TEST_F(Resample, ClippedTargetsMatchTheUnclippedResult) {
  // Only part of the target exists: the rows that do exist are the same as
  // in a full-size scale, for both filters and both directions.
  const auto pixels = Random(37 * 29 * 3, 60);
  auto source = MakeImage(kImageBGR24, 37, 29, pixels);
  for (int filter : {kFilterNearest, kFilterSmooth})
    for (int size : {16, 71}) {
      auto full = Scaled(source.get(), size, size, filter);
      auto part = MakeImage(kImageBGR24, size / 2, size / 2 + 3);
      context_->filterMode = filter;
      // The scaled picture placed so that only its middle falls on `part`.
      ASSERT_EQ(CompositeImage(context_, part.get(), -size / 4, -size / 5, size, size, nullptr,
                               source.get(), 0, 0, 37, 29, nullptr, kMergeNormal),
                1);
      for (int y = 0; y < part->height; ++y)
        for (int x = 0; x < part->width; ++x)
          for (int c = 0; c < 3; ++c)
            ASSERT_EQ(At(part.get(), x, y, c), At(full.get(), x + size / 4, y + size / 5, c))
                << filter << " " << size << " " << x << "," << y;
    }
}

TEST_F(Resample, ScalingIntoTilesMatchesOneCell) {
  testing::AttachedCache attached(100000);
  const auto pixels = Random(123 * 77 * 3, 70);
  auto source = MakeImage(kImageBGR24, 123, 77, pixels);
  for (int filter : {kFilterNearest, kFilterSmooth}) {
    Image* tiled = ImageCreate(kImageBGR24, 301, 190, 0, 0, kStorageOptionTiled, nullptr, nullptr);
    ASSERT_EQ(tiled->storageKind, kStorageTiled);
    context_->filterMode = filter;
    // Mode 0 (the scale copy) and Multiply over white (the merge path) agree.
    ASSERT_EQ(CompositeImage(context_, tiled, 0, 0, 301, 190, nullptr, source.get(), 0, 0, 123, 77,
                             nullptr, kMergeNormal),
              1);
    auto plain = Scaled(source.get(), 301, 190, filter);
    EXPECT_EQ(Pixels(tiled), Pixels(plain.get()));
    auto white = MakeImage(kImageBGR24, 301, 190, std::vector<uint8_t>(301 * 190 * 3, 255));
    ASSERT_EQ(CompositeImage(context_, white.get(), 0, 0, 301, 190, nullptr, source.get(), 0, 0,
                             123, 77, nullptr, kMergeMultiply),
              1);
    EXPECT_EQ(Pixels(white.get()), Pixels(plain.get()));
    EXPECT_TRUE(testing::AllUnlocked(tiled));
    ImageDestroy(tiled);
  }
}

TEST_F(Resample, MaskWeightingKeepsHiddenColoursOut) {
  // Left half opaque blue, right half hidden red; the mask is the weight.
  auto source = MakeImage(kImageBGR24, 8, 8, Generate(8, 8, 3, [](int x, int, int c) {
                            return x < 4 ? (c == 0 ? 255 : 0) : (c == 2 ? 255 : 0);
                          }));
  Image* mask = MakeImage(kImageMask, 8, 8, Generate(8, 8, 1, [](int x, int, int) {
                  return x < 4 ? 255 : 0;
                })).release();
  ImageSetMask(source.get(), mask, nullptr, nullptr, nullptr);
  auto target = MakeImage(kImageBGR24, 5, 5, std::vector<uint8_t>(75, 17));
  context_->filterMode = kFilterSmooth;
  ASSERT_EQ(CompositeImage(context_, target.get(), 0, 0, 5, 5, nullptr, source.get(), 0, 0, 8, 8,
                           nullptr, kMergeNormal | kCompositeWeightBySourceMask),
            1);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 5; ++x) {
      if (At(target.get(), x, y, 0) == 17 && At(target.get(), x, y, 2) == 17) continue;  // uncovered
      // Wherever anything was merged, no red came through from the hidden half.
      EXPECT_LE(At(target.get(), x, y, 2), 17) << x << "," << y;
    }
  EXPECT_EQ(At(target.get(), 0, 0, 0), 255);
  EXPECT_EQ(At(target.get(), 4, 4, 0), 17);  // the hidden half leaves the target alone

  // A source hidden everywhere changes nothing.
  Image* none = MakeImage(kImageMask, 8, 8).release();
  Image* old = nullptr;
  ImageSetMask(source.get(), none, nullptr, &old, nullptr);
  ImageDestroy(old);
  auto untouched = MakeImage(kImageBGR24, 5, 5, std::vector<uint8_t>(75, 17));
  ASSERT_EQ(CompositeImage(context_, untouched.get(), 0, 0, 5, 5, nullptr, source.get(), 0, 0, 8, 8,
                           nullptr, kMergeNormal | kCompositeWeightBySourceMask),
            1);
  EXPECT_EQ(Pixels(untouched.get()), std::vector<uint8_t>(75, 17));
}

}  // namespace
}  // namespace fancy
