// The module's block allocator: every block that reaches the host (the
// RunSlot, the EffectRecord behind its ModuleHandle, the stroke tables) comes
// from here, zeroed.
#pragma once

#include <cstdint>

namespace fancy {

// A zeroed block of size bytes, or null when size is negative or memory is
// short. A block of size 0 is a valid, distinct block.
void* BlockAlloc(int32_t size);

// Frees a block from BlockAlloc; null is ignored.
void BlockFree(void* block);

// Blocks allocated and not yet freed (for leak checks).
int32_t BlockLiveCount();

}  // namespace fancy
