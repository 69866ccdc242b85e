// Run masks: building runs from coverage bytes and bits (checked pixel by
// pixel against the classes), joining runs across cells, point tests, fills
// and copies; and the alpha runs of a mask image laid over tiles.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "image_fixtures.h"
#include "imaging/image.h"
#include "imaging/run_mask.h"
#include "imaging/tile_walk.h"

namespace fancy {
namespace {

using testing::AttachedCache;

int ClassOf(uint8_t v, int threshold) {
  if (threshold >= 0) return v >= threshold ? kRunFull : kRunClear;
  return v == 0 ? kRunClear : v == 255 ? kRunFull : kRunPartial;
}

// A row with long stretches of each class and short noise between them.
std::vector<uint8_t> StretchyRow(std::mt19937& rng, int count) {
  std::vector<uint8_t> row;
  while (static_cast<int>(row.size()) < count) {
    int length = 1 + static_cast<int>(rng() % (rng() % 2 ? 3 : 40));
    int what = static_cast<int>(rng() % 4);
    for (int i = 0; i < length; ++i)
      row.push_back(what == 0 ? 0 : what == 1 ? 255 : static_cast<uint8_t>(1 + rng() % 254));
  }
  row.resize(count);
  return row;
}

// Every pixel lies in a run of its class; runs don't repeat a kind; partial
// runs point at their own first byte.
void ExpectRunsDescribe(const RunRow& row, const std::vector<uint8_t>& values, int threshold,
                        int32_t baseOffset) {
  int x = 0;
  for (int r = 0; r < row.runCount; ++r) {
    const fancy::Run& run = row.runs[r];
    ASSERT_GT(run.length, 0);
    if (r > 0) {
      ASSERT_NE(run.kind, row.runs[r - 1].kind) << "run " << r;
    }
    for (int i = 0; i < run.length; ++i)
      ASSERT_EQ(ClassOf(values[x + i], threshold), run.kind) << "pixel " << x + i;
    if (run.kind == kRunPartial) {
      ASSERT_EQ(run.offset, baseOffset + x);
    }
    x += run.length;
  }
  ASSERT_EQ(x, static_cast<int>(values.size()));
  ASSERT_EQ(row.pixelTotal, values.size());
}

TEST(RunMask, RunsFromBytesFollowTheClasses) {
  std::mt19937 rng(5);
  for (int trial = 0; trial < 200; ++trial) {
    int count = 1 + static_cast<int>(rng() % 700);
    std::vector<uint8_t> values = StretchyRow(rng, count);
    for (int threshold : {-1, 0, 1, 128, 255}) {
      RunRow row{};
      ASSERT_EQ(RunRowAddBytes(&row, values.data(), count, threshold, nullptr, 1000, false), 1);
      ExpectRunsDescribe(row, values, threshold, 1000);
      RunRowClear(&row);
    }
  }
}

TEST(RunMask, RunsFromBitsAtAnyStartingBit) {
  std::mt19937 rng(6);
  for (int trial = 0; trial < 200; ++trial) {
    int count = 1 + static_cast<int>(rng() % 500);
    int first = static_cast<int>(rng() % 24);
    std::vector<uint8_t> bits((first + count + 7) / 8 + 1);
    // Whole bytes of 0 and 255 (so the byte skips run) with noise between.
    for (auto& b : bits) b = rng() % 3 == 0 ? static_cast<uint8_t>(rng()) : rng() % 2 ? 0xFF : 0;
    std::vector<uint8_t> values(count);
    for (int i = 0; i < count; ++i)
      values[i] = ((bits[(first + i) >> 3] >> (7 - ((first + i) & 7))) & 1) ? 255 : 0;
    RunRow row{};
    ASSERT_EQ(RunRowAddBits(&row, bits.data(), first, count, false), 1);
    ExpectRunsDescribe(row, values, -1, 0);
    RunRowClear(&row);
  }
}

TEST(RunMask, AStretchStartingANewCellJoinsTheRunBeforeIt) {
  uint8_t left[6] = {0, 0, 255, 255, 255, 255};
  uint8_t right[4] = {255, 255, 0, 9};
  RunRow row{};
  RunRowAddBytes(&row, left, 6, -1, nullptr, 0, false);
  RunRowAddBytes(&row, right, 4, -1, nullptr, 0, true);
  ASSERT_EQ(row.runCount, 4);
  EXPECT_EQ(row.runs[1].kind, kRunFull);
  EXPECT_EQ(row.runs[1].length, 6);  // 4 + 2 across the cells
  EXPECT_EQ(row.pixelTotal, 10);
  // Partial runs never join: each reads its bytes through its own cell.
  uint8_t a[2] = {7, 7}, b[2] = {8, 8};
  RunRow partial{};
  RunRowAddBytes(&partial, a, 2, -1, nullptr, 0, false);
  RunRowAddBytes(&partial, b, 2, -1, nullptr, 50, true);
  ASSERT_EQ(partial.runCount, 2);
  EXPECT_EQ(partial.runs[1].offset, 50);
  // Without the request nothing joins.
  RunRow apart{};
  RunRowAddBytes(&apart, right, 2, -1, nullptr, 0, false);
  RunRowAddBytes(&apart, right, 2, -1, nullptr, 0, false);
  EXPECT_EQ(apart.runCount, 2);
  for (RunRow* r : {&row, &partial, &apart}) RunRowClear(r);
}

TEST(RunMask, LimitsOfARow) {
  EXPECT_EQ(RunMaskCreate(65536, 1), nullptr);
  EXPECT_EQ(RunMaskCreate(0, 1), nullptr);
  EXPECT_EQ(RunMaskCreate(5, 0), nullptr);
  RunMask* widest = RunMaskCreate(65535, 2);
  ASSERT_NE(widest, nullptr);
  ASSERT_EQ(RunMaskFill(widest, 255), 1);
  EXPECT_EQ(widest->rows[1].pixelTotal, 65535);
  EXPECT_EQ(RunRowAppend(&widest->rows[1], kRunClear, 1, nullptr, 0, false), 0);  // full
  RunMaskFree(widest);
  // Many runs: capacity grows 20 at a time.
  std::vector<uint8_t> alternating(1001);
  for (size_t i = 0; i < alternating.size(); ++i) alternating[i] = i % 2 ? 255 : 0;
  RunRow row{};
  ASSERT_EQ(RunRowAddBytes(&row, alternating.data(), 1001, -1, nullptr, 0, false), 1);
  EXPECT_EQ(row.runCount, 1001);
  EXPECT_EQ(row.runCapacity, 1020);
  RunRowClear(&row);
}

TEST(RunMask, PointTestsFillsAndCopies) {
  RunMask* mask = RunMaskCreate(10, 3);
  uint8_t row0[10] = {0, 0, 255, 255, 100, 100, 255, 0, 0, 255};
  RunRowAddBytes(&mask->rows[0], row0, 10, -1, nullptr, 0, false);
  for (int x = 0; x < 10; ++x) EXPECT_EQ(RunMaskContains(mask, x, 0), row0[x] == 255) << x;
  EXPECT_FALSE(RunMaskContains(mask, 10, 0));
  EXPECT_FALSE(RunMaskContains(mask, -1, 0));
  EXPECT_FALSE(RunMaskContains(mask, 2, 3));
  EXPECT_FALSE(RunMaskContains(mask, 2, 1));  // an empty row holds nothing

  RunMask* copy = RunMaskCopy(mask);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy->rows[0].runs, mask->rows[0].runs);
  RunMaskFill(copy, 0);
  EXPECT_TRUE(RunMaskContains(mask, 9, 0));  // the original keeps its runs
  EXPECT_FALSE(RunMaskContains(copy, 9, 0));
  EXPECT_EQ(copy->rows[2].runs[0].kind, kRunClear);
  RunMaskFill(copy, 90);
  EXPECT_EQ(copy->rows[1].runs[0].kind, kRunPartial);
  EXPECT_EQ(copy->rows[1].runs[0].cell, nullptr);
  EXPECT_EQ(copy->rows[1].runs[0].offset, 90);
  EXPECT_EQ(copy->rows[1].runCount, 1);
  RunMaskFill(copy, 255);
  EXPECT_TRUE(RunMaskContains(copy, 9, 2));
  RunMaskFree(copy);
  RunMaskFree(mask);
  EXPECT_EQ(RunMaskFill(nullptr, 1), 0);
  EXPECT_EQ(RunMaskCopy(nullptr), nullptr);
}

TEST(RunMask, AlphaRunsOfATiledMaskJoinAcrossCells) {
  AttachedCache cache(4096);
  Image* mask = ImageCreate(99, 600, 4, 0, 0, kStorageOptionTiled, nullptr, nullptr);
  ASSERT_EQ(mask->tileColumns, 3);
  std::vector<uint8_t> row(600, 255);
  for (int x = 100; x < 120; ++x) row[x] = static_cast<uint8_t>(x);  // partial inside cell 0
  for (int x = 250; x < 262; ++x) row[x] = 40;                       // partial across 0 and 1
  ImageWritePixels(mask, 0, 1, 600, 1, 600, row.data(), 0);
  ASSERT_EQ(ImageBuildAlphaRuns(mask), 1);
  const RunRow& runs = mask->alphaRuns->rows[1];
  // full, partial, full, partial (cell 0), partial (cell 1), full (to the end,
  // across cells 1 and 2).
  ASSERT_EQ(runs.runCount, 6);
  EXPECT_EQ(runs.runs[5].kind, kRunFull);
  EXPECT_EQ(runs.runs[5].length, 600 - 262);
  EXPECT_EQ(mask->alphaRuns->rows[0].runCount, 1);  // all clear, one run over three cells
  int x = 0;
  for (int r = 0; r < runs.runCount; ++r) {
    const fancy::Run& run = runs.runs[r];
    if (run.kind == kRunPartial) {
      ASSERT_NE(run.cell, nullptr);
      EXPECT_LE(run.cell->left, x);
      EXPECT_GE(run.cell->right, x + run.length - 1);
      EXPECT_EQ(run.cell->pixels[run.offset], row[x]);  // its first coverage byte
      EXPECT_EQ(run.cell->pixels[run.offset + run.length - 1], row[x + run.length - 1]);
    }
    x += run.length;
  }
  EXPECT_TRUE(testing::AllUnlocked(mask));
  ImageDestroy(mask);
  Image* grey = ImageCreate(5, 4, 4, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  EXPECT_EQ(ImageBuildAlphaRuns(grey), 0);
  ImageDestroy(grey);
}

}  // namespace
}  // namespace fancy
