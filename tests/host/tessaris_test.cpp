// Tessaris run by fancyhost on picture files: the wallpaper it writes has
// its tile's period and its group's symmetries over the whole picture;
// grey, RGB and CMYK run; a BMP source, a refused RLE source, Ctrl-C during
// the tile, a picture too small, and parameters kept between runs.
#include <cstring>
#include <fstream>
#include <set>

#include <gtest/gtest.h>

#include "colour/clr_pixels.h"
#include "params_file.h"
#include "run_fancyhost.h"
#include "support/bmp_bytes.h"
#include "support/temp_dir.h"
#include "tile/tile_record.h"

namespace fancy {
namespace {

using testing::Contains;
using testing::Exists;
using testing::Lines;
using testing::ReadPicture;
using testing::RunFancyhost;
using testing::RunInterruptedAt;
using testing::RunResult;
using testing::WritePicture;

// Noise with a slow gradient under it: no two places alike, so that any
// repetition in the output comes from the tile.
FilePicture Noise(int32_t width, int32_t height, PixelMode mode, uint32_t seed) {
  FilePicture p;
  p.width = width, p.height = height, p.mode = mode;
  const int planes = PlanesOf(mode);
  p.pixels.resize(size_t(width) * size_t(height) * size_t(planes));
  uint32_t state = seed * 2654435761u + 7;
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x)
      for (int c = 0; c < planes; ++c) {
        state = state * 1103515245u + 12345u;
        p.pixels[(size_t(y) * size_t(width) + size_t(x)) * size_t(planes) + size_t(c)] =
            uint8_t(((state >> 16) & 0x3F) + (x + y * (c + 1)) % 190);
      }
  return p;
}

// Exact tests of a picture's pixels, and searches for the symmetries a
// wallpaper group promises.
struct Wall {
  const FilePicture& p;
  int planes() const { return PlanesOf(p.mode); }
  bool In(int64_t x, int64_t y) const { return x >= 0 && y >= 0 && x < p.width && y < p.height; }
  bool Same(int32_t x0, int32_t y0, int32_t x1, int32_t y1) const {
    const int n = planes();
    return std::memcmp(&p.pixels[(size_t(y0) * size_t(p.width) + size_t(x0)) * size_t(n)],
                       &p.pixels[(size_t(y1) * size_t(p.width) + size_t(x1)) * size_t(n)],
                       size_t(n)) == 0;
  }
  // Every pixel whose image under map lies in the picture is equal to it.
  template <class Map>
  bool Holds(Map map) const {
    int64_t compared = 0;
    for (int32_t y = 0; y < p.height; ++y)
      for (int32_t x = 0; x < p.width; ++x) {
        const auto [mx, my] = map(x, y);
        if (!In(mx, my)) continue;
        if (!Same(x, y, int32_t(mx), int32_t(my))) return false;
        ++compared;
      }
    return compared > int64_t(p.width) * p.height / 8;  // a real part of the picture
  }
  // The shortest horizontal period, 0 when there is none under half the width.
  int32_t PeriodX() const {
    for (int32_t t = 2; t <= p.width / 2; ++t)
      if (Holds([t](int32_t x, int32_t y) { return std::pair{x + t, y}; })) return t;
    return 0;
  }
  // The shortest vertical period, with each band moved right by shift.
  int32_t PeriodY(int32_t shift = 0) const {
    for (int32_t t = 2; t < p.height; ++t)
      if (Holds([t, shift](int32_t x, int32_t y) { return std::pair{x + shift, y + t}; }))
        return t;
    return 0;
  }
  // Searches one set of parameters for a map that holds.
  template <class Make>
  bool Exists2(int32_t a0, int32_t a1, int32_t b0, int32_t b1, Make make) const {
    for (int32_t a = a0; a < a1; ++a)
      for (int32_t b = b0; b < b1; ++b)
        if (Holds(make(a, b))) return true;
    return false;
  }
};

class Tessaris : public ::testing::Test {
 protected:
  RunResult Run(const std::vector<std::string>& args,
                const std::map<std::string, std::string>& env = {}) {
    return RunFancyhost(args, dir.File("home"), env);
  }
  std::string Input(const std::string& name, int32_t w, int32_t h, PixelMode mode = PixelMode::kRGB) {
    const std::string path = dir.File(name);
    WritePicture(path, Noise(w, h, mode, uint32_t(w * 31 + h)));
    return path;
  }
  // Runs tessaris with extra arguments and reads its output.
  FilePicture Apply(const std::string& in, const std::vector<std::string>& extra) {
    const std::string out = dir.File("out.png");
    std::vector<std::string> args = {"apply", "tessaris", in, out, "--quiet"};
    args.insert(args.end(), extra.begin(), extra.end());
    RunResult r = Run(args);
    EXPECT_EQ(r.exitCode, 0) << r.err;
    return r.exitCode == 0 ? ReadPicture(out) : FilePicture{};
  }
  fancy::testing::TempDir dir;
};

// Each group's wallpaper over the whole picture: the tile's period (the
// cell is a square of a third of the shorter side, 40 here) and the group's
// own symmetries, found anywhere in the picture. P4 is the default.
TEST_F(Tessaris, EachGroupHasItsSymmetries) {
  const std::string in = Input("in.png", 300, 120);  // cell side 40
  auto mirrorX = [](int32_t a, int32_t) {
    return [a](int32_t x, int32_t y) { return std::pair{int64_t(a) - x, int64_t(y)}; };
  };
  auto mirrorY = [](int32_t, int32_t b) {
    return [b](int32_t x, int32_t y) { return std::pair{int64_t(x), int64_t(b) - y}; };
  };
  auto halfTurn = [](int32_t a, int32_t b) {
    return [a, b](int32_t x, int32_t y) { return std::pair{int64_t(a) - x, int64_t(b) - y}; };
  };
  auto quarterTurn = [](int32_t a, int32_t b) {
    return [a, b](int32_t x, int32_t y) { return std::pair{int64_t(a) - y, int64_t(b) + x}; };
  };
  // A mirror in a diagonal (x, y) -> (y + c, x - c), or in an antidiagonal
  // (x, y) -> (c - y, c - x).
  auto diagonal = [](int32_t c, int32_t anti) {
    return [c, anti](int32_t x, int32_t y) {
      return anti ? std::pair{int64_t(c) - y, int64_t(c) - x}
                  : std::pair{int64_t(y) + c, int64_t(x) - c};
    };
  };

  struct Case {
    const char* group;
    int32_t periodX, periodY;  // the tile of a cell of side 40
  };
  EXPECT_EQ(Wall{ReadPicture(in)}.PeriodX(), 0) << "the input has no period";
  for (const Case& c : {Case{"", 80, 80}, Case{"pm", 80, 40}, Case{"pg", 80, 40}, Case{"p2", 80, 40},
                        Case{"pmm", 80, 80}, Case{"cm", 40, 40}, Case{"p4g", 80, 80},
                        Case{"cmm", 80, 80}}) {
    SCOPED_TRACE(c.group);
    const std::string g = c.group;
    const FilePicture out =
        Apply(in, g.empty() ? std::vector<std::string>{} : std::vector<std::string>{"--group", g});
    const Wall wall{out};
    const int32_t px = wall.PeriodX(), py = wall.PeriodY();
    EXPECT_EQ(px, c.periodX);
    EXPECT_EQ(py, c.periodY);
    if (px == 0 || py == 0) continue;
    if (g == "pm" || g == "pmm" || g == "cmm") {
      EXPECT_TRUE(wall.Exists2(0, 2 * px, 0, 1, mirrorX)) << "a mirror across the rows";
    }
    if (g == "pmm" || g == "cmm") {
      EXPECT_TRUE(wall.Exists2(0, 1, 0, 2 * py, mirrorY)) << "a mirror across the columns";
    }
    if (g == "" || g == "p2" || g == "pmm" || g == "cmm" || g == "p4g") {
      EXPECT_TRUE(wall.Exists2(0, 2 * px, 0, 2 * py, halfTurn)) << "a half turn";
    }
    if (g == "" || g == "p4g") {
      EXPECT_TRUE(wall.Exists2(0, px + py, -px, py, quarterTurn)) << "a quarter turn";
    }
    if (g == "cm" || g == "p4g") {
      EXPECT_TRUE(wall.Exists2(-out.height, out.width + out.height, 0, 2, diagonal))
          << "a diagonal mirror";
    }
    if (g == "pg") {
      auto glide = [px](int32_t, int32_t b) {
        return [px, b](int32_t x, int32_t y) {
          return std::pair{int64_t(x) + px / 2, int64_t(b) - y};
        };
      };
      EXPECT_TRUE(wall.Exists2(0, 1, 0, 2 * py, glide))
          << "a glide: half a period along, mirrored across";
    }
    if (g == "pm" || g == "p2" || g == "pg") {
      EXPECT_FALSE(wall.Exists2(0, 2 * px, 0, 2 * py, quarterTurn)) << "no more than its own";
    }
  }
  // The hexagonal groups are sampled, but their tile still repeats exactly.
  for (const char* group : {"p3", "p31m", "p6", "p6m"}) {
    const Wall wall{Apply(in, {"--group", group})};
    EXPECT_GT(wall.PeriodX(), 0) << group;
    EXPECT_GT(wall.PeriodY(), 0) << group;
  }
}

// P1 with a sheared cell, through a saved parameters block: each band of
// tiles is moved by the shear, and inside the parallelogram the picture is
// its own cell, the bands meeting without a seam.
TEST_F(Tessaris, ShearedP1RepeatsWithItsRowShift) {
  const std::string in = Input("in.png", 240, 200);
  const std::string params = dir.File("p1.params");
  auto record = [&](TileRecord* r, bool write) {
    std::ifstream file(params, std::ios::binary);
    std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
    ParamsBlock block;
    std::string error;
    ASSERT_TRUE(DecodeParams(bytes.data(), bytes.size(), &block, &error)) << error;
    ASSERT_EQ(block.bytes.size(), sizeof(TileRecord));
    if (!write) {
      std::memcpy(r, block.bytes.data(), sizeof *r);
      return;
    }
    std::memcpy(block.bytes.data(), r, sizeof *r);
    bytes = EncodeParams(block);
    dir.Write("p1.params", std::string(bytes.begin(), bytes.end()));
  };
  Apply(in, {"--group", "p1", "--params", params});
  TileRecord r;
  record(&r, false);
  r.cellShear = 0.3;
  record(&r, true);

  const FilePicture out = Apply(in, {"--params", params, "--no-dialog"});
  record(&r, false);  // the cell the run used
  const SymmetryParams& cell = r.cell;
  ASSERT_GT(cell.shear, 0);
  const Wall wall{out};
  EXPECT_EQ(wall.PeriodX(), cell.width);
  EXPECT_EQ(wall.PeriodY(cell.shear % cell.width), cell.height);
  EXPECT_EQ(wall.PeriodY(0), 0) << "no plain vertical period";
  const FilePicture original = ReadPicture(in);
  for (int32_t row = 0; row < cell.height; ++row) {
    const int32_t edge = cell.cellX + cell.shear * row / cell.height, y = cell.cellY + row;
    for (int32_t x = edge + 1; x < edge + cell.width - 1; ++x)
      ASSERT_EQ(0, std::memcmp(&out.pixels[(size_t(y) * 240 + size_t(x)) * 3],
                               &original.pixels[(size_t(y) * 240 + size_t(x)) * 3], 3))
          << x << "," << y;
  }
}

TEST_F(Tessaris, GreyRgbAndCmykPicturesRun) {
  const std::pair<PixelMode, std::vector<std::string>> cases[] = {
      {PixelMode::kGrey, {}}, {PixelMode::kRGB, {"--mode", "cmyk"}}, {PixelMode::kGrey, {"--mode", "rgb"}}};
  for (const auto& [file, mode] : cases) {
    const std::string in = Input("in.png", 200, 90, file);
    EXPECT_EQ(Wall{Apply(in, mode)}.PeriodX(), 60) << "Normal at full opacity: the tile alone";
    std::vector<std::string> soft = mode;
    soft.insert(soft.end(), {"--feather", "60", "--tile-mode", "multiply"});
    EXPECT_EQ(Wall{Apply(in, soft)}.PeriodX(), 0) << "Multiply keeps the image under the tile";
  }
}

// A BMP source in each host mode: the picture is brought to the host's mode
// when it is loaded (grey by the weights 3, 6, 1 scaled by 3277 / 2^15, CMYK
// through the colour layer), so every output pixel is a converted colour of
// the source, and the mother cell shows the source's pixels, so converted,
// in place.
TEST_F(Tessaris, BmpSourceMakesTheTileAndAnRleFileIsRefused) {
  using testing::BmpSpec;
  BmpSpec spec;
  spec.width = 90, spec.height = 80, spec.bits = 8;
  for (int i = 0; i < 256; ++i) spec.palette.push_back({uint8_t(i), uint8_t(255 - i), 77});
  for (int32_t y = 0; y < 80; ++y)
    for (int32_t x = 0; x < 90; ++x) spec.pixels.push_back(uint32_t((x * 7 + y * 13) % 256));
  const std::string source = dir.Write("source.bmp", testing::MakeBmp(spec));
  const std::string in = Input("in.png", 200, 150);

  // Palette entry i as the output file holds it: grey as it is, RGB red
  // first, CMYK stored by the host inverted and written as RGB by its rule.
  auto written = [&](PixelMode mode, int i) {
    const auto& c = spec.palette[size_t(i)];  // blue, green, red
    HostImage pixel;
    pixel.width = pixel.height = 1;
    pixel.mode = mode;
    pixel.planes = PlanesOf(mode);
    if (mode == PixelMode::kGrey) {
      pixel.pixels = {uint8_t(((3 * c[2] + 6 * c[1] + c[0]) * 3277) >> 15)};
    } else if (mode == PixelMode::kRGB) {
      pixel.pixels = {c[0], c[1], c[2]};
    } else {
      uint8_t ink[4];
      EXPECT_EQ(CLRPixelsRGBToCMYK(c.data(), 3, ink, 4, 1, 1), 1);
      for (uint8_t v : ink) pixel.pixels.push_back(uint8_t(255 - v));
    }
    const FilePicture file =
        ToFilePicture(pixel, mode == PixelMode::kGrey ? PixelMode::kGrey : PixelMode::kRGB);
    uint32_t key = 0;
    for (uint8_t v : file.pixels) key = key << 8 | v;
    return key;
  };
  for (PixelMode mode : {PixelMode::kRGB, PixelMode::kGrey, PixelMode::kCMYK}) {
    SCOPED_TRACE(ModeName(mode));
    const FilePicture out = Apply(in, {"--source", source, "--mode", ModeName(mode)});
    const int n = mode == PixelMode::kGrey ? 1 : 3;
    ASSERT_EQ(out.pixels.size(), size_t(200 * 150 * n));
    auto at = [&](int32_t x, int32_t y) {
      uint32_t key = 0;
      const uint8_t* p = &out.pixels[(size_t(y) * 200 + size_t(x)) * size_t(n)];
      for (int c = 0; c < n; ++c) key = key << 8 | p[c];
      return key;
    };
    std::set<uint32_t> palette;
    for (int i = 0; i < 256; ++i) palette.insert(written(mode, i));
    for (int32_t y = 0; y < 150; ++y)
      for (int32_t x = 0; x < 200; ++x) ASSERT_TRUE(palette.count(at(x, y))) << x << "," << y;
    EXPECT_EQ(Wall{out}.PeriodX(), 2 * (80 / 3)) << "the cell is a third of the source";
    // The cell: a square of side 26 centred in the source, at (32, 27).
    for (int32_t y = 27; y < 27 + 26; ++y)
      for (int32_t x = 32; x < 32 + 26; ++x)
        ASSERT_EQ(at(x, y), written(mode, (x * 7 + y * 13) % 256)) << x << "," << y;
  }

  spec.compression = 1;
  const std::string rle = dir.Write("rle.bmp", testing::MakeBmp(spec));
  const std::string out2 = dir.File("rle.png");
  RunResult r = Run({"apply", "tessaris", in, out2, "--source", rle});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_TRUE(Contains(r.err, "[message box] Tessaris Warning: " + rle +
                                  " is not a valid source file.\r\nOnly non-compressed BMP "
                                  "files are supported."))
      << r.err;
  EXPECT_EQ(ReadPicture(out2).pixels, Apply(in, {}).pixels) << "the image itself is the source";
}

// The signal comes while fancyhost waits before its first continue, the one
// that builds the tile: the build sees the abort at once.
TEST_F(Tessaris, CtrlCDuringTheTileCancelsAndWritesNothing) {
  const std::string in = Input("in.png", 120, 64);
  const std::string out = dir.File("out.png");
  bool sent = false;
  RunResult r = RunInterruptedAt({"apply", "tessaris", in, out, "--trace"}, dir.File("home"), "400",
                                 "call 3 result 0", &sent);
  ASSERT_TRUE(sent) << r.out;
  EXPECT_EQ(r.exitCode, 130) << r.err;
  const std::vector<std::string> lines = Lines(r.out);
  const auto first4 = std::find_if(lines.begin(), lines.end(),
                                   [](const std::string& l) { return l.rfind("call 4 ", 0) == 0; });
  ASSERT_NE(first4, lines.end()) << r.out;
  EXPECT_EQ(*first4, "call 4 result -128") << "cancelled in the tile's own step";
  EXPECT_TRUE(Contains(r.out, "call 5 result 0")) << r.out;
  EXPECT_FALSE(Exists(out));
}

TEST_F(Tessaris, PicturesUnderFiftyPixelsAreRefused) {
  for (auto [w, h] : {std::pair{49, 120}, std::pair{120, 49}}) {
    const std::string in = Input("small.png", w, h);
    const std::string out = dir.File("small-out.png");
    RunResult r = Run({"apply", "tessaris", in, out});
    EXPECT_EQ(r.exitCode, 130) << r.err;
    EXPECT_TRUE(Contains(r.err, "Image is too small.  Try loading a different image.")) << r.err;
    EXPECT_FALSE(Exists(out));
  }
  // The filtered rectangle is what counts.
  const std::string in = Input("big.png", 120, 120);
  RunResult r = Run({"apply", "tessaris", in, dir.File("o.png"), "--rect", "0,0,120,40"});
  EXPECT_EQ(r.exitCode, 130) << r.err;
}

TEST_F(Tessaris, OptionsAreKeptInTheParametersAndRepeated) {
  const std::string in = Input("in.png", 200, 100);
  const std::string params = dir.File("t.params");
  const FilePicture first =
      Apply(in, {"--group", "pgg", "--tile-mode", "screen", "--opacity", "60", "--params", params});
  const FilePicture repeat = Apply(in, {"--params", params, "--no-dialog"});
  EXPECT_EQ(repeat.pixels, first.pixels);
  const FilePicture changed = Apply(in, {"--params", params, "--opacity", "100"});
  EXPECT_NE(changed.pixels, first.pixels);

  for (const std::vector<std::string>& bad :
       {std::vector<std::string>{"--group", "p7"}, {"--tile-mode", "overlay"}, {"--opacity", "0"},
        {"--feather", "101"}}) {
    std::vector<std::string> args = {"apply", "tessaris", in, dir.File("x.png")};
    args.insert(args.end(), bad.begin(), bad.end());
    EXPECT_EQ(Run(args).exitCode, 2) << bad[0] << " " << bad[1];
  }
  EXPECT_EQ(Run({"apply", "brushka", in, dir.File("x.png"), "--group", "p4"}).exitCode, 2);
  EXPECT_FALSE(Exists(dir.File("x.png")));
}

}  // namespace
}  // namespace fancy
