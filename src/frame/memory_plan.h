// The memory plan: the advice in `bufferSpace` that the tile and relief
// effects give the host before they begin.
#pragma once

#include <cstdint>

#include "frame/host_record.h"

namespace fancy {

// The floor of the advice, whatever memory there is.
constexpr int32_t kMinBufferSpace = 2459776;

// Writes the advice to record->bufferSpace. Always returns 0.
int16_t MemoryPlan(FilterRecord* record);

// Whether the host offers buffer or handle suites that the plan could use.
// The answer is no for every host; the plan keeps the question apart.
bool HostOffersMemorySuites(const FilterRecord* record);

// The size of the largest free block that the system reports, in bytes, at
// most 0x7FFFFFFF (the figure a 32-bit system can report). On Linux this is
// MemAvailable of /proc/meminfo.
int64_t LargestFreeBlock();

// Replaces the system's figure (tests); null returns to the system.
using FreeBlockProbe = int64_t (*)();
void SetFreeBlockProbe(FreeBlockProbe probe);

}  // namespace fancy
