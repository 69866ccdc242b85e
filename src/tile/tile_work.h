// Work buffers of the tile engine (band masks, edge tables). They come
// zeroed, owned by the caller, and null when memory runs out, which the
// engine reports as -108 without touching its output.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace fancy {

std::unique_ptr<uint8_t[]> AllocateTileWork(size_t bytes);

// Test hook: allocations above limit bytes fail (0 lifts the limit), so
// that the out-of-memory paths can be run.
void SetTileWorkLimit(size_t limit);

}  // namespace fancy
