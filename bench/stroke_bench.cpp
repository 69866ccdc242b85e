// Paint Brushka from end to end: a whole run of the stroke engine (both
// passes, as a host drives them row by row) over a 4000 x 3000 RGB picture
// that looks like a photograph (smooth sky, hills, water, fine grain), at
// densities 20, 60 and 100 with each shipped brush, in the Default style's
// other settings. Also the three layerings with one brush, since Random
// layering inserts each stroke at a random place among the open ones.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "bench_util.h"
#include "frame/effect_record.h"
#include "frame/host_record.h"
#include "platform/crt_random.h"
#include "stroke/placement.h"
#include "stroke/stroke_engine.h"
#include "stroke/style_model.h"

namespace fancy {
namespace {

constexpr int32_t kWidth = 4000;
constexpr int32_t kHeight = 3000;

const char* const kBrushes[] = {"round-soft.bmp", "round-hard.bmp", "flat-bristle.bmp",
                                "dry-bristle.bmp", "spatter.bmp", "palette-knife.bmp"};

// The shipped brushes, found from this file's place in the source tree.
std::string BrushPath(const char* name) {
  std::string here = __FILE__;
  size_t cut = here.rfind("/bench/");
  return (cut == std::string::npos ? std::string(".") : here.substr(0, cut)) +
         "/data/plugins/brushes/" + name;
}

// Blue, green, red a pixel, as the host hands rows.
const std::vector<uint8_t>& Photograph() {
  static const std::vector<uint8_t> pixels = [] {
    std::vector<uint8_t> p(static_cast<size_t>(kWidth) * kHeight * 3);
    CrtSrand(1234);
    for (int32_t y = 0; y < kHeight; ++y) {
      const double v = static_cast<double>(y) / kHeight;
      for (int32_t x = 0; x < kWidth; ++x) {
        const double u = static_cast<double>(x) / kWidth;
        const double hill = 0.45 + 0.06 * std::sin(u * 9.0) + 0.03 * std::sin(u * 23.0 + 1.0);
        double r, g, b;
        if (v < hill) {  // sky, lighter toward the horizon, with clouds
          const double cloud = 0.5 + 0.5 * std::sin(u * 17.0 + std::sin(v * 11.0) * 3.0) *
                                         std::sin(v * 29.0 + u * 5.0);
          r = 60 + 150 * v + 40 * cloud, g = 90 + 120 * v + 40 * cloud, b = 200 + 40 * cloud;
        } else if (v < 0.62) {  // hills
          r = 60 + 40 * std::sin(u * 40.0), g = 110 + 50 * std::sin(v * 80.0 + u * 30.0), b = 50;
        } else {  // water reflecting the sky
          const double ripple = std::sin(v * 400.0 + std::sin(u * 60.0) * 2.0);
          r = 70 + 30 * ripple, g = 90 + 30 * ripple, b = 150 + 40 * ripple;
        }
        const double grain = (CrtRand() % 17) - 8;
        uint8_t* px = &p[(static_cast<size_t>(y) * kWidth + x) * 3];
        px[0] = static_cast<uint8_t>(std::fmin(255.0, std::fmax(0.0, b + grain)));
        px[1] = static_cast<uint8_t>(std::fmin(255.0, std::fmax(0.0, g + grain)));
        px[2] = static_cast<uint8_t>(std::fmin(255.0, std::fmax(0.0, r + grain)));
      }
    }
    return p;
  }();
  return pixels;
}

// The Default style's settings, with the brush, density and layering asked.
StrokeRecord Style(const char* brush, int32_t density, int32_t layering) {
  StrokeRecord s{};
  s.head = {kFilterBrushka, kClassStroke};
  std::snprintf(s.brushPath, sizeof s.brushPath, "%s", BrushPath(brush).c_str());
  s.layering = layering;
  s.density = density;
  s.seed = 7;
  s.horizontalVariation = s.verticalVariation = 80;
  s.hueVariation = 2;
  s.saturationVariation = 6;
  s.brightnessVariation = 5;
  s.size = {kChoiceRandomly, 25, 45, 0};
  s.angle = {kChoiceNoVariation, -30, 0, 25};
  s.transparency = {kChoiceNoVariation, 0, 0, 0};
  s.xDistVal = s.yDistVal = 0.5;
  return s;
}

void Run(benchmark::State& state, const char* brush, int32_t layering) {
  const int32_t density = static_cast<int32_t>(state.range(0));
  std::vector<uint8_t> canvas;
  FilterRecord record{};
  int64_t strokes = StrokeGridOf(kWidth, kHeight, density).count;
  for (auto _ : state) {
    state.PauseTiming();
    canvas = Photograph();
    StrokeRecord style = Style(brush, density, layering);
    state.ResumeTiming();
    if (StrokePaintPicture(&record, &style, canvas.data(), kWidth, kHeight, kWidth * 3) != 0)
      state.SkipWithError("the run failed");
    benchmark::DoNotOptimize(canvas.data());
  }
  const double pixels = static_cast<double>(kWidth) * kHeight;
  bench::ReportPixelRate(state, pixels, static_cast<size_t>(pixels) * 3);
  state.counters["strokes"] = static_cast<double>(strokes);
  state.counters["strokes/s"] =
      benchmark::Counter(static_cast<double>(strokes), benchmark::Counter::kIsIterationInvariantRate);
}

void Densities(benchmark::internal::Benchmark* b) {
  b->Arg(20)->Arg(60)->Arg(100)->Unit(benchmark::kMillisecond)->Iterations(1);
}

BENCHMARK_CAPTURE(Run, round_soft, kBrushes[0], kLayeringOrdered)->Apply(Densities);
BENCHMARK_CAPTURE(Run, round_hard, kBrushes[1], kLayeringOrdered)->Apply(Densities);
BENCHMARK_CAPTURE(Run, flat_bristle, kBrushes[2], kLayeringOrdered)->Apply(Densities);
BENCHMARK_CAPTURE(Run, dry_bristle, kBrushes[3], kLayeringOrdered)->Apply(Densities);
BENCHMARK_CAPTURE(Run, spatter, kBrushes[4], kLayeringOrdered)->Apply(Densities);
BENCHMARK_CAPTURE(Run, palette_knife, kBrushes[5], kLayeringOrdered)->Apply(Densities);
BENCHMARK_CAPTURE(Run, flat_bristle_random, kBrushes[2], kLayeringRandom)->Apply(Densities);
BENCHMARK_CAPTURE(Run, flat_bristle_paint, kBrushes[2], kLayeringPaint)->Apply(Densities);

}  // namespace
}  // namespace fancy
BENCHMARK_MAIN();
