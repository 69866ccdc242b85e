// The tile effect's two inner loops: building a tile from its cell, for
// every group (tile megapixels per second), and merging the tile into
// image rows, for every mode (image megapixels per second). Each figure
// stands beside memcpy's rate for the bytes written.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "bench_util.h"
#include "tile/groups/groups.h"
#include "tile/tile_buffer.h"
#include "tile/tile_merge.h"
#include "tile/tile_pixel.h"

namespace {

using namespace fancy;

// A cell of about 200 pixels a side, RGB, smooth enough to be a picture.
void BM_BuildTile(benchmark::State& state) {
  const int32_t id = static_cast<int32_t>(state.range(0));
  std::unique_ptr<Symmetry> s = CreateSymmetry(id);
  if (auto* r = dynamic_cast<RectSymm*>(s.get())) {
    r->width = 200;
    r->height = 160;
  } else if (auto* p = dynamic_cast<ParallelogramSymm*>(s.get())) {
    p->width = 200;
    p->height = 160;
    p->shear = 70;
  } else {
    dynamic_cast<SizedSymm*>(s.get())->size = 200;
  }
  s->ComputeTileSize();
  s->ComputeCellExtent();
  s->ComputeRowShift();
  const int32_t sourceStride = s->extentWidth * 3;
  std::vector<uint8_t> source(static_cast<size_t>(sourceStride) * s->extentHeight);
  for (size_t i = 0; i < source.size(); ++i) source[i] = static_cast<uint8_t>(i * 7 + i / 997);
  const int32_t tileStride = s->tileWidth * 3;
  std::vector<uint8_t> tile(static_cast<size_t>(tileStride) * s->tileHeight);
  for (auto _ : state) {
    const int16_t result = s->BuildTile(source.data(), sourceStride, kTilePixelRgb, 0, tile.data(),
                                        tileStride, kTilePixelRgb, nullptr);
    if (result != 0) state.SkipWithError("BuildTile failed");
    benchmark::DoNotOptimize(tile.data());
  }
  state.SetLabel(std::to_string(s->tileWidth) + "x" + std::to_string(s->tileHeight));
  bench::ReportPixelRate(state, double(s->tileWidth) * s->tileHeight, tile.size());
}
BENCHMARK(BM_BuildTile)->DenseRange(kGroupFirst, kGroupLast)->Unit(benchmark::kMicrosecond);

// A one-row RGB tile over bytes, merged with the mode and opacity.
TileBuffer RgbTileRow(std::vector<uint8_t>& bytes, int32_t width, int32_t mode, int32_t opacity) {
  TileBuffer tile{};
  tile.data = bytes.data();
  tile.rowBytes = static_cast<int32_t>(bytes.size());
  tile.pixelType = kTilePixelRgb;
  tile.bytesPerPixel = 3;
  tile.width = width;
  tile.height = 1;
  tile.mode = static_cast<int16_t>(mode);
  tile.opacity = static_cast<uint8_t>(opacity);
  return tile;
}

// One image row of 4096 RGB pixels from a tile 300 pixels wide, at full
// opacity (range 1 = 100) and at 60 percent.
void BM_MergeRow(benchmark::State& state) {
  constexpr int32_t kTileWidth = 300, kRow = 4096;
  std::vector<uint8_t> tileBytes(static_cast<size_t>(TileRowBytes(kTilePixelRgb, kTileWidth)));
  for (size_t i = 0; i < tileBytes.size(); ++i) tileBytes[i] = static_cast<uint8_t>(i * 13);
  const TileBuffer tile = RgbTileRow(tileBytes, kTileWidth, static_cast<int32_t>(state.range(0)),
                                     static_cast<int32_t>(state.range(1)));
  std::vector<uint8_t> image(kRow * 3), out(kRow * 3);
  for (size_t i = 0; i < image.size(); ++i) image[i] = static_cast<uint8_t>(i * 5 + i / 301);
  for (auto _ : state) {
    if (!MergeRow(tile, image.data(), out.data(), 17, 0, kRow, kTilePixelRgb, 0, 0)) {
      state.SkipWithError("MergeRow failed");
    }
    benchmark::DoNotOptimize(out.data());
  }
  bench::ReportPixelRate(state, kRow, out.size());
}
BENCHMARK(BM_MergeRow)
    ->ArgsProduct({benchmark::CreateDenseRange(kTileModeFirst, kTileModeLast, 1), {100, 60}});

// The preview's walk: every third pixel and a fraction.
void BM_MergeRowPreview(benchmark::State& state) {
  constexpr int32_t kTileWidth = 300, kRow = 1024;
  std::vector<uint8_t> tileBytes(static_cast<size_t>(TileRowBytes(kTilePixelRgb, kTileWidth)));
  const TileBuffer tile = RgbTileRow(tileBytes, kTileWidth, kTileModeNormal, 60);
  std::vector<uint8_t> image(kRow * 3), out(kRow * 3);
  for (auto _ : state) {
    MergeRow(tile, image.data(), out.data(), 0, 0, kRow, kTilePixelRgb, 25000, 2);
    benchmark::DoNotOptimize(out.data());
  }
  bench::ReportPixelRate(state, kRow, out.size());
}
BENCHMARK(BM_MergeRowPreview);

}  // namespace

BENCHMARK_MAIN();
