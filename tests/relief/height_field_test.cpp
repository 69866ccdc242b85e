// The height field: drop-off curves, both distance passes against a search
// of every set pixel, the blur, and what is freed when.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>
#include <vector>

#include "frame/result_codes.h"
#include "platform/crt_random.h"
#include "relief/distance_field.h"
#include "relief/drop_off.h"
#include "relief/height_field.h"
#include "relief/relief_memory.h"
#include "relief/smooth_field.h"
#include "relief_test_util.h"

namespace fancy {
namespace {

using testing::ByteMapPtr;
using testing::HeightMapPtr;
using testing::MaskOf;
using testing::NearestSquared;

constexpr Fixed kOne = 65536;

TEST(ReliefMemoryTest, BlocksCarryTheirSizesAndTheTotalComesBack) {
  const int64_t before = ReliefMemoryInUse();
  auto* block = static_cast<uint8_t*>(AllocRelief(100));
  ASSERT_NE(block, nullptr);
  uint32_t words[2];
  std::memcpy(words, block - 8, sizeof(words));
  EXPECT_EQ(words[0], 108u);
  EXPECT_EQ(words[1], 100u);
  EXPECT_EQ(ReliefMemoryInUse(), before + 108);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(block[i], 0) << "blocks come zeroed";
  FreeRelief(block);
  FreeRelief(nullptr);
  EXPECT_EQ(ReliefMemoryInUse(), before);
  EXPECT_EQ(AllocRelief(-1), nullptr);

  SetReliefMemoryLimit(before + 50);
  EXPECT_EQ(AllocRelief(100), nullptr);
  SetReliefMemoryLimit(-1);

  // Fewer real rows than pointers: the rows repeat, each padded to four bytes.
  ByteMap* map = AllocByteMap(5, 7, 1, 3);
  ASSERT_NE(map, nullptr);
  EXPECT_EQ(map->rows[3], map->rows[0]);
  EXPECT_EQ(map->rows[5], map->rows[2]);
  EXPECT_EQ(map->rows[1] - map->rows[0], ByteMapRowBytes(5, 1));
  EXPECT_EQ(ByteMapRowBytes(5, 1), 8);
  FreeByteMap(map);
  EXPECT_EQ(AllocHeightMap(0, 4), nullptr);
  EXPECT_EQ(ReliefMemoryInUse(), before);
}

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
    for (int32_t i = 1; i < n; ++i) {
      EXPECT_LT(t[i], t[i - 1]);
      const double c = 2.0 / width;
      EXPECT_NEAR(t[i], 65536.0 * std::exp(-(c * i) * (c * i)), 65536.0 * 0.002 + 4) << i;
    }
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

TEST(DistanceTest, VerticalPassIsExactNearAndSaturatesFar) {
  std::vector<int32_t> counters(40);
  // An empty mask: every distance saturates at 255.
  ByteMapPtr empty = MaskOf(40, 300, [](int32_t, int32_t) { return false; });
  VerticalDistances(empty.get(), counters.data());
  for (int32_t y = 0; y < 300; ++y)
    for (int32_t x = 0; x < 40; ++x) ASSERT_EQ(empty->rows[y][x], 255);

  CrtSrand(7);
  std::vector<std::vector<bool>> set(300, std::vector<bool>(40));
  for (int32_t y = 0; y < 300; ++y)
    for (int32_t x = 0; x < 40; ++x) set[y][x] = CrtRand() % 400 == 0;
  ByteMapPtr mask = MaskOf(40, 300, [&](int32_t x, int32_t y) { return set[y][x]; });
  VerticalDistances(mask.get(), counters.data());
  for (int32_t x = 0; x < 40; ++x)
    for (int32_t y = 0; y < 300; ++y) {
      int32_t exact = 1000;
      for (int32_t z = 0; z < 300; ++z)
        if (set[z][x]) exact = std::min(exact, std::abs(z - y));
      const int32_t got = mask->rows[y][x];
      if (exact <= 127)
        ASSERT_EQ(got, exact) << x << "," << y;
      else
        ASSERT_TRUE(got >= std::min(exact, 255) && got <= 255) << x << "," << y << " " << got;
    }
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
      const int64_t b = NearestSquared(points, x + ox, y + oy);
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
  field->rows[15][30] = 40 * kOne;  // a spike, away from the edge of the flat part
  ASSERT_EQ(SmoothField(field.get(), 3 << 16, nullptr), kNoError);
  // Flat inside, lower at the picture's edge, where samples beyond count as 0.
  EXPECT_NEAR(field->rows[15][8], kOne, 64);
  EXPECT_LT(field->rows[0][8], field->rows[15][8] - kOne / 8);
  EXPECT_LT(field->rows[15][0], field->rows[15][8] - kOne / 8);
  // The spike spreads alike to every side and keeps its mass.
  int64_t mass = 0;
  for (int32_t dy = -6; dy <= 6; ++dy)
    for (int32_t dx = -6; dx <= 6; ++dx) {
      const Fixed v = field->rows[15 + dy][30 + dx];
      mass += v;
      EXPECT_EQ(v, field->rows[15 - dy][30 + dx]);
      EXPECT_EQ(v, field->rows[15 + dy][30 - dx]);
    }
  EXPECT_NEAR(static_cast<double>(mass), 40.0 * kOne, 40.0 * 300);
}

TEST(HeightFieldTest, BuildFreesTheMaskAlwaysAndTheFieldOnFailure) {
  const int64_t base = ReliefMemoryInUse();
  auto build = [&](int32_t smoothness, int32_t height, ReliefProgress* progress,
                   HeightMap** out) {
    ByteMap* mask = MaskOf(60, 50, testing::Disc(30, 25, 10)).release();
    HeightMap* field = AllocHeightMap(60, 50);
    int16_t result =
        BuildHeightField(&mask, &field, 12, smoothness, kDropOffFlat, height, 0, 0, progress);
    EXPECT_EQ(mask, nullptr);
    *out = field;
    return result;
  };
  HeightMap* field = nullptr;
  ASSERT_EQ(build(0, 30, nullptr, &field), kNoError);
  ASSERT_NE(field, nullptr);
  // Height multiplies the surface: 30 tenths.
  EXPECT_EQ(field->rows[25][30], FixedMul(kDropOffTop, 6554 * 30));
  FreeHeightMap(field);
  EXPECT_EQ(ReliefMemoryInUse(), base);

  // Cancelled in the distance pass, then in the blur's rows and columns.
  static int32_t calls, stopAt;
  ReliefProgress progress{[]() -> Boolean { return ++calls == stopAt; }, nullptr, 0, 0};
  for (int32_t stop : {1, 50, 51, 80, 105}) {
    calls = 0, stopAt = stop, progress.count = 0;
    EXPECT_EQ(build(2, 0, &progress, &field), kErrUserCancelled) << stop;
    EXPECT_EQ(field, nullptr);
    EXPECT_EQ(ReliefMemoryInUse(), base);
  }
  EXPECT_EQ(HeightFieldSteps(60, 50, 2), 50 + 25 + 30);

  // Short of memory at each of its allocations.
  for (int64_t room : {0, 300, 1200, 2000}) {
    ByteMap* mask = MaskOf(60, 50, testing::Disc(30, 25, 10)).release();
    HeightMap* f = AllocHeightMap(60, 50);
    SetReliefMemoryLimit(ReliefMemoryInUse() + room);
    EXPECT_EQ(BuildHeightField(&mask, &f, 12, 2, kDropOffGaussian, 0, 0, 0, nullptr),
              kErrOutOfMemory) << room;
    SetReliefMemoryLimit(-1);
    EXPECT_EQ(mask, nullptr);
    EXPECT_EQ(f, nullptr);
    EXPECT_EQ(ReliefMemoryInUse(), base);
  }
}

}  // namespace
}  // namespace fancy
