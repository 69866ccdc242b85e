#include "frame/block.h"

#include <cstdlib>

namespace fancy {

namespace {
int32_t gLiveBlocks = 0;  // one run at a time, on the host's thread
}

void* BlockAlloc(int32_t size) {
  if (size < 0) return nullptr;
  // calloc gives the zeroed, immediately usable block that the host expects;
  // size 0 still gets a real block so that null always means failure.
  void* block = std::calloc(1, size == 0 ? 1 : static_cast<size_t>(size));
  if (block) ++gLiveBlocks;
  return block;
}

void BlockFree(void* block) {
  if (!block) return;
  --gLiveBlocks;
  std::free(block);
}

int32_t BlockLiveCount() { return gLiveBlocks; }

}  // namespace fancy
