// Tessaris from end to end: selectors 1 to 5 through the in-process test
// host on a 4000 x 3000 RGB image, the default cell (a third of the shorter
// side), for Pm, P4g and P6m without feather and with the whole feather the
// cell allows. The figure is image megapixels per second, beside memcpy's
// rate for the image's bytes; the host's own row copies are in it. The
// engine alone (set-up, tile, and every row merged in place, no host) is
// measured beside it.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "bench_util.h"
#include "frame/result_codes.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/test_host.h"
#include "tile/symmetry.h"
#include "tile/tile_record.h"
#include "tile/tile_run.h"
#include "tile/tile_state.h"

namespace {

using namespace fancy;

constexpr int32_t kWidth = 4000, kHeight = 3000;

void BM_TessarisRun(benchmark::State& state) {
  const int32_t group = static_cast<int32_t>(state.range(0));
  const int32_t feather = static_cast<int32_t>(state.range(1));
  testing::ConfigFolder config;
  testing::MessageBoxRecorder boxes;
  testing::TestHost host(kFilterTessaris, kWidth, kHeight, kModeRGB);
  // The record as a dialog closed with OK leaves it, with the group and
  // feather set; the block stays with the host from run to run.
  if (host.Run() != kNoError) {
    state.SkipWithError("the first run failed");
    return;
  }
  auto* record = reinterpret_cast<TileRecord*>(host.effect());
  record->groupId = group;
  record->featherPercent = feather;
  for (auto _ : state) {
    host.ClearLog();
    if (host.Run() != kNoError) state.SkipWithError("the run failed");
    benchmark::DoNotOptimize(host.image().pixels.data());
  }
  bench::ReportPixelRate(state, double(kWidth) * kHeight, size_t(kWidth) * kHeight * 3);
}
BENCHMARK(BM_TessarisRun)
    ->ArgNames({"group", "feather"})
    ->ArgsProduct({{kGroupPm, kGroupP4g, kGroupP6m}, {0, 100}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

void BM_TessarisEngine(benchmark::State& state) {
  TileRecord params{};
  params.head = {kFilterTessaris, kClassTile};
  TileReset(nullptr, &params);
  params.groupId = static_cast<int32_t>(state.range(0));
  params.featherPercent = static_cast<int32_t>(state.range(1));
  std::vector<uint8_t> image(size_t(kWidth) * kHeight * 3);
  for (size_t i = 0; i < image.size(); ++i) image[i] = static_cast<uint8_t>(i * 7 + i / 4001);
  FilterRecord host{};
  host.filterRect = Rect16{0, 0, kHeight, kWidth};
  host.imageMode = kModeRGB;
  host.planes = 3;
  const int32_t rowBytes = kWidth * 3;
  auto rows = [&](const Rect16& r) { return image.data() + size_t(r.top) * rowBytes + r.left * 3; };
  for (auto _ : state) {
    if (TileSetup(&host, &params, nullptr) != kNoError) state.SkipWithError("set-up failed");
    host.inRect = gTileState.sourceRequest;
    host.inLoPlane = 0, host.inHiPlane = 2;
    host.inData = rows(host.inRect);
    host.inRowBytes = rowBytes;
    gTileState.planes = 3;
    if (MakeTile(0, &host, &params, nullptr) != kNoError) state.SkipWithError("tile failed");
    while (host.inRect.bottom != 0) {
      host.inData = host.outData = rows(host.inRect);
      host.outRowBytes = rowBytes;
      if (MergeNextRow(&host) != kNoError) state.SkipWithError("merge failed");
    }
    TileReleaseEngine();
    benchmark::DoNotOptimize(image.data());
  }
  bench::ReportPixelRate(state, double(kWidth) * kHeight, size_t(kWidth) * kHeight * 3);
}
BENCHMARK(BM_TessarisEngine)
    ->ArgNames({"group", "feather"})
    ->ArgsProduct({{kGroupPm, kGroupP4g, kGroupP6m}, {0, 100}})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
