// Movable memory blocks for palettes and tables. A handle stays put when its
// block is resized; only the address from MemBlockLock moves.
#pragma once

#include <cstddef>

namespace fancy {

struct MemBlock;  // opaque
using MemHandle = MemBlock*;

MemHandle MemBlockAlloc(size_t size);                // zeroed; size 0 is a valid block
MemHandle MemBlockResize(MemHandle handle, size_t size);  // same handle, or null on failure
void* MemBlockLock(MemHandle handle);                // null handle locks to null
void MemBlockUnlock(MemHandle handle);               // does nothing
void MemBlockFree(MemHandle handle);                 // null is ignored

}  // namespace fancy
