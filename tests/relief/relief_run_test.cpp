// Glass and The Knurl run through the frame on a test host: what stays,
// what moves, which way the light falls, and the ways out of a run.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "config/strings.h"
#include "frame/module_state.h"
#include "frame/presets.h"
#include "frame/result_codes.h"
#include "relief/relief_memory.h"
#include "relief/relief_styles.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/test_host.h"

namespace fancy {
namespace {

using testing::HostImage;
using testing::TestHost;

class ReliefRunTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetPresetFilePath();
    ModuleShutdown();
  }
  void TearDown() override {
    SetReliefMemoryLimit(-1);
    EXPECT_EQ(ReliefMemoryInUse(), 0) << "a run keeps nothing";
    ResetPresetFilePath();
    ModuleShutdown();
  }
  testing::ConfigFolder config_;
  testing::MessageBoxRecorder boxes_;
};

ReliefParams& Params(TestHost& host) {
  return reinterpret_cast<ReliefRecord*>(host.effect())->params;
}

void DrawDisc(TestHost& host, double cx, double cy, double r) {
  host.SetMask(0);
  HostImage& mask = host.mask();
  for (int32_t y = 0; y < mask.height; ++y)
    for (int32_t x = 0; x < mask.width; ++x)
      mask.at(x, y, 0) = std::hypot(x - cx, y - cy) < r ? 255 : 0;
}

void Fill(TestHost& host, uint8_t value) {
  std::fill(host.image().pixels.begin(), host.image().pixels.end(), value);
}

// The dialog step with its defaults, then the settings edited as a dialog
// would, then the run.
int16_t RunWith(TestHost& host, const std::function<void(ReliefParams&)>& edit) {
  int16_t opened = host.Call(kSelectorParameters);
  if (opened != kNoError) return opened;
  edit(Params(host));
  return host.Repeat();
}

// The names of the built-in styles, from the string table.
std::vector<std::string> BuiltinStyles(int32_t filterId) {
  const ReliefStyleFile file = ReliefStyleFileOf(filterId);
  std::vector<std::string> names;
  for (int32_t i = 0; i < file.builtinCount; ++i) {
    std::string text = FindString(file.firstBuiltin + static_cast<uint32_t>(i));
    names.push_back(text.substr(0, text.rfind('=')));
  }
  return names;
}

TEST_F(ReliefRunTest, EveryBuiltinStyleRunsAndLeavesPixelsFarFromTheMaskAlone) {
  const int16_t modes[] = {kModeRGB, kModeGray, kModeCMYK};
  int32_t run = 0;
  for (int32_t id : {kFilterGlass, kFilterKnurl}) {
    for (const std::string& style : BuiltinStyles(id)) {
      const int16_t mode = modes[run++ % 3];
      SCOPED_TRACE(::testing::Message() << id << " \"" << style << "\" mode " << mode);
      TestHost host(id, 512, 512, mode);
      host.FillPattern(static_cast<uint32_t>(run));
      DrawDisc(host, 256, 256, 70);
      const HostImage before = host.image();
      ReliefDialogScript().style = style;
      ASSERT_EQ(host.Run(), kNoError);
      EXPECT_EQ(std::string(Params(host).presetName), style);
      EXPECT_EQ(host.dataSlot(), 0);

      const int32_t bevel = Params(host).bevelWidth;
      const double far = 70 + 3 * bevel + 24;
      int32_t changedNear = 0;
      for (int32_t y = 0; y < 512; ++y)
        for (int32_t x = 0; x < 512; ++x)
          for (int32_t p = 0; p < before.planes; ++p) {
            const int32_t a = before.at(x, y, p), b = host.image().at(x, y, p);
            if (std::hypot(x - 256, y - 256) < 70 + bevel) {
              changedNear += a != b;
              continue;
            }
            if (std::hypot(x - 256, y - 256) < far) continue;
            // The faint tail of a Gaussian is not quite 0, and the blur's
            // zero ends tilt it at the picture's edge: The Knurl moves a
            // step there, Glass samples a 64th of a pixel off on each axis
            // (127/4096 of a neighbour's difference, and a step of rounding).
            const bool edge = x < 16 || y < 16 || x >= 496 || y >= 496;
            ASSERT_LE(std::abs(a - b), edge ? 9 : 0) << x << "," << y << " plane " << p;
          }
      EXPECT_GT(changedNear, 500);
    }
  }
}

