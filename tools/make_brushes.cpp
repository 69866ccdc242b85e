// make_brushes: draws the brush files that ship with Paint Brushka.
//
//   make_brushes OUTPUT_DIR
//
// Each brush is an 8-bit BMP with a grey table whose values are the
// stroke's coverage (0 nothing, 255 full), with a width that is a multiple
// of four and a border of zeros. Brushes are drawn as they are seen in use:
// the engine takes the file's rows in stored order from the top of the
// stroke down, so row 0 here is written first (and an image viewer shows
// the file upside down). The noise comes from the C runtime's generator
// with fixed seeds, so the files come out the same on every system.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "imaging/bmp_header.h"
#include "platform/crt_random.h"
#include "platform/file.h"
#include "platform/path.h"

namespace fancy {
namespace {

struct Brush {
  int32_t width;
  int32_t height;
  std::vector<double> value;  // 0..1, row 0 the top of the stroke

  double& at(int32_t x, int32_t y) { return value[static_cast<size_t>(y) * width + x]; }
};

Brush MakeBrush(int32_t width, int32_t height) {
  return Brush{width, height, std::vector<double>(static_cast<size_t>(width) * height, 0.0)};
}

double Uniform() { return CrtRand() / 32767.0; }

double Smoothstep(double edge0, double edge1, double x) {
  const double t = std::clamp((x - edge0) / (edge1 - edge0), 0.0, 1.0);
  return t * t * (3.0 - 2.0 * t);
}

// Smooth noise along one axis: values at knots every `step`, eased between.
std::vector<double> NoiseLine(int32_t length, double step, double low, double high) {
  const int32_t knots = static_cast<int32_t>(length / step) + 2;
  std::vector<double> k(static_cast<size_t>(knots));
  for (double& v : k) v = low + (high - low) * Uniform();
  std::vector<double> line(static_cast<size_t>(length));
  for (int32_t i = 0; i < length; ++i) {
    const double p = i / step;
    const int32_t a = static_cast<int32_t>(p);
    const double f = Smoothstep(0.0, 1.0, p - a);
    line[static_cast<size_t>(i)] = k[static_cast<size_t>(a)] * (1.0 - f) + k[static_cast<size_t>(a) + 1] * f;
  }
  return line;
}

// A round brush: full inside `hard` of the radius, falling to 0 at the rim.
Brush Round(int32_t size, double hard) {
  Brush b = MakeBrush(size, size);
  const double c = (size - 1) / 2.0, radius = size / 2.0 - 1.5;
  for (int32_t y = 0; y < size; ++y)
    for (int32_t x = 0; x < size; ++x) {
      const double r = std::hypot(x - c, y - c) / radius;
      b.at(x, y) = 1.0 - Smoothstep(hard, 1.0, r);
    }
  return b;
}

// The outline of a flat brush: a long rounded bar whose ends taper, the
// leading (left) end rounder than the trailing one.
double FlatOutline(double x, double y, int32_t width, int32_t height) {
  const double u = x / (width - 1), v = (y - (height - 1) / 2.0) / (height / 2.0 - 1.5);
  const double head = Smoothstep(0.0, 0.12, u);
  const double tail = Smoothstep(1.0, 0.72, u);
  const double halfWidth = 0.55 + 0.45 * std::min(Smoothstep(0.0, 0.18, u), Smoothstep(1.0, 0.6, u));
  return head * tail * (1.0 - Smoothstep(halfWidth * 0.8, halfWidth, std::fabs(v)));
}

// A flat bristle brush: the bar, streaked along its length by bristles of
// varying load.
Brush FlatBristle() {
  const int32_t w = 96, h = 32;
  Brush b = MakeBrush(w, h);
  CrtSrand(2);
  const std::vector<double> load = NoiseLine(h, 1.3, 0.55, 1.0);
  for (int32_t y = 0; y < h; ++y) {
    const std::vector<double> streak = NoiseLine(w, 9.0, 0.75, 1.0);
    for (int32_t x = 0; x < w; ++x)
      b.at(x, y) = FlatOutline(x, y, w, h) * load[static_cast<size_t>(y)] * streak[static_cast<size_t>(x)];
  }
  return b;
}

// A dry brush: the same bar with little paint, bristles that break off and
// leave gaps toward the trailing end.
Brush DryBristle() {
  const int32_t w = 96, h = 36;
  Brush b = MakeBrush(w, h);
  CrtSrand(3);
  for (int32_t y = 0; y < h; ++y) {
    const double load = 0.45 + 0.55 * Uniform();
    const double runsOut = 0.35 + 0.6 * Uniform();  // where this bristle's paint ends
    const std::vector<double> grain = NoiseLine(w, 11.0, 0.0, 1.0);
    for (int32_t x = 0; x < w; ++x) {
      const double u = static_cast<double>(x) / (w - 1);
      const double paint = 1.0 - Smoothstep(runsOut - 0.15, runsOut + 0.1, u);
      const double broken = Smoothstep(0.35, 0.5, grain[static_cast<size_t>(x)] + 0.4 * paint);
      b.at(x, y) = FlatOutline(x, y, w, h) * load * broken * (0.35 + 0.65 * paint);
    }
  }
  return b;
}

// Spatter: drops of several sizes, thicker toward the middle.
Brush Spatter() {
  const int32_t size = 64;
  Brush b = MakeBrush(size, size);
  CrtSrand(5);
  const double c = (size - 1) / 2.0;
  for (int32_t drop = 0; drop < 70; ++drop) {
    const double angle = Uniform() * 6.283185307179586;
    const double distance = 25.0 * std::sqrt(Uniform()) * (0.4 + 0.6 * Uniform());
    const double x0 = c + distance * std::cos(angle), y0 = c + distance * std::sin(angle);
    const double radius = 0.8 + 3.2 * Uniform() * Uniform() * (1.0 - distance / 30.0) + 0.4;
    const double strength = 0.6 + 0.4 * Uniform();
    for (int32_t y = 2; y < size - 2; ++y)
      for (int32_t x = 2; x < size - 2; ++x) {
        const double d = std::hypot(x - x0, y - y0);
        const double v = strength * (1.0 - Smoothstep(radius - 0.7, radius + 0.7, d));
        b.at(x, y) = std::max(b.at(x, y), v);
      }
  }
  return b;
}

// A palette knife: a smooth, hard-edged blade of paint, thick along its
// leading edge and thinning toward the trailing one, with a pointed tip.
Brush PaletteKnife() {
  const int32_t w = 92, h = 40;
  Brush b = MakeBrush(w, h);
  for (int32_t y = 0; y < h; ++y)
    for (int32_t x = 0; x < w; ++x) {
      const double u = static_cast<double>(x) / (w - 1);
      const double v = static_cast<double>(y) / (h - 1);
      // The blade: its upper edge straight, its lower edge rising to the tip.
      const double lower = 0.92 - 0.55 * Smoothstep(0.45, 1.0, u);
      const double inside = Smoothstep(0.06, 0.1, v) * (1.0 - Smoothstep(lower - 0.04, lower, v)) *
                            Smoothstep(0.0, 0.05, u) * (1.0 - Smoothstep(0.95, 0.985, u));
      const double thickness = 0.7 + 0.3 * (1.0 - v);  // thick at the leading edge
      const double ridge = 1.0 - 0.15 * Smoothstep(0.0, 1.0, std::fabs(v - 0.12) * 6.0) *
                                     Smoothstep(0.3, 0.9, u);
      b.at(x, y) = inside * thickness * ridge;
    }
  return b;
}

std::vector<uint8_t> EncodeBmp(const Brush& b) {
  const uint32_t table = 256 * 4, data = static_cast<uint32_t>(b.width * b.height);
  const uint32_t offset = kBmpFileHeaderBytes + kBmpInfoHeaderBytes + table;
  std::vector<uint8_t> out;
  // Uncompressed, 72 dots an inch.
  AppendBmpHeaders({.type = kBmpType,
                    .fileSize = offset + data,
                    .offBits = offset,
                    .headerSize = kBmpInfoHeaderBytes,
                    .width = b.width,
                    .height = b.height,
                    .planes = 1,
                    .bitCount = 8,
                    .imageSize = data,
                    .xPelsPerMeter = 2835,
                    .yPelsPerMeter = 2835,
                    .colorsUsed = 256},
                   out);
  for (uint32_t i = 0; i < 256; ++i) {
    for (int c = 0; c < 3; ++c) out.push_back(static_cast<uint8_t>(i));
    out.push_back(0);
  }
  for (int32_t y = 0; y < b.height; ++y)
    for (int32_t x = 0; x < b.width; ++x) {
      double v = b.value[static_cast<size_t>(y) * b.width + x];
      // The border stays empty, so that a stroke of size 0 leaves nothing.
      if (x == 0 || y == 0 || x == b.width - 1 || y == b.height - 1) v = 0.0;
      out.push_back(static_cast<uint8_t>(std::lround(std::clamp(v, 0.0, 1.0) * 255.0)));
    }
  return out;
}

}  // namespace
}  // namespace fancy

