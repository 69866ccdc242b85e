// Whole runs of Paint Brushka through the frame, as a host makes them: the
// rows asked for, the pictures made, progress, and what is left after a run.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "frame/block.h"
#include "frame/module_handle.h"
#include "frame/module_state.h"
#include "platform/clock.h"
#include "stroke/placement.h"
#include "stroke/stroke_engine.h"
#include "stroke_fixture.h"
#include "support/message_boxes.h"
#include "support/test_host.h"

namespace fancy {
namespace {

using testing::BrushBmp;
using testing::HostImage;
using testing::TestHost;

// The numbers of a style section.
struct StyleKeys {
  std::string brush = "brush.bmp";
  std::string brushParms = "346,40,7,0,0";  // layering, density, seed, jitter x, y
  std::string colorParms = "0,0,0,0,0";
  std::string sizeParms = "1142,60,0,0";
  std::string angleParms = "1142,30,0,0";
  std::string transParms = "1142,0,0,0";
  std::string background = "RGB255,0,0,255,USER";
  std::string extra;  // more lines of the section
};

class StrokeRunTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ModuleShutdown();
    BrushBmp soft;
    soft.width = 16;
    soft.height = 12;
    soft.value = [](int32_t x, int32_t y) {
      const int32_t d = (x - 8) * (x - 8) + (y - 6) * (y - 6) * 2;
      return static_cast<uint8_t>(d < 40 ? 255 - d * 5 : 0);
    };
    folder_.WritePlugin("brush.bmp", soft.Bytes());
    UseStyle(StyleKeys{});
  }
  void TearDown() override {
    ModuleShutdown();
    CrtTimeOverride(-1);
  }

  void UseStyle(const StyleKeys& k) {
    folder_.WriteStyleFile("[PresetList]\nCurrent=Test\n[Brushes]\nDir=.\n[Test]\nBrushName=" +
                           k.brush + "\nColorBackground=" + k.background +
                           "\nWriteable=1\nBrushParms=" + k.brushParms +
                           "\nColorParms=" + k.colorParms + "\nSizeParms=" + k.sizeParms +
                           "\nAngleParms=" + k.angleParms + "\nTransParms=" + k.transParms + "\n" +
                           k.extra);
  }

  // A whole run on a new host's picture of the given size and pattern.
  HostImage Paint(int32_t w, int32_t h, int16_t mode = kModeRGB, uint32_t pattern = 3) {
    TestHost host(kFilterBrushka, w, h, mode);
    host.FillPattern(pattern);
    EXPECT_EQ(host.Run(), 0);
    return host.image();
  }

  testing::StyleFolder folder_;
  testing::MessageBoxRecorder boxes_;
};

// Drives a run by hand and returns the rows asked for, in order.
std::vector<int16_t> RequestedRows(TestHost* host) {
  std::vector<int16_t> rows;
  EXPECT_EQ(host->Call(kSelectorParameters), 0);
  EXPECT_EQ(host->Call(kSelectorPrepare), 0);
  EXPECT_EQ(host->Call(kSelectorStart), 0);
  while (host->record().inRect.bottom != 0 && rows.size() < 10000) {
    rows.push_back(host->record().inRect.top);
    EXPECT_EQ(host->Call(kSelectorContinue), 0);
  }
  EXPECT_EQ(host->Call(kSelectorFinish), 0);
  return rows;
}

