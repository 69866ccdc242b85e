// The device edges over pixel arrays, as the imaging layer calls them, with
// no system profile: the arithmetic fallbacks. One image of 1024 x 256
// pixels a run, converted row by row as an image pass does (one scratch row
// kept across the rows for the Lab edges), and also in one call.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "bench_util.h"
#include "colour/clr_pixels.h"
#include "platform/crt_random.h"

namespace fancy {
namespace {

constexpr int kWidth = 1024;
constexpr int kHeight = 256;

std::vector<uint8_t> RandomBytes(size_t size) {
  CrtSrand(61);
  std::vector<uint8_t> bytes(size);
  for (uint8_t& b : bytes) b = static_cast<uint8_t>(CrtRand() >> 3);
  return bytes;
}

enum Edge { kRGBToCMYK, kCMYKToRGB, kRGBToLab, kLabToRGB };

int BytesIn(Edge edge) { return edge == kCMYKToRGB ? 4 : 3; }
int BytesOut(Edge edge) { return edge == kRGBToCMYK ? 4 : 3; }

void Run(Edge edge, const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst, ptrdiff_t dstStride,
         int height, CLRScratchRow* scratch) {
  switch (edge) {
    case kRGBToCMYK: CLRPixelsRGBToCMYK(src, srcStride, dst, dstStride, kWidth, height); break;
    case kCMYKToRGB: CLRPixelsCMYKToRGB(src, srcStride, dst, dstStride, kWidth, height); break;
    case kRGBToLab: CLRPixelsRGBToLab(src, srcStride, dst, dstStride, kWidth, height, scratch); break;
    case kLabToRGB: CLRPixelsLabToRGB(src, srcStride, dst, dstStride, kWidth, height, scratch); break;
  }
}

// state.range(0): 1 converts row by row, 0 the whole image in one call.
void BM_DeviceEdge(benchmark::State& state, Edge edge) {
  bool byRow = state.range(0) != 0;
  ptrdiff_t srcStride = kWidth * BytesIn(edge), dstStride = kWidth * BytesOut(edge);
  std::vector<uint8_t> src = RandomBytes(static_cast<size_t>(srcStride * kHeight));
  std::vector<uint8_t> dst(static_cast<size_t>(dstStride * kHeight));
  CLRScratchRow scratch;
  for (auto _ : state) {
    if (byRow) {
      for (int y = 0; y < kHeight; ++y)
        Run(edge, src.data() + y * srcStride, srcStride, dst.data() + y * dstStride, dstStride, 1,
            &scratch);
    } else {
      Run(edge, src.data(), srcStride, dst.data(), dstStride, kHeight, &scratch);
    }
    benchmark::DoNotOptimize(dst.data());
    benchmark::ClobberMemory();
  }
  CLRScratchRelease(&scratch);
  double pixels = static_cast<double>(kWidth) * kHeight;
  bench::ReportPixelRate(state, pixels, static_cast<size_t>((srcStride + dstStride) * kHeight));
}

BENCHMARK_CAPTURE(BM_DeviceEdge, RGBToCMYK, kRGBToCMYK)->Arg(0)->Arg(1);
BENCHMARK_CAPTURE(BM_DeviceEdge, CMYKToRGB, kCMYKToRGB)->Arg(0)->Arg(1);
BENCHMARK_CAPTURE(BM_DeviceEdge, RGBToLab, kRGBToLab)->Arg(0)->Arg(1);
BENCHMARK_CAPTURE(BM_DeviceEdge, LabToRGB, kLabToRGB)->Arg(0)->Arg(1);

}  // namespace
}  // namespace fancy

BENCHMARK_MAIN();