int main(int argc, char** argv) {
  using namespace fancy;
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_brushes OUTPUT_DIR\n");
    return 2;
  }
  const std::string dir = argv[1];
  if (!MakeDirectories(dir.c_str())) {
    std::fprintf(stderr, "make_brushes: cannot create %s\n", dir.c_str());
    return 1;
  }
  const std::pair<const char*, Brush> brushes[] = {
      {"round-soft.bmp", Round(64, 0.0)},     {"round-hard.bmp", Round(64, 0.85)},
      {"flat-bristle.bmp", FlatBristle()},    {"dry-bristle.bmp", DryBristle()},
      {"spatter.bmp", Spatter()},             {"palette-knife.bmp", PaletteKnife()},
  };
  for (const auto& [name, brush] : brushes) {
    if (brush.width % 4 != 0) {
      std::fprintf(stderr, "make_brushes: %s is %d wide, not a multiple of four\n", name, brush.width);
      return 1;
    }
    const std::vector<uint8_t> bytes = EncodeBmp(brush);
    const std::string path = JoinPath(dir, name);
    if (!WriteFileAtomic(path.c_str(), bytes.data(), bytes.size())) {
      std::fprintf(stderr, "make_brushes: cannot write %s\n", path.c_str());
      return 1;
    }
    std::printf("%s %d x %d\n", path.c_str(), brush.width, brush.height);
  }
  return 0;
}
