// Paint Brushka run through fancyhost on pictures the tests make: the
// shipped styles, --style, and the rows that the engine asks for.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/profile.h"
#include "run_fancyhost.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

using testing::Exists;
using testing::Lines;
using testing::ReadPicture;
using testing::RunFancyhost;
using testing::RunResult;
using testing::TestPicture;
using testing::WritePicture;

class BrushkaHost : public ::testing::Test {
 protected:
  void SetUp() override {
    input_ = dir_.File("in.png");
    WritePicture(input_, TestPicture(64, 48, PixelMode::kRGB));
  }
  RunResult Run(std::vector<std::string> args) { return RunFancyhost(args, dir_.File("home")); }
  // Paints the input into name with the extra arguments; the picture's pixels.
  std::vector<uint8_t> Paint(const std::string& name, std::vector<std::string> extra = {}) {
    std::vector<std::string> args = {"apply", "brushka", input_, dir_.File(name), "--quiet"};
    args.insert(args.end(), extra.begin(), extra.end());
    RunResult r = Run(args);
    EXPECT_EQ(r.exitCode, 0) << r.err;
    return r.exitCode == 0 ? ReadPicture(dir_.File(name)).pixels : std::vector<uint8_t>{};
  }
  std::string StyleFile() const { return dir_.File("home/Tavin/Fancy/Plugins/brushka.ini"); }
  std::string Current() const {
    char buffer[128];
    ProfileGetString("PresetList", "Current", "", buffer, sizeof buffer, StyleFile().c_str());
    return buffer;
  }

  fancy::testing::TempDir dir_;
  std::string input_;
};

TEST_F(BrushkaHost, SetupInstallsTheStyleFileAndBrushes) {
  ASSERT_EQ(Run({"setup"}).exitCode, 0);
  EXPECT_TRUE(Exists(StyleFile()));
  for (const char* brush : {"round-soft.bmp", "round-hard.bmp", "flat-bristle.bmp",
                            "dry-bristle.bmp", "spatter.bmp", "palette-knife.bmp"})
    EXPECT_TRUE(Exists(dir_.File("home/Tavin/Fancy/Plugins/brushes/") + brush)) << brush;
  EXPECT_EQ(Current(), "Default");
}

TEST_F(BrushkaHost, StyleOptionChoosesASavedStyle) {
  const std::vector<uint8_t> plain = Paint("default.png");
  ASSERT_FALSE(plain.empty());
  EXPECT_NE(plain, ReadPicture(input_).pixels) << "the Default style's strokes reach the picture";
  const std::vector<uint8_t> oil = Paint("oil.png", {"--style", "Oil Sketch"});
  EXPECT_EQ(Current(), "Oil Sketch") << "chosen as the dialog's list chooses";
  EXPECT_NE(oil, plain);
  EXPECT_EQ(Paint("again.png"), oil) << "the current style stays chosen";
  EXPECT_EQ(Paint("default-again.png", {"--style", "Default"}), plain);

  // On a repeat, the chosen style is loaded into the kept parameters.
  const std::string params = dir_.File("last.params");
  Paint("saved.png", {"--params", params});
  EXPECT_EQ(Paint("repeat.png", {"--params", params, "--no-dialog", "--style", "Oil Sketch"}), oil);

  RunResult unknown = Run({"apply", "brushka", input_, dir_.File("x.png"), "--style", "Nope"});
  EXPECT_EQ(unknown.exitCode, 2) << unknown.err;
  EXPECT_NE(unknown.err.find("Palette Knife"), std::string::npos) << unknown.err;
  EXPECT_FALSE(Exists(dir_.File("x.png")));
  EXPECT_EQ(Current(), "Oil Sketch");
  RunResult other = Run({"apply", "tessaris", input_, dir_.File("y.png"), "--style", "Default"});
  EXPECT_EQ(other.exitCode, 2) << other.err;
}

// With no variation of place, the first pass asks for the first row, then
// jumps from anchor row to anchor row (the grid's rows), then one row past
// the last; the second pass asks for every row.
TEST_F(BrushkaHost, TraceShowsTheFirstPassJumpingToAnchorRows) {
  ASSERT_EQ(Run({"setup"}).exitCode, 0);
  const std::string path = StyleFile();
  ASSERT_TRUE(ProfileWriteString("Grid", "BrushName", "round-hard.bmp", path.c_str()));
  ASSERT_TRUE(ProfileWriteString("Grid", "BrushParms", "346,6,7,0,0", path.c_str()));
  ASSERT_TRUE(ProfileWriteString("PresetList", "NumStyles", "7", path.c_str()));
  ASSERT_TRUE(ProfileWriteString("PresetList", "Style7", "Grid", path.c_str()));
  RunResult r = Run({"apply", "brushka", input_, dir_.File("grid.png"), "--style", "Grid", "--trace"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  std::vector<int> tops;
  for (const std::string& line : Lines(r.out)) {
    int t, l, b, rt;
    if (std::sscanf(line.c_str(), "request in %d %d %d %d", &t, &l, &b, &rt) == 4) tops.push_back(t);
  }
  // The grid of 64 x 48 at density 6: about 0.00056 x 6 strokes a pixel.
  const double m = 64, s = std::sqrt(m * m * 6 * 0.00056);
  const int rows = static_cast<int>(std::fmax(48 / m * s, 1.0) + 0.5);
  std::vector<int> expected = {0};
  for (int k = 0; k < rows; ++k) {
    const int y = static_cast<int>(48 * ((k + 0.5) / rows) + 0.5);
    if (y != expected.back()) expected.push_back(y);
  }
  expected.push_back(expected.back() + 1);
  for (int y = 0; y < 48; ++y) expected.push_back(y);
  EXPECT_EQ(rows, 3);
  EXPECT_EQ(tops, expected);
}

}  // namespace
}  // namespace fancy
