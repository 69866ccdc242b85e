// The relief engine's blocks: every map and table of a run comes from here,
// so that the running total tells the frame how much the engine holds and a
// test can see that a run gave everything back.
#pragma once

#include <cstdint>

namespace fancy {

// A zeroed block of size bytes, or null when size is negative or memory is
// short. Each block is preceded by two 32-bit words: the block's total size
// (with the two words) and the size requested.
void* AllocRelief(int32_t size);

// Frees a block of AllocRelief; null is ignored.
void FreeRelief(void* block);

// Total bytes of the blocks not yet freed, the two words of each included.
int64_t ReliefMemoryInUse();

// Makes AllocRelief fail once the running total would pass limit bytes; a
// negative limit lifts it. For tests of the out-of-memory paths.
void SetReliefMemoryLimit(int64_t limit);

}  // namespace fancy
