// ScanPool: the StrokeScans of the open strokes. A stroke takes a zeroed
// scan when it is activated and gives it back when its last row is done;
// scans come from chunks of the block allocator that are kept until the
// pool is released, so activating a stroke costs no allocation once the
// pool has grown to the most strokes open at a time.
#pragma once

#include <cstdint>

#include "stroke/stroke_table.h"

namespace fancy {

union ScanSlot {
  StrokeScan scan;
  ScanSlot* nextFree;
};

constexpr int32_t kScansPerChunk = 512;

struct ScanChunk {
  ScanChunk* next;
  ScanSlot slots[kScansPerChunk];
};

struct ScanPool {
  ScanChunk* chunks;
  ScanSlot* free;
  int32_t open;  // scans taken and not given back
};

// A zeroed scan, or null when memory is short.
StrokeScan* ScanPoolTake(ScanPool* pool);
void ScanPoolGive(ScanPool* pool, StrokeScan* scan);
// Frees every chunk, open scans included.
void ScanPoolRelease(ScanPool* pool);

}  // namespace fancy
