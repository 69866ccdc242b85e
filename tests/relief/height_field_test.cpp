// The height field: drop-off curves, both distance passes against a search
// of every set pixel, the blur, and what is freed when.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "frame/result_codes.h"
#include "platform/crt_random.h"
#include "relief/distance_field.h"
#include "relief/drop_off.h"
#include "relief/height_field.h"
#include "relief/relief_memory.h"
#include "relief/smooth_field.h"

namespace fancy {
namespace {

struct ByteMapFree {
  void operator()(ByteMap* map) const { FreeByteMap(map); }
};
struct HeightMapFree {
  void operator()(HeightMap* map) const { FreeHeightMap(map); }
};
using ByteMapPtr = std::unique_ptr<ByteMap, ByteMapFree>;
using HeightMapPtr = std::unique_ptr<HeightMap, HeightMapFree>;

// A one-byte map with 255 where set(x, y) holds.
ByteMapPtr MaskOf(int32_t width, int32_t height, const std::function<bool(int32_t, int32_t)>& set) {
  ByteMapPtr map(AllocByteMap(width, height, 1, 0));
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) map->rows[y][x] = set(x, y) ? 255 : 0;
  return map;
}

constexpr Fixed kOne = 65536;

TEST(DropOffTest, CurvesStartJustBelowOneAndFallToTheirEnd) {
  std::vector<Fixed> t(400);
  // A narrow Gaussian still has a slope when the field has room for one.
  EXPECT_GE(MakeDropOffTable(t.data(), 2, 3, kDropOffGaussian), 2);
  EXPECT_EQ(MakeDropOffTable(t.data(), 1, 3, kDropOffGaussian), 1);
  for (int32_t width : {3, 20, 100}) {
    SCOPED_TRACE(width);
    const int32_t n = MakeDropOffTable(t.data(), 400, width, kDropOffGaussian);
    ASSERT_GE(n, 2);
    EXPECT_EQ(t[0], kDropOffTop);
    EXPECT_LT(t[n - 1], kGaussianTail);
    EXPECT_GE(t[n - 2], kGaussianTail) << "the table ends after the first entry below the tail";
    for (int32_t i = 1; i < n; ++i)
      EXPECT_NEAR(t[i], 65536.0 * std::exp(-std::pow(2.0 * i / width, 2)), 135) << i;
  }
  // Mesa falls fast from the rim: t^4, 1/16 where t is one half.
  ASSERT_EQ(MakeDropOffTable(t.data(), 400, 21, kDropOffMesa), 21);
  EXPECT_EQ(t[10], kOne / 16);
  EXPECT_EQ(t[20], 0);
  // Flat is a straight line to 0, and "rounded" is the same line.
  for (int32_t dropOff : {int32_t{kDropOffFlat}, int32_t{kDropOffRounded}, 7}) {
    const int32_t n = MakeDropOffTable(t.data(), 400, 30, dropOff);
    ASSERT_EQ(n, 30);
    EXPECT_EQ(t[0], kDropOffTop);
    EXPECT_EQ(t[n - 1], 0);
    for (int32_t i = 1; i < n - 1; ++i) EXPECT_NEAR(t[i] + t[n - 1 - i], kOne, 1) << i;
  }
  // The line never runs past the field.
  EXPECT_EQ(MakeDropOffTable(t.data(), 12, 30, kDropOffFlat), 12);
}

TEST(DistanceTest, EmptyMaskSaturatesAt255) {
  std::vector<int32_t> counters(40);
  ByteMapPtr empty = MaskOf(40, 300, [](int32_t, int32_t) { return false; });
  VerticalDistances(empty.get(), counters.data());
  for (int32_t y = 0; y < 300; ++y)
    for (int32_t x = 0; x < 40; ++x) ASSERT_EQ(empty->rows[y][x], 255);
}

// Both passes with a Flat table as wide as the field: the value names the
// whole distance, which a search of every set pixel gives too.
TEST(DistanceTest, FieldHoldsTheNearestSetPixelsDistance) {
  CrtSrand(11);
  std::vector<std::pair<int32_t, int32_t>> points;
  ByteMapPtr mask = MaskOf(90, 70, [&](int32_t x, int32_t y) {
    bool on = CrtRand() % 300 == 0 || (x > 60 && y > 40 && std::hypot(x - 72, y - 55) < 6);
    if (on) points.emplace_back(x, y);
    return on;
  });
  // The field is the mask's inner part, as a filter rectangle inside the
  // grown mask rectangle.
  const int32_t ox = 5, oy = 7;
  HeightMapPtr field(AllocHeightMap(80, 60));
  ASSERT_EQ(ScaledDistanceField(mask.get(), field.get(), 100, 0, kDropOffFlat, ox, oy, nullptr),
            kNoError);
  std::vector<Fixed> t(80);
  const int32_t n = MakeDropOffTable(t.data(), 80, 100, kDropOffFlat);
  for (int32_t y = 0; y < 60; ++y)
    for (int32_t x = 0; x < 80; ++x) {
      int64_t b = INT64_MAX;
      for (const auto& [px, py] : points)
        b = std::min<int64_t>(b, (px - x - ox) * (px - x - ox) + (py - y - oy) * (py - y - oy));
      const auto r = std::min<int64_t>(static_cast<int64_t>(std::floor(std::sqrt(double(b)))), n - 1);
      ASSERT_EQ(field->rows[y][x], t[static_cast<size_t>(r)]) << x << "," << y;
    }
}

TEST(DistanceTest, SmoothnessZeroGivesStepsOfOnePixel) {
  std::vector<Fixed> t(64);
  const int32_t n = MakeDropOffTable(t.data(), 64, 30, kDropOffGaussian);
  const std::set<Fixed> entries(t.begin(), t.begin() + n);
  // A straight edge: each column one step of the table, the same down the rows.
  ByteMapPtr edge = MaskOf(64, 16, [](int32_t x, int32_t) { return x < 10; });
  HeightMapPtr field(AllocHeightMap(64, 16));
  ASSERT_EQ(ScaledDistanceField(edge.get(), field.get(), 30, 0, kDropOffGaussian, 0, 0, nullptr),
            kNoError);
  for (int32_t y = 0; y < 16; ++y)
    for (int32_t x = 10; x < 64; ++x)
      ASSERT_EQ(field->rows[y][x], t[static_cast<size_t>(std::min(x - 9, n - 1))]) << x;
  // Round a point, smoothness 0 only ever gives table entries; smoothness
  // (before any blur) gives the values between them too.
  auto values = [&](int32_t smoothness) {
    ByteMapPtr point = MaskOf(64, 64, [](int32_t x, int32_t y) { return x == 32 && y == 32; });
    HeightMapPtr f(AllocHeightMap(64, 64));
    EXPECT_EQ(ScaledDistanceField(point.get(), f.get(), 30, smoothness, kDropOffGaussian, 0, 0,
                                  nullptr),
              kNoError);
    std::set<Fixed> seen;
    for (int32_t y = 0; y < 64; ++y) seen.insert(f->rows[y], f->rows[y] + 64);
    return seen;
  };
  for (Fixed v : values(0)) EXPECT_TRUE(entries.count(v)) << v;
  int32_t between = 0;
  for (Fixed v : values(1)) between += entries.count(v) ? 0 : 1;
  EXPECT_GT(between, 10);
}

TEST(SmoothTest, KernelIsNormalisedAndEndsUnderOneThreeHundredth) {
  std::vector<Fixed> k(64);
  for (int32_t sigma = 1; sigma <= 10; ++sigma) {
    SCOPED_TRACE(sigma);
    const int32_t taps = MakeGaussianKernel(k.data(), sigma << 16, 64);
    ASSERT_GE(taps, 2);
    int64_t sum = k[0];
    for (int32_t i = 1; i < taps; ++i) {
      EXPECT_LE(k[i], k[i - 1]);
      sum += 2 * int64_t{k[i]};
    }
    EXPECT_NEAR(sum, kOne, 2 * taps + 8);
  }
  // The taps stop at the limit too.
  EXPECT_EQ(MakeGaussianKernel(k.data(), 10 << 16, 3), 3);
}

TEST(SmoothTest, BlurKeepsFlatInteriorsSpreadsSymmetricallyAndFallsAtTheEdge) {
  HeightMapPtr field(AllocHeightMap(41, 31));
  for (int32_t y = 0; y < 31; ++y)
    for (int32_t x = 0; x < 41; ++x) field->rows[y][x] = x < 20 ? kOne : 0;
  field->rows[15][30] = 40 * kOne;  // a spike, away from the flat part
  ASSERT_EQ(SmoothField(field.get(), 3 << 16, nullptr), kNoError);
  EXPECT_NEAR(field->rows[15][8], kOne, 64);
  EXPECT_LT(field->rows[0][8], field->rows[15][8] - kOne / 8) << "samples beyond count as 0";
  EXPECT_LT(field->rows[15][0], field->rows[15][8] - kOne / 8);
  int64_t mass = 0;
  for (int32_t dy = -6; dy <= 6; ++dy)
    for (int32_t dx = -6; dx <= 6; ++dx) {
      mass += field->rows[15 + dy][30 + dx];
      EXPECT_EQ(field->rows[15 + dy][30 + dx], field->rows[15 - dy][30 - dx]);
    }
  EXPECT_NEAR(static_cast<double>(mass), 40.0 * kOne, 40.0 * 300);
}

// The run's own tests cancel and starve every step; here, what is whose.
TEST(HeightFieldTest, BuildTakesTheMaskAndScalesByTheHeight) {
  ByteMap* mask = MaskOf(60, 50, [](int32_t x, int32_t y) { return std::hypot(x - 30, y - 25) < 10; })
                      .release();
  HeightMap* field = AllocHeightMap(60, 50);
  ASSERT_EQ(BuildHeightField(&mask, &field, 12, 0, kDropOffFlat, 30, 0, 0, nullptr), kNoError);
  EXPECT_EQ(mask, nullptr) << "the mask is freed";
  ASSERT_NE(field, nullptr);
  EXPECT_EQ(field->rows[25][30], FixedMul(kDropOffTop, 6554 * 30)) << "30 tenths";
  FreeHeightMap(field);
  EXPECT_EQ(ReliefMemoryInUse(), 0);
}

}  // namespace
}  // namespace fancy
