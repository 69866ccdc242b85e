// Shared pieces of the benchmark programs: every throughput figure is shown
// beside the machine's memcpy rate for the same bytes, so that it means the
// same on any machine.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

namespace fancy::bench {

// Bytes per second that memcpy moves for a block of this size (measured once
// per size and cached).
double MemcpyBytesPerSecond(size_t bytes);

// Adds the counters "MP/s" (megapixels per second, from pixels per
// iteration) and "memcpy_MP/s" (the memcpy rate for bytesPerIteration, in the
// same pixels) to the state.
void ReportPixelRate(benchmark::State& state, double pixelsPerIteration,
                     size_t bytesPerIteration);

}  // namespace fancy::bench
