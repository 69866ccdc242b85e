// fancyhost run as a user runs it, on pictures the tests make.
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "params_file.h"
#include "run_fancyhost.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

using testing::Contains;
using testing::Exists;
using testing::Lines;
using testing::ReadPicture;
using testing::RunFancyhost;
using testing::RunInterruptedAt;
using testing::RunResult;
using testing::TestPicture;
using testing::WritePicture;

class Fancyhost : public ::testing::Test {
 protected:
  RunResult Run(const std::vector<std::string>& args,
                const std::map<std::string, std::string>& env = {}) {
    return RunFancyhost(args, dir.File("home"), env);
  }
  std::string Picture(const std::string& name, PixelMode mode, int32_t w = 32, int32_t h = 24) {
    std::string path = dir.File(name);
    WritePicture(path, TestPicture(w, h, mode));
    return path;
  }
  std::string Bytes(const std::string& name, const std::string& bytes) {
    return dir.Write(name, bytes);
  }
  fancy::testing::TempDir dir;
};

TEST_F(Fancyhost, BadInputsExit3AndWriteNothing) {
  std::string good = Picture("good.bmp", PixelMode::kRGB);
  std::string bytes = fancy::testing::TempDir::Read(good);
  std::string lyingSize = bytes;
  lyingSize[2] = char(0xFF), lyingSize[3] = char(0xFF);  // file size far past the end
  std::string lyingPalette = bytes;
  lyingPalette[28] = 8;                                   // 8 bits a pixel ...
  lyingPalette[46] = char(0xFF), lyingPalette[47] = 0x7F; // ... and 32767 colours
  std::string png = fancy::testing::TempDir::Read(Picture("good.png", PixelMode::kRGB));

  const std::pair<std::string, std::string> inputs[] = {
      {"missing", dir.File("no-such.png")},
      {"truncated BMP", Bytes("cut.bmp", bytes.substr(0, bytes.size() / 2))},
      {"BMP lying about its size", Bytes("size.bmp", lyingSize)},
      {"BMP lying about its palette", Bytes("palette.bmp", lyingPalette)},
      {"PNG cut in half", Bytes("half.png", png.substr(0, png.size() / 2))},
      {"JPEG of garbage", Bytes("garbage.jpg", std::string("\xFF\xD8\xFF") + std::string(500, 'x'))},
      {"empty file", Bytes("empty.png", "")},
  };
  for (const auto& [name, path] : inputs) {
    std::string out = dir.File("out.png");
    RunResult r = Run({"apply", "brushka", path, out, "--trace"});
    EXPECT_EQ(r.exitCode, 3) << name << "\n" << r.err;
    EXPECT_TRUE(Contains(r.err, "cannot read")) << name << "\n" << r.err;
    EXPECT_EQ(r.out, "") << name << ": the module ran";
    EXPECT_FALSE(Exists(out)) << name;
  }
  // A damaged mask is an input like any other.
  RunResult r = Run({"apply", "glass", good, dir.File("out.png"), "--mask", dir.File("cut.bmp")});
  EXPECT_EQ(r.exitCode, 3) << r.err;
}

TEST_F(Fancyhost, UnwritableOutputExits3BeforeTheModuleRuns) {
  std::string in = Picture("in.png", PixelMode::kRGB);
  std::filesystem::create_directories(dir.File("folder.png"));
  for (const std::string& out : {dir.File("no-folder/out.png"), dir.File("folder.png")}) {
    RunResult r = Run({"apply", "brushka", in, out, "--trace"});
    EXPECT_EQ(r.exitCode, 3) << out << "\n" << r.err;
    EXPECT_TRUE(Contains(r.err, "cannot write")) << r.err;
    EXPECT_EQ(r.out, "") << "the module ran for " << out;
  }
}

