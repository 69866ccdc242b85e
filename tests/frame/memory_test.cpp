// The frame's arithmetic and allocators: blocks, ModuleHandle, the memory
// plan and the phase bar.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "frame/block.h"
#include "frame/memory_plan.h"
#include "frame/module_handle.h"
#include "frame/phase_bar.h"
#include "frame/result_codes.h"

namespace fancy {
namespace {

TEST(AllocatorTest, BlocksAreZeroedAndHandlesKeepTheirLastError) {
  int32_t live = BlockLiveCount();
  EXPECT_EQ(BlockAlloc(-1), nullptr);
  void* empty = BlockAlloc(0);
  EXPECT_NE(empty, nullptr);
  BlockFree(empty);
  BlockFree(nullptr);

  ModuleHandle handle = ModuleHandleAlloc(4096);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(ModuleHandleLastError(), 0);
  EXPECT_EQ(std::memcmp(reinterpret_cast<const ModuleHandleHeader*>(handle)->tag, "HNDL", 4), 0);
  const auto* data = static_cast<const uint8_t*>(ModuleHandleData(handle));
  ASSERT_EQ(data, reinterpret_cast<uint8_t*>(*handle));
  for (int i = 0; i < 4096; ++i) ASSERT_EQ(data[i], 0);

  ModuleHandleFree(nullptr);
  EXPECT_EQ(static_cast<uint16_t>(ModuleHandleLastError()), 65427);  // -109
  ModuleHandleFree(handle);
  EXPECT_EQ(ModuleHandleLastError(), 0) << "every call clears the word first";
  ModuleHandleFree(nullptr);
  EXPECT_EQ(ModuleHandleAlloc(-5), nullptr);
  EXPECT_EQ(ModuleHandleLastError(), 0) << "a negative size is no error";
  EXPECT_EQ(BlockLiveCount(), live);
}

class MemoryPlanTest : public ::testing::Test {
 protected:
  static int64_t gFree;
  void SetUp() override {
    SetFreeBlockProbe([] { return gFree; });
    record_.imageMode = kModeRGB;
  }
  void TearDown() override { SetFreeBlockProbe(nullptr); }
  void Area(int16_t width, int16_t height) { record_.filterRect = Rect16{0, 0, height, width}; }
  int32_t Plan() {
    record_.bufferSpace = -1;
    EXPECT_EQ(MemoryPlan(&record_), 0);
    return record_.bufferSpace;
  }
  FilterRecord record_{};
};
int64_t MemoryPlanTest::gFree = 0;

TEST_F(MemoryPlanTest, SpaceReserveAndTheFloor) {
  // Space is the larger of maxSpace and 85 % of free memory; one row of the
  // area is taken off, and a reserve of an eighth above 1 MB, at most the
  // whole area.
  Area(10, 10);
  gFree = 100'000'000;
  record_.maxSpace = 0;
  EXPECT_EQ(Plan(), 85'000'000 - 30 - 300);
  record_.maxSpace = 200'000'000;
  EXPECT_EQ(Plan(), 200'000'000 - 30 - 300);
  gFree = 0;
  record_.maxSpace = 9'437'184;  // an eighth of 9 MB - 1 MB is 1 MB
  Area(1000, 1000);
  EXPECT_EQ(Plan(), 9'437'184 - 3000 - 1'048'576);

  // A tiny image and little memory: the floor, even above what exists.
  Area(4, 4);
  gFree = 1'000'000;
  record_.maxSpace = 0;
  EXPECT_EQ(Plan(), 2459776);
  gFree = 0;
  record_.maxSpace = -50;
  EXPECT_EQ(Plan(), 2459776);
}

TEST_F(MemoryPlanTest, BytesPerPixelFollowTheModeAndFiguresStayIn32Bits) {
  gFree = 0;
  record_.maxSpace = 10'000'000;
  Area(100, 50);
  struct Case {
    int16_t mode;
    int64_t pixelBytes;
  };
  // Indexed (2) and the other modes count as many bytes as their number.
  for (Case c : {Case{kModeGray, 1}, Case{kModeIndexed, 2}, Case{kModeRGB, 3}, Case{kModeCMYK, 4},
                 Case{10, 4}, Case{kModeLab, 9}}) {
    record_.imageMode = c.mode;
    EXPECT_EQ(Plan(), 10'000'000 - c.pixelBytes * 100 - c.pixelBytes * 100 * 50) << c.mode;
  }

  gFree = int64_t{64} << 30;  // more than a 32-bit system can report
  record_.maxSpace = 0;
  Area(32767, 32767);
  record_.imageMode = kModeLab;
  int64_t space = static_cast<int64_t>(0.85 * 0x7FFFFFFF);
  EXPECT_EQ(Plan(), space - 9 * 32767 - (space - 0x100000) / 8);
}

TEST(SystemFreeBlockTest, ReportsSomethingPlausible) {
  SetFreeBlockProbe(nullptr);
  int64_t free = LargestFreeBlock();
  EXPECT_GT(free, 0);
  EXPECT_LE(free, 0x7FFFFFFF);
}

std::vector<std::pair<int32_t, int32_t>> gReports;
void Record(int32_t done, int32_t total) { gReports.emplace_back(done, total); }

TEST(PhaseBarTest, StagesCoverTheirShareOfTheBar) {
  FilterRecord record{};
  record.progressProc = &Record;
  gReports.clear();
  PhaseBarReport(&record, 0, 0, 1);
  PhaseBarReport(&record, 1, 5, 10);
  PhaseBarReport(&record, 2, 1, 3);  // 40 + 55/3 = 58.33
  PhaseBarReport(&record, 3, 1, 1);
  PhaseBarReport(&record, 4, 7, 9);
  using Reports = std::vector<std::pair<int32_t, int32_t>>;
  EXPECT_EQ(gReports, (Reports{{0, 100}, {25, 100}, {58, 100}, {100, 100}, {-3, 100}}));

  // Within a stage the bar only moves forward and stays inside the stage.
  for (int32_t stage = 0; stage < 4; ++stage) {
    gReports.clear();
    const int32_t rows = 37;
    for (int32_t row = 0; row <= rows; ++row) PhaseBarReport(&record, stage, row, rows);
    ASSERT_EQ(gReports.size(), static_cast<size_t>(rows + 1));
    EXPECT_EQ(gReports.front().first, kPhaseBarStops[stage]);
    EXPECT_EQ(gReports.back().first, kPhaseBarStops[stage + 1]);
    for (size_t i = 1; i < gReports.size(); ++i) EXPECT_GE(gReports[i].first, gReports[i - 1].first);
  }

  // Stages outside 0..4 and a host without progressProc report nothing.
  gReports.clear();
  PhaseBarReport(&record, -1, 0, 1);
  PhaseBarReport(&record, 5, 0, 1);
  PhaseBarReport(&record, 1, 3, 0);  // no count: the stage's start
  EXPECT_EQ(gReports, (Reports{{10, 100}}));
  record.progressProc = nullptr;
  PhaseBarReport(&record, 1, 1, 2);
  PhaseBarReport(nullptr, 1, 1, 2);
  EXPECT_EQ(gReports.size(), 1u);
}

}  // namespace
}  // namespace fancy
