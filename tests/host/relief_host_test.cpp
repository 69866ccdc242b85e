// Glass and The Knurl run by fancyhost on picture files, through a selection.
#include <cmath>
#include <cstdio>

#include <gtest/gtest.h>

#include "run_fancyhost.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

using testing::Contains;
using testing::Exists;
using testing::ReadPicture;
using testing::RunFancyhost;
using testing::RunResult;
using testing::TestPicture;
using testing::WritePicture;

class ReliefHost : public ::testing::Test {
 protected:
  RunResult Run(const std::vector<std::string>& args) {
    return RunFancyhost(args, dir.File("home"));
  }
  // A hard-edged disc in the middle of a w x h selection.
  std::string Disc(int32_t w, int32_t h, double r) {
    FilePicture mask = TestPicture(w, h, PixelMode::kGrey);
    for (int32_t y = 0; y < h; ++y)
      for (int32_t x = 0; x < w; ++x)
        mask.pixels[size_t(y) * w + x] = std::hypot(x - w / 2.0, y - h / 2.0) < r ? 255 : 0;
    std::string path = dir.File("disc.png");
    WritePicture(path, mask);
    return path;
  }
  std::string PresetFile() { return dir.File("home/Tavin/Fancy/Host/PLGPARAM.INI"); }
  fancy::testing::TempDir dir;
};

TEST_F(ReliefHost, BothEffectsChangeTheSelectionOnlyInEveryMode) {
  const std::string mask = Disc(96, 72, 22);
  const FilePicture selection = ReadPicture(mask);
  struct Case {
    PixelMode file;
    std::vector<std::string> extra;
  };
  const Case cases[] = {{PixelMode::kGrey, {}}, {PixelMode::kRGB, {}},
                        {PixelMode::kRGB, {"--mode", "cmyk"}}};
  for (const char* effect : {"glass", "knurl"}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(::testing::Message() << effect << " " << ModeName(c.file) << " "
                                        << (c.extra.empty() ? "" : "as cmyk"));
      std::string in = dir.File("in.png"), out = dir.File("out.png");
      WritePicture(in, TestPicture(96, 72, c.file));
      std::vector<std::string> args = {"apply", effect, in, out, "--mask", mask, "--quiet"};
      args.insert(args.end(), c.extra.begin(), c.extra.end());
      RunResult r = Run(args);
      ASSERT_EQ(r.exitCode, 0) << r.err;
      const FilePicture before = ReadPicture(in), after = ReadPicture(out);
      ASSERT_EQ(after.pixels.size(), before.pixels.size());
      const size_t planes = size_t(PlanesOf(before.mode));
      int32_t changedInside = 0;
      for (size_t i = 0; i < before.pixels.size(); ++i) {
        if (selection.pixels[i / planes] == 0)
          ASSERT_EQ(after.pixels[i], before.pixels[i]) << "outside the selection, byte " << i;
        else
          changedInside += after.pixels[i] != before.pixels[i];
      }
      EXPECT_GT(changedInside, 20);
    }
  }
}

TEST_F(ReliefHost, PresetChoosesAStyleAsTheListWould) {
  const std::string in = dir.File("in.png"), out = dir.File("out.png");
  WritePicture(in, TestPicture(64, 48, PixelMode::kRGB));
  const std::string mask = Disc(64, 48, 15);
  RunResult r = Run({"apply", "knurl", in, out, "--mask", mask, "--preset", "mesa dropoff",
                     "--trace"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_TRUE(Contains(fancy::testing::TempDir::Read(PresetFile()),
                       "Last Used=20, 30, 3, 2, 60, 30, 135, 45"));
  EXPECT_TRUE(Contains(r.out, " mask 0 0 48 64")) << "the selection is read on its own\n" << r.out;

  // A style that is not in the list: the dialog ends as Cancel, before it
  // writes "Last Used", and no picture is written.
  std::remove(out.c_str());
  r = Run({"apply", "glass", in, out, "--mask", mask, "--preset", "Frosted"});
  EXPECT_EQ(r.exitCode, 2) << r.err;
  EXPECT_TRUE(Contains(r.err, "Glass has no style \"Frosted\"")) << r.err;
  EXPECT_TRUE(Contains(r.err, "\"Colored lens\"")) << r.err;
  EXPECT_FALSE(Exists(out));
  const std::string presets = fancy::testing::TempDir::Read(PresetFile());
  const size_t glass = presets.find("[Glass]");
  ASSERT_NE(glass, std::string::npos) << "the dialog seeded its styles";
  EXPECT_FALSE(Contains(presets.substr(glass), "Last Used")) << presets;

  // Only the relief effects keep a style list, and only their dialog chooses.
  EXPECT_EQ(Run({"apply", "brushka", in, out, "--preset", "Defaults"}).exitCode, 2);
  EXPECT_EQ(Run({"apply", "glass", in, out, "--mask", mask, "--preset", "Lens", "--no-dialog"})
                .exitCode,
            2);
  EXPECT_FALSE(Exists(out));
}

// The sample's feathered selection raises the same shape as its hard one
// (above half where the hard one is full, at most half where it is empty),
// its edges fall over the width asked for, and through it the effect is
// kept partly outside the shape, where its slopes lie.
TEST_F(ReliefHost, FeatheredSampleSelectionKeepsTheSlopesOutsideTheShape) {
  constexpr int32_t kW = 240, kH = 180, kFeather = 12;
  const std::string in = dir.File("in.png"), hard = dir.File("hard.png"), soft = dir.File("soft.png");
  ASSERT_EQ(Run({"sample", in, "240", "180", "--mask", hard}).exitCode, 0);
  RunResult drawn = Run({"sample", in, "240", "180", "--mask", soft, "--mask-feather", "12"});
  ASSERT_EQ(drawn.exitCode, 0) << drawn.err;
  const FilePicture h = ReadPicture(hard), s = ReadPicture(soft);
  ASSERT_EQ(s.mode, PixelMode::kGrey);
  ASSERT_EQ(s.pixels.size(), size_t(kW * kH));
  for (size_t i = 0; i < s.pixels.size(); ++i) {
    if (h.pixels[i] == 255) {
      ASSERT_GE(s.pixels[i], 128) << "pixel " << i;
    } else if (h.pixels[i] == 0) {
      ASSERT_LE(s.pixels[i], 128) << "pixel " << i;
    }
  }
  // From the centre to the right, across the disc's edge: full, a falling
  // ramp of kFeather pixels, then nothing (the gap before the ring).
  const uint8_t* row = s.pixels.data() + size_t(kH / 2) * kW;
  int32_t x = kW / 2;
  while (x < kW && row[x] == 255) ++x;
  const int32_t rampStart = x;
  for (; x < kW && row[x] > 0; ++x) ASSERT_LT(row[x], row[x - 1]) << "x " << x;
  EXPECT_NEAR(x - rampStart, kFeather, 1);

  const std::string out = dir.File("out.png");
  RunResult r = Run({"apply", "knurl", in, out, "--mask", soft, "--preset", "Mesa Dropoff", "--quiet"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  const FilePicture before = ReadPicture(in), after = ReadPicture(out);
  int32_t keptOutside = 0;
  for (size_t i = 0; i < before.pixels.size(); ++i) {
    const size_t at = i / 3;
    if (s.pixels[at] == 0) {
      ASSERT_EQ(after.pixels[i], before.pixels[i]) << "byte " << i;
    } else if (h.pixels[at] == 0) {
      keptOutside += after.pixels[i] != before.pixels[i];
    }
  }
  EXPECT_GT(keptOutside, 1000);
}

}  // namespace
}  // namespace fancy