TEST_F(Fancyhost, UsageErrorsExit2) {
  std::string in = Picture("in.png", PixelMode::kRGB);
  const std::vector<std::vector<std::string>> lines = {
      {"apply"},
      {"apply", "sharpen", in, dir.File("o.png")},
      {"apply", "brushka", in, dir.File("o.gif")},
      {"apply", "brushka", in, dir.File("o.png"), "--rect", "5,5,2,9"},
      {"apply", "brushka", in, dir.File("o.png"), "--rect", "0,0,33,10"},  // wider than 32
      {"apply", "brushka", in, dir.File("o.png"), "--foreground", "1,2,300"},
      {"apply", "brushka", in, dir.File("o.png"), "--mode", "lab"},
      {"apply", "brushka", in, dir.File("o.png"), "--bogus"},
      {"sample", dir.File("o.png"), "--mask-feather", "12"},  // no selection to feather
      {"sample", dir.File("o.png"), "--mask", dir.File("m.png"), "--mask-feather", "101"},
      {"frobnicate"},
  };
  for (const auto& args : lines) {
    RunResult r = Run(args);
    EXPECT_EQ(r.exitCode, 2) << args.back() << "\n" << r.err;
    EXPECT_FALSE(Exists(dir.File("o.png")));
  }
}

TEST_F(Fancyhost, ReliefWithoutMaskIsRefusedByTheEffect) {
  std::string in = Picture("in.png", PixelMode::kRGB);
  for (const char* effect : {"glass", "knurl", "202", "203"}) {
    std::string out = dir.File("out.png");
    RunResult r = Run({"apply", effect, in, out});
    EXPECT_EQ(r.exitCode, 1) << effect << "\n" << r.err;
    EXPECT_TRUE(Contains(r.err, "This filter requires a mask.")) << r.err;
    EXPECT_TRUE(Contains(r.err, "9987")) << "the module's code is told\n" << r.err;
    EXPECT_FALSE(Exists(out));
  }
}