TEST_F(StrokeRunTest, FirstPassGoesStraightToTheAnchorRows) {
  // Density 1 on 100 x 100: S = 2.37, so 2 x 2 strokes at the quarter points.
  StyleKeys k;
  k.brushParms = "346,1,7,0,0";
  UseStyle(k);
  {
    TestHost host(kFilterBrushka, 100, 100, kModeRGB);
    const std::vector<int16_t> rows = RequestedRows(&host);
    // First pass: the first row, the two anchor rows, and the row after the
    // last, which ends it. Second pass: every row in turn.
    std::vector<int16_t> expected = {0, 25, 75, 76};
    for (int16_t r = 0; r < 100; ++r) expected.push_back(r);
    EXPECT_EQ(rows, expected);
  }
  // Inside a rectangle, the rectangle's quarter points.
  TestHost part(kFilterBrushka, 120, 130, kModeRGB);
  part.record().filterRect = Rect16{10, 20, 110, 120};
  const std::vector<int16_t> rows = RequestedRows(&part);
  ASSERT_GE(rows.size(), 4u);
  EXPECT_EQ(std::vector<int16_t>(rows.begin(), rows.begin() + 4),
            (std::vector<int16_t>{10, 35, 85, 86}));
}

TEST_F(StrokeRunTest, OneByOneRectangleStaysAsItIs) {
  StyleKeys k;
  k.brushParms = "346,100,7,0,0";
  k.sizeParms = "1142,100,0,0";
  UseStyle(k);
  TestHost host(kFilterBrushka, 9, 9, kModeRGB);
  host.record().filterRect = Rect16{4, 4, 5, 5};
  const HostImage before = host.image();
  ASSERT_EQ(host.Run(), 0);
  EXPECT_EQ(host.image(), before);
}

TEST_F(StrokeRunTest, SameStyleSeedAndRectangleGiveTheSamePicture) {
  StyleKeys k;
  k.brushParms = "345,60,11,100,100";
  k.colorParms = "0,0,20,20,20";
  k.sizeParms = "1143,20,90,10";
  k.angleParms = "1144,-90,90,20";
  k.transParms = "1145,0,40,30";
  UseStyle(k);
  for (int16_t mode : {kModeRGB, kModeGray}) {
    const HostImage first = Paint(61, 47, mode);
    EXPECT_EQ(Paint(61, 47, mode), first) << mode;
    EXPECT_NE(Paint(61, 47, mode, 4), first) << "painted from the source";
  }
  const HostImage eleven = Paint(61, 47);
  k.brushParms = "345,60,12,100,100";
  UseStyle(k);
  EXPECT_NE(Paint(61, 47), eleven) << "another seed, another picture";

  // Seed 13 seeds from the clock: the same second, the same picture.
  k.brushParms = "345,60,13,100,100";
  UseStyle(k);
  CrtTimeOverride(1'000'000);
  const HostImage first = Paint(50, 40);
  EXPECT_EQ(Paint(50, 40), first);
  CrtTimeOverride(1'000'001);
  EXPECT_NE(Paint(50, 40), first);
}

TEST_F(StrokeRunTest, LayeringsDifferAndNoLayeringKeepsTheLastOrder) {
  StyleKeys k;
  k.sizeParms = "1143,40,100,0";
  HostImage pictures[4];
  const char* layerings[4] = {"346", "0", "345", "0"};
  for (int i = 0; i < 4; ++i) {
    k.brushParms = std::string(layerings[i]) + ",80,5,100,100";
    UseStyle(k);
    pictures[i] = Paint(48, 40);
  }
  EXPECT_EQ(pictures[1], pictures[0]);
  EXPECT_NE(pictures[2], pictures[0]);
  EXPECT_EQ(pictures[3], pictures[2]);
  k.brushParms = "347,80,5,100,100";
  UseStyle(k);
  EXPECT_NE(Paint(48, 40), pictures[0]);
}

