#include "stroke/active_list.h"

#include <cstring>

#include "frame/block.h"

namespace fancy {

namespace {

ActiveBlock* NewBlock() { return static_cast<ActiveBlock*>(BlockAlloc(sizeof(ActiveBlock))); }

// Makes room for one more block pointer.
bool GrowBlocks(ActiveList* list) {
  if (list->blockCount < list->blockCapacity) return true;
  const int32_t capacity = list->blockCapacity ? list->blockCapacity * 2 : 16;
  if (capacity > (1 << 24)) return false;
  auto* blocks = static_cast<ActiveBlock**>(
      BlockAlloc(static_cast<int32_t>(sizeof(ActiveBlock*)) * capacity));
  if (!blocks) return false;
  if (list->blockCount)
    std::memcpy(blocks, list->blocks, sizeof(ActiveBlock*) * static_cast<size_t>(list->blockCount));
  BlockFree(list->blocks);
  list->blocks = blocks;
  list->blockCapacity = capacity;
  return true;
}

// Puts block at index b of the row of blocks.
void PlaceBlock(ActiveList* list, int32_t b, ActiveBlock* block) {
  std::memmove(list->blocks + b + 1, list->blocks + b,
               sizeof(ActiveBlock*) * static_cast<size_t>(list->blockCount - b));
  list->blocks[b] = block;
  ++list->blockCount;
}

}  // namespace

bool ActiveListInsert(ActiveList* list, int32_t position, StrokeEntry* entry) {
  if (position < 0) position = 0;
  if (position > list->size) position = list->size;
  if (list->blockCount == 0) {
    ActiveBlock* block = NewBlock();
    if (!block || !GrowBlocks(list)) {
      BlockFree(block);
      return false;
    }
    PlaceBlock(list, 0, block);
  }
  // The block that holds the place: an insertion at a block's end goes into
  // that block rather than at the start of the next.
  int32_t b = 0, offset = position;
  while (b < list->blockCount - 1 && offset > list->blocks[b]->count) {
    offset -= list->blocks[b]->count;
    ++b;
  }
  ActiveBlock* block = list->blocks[b];
  if (block->count == kActiveBlockCapacity) {
    // A full block gives its second half to a new block after it.
    ActiveBlock* half = NewBlock();
    if (!half || !GrowBlocks(list)) {
      BlockFree(half);
      return false;
    }
    const int32_t keep = kActiveBlockCapacity / 2;
    half->count = block->count - keep;
    std::memcpy(half->entries, block->entries + keep, sizeof(StrokeEntry*) * static_cast<size_t>(half->count));
    block->count = keep;
    PlaceBlock(list, b + 1, half);
    if (offset > keep) {
      offset -= keep;
      block = half;
    }
  }
  std::memmove(block->entries + offset + 1, block->entries + offset,
               sizeof(StrokeEntry*) * static_cast<size_t>(block->count - offset));
  block->entries[offset] = entry;
  ++block->count;
  ++list->size;
  return true;
}

void ActiveListCompact(ActiveList* list) {
  // Empty blocks go, and a block that fits into the one before it joins it,
  // so that the blocks stay few for the entries they hold.
  constexpr int32_t kJoinLimit = kActiveBlockCapacity * 3 / 4;
  int32_t kept = 0;
  for (int32_t b = 0; b < list->blockCount; ++b) {
    ActiveBlock* block = list->blocks[b];
    ActiveBlock* before = kept ? list->blocks[kept - 1] : nullptr;
    if (block->count == 0) {
      BlockFree(block);
    } else if (before && before->count + block->count <= kJoinLimit) {
      std::memcpy(before->entries + before->count, block->entries,
                  sizeof(StrokeEntry*) * static_cast<size_t>(block->count));
      before->count += block->count;
      BlockFree(block);
    } else {
      list->blocks[kept++] = block;
    }
  }
  list->blockCount = kept;
}

void ActiveListRelease(ActiveList* list) {
  for (int32_t b = 0; b < list->blockCount; ++b) BlockFree(list->blocks[b]);
  BlockFree(list->blocks);
  *list = ActiveList{};
}

}  // namespace fancy
