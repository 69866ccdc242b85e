#include "bench_util.h"

#include <chrono>
#include <cstring>
#include <map>
#include <vector>

namespace fancy::bench {

double MemcpyBytesPerSecond(size_t bytes) {
  static std::map<size_t, double> cache;
  auto found = cache.find(bytes);
  if (found != cache.end()) return found->second;
  if (bytes == 0) bytes = 1;
  std::vector<unsigned char> a(bytes, 1), b(bytes, 2);
  using Clock = std::chrono::steady_clock;
  size_t rounds = 0;
  auto start = Clock::now();
  double seconds = 0;
  do {
    std::memcpy(b.data(), a.data(), bytes);
    benchmark::DoNotOptimize(b.data());
    benchmark::ClobberMemory();
    ++rounds;
    seconds = std::chrono::duration<double>(Clock::now() - start).count();
  } while (seconds < 0.2 || rounds < 3);
  double rate = static_cast<double>(bytes) * rounds / seconds;
  cache[bytes] = rate;
  return rate;
}

void ReportPixelRate(benchmark::State& state, double pixelsPerIteration,
                     size_t bytesPerIteration) {
  state.counters["MP/s"] = benchmark::Counter(pixelsPerIteration / 1e6 * state.iterations(),
                                              benchmark::Counter::kIsRate);
  double memcpyRate = MemcpyBytesPerSecond(bytesPerIteration);
  double bytesPerPixel = pixelsPerIteration > 0 ? bytesPerIteration / pixelsPerIteration : 1;
  state.counters["memcpy_MP/s"] = memcpyRate / bytesPerPixel / 1e6;
}

}  // namespace fancy::bench