// A brush that cannot be used paints no stroke: the picture is what the
// background rule makes it, the source or the solid colour.
TEST_F(StrokeRunTest, UnusableBrushPaintsNoStroke) {
  BrushBmp deep;
  deep.bitCount = 24;
  BrushBmp cut;
  cut.cutBytes = 3;
  folder_.WritePlugin("deep.bmp", deep.Bytes());
  folder_.WritePlugin("cut.bmp", cut.Bytes());
  const int32_t blocks = BlockLiveCount();
  for (const char* brush : {"missing.bmp", "deep.bmp", "cut.bmp"}) {
    StyleKeys k;
    k.brush = brush;
    k.brushParms = "345,100,5,100,100";
    UseStyle(k);
    TestHost host(kFilterBrushka, 30, 20, kModeRGB);
    const HostImage before = host.image();
    EXPECT_EQ(host.Run(), 0) << brush;
    EXPECT_EQ(host.image(), before) << brush;
    // A solid background (blue, stored blue first) in a new record.
    k.colorParms = "0,1,0,0,0";
    UseStyle(k);
    ModuleHandleFree(host.record().parameters);
    host.record().parameters = nullptr;
    EXPECT_EQ(host.Run(), 0) << brush;
    HostImage blue = before;
    for (size_t i = 0; i < blue.pixels.size(); ++i) blue.pixels[i] = i % 3 == 0 ? 255 : 0;
    EXPECT_EQ(host.image(), blue) << brush;
  }
  EXPECT_EQ(BlockLiveCount(), blocks);
}

TEST_F(StrokeRunTest, ProgressRunsThroughThePhaseBar) {
  TestHost host(kFilterBrushka, 40, 30, kModeRGB);
  ASSERT_EQ(host.Run(), 0);
  std::vector<testing::ProgressCall> calls = host.progress();
  ASSERT_GE(calls.size(), 6u);
  EXPECT_EQ(calls[1], (testing::ProgressCall{0, 100})) << "stage 0 at the first continue";
  // Through both passes the bar only moves on, and ends at 100; the release
  // reports stage 3's start and then stage 4.
  size_t i = 2;
  for (; i < calls.size() && calls[i].done >= 0; ++i) {
    EXPECT_GE(calls[i].done, calls[i - 1].done) << i;
    EXPECT_GE(calls[i].done, 10);
  }
  ASSERT_GE(i, 4u);
  EXPECT_EQ(calls[i - 1], (testing::ProgressCall{100, 100}));
  EXPECT_LE(calls[i - 2].done, 95);
  calls.erase(calls.begin(), calls.begin() + static_cast<long>(i));
  EXPECT_EQ(calls, (std::vector<testing::ProgressCall>{{-3, 1}, {95, 100}, {-3, 100}}));
}

TEST_F(StrokeRunTest, ReleaseLeavesNothingBehindEvenAfterACancel) {
  StyleKeys k;
  k.brushParms = "345,100,5,100,100";
  UseStyle(k);
  TestHost host(kFilterBrushka, 40, 30, kModeRGB);
  host.FillPattern(3);
  ASSERT_EQ(host.Run(), 0);  // the parameters are the host's from now on
  const HostImage whole = host.image();
  const int32_t blocks = BlockLiveCount();
  // Cancelled in the middle of the second pass, with strokes open.
  host.FillPattern(3);
  host.SetAbort([](int32_t call) { return call == 40; });
  ASSERT_EQ(host.Run(), kErrUserCancelled);
  EXPECT_EQ(BlockLiveCount(), blocks);
  // The next run starts afresh and paints what an uncancelled one paints.
  host.SetAbort(nullptr);
  host.FillPattern(3);
  ASSERT_EQ(host.Run(), 0);
  EXPECT_EQ(host.image(), whole);
}