TEST_F(ReliefRunTest, GlassWithoutRefractionMovesNoPixel) {
  // Two pictures that differ in one pixel on the slope round a disc: without
  // refraction only that pixel's result differs; with it, its neighbours see it.
  auto differences = [&](int16_t refraction) {
    std::vector<HostImage> results;
    for (uint8_t mark : {0, 255}) {
      TestHost host(kFilterGlass, 96, 96, kModeRGB);
      host.FillPattern(3);
      DrawDisc(host, 48, 48, 25);
      for (int32_t p = 0; p < 3; ++p) host.image().at(48, 17, p) = mark;
      EXPECT_EQ(RunWith(host, [&](ReliefParams& q) { q.refraction = refraction; }), kNoError);
      results.push_back(host.image());
    }
    int32_t count = 0;
    for (int32_t y = 0; y < 96; ++y)
      for (int32_t x = 0; x < 96; ++x)
        if (!(x == 48 && y == 17))
          for (int32_t p = 0; p < 3; ++p) count += results[0].at(x, y, p) != results[1].at(x, y, p);
    return count;
  };
  EXPECT_EQ(differences(0), 0);
  EXPECT_GT(differences(70), 0);
}

TEST_F(ReliefRunTest, GlassTintFollowsTheColourAndOpacity) {
  auto glass = [&](int16_t colour, int16_t opacity) {
    TestHost host(kFilterGlass, 80, 80, kModeRGB);
    Fill(host, 200);
    DrawDisc(host, 40, 40, 22);
    const uint8_t red[4] = {255, 0, 0, 0}, green[4] = {0, 255, 0, 0};
    std::memcpy(host.record().foreColor, red, 4);
    std::memcpy(host.record().backColor, green, 4);
    EXPECT_EQ(RunWith(host, [&](ReliefParams& q) { q.colour = colour, q.opacity = opacity; }),
              kNoError);
    return host.image();
  };
  // Without opacity the glass absorbs nothing, so its colour cannot show.
  const HostImage clear = glass(kGlassTintLeaded, 0);
  EXPECT_EQ(glass(kGlassTintPaint, 0), clear);
  EXPECT_EQ(glass(kGlassTintPaper, 0), clear);
  // With it, the host's red foreground reddens the middle: the host's pixels
  // are blue first, so red is the last byte.
  const HostImage paint = glass(kGlassTintPaint, 80);
  EXPECT_GT(paint.at(40, 40, 2), paint.at(40, 40, 0) + 40);
  const HostImage paper = glass(kGlassTintPaper, 80);
  EXPECT_GT(paper.at(40, 40, 1), paper.at(40, 40, 2) + 40);
}

TEST_F(ReliefRunTest, KnurlIsLitFromTheBearingOfItsDirection) {
  // Mean of the slopes round a raised disc, in a sector of bearings.
  auto slopes = [](const HostImage& image, double bearing) {
    double sum = 0;
    int32_t count = 0;
    for (int32_t y = 0; y < image.height; ++y)
      for (int32_t x = 0; x < image.width; ++x) {
        const double r = std::hypot(x - 64, y - 64);
        double a = std::atan2(-(y - 64.0), x - 64.0) * 180 / std::acos(-1.0);
        double off = std::fmod(std::fabs(a - bearing) + 360, 360);
        off = std::min(off, 360 - off);
        if (r < 32 || r > 44 || off > 25) continue;
        sum += image.at(x, y, 1);
        ++count;
      }
    return sum / count;
  };
  for (int16_t direction : {135, 315}) {
    TestHost host(kFilterKnurl, 128, 128, kModeRGB);
    Fill(host, 150);
    DrawDisc(host, 64, 64, 30);
    ASSERT_EQ(RunWith(host, [&](ReliefParams& q) { q.direction = direction, q.angle = 45; }),
              kNoError);
    const double lit = slopes(host.image(), direction);
    const double shaded = slopes(host.image(), direction + 180);
    EXPECT_GT(lit, shaded + 20) << "direction " << direction;
    EXPECT_EQ(host.image().at(64, 64, 0), 150) << "the flat top is left alone";
  }
}

