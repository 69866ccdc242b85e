// The tile run through the frame, as a host drives it: the picture that
// comes out, opacity, the three image modes, pan, cancel, the size test,
// memory failures and the loaded source.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>

#include "colour/clr_pixels.h"
#include "frame/module_state.h"
#include "frame/result_codes.h"
#include "support/bmp_bytes.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/test_host.h"
#include "tile/symmetry.h"
#include "tile/tile_record.h"
#include "tile/tile_run.h"
#include "tile/tile_state.h"
#include "tile/tile_work.h"

namespace fancy {
namespace {

using testing::BmpSpec;
using testing::HostImage;
using testing::MakeBmp;
using testing::MessageBoxRecorder;
using testing::TestHost;

class TileRun : public ::testing::Test {
 protected:
  void SetUp() override { ModuleShutdown(); }
  void TearDown() override {
    SetTileWorkLimit(0);
    ModuleShutdown();
  }

  // Selector 1 makes the record as a dialog closed with OK leaves it; edit
  // then changes it before the rest of the run.
  template <class Edit>
  int16_t RunWith(TestHost& host, Edit edit) {
    const int16_t opened = host.Call(kSelectorParameters);
    if (opened != kNoError) return opened;
    edit(*reinterpret_cast<TileRecord*>(host.effect()));
    return host.Repeat();
  }
  int16_t RunPlain(TestHost& host) {
    return RunWith(host, [](TileRecord&) {});
  }