// Whatever an effect does, nothing outside the filter rectangle changes,
// and a selection that is empty everywhere leaves the whole picture as it was.
TEST_F(Fancyhost, NothingChangesOutsideTheRectangleOrTheSelection) {
  // The tile effect needs 50 pixels either way.
  constexpr int32_t kW = 90, kH = 75;
  std::string in = Picture("in.png", PixelMode::kRGB, kW, kH);
  FilePicture empty = TestPicture(kW, kH, PixelMode::kGrey);
  std::fill(empty.pixels.begin(), empty.pixels.end(), 0);
  WritePicture(dir.File("empty-mask.png"), empty);
  for (const char* effect : {"brushka", "tessaris"}) {
    RunResult r = Run({"apply", effect, in, dir.File("rect.png"), "--rect", "10,5,70,60"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    FilePicture before = ReadPicture(in), after = ReadPicture(dir.File("rect.png"));
    for (int32_t y = 0; y < kH; ++y)
      for (int32_t x = 0; x < kW; ++x) {
        if (x >= 10 && x < 70 && y >= 5 && y < 60) continue;
        for (int p = 0; p < 3; ++p) {
          size_t at = (size_t(y) * kW + size_t(x)) * 3 + size_t(p);
          ASSERT_EQ(after.pixels[at], before.pixels[at]) << effect << " at " << x << "," << y;
        }
      }
  }
  for (const char* effect : {"brushka", "tessaris", "glass", "knurl"}) {
    RunResult r = Run({"apply", effect, in, dir.File("masked.png"), "--mask", dir.File("empty-mask.png")});
    ASSERT_EQ(r.exitCode, 0) << effect << "\n" << r.err;
    EXPECT_EQ(ReadPicture(dir.File("masked.png")).pixels, ReadPicture(in).pixels) << effect;
  }
}

TEST_F(Fancyhost, TraceShowsTheWholeRun) {
  std::string in = Picture("in.png", PixelMode::kRGB, 20, 6);
  RunResult r = Run({"apply", "brushka", in, dir.File("out.png"), "--trace", "--rect", "2,1,18,5"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  std::vector<std::string> lines = Lines(r.out);
  auto find = [&](const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) - lines.begin();
  };
  const long start = find("call 3 result 0"), finish = find("call 5 result 0");
  ASSERT_LT(start + 1, long(lines.size())) << r.out;
  EXPECT_EQ(lines[size_t(start) + 1], "progress -1 1") << r.out;
  ASSERT_LT(finish + 1, long(lines.size())) << r.out;
  EXPECT_EQ(lines[size_t(finish) + 1], "progress -3 1") << r.out;
  EXPECT_LT(find("call 1 result 0"), start);
  EXPECT_NE(find("hostproc 1"), long(lines.size())) << "the extension was asked for";
  // Every request lies in the filter rectangle, and continue is called once
  // per request that stood.
  int requests = 0, continues = 0;
  for (long i = start; i < finish; ++i) {
    int t, l, b, rt, lo, hi, ot, ol, ob, orr, olo, ohi;
    if (std::sscanf(lines[size_t(i)].c_str(), "request in %d %d %d %d %d %d out %d %d %d %d %d %d",
                    &t, &l, &b, &rt, &lo, &hi, &ot, &ol, &ob, &orr, &olo, &ohi) == 12) {
      ++requests;
      EXPECT_TRUE(t >= 1 && b <= 5 && l >= 2 && rt <= 18 && t < b && l < rt) << lines[size_t(i)];
      EXPECT_TRUE(lo >= 0 && hi >= lo) << lines[size_t(i)];
    }
    if (lines[size_t(i)] == "call 4 result 0") ++continues;
  }
  EXPECT_GT(requests, 0) << r.out;
  EXPECT_EQ(continues, requests) << r.out;
}

TEST_F(Fancyhost, ParamsRepeatWithoutDialogAndRefuseForeignOrDamagedFiles) {
  std::string in = Picture("in.png", PixelMode::kRGB);
  std::string params = dir.File("brushka.params");
  RunResult first = Run({"apply", "brushka", in, dir.File("a.png"), "--params", params});
  ASSERT_EQ(first.exitCode, 0) << first.err;
  ASSERT_TRUE(Exists(params)) << "the parameters were saved";

  RunResult repeat = Run({"apply", "brushka", in, dir.File("b.png"), "--params", params,
                          "--no-dialog", "--trace"});
  ASSERT_EQ(repeat.exitCode, 0) << repeat.err;
  EXPECT_FALSE(Contains(repeat.out, "call 1 ")) << "no dialog on a repeat\n" << repeat.out;
  EXPECT_TRUE(Contains(repeat.out, "call 3 result 0")) << repeat.out;

  // Another effect's parameters.
  RunResult foreign = Run({"apply", "tessaris", in, dir.File("c.png"), "--params", params});
  EXPECT_EQ(foreign.exitCode, 3) << foreign.err;
  EXPECT_TRUE(Contains(foreign.err, "Paint Brushka")) << foreign.err;
  EXPECT_FALSE(Exists(dir.File("c.png")));

  // A damaged file.
  std::string bytes = fancy::testing::TempDir::Read(params);
  bytes[bytes.size() - 5] ^= 0x21;
  std::string damaged = dir.Write("damaged.params", bytes);
  RunResult bad = Run({"apply", "brushka", in, dir.File("d.png"), "--params", damaged, "--no-dialog"});
  EXPECT_EQ(bad.exitCode, 3) << bad.err;
  EXPECT_TRUE(Contains(bad.err, "damaged")) << bad.err;
  EXPECT_FALSE(Exists(dir.File("d.png")));

  // A block headed as another effect's, its checksum made good.
  const std::string saved = fancy::testing::TempDir::Read(params);
  ParamsBlock block;
  std::string error;
  ASSERT_TRUE(DecodeParams(reinterpret_cast<const uint8_t*>(saved.data()), saved.size(), &block,
                           &error)) << error;
  block.bytes[0] = 201;
  std::vector<uint8_t> relabelled = EncodeParams(block);
  std::string headed = dir.Write("headed.params", std::string(relabelled.begin(), relabelled.end()));
  RunResult wrongHead = Run({"apply", "brushka", in, dir.File("d.png"), "--params", headed,
                             "--no-dialog"});
  EXPECT_EQ(wrongHead.exitCode, 3) << wrongHead.err;
  EXPECT_TRUE(Contains(wrongHead.err, "not headed as Paint Brushka's")) << wrongHead.err;

  // Without a parameters block there is nothing to repeat.
  RunResult none = Run({"apply", "brushka", in, dir.File("e.png"), "--no-dialog"});
  EXPECT_EQ(none.exitCode, 2) << none.err;
}

// The run is slowed by fancyhost's test hook so that it is surely still
// going when the signal comes; the signal is sent once the first continue
// call has been seen.
TEST_F(Fancyhost, CtrlCCancelsWithTheModulesCodeAndWritesNothing) {
  std::string in = Picture("tall.png", PixelMode::kRGB, 64, 2000);
  std::string out = dir.File("out.png"), params = dir.File("cancelled.params");
  bool sent = false;
  RunResult r = RunInterruptedAt({"apply", "brushka", in, out, "--trace", "--params", params},
                                 dir.File("home"), "5", "call 4 result 0", &sent);
  ASSERT_TRUE(sent) << r.out;
  EXPECT_EQ(r.exitCode, 130) << r.err;
  EXPECT_TRUE(Contains(r.out, "result -128")) << r.out;
  EXPECT_TRUE(Contains(r.out, "call 5 result")) << "finish is still called\n" << r.out;
  EXPECT_FALSE(Exists(out));
  EXPECT_FALSE(Exists(params));
}

// Failed runs with --params: a block the run made is gone with it and is
// never saved; a block loaded from the file survives, the file is left as
// it was, and it repeats as well as before. (Under the sanitizers a freed
// block read or a block lost fails the run's exit code.)
TEST_F(Fancyhost, FailedRunsNeverWriteTheParametersFile) {
  std::string in = Picture("in.png", PixelMode::kRGB, 64, 64);
  std::string small = Picture("small.png", PixelMode::kRGB, 40, 40);  // under 50 pixels
  const std::string fresh = dir.File("fresh.params");
  for (const char* effect : {"glass", "knurl"})  // no selection
    EXPECT_EQ(Run({"apply", effect, in, dir.File("o.png"), "--params", fresh, "--quiet"}).exitCode, 1)
        << effect;
  RunResult tooSmall = Run({"apply", "tessaris", small, dir.File("o.png"), "--params", fresh});
  EXPECT_EQ(tooSmall.exitCode, 130) << tooSmall.err;
  EXPECT_FALSE(Exists(fresh));
  EXPECT_FALSE(Exists(dir.File("o.png")));

  const std::string kept = dir.File("kept.params");
  RunResult first = Run({"apply", "tessaris", in, dir.File("first.png"), "--params", kept,
                         "--group", "p31m", "--quiet"});
  ASSERT_EQ(first.exitCode, 0) << first.err;
  const std::string saved = fancy::testing::TempDir::Read(kept);
  for (const std::vector<std::string>& extra :
       {std::vector<std::string>{}, {"--no-dialog"}}) {
    std::vector<std::string> args = {"apply", "tessaris", small, dir.File("o.png"), "--params", kept};
    args.insert(args.end(), extra.begin(), extra.end());
    RunResult r = Run(args);
    EXPECT_EQ(r.exitCode, 130) << r.err;
    EXPECT_EQ(fancy::testing::TempDir::Read(kept), saved);
  }
  RunResult repeat = Run({"apply", "tessaris", in, dir.File("repeat.png"), "--params", kept,
                          "--no-dialog", "--quiet"});
  ASSERT_EQ(repeat.exitCode, 0) << repeat.err;
  EXPECT_EQ(ReadPicture(dir.File("repeat.png")).pixels, ReadPicture(dir.File("first.png")).pixels);
}

TEST_F(Fancyhost, SetupMakesTheConfigurationFolder) {
  std::string folder = dir.File("cfg");
  RunResult r = Run({"setup", folder});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_TRUE(Exists(folder + "/Config/tavinapp.ini"));
  EXPECT_TRUE(Exists(folder + "/Config/Color.ini"));
  EXPECT_TRUE(Exists(folder + "/Plugins"));
  std::string registry = fancy::testing::TempDir::Read(dir.File("home/Tavin/registry.ini"));
  EXPECT_TRUE(Contains(registry, folder + "/Config/")) << registry;
  std::string app = fancy::testing::TempDir::Read(folder + "/Config/tavinapp.ini");
  EXPECT_TRUE(Contains(app, "PixelboxDir=" + folder + "/Host/")) << app;

  // apply sets up the default folder on first use.
  fancy::testing::TempDir other;
  std::string in = Picture("in.png", PixelMode::kRGB, 64, 64);
  RunResult first = RunFancyhost({"apply", "tessaris", in, dir.File("o.png")}, other.path());
  ASSERT_EQ(first.exitCode, 0) << first.err;
  EXPECT_TRUE(Exists(other.path() + "/Tavin/Fancy/Config/tavinapp.ini"));
}

// A folder set up by an earlier fancyhost, which shipped tavinapp.ini only,
// gets the files shipped since on the next apply; a file the user has is
// theirs, edited or not.
TEST_F(Fancyhost, ApplyAddsWhatAnOlderFolderLacksAndKeepsTheUsersFiles) {
  using fancy::testing::TempDir;
  ASSERT_EQ(Run({"setup"}).exitCode, 0);
  const std::string root = dir.File("home/Tavin/Fancy/"), data = FANCY_SOURCE_DIR "/data/";
  std::filesystem::remove_all(root + "Plugins");
  std::filesystem::remove(root + "Config/Color.ini");
  const std::string app = TempDir::Read(root + "Config/tavinapp.ini");
  const std::pair<std::string, std::string> shipped[] = {
      {"config/Color.ini", "Config/Color.ini"},
      {"plugins/brushka.ini", "Plugins/brushka.ini"},
      {"plugins/brushes/round-soft.bmp", "Plugins/brushes/round-soft.bmp"},
      {"plugins/brushes/palette-knife.bmp", "Plugins/brushes/palette-knife.bmp"}};

  std::string in = Picture("in.png", PixelMode::kRGB, 64, 64);
  RunResult r = Run({"apply", "tessaris", in, dir.File("o.png")});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_TRUE(Contains(r.err, "Plugins/brushka.ini")) << "the user is told\n" << r.err;
  for (const auto& [from, to] : shipped) {
    ASSERT_TRUE(Exists(root + to)) << to;
    EXPECT_EQ(TempDir::Read(root + to), TempDir::Read(data + from)) << to;
  }
  EXPECT_EQ(TempDir::Read(root + "Config/tavinapp.ini"), app) << "nothing else is written";

  const std::string edited = TempDir::Read(root + "Plugins/brushka.ini") + "\n[Mine]\nDensity=7\n";
  dir.Write("home/Tavin/Fancy/Plugins/brushka.ini", edited);
  std::filesystem::remove(root + "Plugins/brushes/spatter.bmp");
  r = Run({"apply", "tessaris", in, dir.File("o.png")});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_EQ(TempDir::Read(root + "Plugins/brushka.ini"), edited);
  EXPECT_TRUE(Exists(root + "Plugins/brushes/spatter.bmp"));
  EXPECT_FALSE(Contains(r.err, "brushka.ini")) << r.err;
}

TEST_F(Fancyhost, ListsTheModulesEffects) {
  RunResult r = Run({"list"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_TRUE(Contains(r.out, "Brushka...")) << r.out;
  EXPECT_TRUE(Contains(r.out, "Tessaris...")) << r.out;
  EXPECT_TRUE(Contains(r.out, "Fancy")) << r.out;
  RunResult missing = Run({"list", "--module", dir.File("none.so")});
  EXPECT_EQ(missing.exitCode, 3);
}

}  // namespace
}  // namespace fancy
