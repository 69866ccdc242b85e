// Throughput of CompositeImage on a 4000 x 3000 colour image: a plain copy,
// Multiply under a mask, and smooth resizing down to a third and up by 2.5,
// in megapixels a second beside memcpy of the bytes that the call must at
// least move (the larger of source and target).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "bench_util.h"
#include "imaging/composite.h"
#include "imaging/convert_image.h"
#include "imaging/merge.h"

namespace fancy {
namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;

Image* NewImage(int32_t type, int32_t width, int32_t height) {
  return ImageCreate(type, width, height, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
}

// A picture with some detail: gradients and a pattern.
Image* Picture() {
  Image* image = NewImage(kImageBGR24, kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    uint8_t* row = ImagePixelAddress(image, 0, y);
    for (int x = 0; x < kWidth; ++x) {
      row[3 * x] = static_cast<uint8_t>(x * 255 / kWidth);
      row[3 * x + 1] = static_cast<uint8_t>(y * 255 / kHeight);
      row[3 * x + 2] = static_cast<uint8_t>((x ^ y) & 255);
    }
  }
  return image;
}

void Report(benchmark::State& state, int64_t srcPixels, int64_t dstPixels) {
  double pixels = static_cast<double>(std::max(srcPixels, dstPixels));
  bench::ReportPixelRate(state, pixels, static_cast<size_t>(pixels) * 3);
}

void CopyMode0(benchmark::State& state) {
  ImagingInit();
  Image* src = Picture();
  Image* dst = NewImage(kImageBGR24, kWidth, kHeight);
  for (auto _ : state) {
    CompositeImage(nullptr, dst, 0, 0, kWidth, kHeight, nullptr, src, 0, 0, kWidth, kHeight,
                   nullptr, kMergeNormal);
    benchmark::ClobberMemory();
  }
  Report(state, int64_t{kWidth} * kHeight, int64_t{kWidth} * kHeight);
  ImageDestroy(src);
  ImageDestroy(dst);
  ImagingShutdown();
}

void MultiplyUnderMask(benchmark::State& state) {
  ImagingInit();
  Image* src = Picture();
  Image* dst = Picture();
  // A mask with clear, full and partial stretches on every row.
  Image* mask = NewImage(kImageMask, kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    uint8_t* row = ImagePixelAddress(mask, 0, y);
    for (int x = 0; x < kWidth; ++x) {
      int band = (x + y) / 250 % 3;
      row[x] = band == 0 ? 0 : band == 1 ? 255 : static_cast<uint8_t>(x & 255);
    }
  }
  ImageSetMask(dst, mask, nullptr, nullptr, nullptr);
  for (auto _ : state) {
    CompositeImage(nullptr, dst, 0, 0, kWidth, kHeight, nullptr, src, 0, 0, kWidth, kHeight,
                   nullptr, kMergeMultiply);
    benchmark::ClobberMemory();
  }
  Report(state, int64_t{kWidth} * kHeight, int64_t{kWidth} * kHeight);
  ImageDestroy(src);
  ImageDestroy(dst);
  ImagingShutdown();
}

// Smooth resizing to (w, h) by a plain copy (the scale copy) or, with
// `merge`, by Normal at opacity 254 (the merge path through a row image).
void Resize(benchmark::State& state, int32_t w, int32_t h, bool merge) {
  ImagingInit();
  Image* src = Picture();
  Image* dst = NewImage(kImageBGR24, w, h);
  DrawContext* context = DrawContextCreate();
  context->filterMode = kFilterSmooth;
  if (merge) context->opacity = 254;
  for (auto _ : state) {
    CompositeImage(context, dst, 0, 0, w, h, nullptr, src, 0, 0, kWidth, kHeight, nullptr,
                   kMergeNormal);
    benchmark::ClobberMemory();
  }
  Report(state, int64_t{kWidth} * kHeight, int64_t{w} * h);
  DrawContextFree(context);
  ImageDestroy(src);
  ImageDestroy(dst);
  ImagingShutdown();
}

void ShrinkToAThird(benchmark::State& state) { Resize(state, kWidth / 3, kHeight / 3, state.range(0)); }
void GrowByTwoAndAHalf(benchmark::State& state) {
  Resize(state, kWidth * 5 / 2, kHeight * 5 / 2, state.range(0));
}

// Error diffusion to a palette of 256 scattered colours: every pixel asks
// the palette lookup for its nearest entry.
void DiffuseToPalette(benchmark::State& state) {
  ImagingInit();
  Image* src = Picture();
  Palette* palette = PaletteCreate(kPaletteCustom, 256);
  uint32_t seed = 12345;
  for (int i = 0; i < 256; ++i) {
    PaletteEntry& e = PaletteEntries(palette)[i];
    seed = seed * 214013 + 2531011;
    e.blue = static_cast<uint8_t>(seed >> 16);
    e.green = static_cast<uint8_t>(seed >> 8);
    e.red = static_cast<uint8_t>(seed >> 24);
  }
  Image* dst = ImageCreatePaletted(palette, kWidth, kHeight, 8, 1, 0, 0, kStorageOptionOneCell,
                                   nullptr, nullptr);
  DrawContext* context = DrawContextCreate();
  context->ditherMode = kDitherDiffusion;
  for (auto _ : state) {
    ConvertImage(context, dst, 0, 0, src, 0, 0, kWidth, kHeight);
    benchmark::ClobberMemory();
  }
  Report(state, int64_t{kWidth} * kHeight, int64_t{kWidth} * kHeight);
  DrawContextFree(context);
  ImageDestroy(src);
  ImageDestroy(dst);
  PaletteFree(palette);
  ImagingShutdown();
}

BENCHMARK(CopyMode0)->Unit(benchmark::kMillisecond);
BENCHMARK(MultiplyUnderMask)->Unit(benchmark::kMillisecond);
BENCHMARK(ShrinkToAThird)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(GrowByTwoAndAHalf)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(DiffuseToPalette)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace fancy

BENCHMARK_MAIN();