  testing::ConfigFolder config_;
  MessageBoxRecorder boxes_;
};

bool SamePixel(const HostImage& a, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
  for (int32_t p = 0; p < a.planes; ++p)
    if (a.at(x0, y0, p) != a.at(x1, y1, p)) return false;
  return true;
}

// The picture repeats with period (px, py); along the second, each band of
// rows is moved right by shift.
bool Repeats(const HostImage& image, int32_t px, int32_t py, int32_t shift = 0) {
  for (int32_t y = 0; y < image.height; ++y)
    for (int32_t x = 0; x < image.width; ++x) {
      if (x + px < image.width && !SamePixel(image, x, y, x + px, y)) return false;
      const int32_t xs = x + shift;
      if (y + py < image.height && xs < image.width && !SamePixel(image, x, y, xs, y + py))
        return false;
    }
  return true;
}

// A pixel's planes packed into one number, for sets of colours.
uint32_t Key(const HostImage& image, int32_t x, int32_t y) {
  uint32_t key = 0;
  for (int32_t p = 0; p < image.planes; ++p) key = key << 8 | image.at(x, y, p);
  return key;
}

// The P4 tile of the default cell: a square of a third of the shorter side,
// turned four times.
int32_t DefaultP4Period(int32_t w, int32_t h) { return 2 * std::min(w / 3, h / 3); }

TEST_F(TileRun, NormalAtFullOpacityLaysTheWallpaperOverEveryPixelInEachMode) {
  for (int16_t mode : {kModeGray, kModeRGB, kModeCMYK}) {
    SCOPED_TRACE(mode);
    TestHost host(kFilterTessaris, 131, 97, mode);
    const HostImage before = host.image();
    ASSERT_EQ(RunPlain(host), kNoError);
    const int32_t t = DefaultP4Period(131, 97);
    EXPECT_TRUE(Repeats(host.image(), t, t));
    EXPECT_FALSE(Repeats(before, t, t));
    // Every pixel is a copy of a pixel of the cell's square (side t / 2,
    // centred): the image's own pixels are all replaced.
    std::set<uint32_t> cell;
    const int32_t side = t / 2, left = 131 / 2 - side / 2, top = 97 / 2 - side / 2;
    for (int32_t y = top; y < top + side; ++y)
      for (int32_t x = left; x < left + side; ++x) cell.insert(Key(before, x, y));
    for (int32_t y = 0; y < 97; ++y)
      for (int32_t x = 0; x < 131; ++x)
        ASSERT_TRUE(cell.count(Key(host.image(), x, y))) << x << "," << y;
    // With no pan the mother cell shows where it was cut, the right way up.
    for (int32_t y = top; y < top + side; ++y)
      for (int32_t x = left; x < left + side; ++x)
        for (int32_t p = 0; p < before.planes; ++p)
          ASSERT_EQ(host.image().at(x, y, p), before.at(x, y, p)) << x << "," << y;
  }
}

// Normal at opacity 0 gives the image the weight 255 of 256: a pixel above
// the tile's may come out one level lower, never more, and one at or below
// it comes out unchanged.
TEST_F(TileRun, OpacityZeroLeavesTheImageAlthoughEveryRowIsMerged) {
  TestHost host(kFilterTessaris, 90, 70, kModeRGB);
  const HostImage before = host.image();
  ASSERT_EQ(RunWith(host, [](TileRecord& r) { r.opacity = 0; }), kNoError);
  for (size_t i = 0; i < before.pixels.size(); ++i) {
    const int d = before.pixels[i] - host.image().pixels[i];
    ASSERT_TRUE(d == 0 || d == 1) << i;
  }
  // One continue makes the tile, then one a row; each merged row reports.
  EXPECT_EQ(host.continueCalls(), 1 + 70);
  int32_t merged = 0;
  for (const auto& call : host.progress())
    if (call.total > 70 && call.done >= call.total - 70) ++merged;
  EXPECT_EQ(merged, 70);
  EXPECT_EQ(host.progress()[host.progress().size() - 2].done,
            host.progress()[host.progress().size() - 2].total - 1)
      << "the last merged row is the last of the total";

}

// A pan moves the wallpaper by its amount; a pan of a whole tile, or of a
// negative amount short of it, lands where the remainder does.
TEST_F(TileRun, PanMovesTheWallpaperAndWrapsEitherWay) {
  const int32_t w = 150, h = 120, t = DefaultP4Period(w, h);
  auto runWithPan = [&](int32_t dx, int32_t dy) {
    TestHost host(kFilterTessaris, w, h, kModeRGB);
    // Half a pixel further from zero, so that truncation lands on the pixel.
    EXPECT_EQ(RunWith(host,
                      [&](TileRecord& r) {
                        r.panFractionX = (dx + (dx < 0 ? -0.5 : 0.5)) / w;
                        r.panFractionY = (dy + (dy < 0 ? -0.5 : 0.5)) / h;
                      }),
              kNoError);
    return host.image();
  };
  const HostImage still = runWithPan(0, 0);
  const HostImage moved = runWithPan(7, 3);
  for (int32_t y = 0; y + 3 < h; ++y)
    for (int32_t x = 0; x + 7 < w; ++x)
      for (int32_t p = 0; p < 3; ++p) ASSERT_EQ(moved.at(x + 7, y + 3, p), still.at(x, y, p));
  EXPECT_EQ(runWithPan(7 - t, 3 - 2 * t), moved);
  EXPECT_EQ(runWithPan(7 + 3 * t, 3 + t), moved);
  EXPECT_EQ(runWithPan(-5, 0).pixels, runWithPan(t - 5, 0).pixels);
}

TEST_F(TileRun, FeatherIsIgnoredByTheMirroredGroupsAndBlendsTheOthers) {
  auto run = [&](int32_t group, int32_t feather) {
    TestHost host(kFilterTessaris, 120, 100, kModeRGB);
    EXPECT_EQ(RunWith(host,
                      [&](TileRecord& r) {
                        r.groupId = group;
                        r.featherPercent = feather;
                      }),
              kNoError);
    return host.image();
  };
  for (int32_t group : {kGroupPmm, kGroupP4m, kGroupP3m1, kGroupP6m})
    EXPECT_EQ(run(group, 80), run(group, 0)) << group;
  const int32_t t = DefaultP4Period(120, 100);
  const HostImage soft = run(kGroupP4, 80);
  EXPECT_NE(soft, run(kGroupP4, 0));
  EXPECT_TRUE(Repeats(soft, t, t)) << "a feathered cell still makes a wallpaper";
}

TEST_F(TileRun, CancelDuringTheTileWritesNothingAndStoresThePan) {
  TestHost host(kFilterTessaris, 100, 80, kModeRGB);
  ASSERT_EQ(RunPlain(host), kNoError);  // the host now keeps the record
  host.FillPattern(9);
  const HostImage before = host.image();
  auto* record = reinterpret_cast<TileRecord*>(host.effect());
  record->panFractionX = -0.27;
  record->panFractionY = 0.61;
  record->opacity = 40;
  host.SetAbort([](int32_t call) { return call == 3; });  // during the cell's rows
  host.ClearLog();
  EXPECT_EQ(host.Repeat(), kErrUserCancelled);
  EXPECT_EQ(gTileState.errorCode, kTileErrorCancelled);
  EXPECT_EQ(host.image(), before);
  EXPECT_EQ(host.continueCalls(), 1) << "the run ends at once";
  EXPECT_EQ(host.calls().back().selector, kSelectorFinish);
  EXPECT_EQ(gTileState.userAborted, 0) << "cleared by the finish";
  EXPECT_FALSE(TileHasTile());
  record = reinterpret_cast<TileRecord*>(host.effect());
  EXPECT_EQ(record->panX, int32_t(std::trunc(100 * -0.27)));
  EXPECT_EQ(record->panY, int32_t(std::trunc(80 * 0.61)));
  EXPECT_DOUBLE_EQ(record->panFractionX, record->panX / 100.0);
  EXPECT_EQ(record->opacity, 40);

  // Abort while merging: the run stops with -128 at that row.
  host.SetAbort([](int32_t call) { return call > 40; });
  host.ClearLog();
  EXPECT_EQ(host.Repeat(), kErrUserCancelled);
  EXPECT_LT(host.continueCalls(), 80);
}

TEST_F(TileRun, OutOfMemoryFailsCleanlyAndBadRecordsAreRefused) {
  {
    TestHost host(kFilterTessaris, 120, 90, kModeRGB);
    const HostImage before = host.image();
    SetTileWorkLimit(1000);  // less than the tile
    EXPECT_EQ(host.Run(), kErrOutOfMemory);
    EXPECT_EQ(host.image(), before);
    EXPECT_FALSE(TileHasTile());
    SetTileWorkLimit(0);
  }
  for (auto damage : {+[](TileRecord& r) { r.groupId = 18; }, +[](TileRecord& r) { r.mode = 0; },
                      +[](TileRecord& r) { r.cellFracLeft = std::nan(""); },
                      +[](TileRecord& r) { r.panFractionY = 1e300; },
                      +[](TileRecord& r) { r.sourceKind = 3; }}) {
    TestHost damaged(kFilterTessaris, 120, 90, kModeRGB);
    const HostImage before = damaged.image();
    EXPECT_EQ(RunWith(damaged, damage), kErrFilterFailure);
    EXPECT_EQ(damaged.image(), before);
  }
  // An image mode the effect cannot work in is refused at the start.
  {
    TestHost lab(kFilterTessaris, 80, 80, kModeLab);
    lab.record().planes = 3;
    lab.image().planes = 3;
    lab.image().pixels.assign(80 * 80 * 3, 50);
    EXPECT_EQ(lab.Run(), kErrBadImageMode);
    EXPECT_EQ(gTileState.errorCode, kTileErrorBadMode);
  }
  // Every group and mode runs on a small picture, in every image mode.
  for (int16_t mode : {kModeGray, kModeRGB, kModeCMYK})
    for (int32_t group = kGroupFirst; group <= kGroupLast; ++group) {
      TestHost any(kFilterTessaris, 64, 52, mode);
      ASSERT_EQ(RunWith(any,
                        [&](TileRecord& r) {
                          r.groupId = group;
                          r.mode = 1 + group % 9;
                          r.featherPercent = 100;
                          r.opacity = 70;
                        }),
                kNoError)
          << "group " << group << ", mode " << mode;
    }
}

// A BMP source: the wallpaper is made of its pixels. Each palette entry is
// a colour the image does not have, so the output tells where it came from.
TEST_F(TileRun, LoadedBmpSourceOfEveryFormMakesTheTile) {
  struct Form {
    int32_t bits;
    bool core;
  };
  for (Form form : {Form{24, false}, Form{24, true}, Form{8, false}, Form{8, true},
                    Form{4, false}, Form{1, false}}) {
    SCOPED_TRACE(::testing::Message() << form.bits << " bits, core " << form.core);
    BmpSpec spec;
    spec.width = 210, spec.height = 170, spec.bits = form.bits, spec.coreHeader = form.core;
    std::set<uint32_t> colours;  // as the host holds them: blue first
    const int32_t entries = form.bits == 24 ? 7 : (1 << std::min(form.bits, 4));
    for (int32_t i = 0; i < entries; ++i) {
      const std::array<uint8_t, 3> c = {uint8_t(3 + i * 31), uint8_t(200 - i * 13),
                                        uint8_t(77 + i * 5)};
      spec.palette.push_back(c);
      colours.insert(form.bits == 1 ? (i ? 0xFFFFFFu : 0u)
                                    : uint32_t(c[0]) << 16 | uint32_t(c[1]) << 8 | c[2]);
    }
    for (int32_t y = 0; y < spec.height; ++y)
      for (int32_t x = 0; x < spec.width; ++x) {
        const int32_t i = (x / 3 + y / 5) % entries;
        const auto& c = spec.palette[size_t(i)];
        spec.pixels.push_back(form.bits == 24 ? uint32_t(c[0] | c[1] << 8 | c[2] << 16)
                                              : uint32_t(i));
      }
    const std::string path = config_.temp().Write("source.bmp", MakeBmp(spec));

    TestHost host(kFilterTessaris, 150, 120, kModeRGB);
    host.FillPattern(4);
    ASSERT_EQ(host.Call(kSelectorParameters), kNoError);
    auto* record = reinterpret_cast<TileRecord*>(host.effect());
    record->sourceKind = kTileSourceFile;
    std::snprintf(record->sourcePath, sizeof record->sourcePath, "%s", path.c_str());
    ASSERT_EQ(host.Call(kSelectorFinish), kNoError);
    // The next run loads it, crops it to the image's size, and cuts its cell.
    ASSERT_EQ(host.Run(), kNoError);
    record = reinterpret_cast<TileRecord*>(host.effect());
    EXPECT_EQ(record->loadedWidth, 210);
    EXPECT_EQ(record->cropLeft, 30);
    EXPECT_EQ(record->cropRight, 180);
    EXPECT_EQ(record->cropTop, 25);
    EXPECT_EQ(record->cropBottom, 145);
    for (int32_t y = 0; y < 120; ++y)
      for (int32_t x = 0; x < 150; ++x)
        ASSERT_TRUE(colours.count(Key(host.image(), x, y))) << x << "," << y;
    const int32_t t = DefaultP4Period(150, 120);
    EXPECT_TRUE(Repeats(host.image(), t, t));
    EXPECT_TRUE(boxes_.boxes().empty());
    // The cell, a square of side 40 centred in the crop, shows the crop's
    // pixels in place, the right way up.
    for (int32_t y = 40; y < 80; ++y)
      for (int32_t x = 55; x < 95; ++x) {
        const int32_t i = ((x + 30) / 3 + (y + 25) / 5) % entries;
        const auto& c = spec.palette[size_t(i)];
        const uint32_t want = form.bits == 1 ? (i ? 0xFFFFFFu : 0u)
                                             : uint32_t(c[0]) << 16 | uint32_t(c[1]) << 8 | c[2];
        ASSERT_EQ(Key(host.image(), x, y), want) << x << "," << y;
      }
  }
}

// A grey or CMYK host gets the loaded picture in its own mode: grey by the
// weights 3, 6, 1 (R, G, B) scaled by 3277 / 2^15, CMYK as the colour layer's
// inks stored the host's way, 255 for no ink. The mother cell shows those
// pixels in place; feathered or not, the wallpaper is the one the image
// itself gives when it holds the converted crop.
TEST_F(TileRun, LoadedBmpSourceComesInTheHostsGreyOrCmyk) {
  BmpSpec spec;
  spec.width = 210, spec.height = 170, spec.bits = 24;
  auto colour = [](int32_t x, int32_t y) {  // blue, green, red
    return std::array<uint8_t, 3>{uint8_t(x * 5 + y), uint8_t(255 - x - 2 * y),
                                  uint8_t(x * 3 + y * 7)};
  };
  for (int32_t y = 0; y < spec.height; ++y)
    for (int32_t x = 0; x < spec.width; ++x) {
      const auto c = colour(x, y);
      spec.pixels.push_back(uint32_t(c[0] | c[1] << 8 | c[2] << 16));
    }
  const std::string path = config_.temp().Write("source.bmp", MakeBmp(spec));
  // The host's bytes of the loaded pixel (x, y).
  auto expected = [&](int16_t mode, int32_t x, int32_t y) {
    const auto c = colour(x, y);
    std::vector<uint8_t> want;
    if (mode == kModeGray) {
      want.push_back(uint8_t(((3 * c[2] + 6 * c[1] + c[0]) * 3277) >> 15));
    } else {
      uint8_t ink[4];
      EXPECT_EQ(CLRPixelsRGBToCMYK(c.data(), 3, ink, 4, 1, 1), 1);
      for (uint8_t v : ink) want.push_back(uint8_t(255 - v));
    }
    return want;
  };

  for (int16_t mode : {kModeGray, kModeCMYK})
    for (int32_t feather : {0, 60}) {
      SCOPED_TRACE(::testing::Message() << "mode " << mode << ", feather " << feather);
      HostImage loaded;
      {
        TestHost host(kFilterTessaris, 150, 120, mode);
        host.FillPattern(4);
        ASSERT_EQ(host.Call(kSelectorParameters), kNoError);
        auto* record = reinterpret_cast<TileRecord*>(host.effect());
        record->sourceKind = kTileSourceFile;
        record->featherPercent = feather;
        std::snprintf(record->sourcePath, sizeof record->sourcePath, "%s", path.c_str());
        ASSERT_EQ(host.Call(kSelectorFinish), kNoError);
        ASSERT_EQ(host.Run(), kNoError);
        EXPECT_TRUE(boxes_.boxes().empty()) << boxes_.boxes()[0].text;
        record = reinterpret_cast<TileRecord*>(host.effect());
        ASSERT_EQ(record->sourceKind, kTileSourceFile) << "the loaded picture was used";
        EXPECT_EQ(record->cropLeft, 30);
        EXPECT_EQ(record->cropTop, 25);
        loaded = host.image();
      }
      // The image itself holding the converted crop, as its source.
      TestHost plain(kFilterTessaris, 150, 120, mode);
      for (int32_t y = 0; y < 120; ++y)
        for (int32_t x = 0; x < 150; ++x) {
          const std::vector<uint8_t> want = expected(mode, x + 30, y + 25);
          for (int32_t p = 0; p < plain.image().planes; ++p)
            plain.image().at(x, y, p) = want[size_t(p)];
        }
      const HostImage converted = plain.image();
      ASSERT_EQ(RunWith(plain, [&](TileRecord& r) { r.featherPercent = feather; }), kNoError);
      // The feather's fixed-point mixes round down. A loaded CMYK picture is
      // mixed in inks and the image in inverted inks, so the two may part by
      // their rounding, a level or two, and by nothing more.
      const int32_t slack = mode == kModeCMYK && feather ? 2 : 0;
      for (size_t i = 0; i < loaded.pixels.size(); ++i)
        ASSERT_LE(std::abs(loaded.pixels[i] - plain.image().pixels[i]), slack) << i;
      if (feather) continue;
      // The cell, the square of side 40 at (55, 40), unchanged.
      for (int32_t y = 40; y < 80; ++y)
        for (int32_t x = 55; x < 95; ++x)
          for (int32_t p = 0; p < converted.planes; ++p)
            ASSERT_EQ(loaded.at(x, y, p), converted.at(x, y, p)) << x << "," << y;
    }
}

TEST_F(TileRun, UnusableSourceFilesAreToldInTheDialogAndSilentAtTheStart) {
  BmpSpec rle;
  rle.width = 80, rle.height = 80, rle.bits = 8, rle.compression = 1;
  rle.pixels.assign(6400, 0);
  const std::string path = config_.temp().Write("rle.bmp", MakeBmp(rle));

  HostImage reference;
  {
    TestHost plain(kFilterTessaris, 100, 90, kModeRGB);
    ASSERT_EQ(RunPlain(plain), kNoError);
    reference = plain.image();
  }

  TestHost host(kFilterTessaris, 100, 90, kModeRGB);
  ASSERT_EQ(host.Call(kSelectorParameters), kNoError);
  auto* record = reinterpret_cast<TileRecord*>(host.effect());
  record->sourceKind = kTileSourceFile;
  std::snprintf(record->sourcePath, sizeof record->sourcePath, "%s", path.c_str());
  ASSERT_EQ(host.Call(kSelectorFinish), kNoError);

  // Without the dialog (a repeat) the run falls back to the image itself.
  boxes_.Clear();
  const HostImage before = host.image();
  ASSERT_EQ(host.Repeat(), kNoError);
  EXPECT_TRUE(boxes_.boxes().empty());
  EXPECT_EQ(host.image(), reference);

  // The dialog tells the user and returns to the original image.
  host.image() = before;
  ASSERT_EQ(host.Run(), kNoError);
  ASSERT_EQ(boxes_.boxes().size(), 1u);
  EXPECT_EQ(boxes_.boxes()[0].text,
            path + " is not a valid source file.\r\nOnly non-compressed BMP files are supported.");
  EXPECT_EQ(boxes_.boxes()[0].caption, "Tessaris Warning");
  EXPECT_EQ(reinterpret_cast<TileRecord*>(host.effect())->sourceKind, kTileSourceImage);
  EXPECT_EQ(host.image(), reference);
}

}  // namespace
}  // namespace fancy