// Values that no dialog would make paint without a fault (the sanitizer
// build watches these runs); a table too large for memory fails with -108.
TEST_F(StrokeRunTest, ExtremeStyleValuesPaintWithoutFault) {
  const std::string max = "2147483647", min = "-2147483648";
  std::vector<StyleKeys> styles(4);
  styles[0].brushParms = "345,-5,1,100000,-100000";
  styles[1].brushParms = "347,100,999," + max + "," + min;
  styles[1].sizeParms = "1143,-1000,1000," + max;
  styles[1].angleParms = "1144," + min + "," + max + "," + max;
  styles[1].transParms = "1147," + max + "," + min + ",7";
  styles[1].colorParms = "7,9,100000,-100000," + max;
  styles[2].brushParms = "346,100,5,100,100";
  styles[2].sizeParms = "1144,100,100,100";
  styles[2].extra = "XDistVal=1e300\nYDistVal=-1e300\n";
  styles[3].brushParms = "345,100,5,300,300";
  styles[3].transParms = "1143,100,0,100";
  for (size_t i = 0; i < styles.size(); ++i) {
    UseStyle(styles[i]);
    TestHost host(kFilterBrushka, 37, 23, kModeRGB);
    EXPECT_EQ(host.Run(), 0) << i;
  }
  {
    // A brush path that fills its field with no terminator.
    UseStyle(StyleKeys{});
    TestHost host(kFilterBrushka, 20, 10, kModeRGB);
    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    auto* style = reinterpret_cast<StrokeRecord*>(host.effect());
    std::memset(style->brushPath, 'x', sizeof style->brushPath);
    EXPECT_EQ(host.Repeat(), 0);
  }
  StyleKeys huge;
  huge.brushParms = "345,2000000000,5,0,0";
  UseStyle(huge);
  TestHost host(kFilterBrushka, 300, 300, kModeRGB);
  const HostImage before = host.image();
  const int32_t blocks = BlockLiveCount();
  EXPECT_EQ(host.Run(), kErrOutOfMemory);
  EXPECT_EQ(host.image(), before);
  EXPECT_EQ(BlockLiveCount(), blocks);
}

Boolean AlwaysCancel() { return 1; }

// The engine run over a picture in memory, as the dialog's preview runs it,
// paints what the host's run paints, whatever the picture's row stride.
TEST_F(StrokeRunTest, PictureInMemoryIsPaintedAsTheHostPaintsIt) {
  StyleKeys k;
  k.brushParms = "345,70,9,100,100";
  k.sizeParms = "1143,30,100,5";
  UseStyle(k);
  constexpr int32_t kW = 45, kH = 33, kStride = kW * 3 + 5;
  TestHost host(kFilterBrushka, kW, kH, kModeRGB);
  std::vector<uint8_t> picture(static_cast<size_t>(kStride) * kH, 0xEE);
  auto row = [&](std::vector<uint8_t>& p, int32_t y) { return p.data() + static_cast<size_t>(y) * kStride; };
  for (int32_t y = 0; y < kH; ++y) std::memcpy(row(picture, y), &host.image().pixels[y * kW * 3], kW * 3);
  const std::vector<uint8_t> source = picture;
  ASSERT_EQ(host.Run(), 0);
  auto* style = reinterpret_cast<StrokeRecord*>(host.effect());

  FilterRecord record{};
  record.filterRect = Rect16{1, 2, 3, 4};
  const int32_t blocks = BlockLiveCount();
  ASSERT_EQ(StrokePaintPicture(&record, style, picture.data(), kW, kH, kStride), 0);
  std::vector<uint8_t> expected = source;
  for (int32_t y = 0; y < kH; ++y) std::memcpy(row(expected, y), &host.image().pixels[y * kW * 3], kW * 3);
  EXPECT_EQ(picture, expected);
  EXPECT_EQ(record.filterRect.bottom, 3) << "the record comes back as it was";
  EXPECT_EQ(record.inData, nullptr);
  EXPECT_EQ(BlockLiveCount(), blocks);

  // Cancelled after its first step, the run stops with -128 and frees all.
  picture = source;
  record.abortProc = AlwaysCancel;
  EXPECT_EQ(StrokePaintPicture(&record, style, picture.data(), kW, kH, kStride), kErrUserCancelled);
  EXPECT_EQ(picture, source);
  EXPECT_EQ(BlockLiveCount(), blocks);
}

}  // namespace
}  // namespace fancy
