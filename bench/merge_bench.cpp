// Throughput of the merge kernels: one row of pixels merged into another by
// a mode, with no coverage (column 0) and under a mask and an opacity
// (column 4), beside memcpy of the destination's bytes.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "bench_util.h"
#include "imaging/merge.h"

namespace fancy {
namespace {

constexpr int kPixels = 4096;

int BytesOf(int type) { return type == 1 ? 3 : type == 3 ? 4 : 1; }
int BitsOf(int type) { return BytesOf(type) * 8; }

void MergeRowBench(benchmark::State& state) {
  ImagingInit();
  const int type = static_cast<int>(state.range(0));
  const int mode = static_cast<int>(state.range(1));
  const int column = static_cast<int>(state.range(2));
  const size_t bytes = static_cast<size_t>(kPixels) * BytesOf(type);
  std::vector<uint8_t> dst(bytes), src(bytes), mask(kPixels);
  uint32_t seed = 12345;
  auto next = [&] {
    seed = seed * 214013 + 2531011;
    return static_cast<uint8_t>(seed >> 16);
  };
  for (auto& v : dst) v = next();
  for (auto& v : src) v = next();
  for (auto& v : mask) v = next();
  Coverage cov{mask.data(), mask.data(), 180};
  MergeKernel kernel = FindMergeRow(type, BitsOf(type), mode)->kernels[column];
  std::vector<uint8_t> work = dst;
  for (auto _ : state) {
    kernel(nullptr, kPixels, work.data(), src.data(), &cov);
    benchmark::DoNotOptimize(work.data());
    benchmark::ClobberMemory();
  }
  bench::ReportPixelRate(state, kPixels, bytes);
  state.SetLabel("type " + std::to_string(type) + " mode " + std::to_string(mode) + " column " +
                 std::to_string(column));
  ImagingShutdown();
}

void Arguments(benchmark::internal::Benchmark* b) {
  for (int type : {1, 3, 5})
    for (int mode : {0, 9, 24, 28, 29, 30})
      for (int column : {0, 4}) b->Args({type, mode, column});
}

BENCHMARK(MergeRowBench)->Apply(Arguments);

}  // namespace
}  // namespace fancy

BENCHMARK_MAIN();
