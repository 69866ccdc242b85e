// Tessaris from end to end: selectors 1 to 5 through the in-process test
// host on a 4000 x 3000 RGB image, the default cell (a third of the shorter
// side), for Pm, P4g and P6m without feather and with the whole feather the
// cell allows. The figure is image megapixels per second, beside memcpy's
// rate for the image's bytes; the host's own row copies are in it.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "bench_util.h"
#include "frame/result_codes.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/test_host.h"
#include "tile/symmetry.h"
#include "tile/tile_record.h"

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

}  // namespace

BENCHMARK_MAIN();