TEST_F(ReliefRunTest, CancelFreesEverythingAndLeavesThePicture) {
  for (int32_t id : {kFilterGlass, kFilterKnurl}) {
    // 100 x 80 RGB is one band. Steps: 80 mask rows, 80 distance rows,
    // 40 + 50 in the blur (smoothness 3 in both Defaults), 80 band rows.
    TestHost host(id, 100, 80, kModeRGB);
    DrawDisc(host, 50, 40, 20);
    const HostImage before = host.image();
    ASSERT_EQ(host.Run(), kNoError);
    ASSERT_GE(host.progress().size(), 3u);
    const testing::ProgressCall last = host.progress()[host.progress().size() - 2];
    EXPECT_EQ(last, (testing::ProgressCall{330, 330})) << "the bar ends full";
    for (int32_t stop : {1, 85, 170, 220, 260, 330}) {
      SCOPED_TRACE(::testing::Message() << id << " stop at " << stop);
      host.image() = before;
      ASSERT_EQ(host.Call(kSelectorParameters), kNoError);
      host.ClearLog();
      host.SetAbort([stop](int32_t call) { return call == stop; });
      EXPECT_EQ(host.Repeat(), kErrUserCancelled);
      host.SetAbort(nullptr);
      EXPECT_EQ(ReliefMemoryInUse(), 0);
      EXPECT_EQ(host.dataSlot(), 0);
      EXPECT_EQ(host.image(), before) << "nothing was handed back";
    }
  }
}

TEST_F(ReliefRunTest, ShortMemoryAndFloatingSelectionsChangeNothing) {
  TestHost host(kFilterKnurl, 100, 80, kModeGray);
  DrawDisc(host, 50, 40, 20);
  const HostImage before = host.image();
  ASSERT_EQ(host.Call(kSelectorParameters), kNoError);
  ASSERT_EQ(host.Call(kSelectorFinish), kNoError);
  // Short at the mask, the field, the drop-off tables and the blur's lines.
  for (int64_t room : {0, 9000, 41500, 43500}) {
    SetReliefMemoryLimit(room);
    EXPECT_EQ(host.Repeat(), kErrOutOfMemory) << room;
    EXPECT_EQ(ReliefMemoryInUse(), 0);
    EXPECT_EQ(host.image(), before);
  }
  SetReliefMemoryLimit(-1);

  host.record().isFloating = 1;
  EXPECT_EQ(host.Repeat(), kErrFilterFailure);
  EXPECT_EQ(host.image(), before);
  host.record().isFloating = 0;

  // A record from elsewhere may hold anything; the run holds it to range.
  ASSERT_EQ(host.Call(kSelectorParameters), kNoError);
  ReliefParams& p = Params(host);
  p.bevelWidth = -7, p.smoothness = 300, p.height = 32000, p.brightness = -1;
  p.sharpness = 999, p.direction = -720, p.angle = 500, p.dropOff = -3;
  EXPECT_EQ(host.Repeat(), kNoError);
}

TEST_F(ReliefRunTest, GlassNeedsTwoByTwoPixels) {
  for (auto [id, w, h, result] : {std::tuple{kFilterGlass, 1, 5, kErrImageTooSmallRelief},
                                  std::tuple{kFilterGlass, 5, 1, kErrImageTooSmallRelief},
                                  std::tuple{kFilterGlass, 2, 2, kNoError},
                                  std::tuple{kFilterKnurl, 1, 5, kNoError}}) {
    TestHost host(id, w, h, kModeCMYK);
    host.SetMask();
    EXPECT_EQ(host.Run(), result) << id << " " << w << "x" << h;
  }
}

}  // namespace
}  // namespace fancy
