// Glass and The Knurl on a 4000 x 3000 RGB picture whose selection, a disc
// in the middle, covers a third of it, for bevel widths 10, 30 and 100. The
// engine runs as in a host: the selection and the rows come band by band
// through advanceState, served from memory by a small host of the
// benchmark's own.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "bench_util.h"
#include "frame/result_codes.h"
#include "relief/relief_run.h"

namespace fancy {
namespace {

constexpr int32_t kWidth = 4000;
constexpr int32_t kHeight = 3000;
constexpr int32_t kPlanes = 3;

struct BenchHost {
  FilterRecord record{};
  std::vector<uint8_t> image, mask;
  std::vector<uint8_t> in, out;
  Rect16 pendingOut{};
};
BenchHost* gHost = nullptr;

bool Empty(const Rect16& r) { return r.bottom <= r.top || r.right <= r.left; }

// Hands out what the record asks for, after taking back the last rows.
OSErr Advance() {
  BenchHost& h = *gHost;
  FilterRecord& r = h.record;
  const size_t imageRow = size_t{kWidth} * kPlanes;
  if (!Empty(h.pendingOut)) {
    const size_t bytes = size_t(h.pendingOut.right - h.pendingOut.left) * kPlanes;
    for (int32_t y = h.pendingOut.top; y < h.pendingOut.bottom; ++y)
      std::memcpy(&h.image[y * imageRow + size_t(h.pendingOut.left) * kPlanes],
                  &h.out[size_t(y - h.pendingOut.top) * bytes], bytes);
    h.pendingOut = Rect16{};
  }
  auto serve = [&](const Rect16& rect, const std::vector<uint8_t>& from, size_t planes,
                   std::vector<uint8_t>* to, int32_t* rowBytes) -> void* {
    if (Empty(rect)) return nullptr;
    const size_t bytes = size_t(rect.right - rect.left) * planes;
    to->resize(bytes * size_t(rect.bottom - rect.top));
    for (int32_t y = rect.top; y < rect.bottom; ++y)
      std::memcpy(&(*to)[size_t(y - rect.top) * bytes],
                  &from[size_t(y) * kWidth * planes + size_t(rect.left) * planes], bytes);
    *rowBytes = int32_t(bytes);
    return to->data();
  };
  r.inData = serve(r.inRect, h.image, kPlanes, &h.in, &r.inRowBytes);
  r.outData = serve(r.outRect, h.image, kPlanes, &h.out, &r.outRowBytes);
  h.pendingOut = r.outRect;
  static std::vector<uint8_t> maskRows;
  r.maskData = serve(r.maskRect, h.mask, 1, &maskRows, &r.maskRowBytes);
  return 0;
}

BenchHost* MakeHost() {
  static BenchHost host;
  if (!host.image.empty()) return &host;
  host.image.resize(size_t{kWidth} * kHeight * kPlanes);
  host.mask.resize(size_t{kWidth} * kHeight);
  uint32_t state = 12345;
  for (uint8_t& byte : host.image) {
    state = state * 1103515245u + 12345u;
    byte = uint8_t(state >> 16);
  }
  // A disc of a third of the picture's area.
  const double radius2 = kWidth * double(kHeight) / 3.0 / 3.14159265;
  for (int32_t y = 0; y < kHeight; ++y)
    for (int32_t x = 0; x < kWidth; ++x) {
      const double dx = x - kWidth / 2.0, dy = y - kHeight / 2.0;
      host.mask[size_t(y) * kWidth + x] = dx * dx + dy * dy < radius2 ? 255 : 0;
    }
  FilterRecord& r = host.record;
  r.imageSize = Point16{int16_t(kHeight), int16_t(kWidth)};
  r.planes = kPlanes;
  r.filterRect = Rect16{0, 0, int16_t(kHeight), int16_t(kWidth)};
  r.imageMode = kModeRGB;
  r.haveMask = 1;
  r.advanceState = &Advance;
  r.foreColor[0] = 200;
  return &host;
}

void BM_Relief(benchmark::State& state, int32_t filterId) {
  gHost = MakeHost();
  ReliefJob job{};
  job.filterId = filterId;
  ReliefParams& p = job.params;
  // The effects' "Defaults" styles, with the bevel width of the run.
  if (filterId == kFilterKnurl) {
    p.height = 30, p.smoothness = 3, p.dropOff = 0, p.brightness = 60, p.sharpness = 30;
    p.direction = 135, p.angle = 45;
  } else {
    p.refraction = 70, p.colour = 2, p.opacity = 50, p.smoothness = 3, p.dropOff = 1;
    p.brightness = 65, p.sharpness = 40, p.direction = 135, p.angle = 50;
  }
  p.bevelWidth = int16_t(state.range(0));
  for (auto _ : state) {
    int16_t result = ReliefRun(&gHost->record, job);
    if (result != kNoError) state.SkipWithError("the relief run failed");
    benchmark::DoNotOptimize(gHost->image.data());
  }
  bench::ReportPixelRate(state, double(kWidth) * kHeight, size_t{kWidth} * kHeight * kPlanes);
}

BENCHMARK_CAPTURE(BM_Relief, Glass, kFilterGlass)
    ->Arg(10)->Arg(30)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Relief, Knurl, kFilterKnurl)
    ->Arg(10)->Arg(30)->Arg(100)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace fancy

BENCHMARK_MAIN();
