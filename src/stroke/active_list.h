// ActiveList: the strokes that cross the row being painted, in the order in
// which they are laid (head first, so later entries land on top).
//
// Strokes are inserted at any place (a random one under Random layering)
// and the whole list is walked once a row, dropping those that are done. A
// plain linked list would walk half the list for every random insertion,
// which on a large picture with large brushes is most of the run; so the
// list is kept as a row of blocks of up to kActiveBlockCapacity entries:
// an insertion finds its block by the blocks' counts and moves at most one
// block's entries. All memory comes from the block allocator; nothing here
// throws.
#pragma once

#include <cstdint>

#include "stroke/stroke_table.h"

namespace fancy {

constexpr int32_t kActiveBlockCapacity = 128;

struct ActiveBlock {
  int32_t count;
  StrokeEntry* entries[kActiveBlockCapacity];
};

struct ActiveList {
  ActiveBlock** blocks;
  int32_t blockCount;
  int32_t blockCapacity;
  int32_t size;  // entries in all blocks
};

// Inserts entry so that it stands at position (0 is the head, size the
// tail). False when memory is short; the list is then unchanged.
bool ActiveListInsert(ActiveList* list, int32_t position, StrokeEntry* entry);

// Frees every block; the list is empty afterwards.
void ActiveListRelease(ActiveList* list);

// Walks the list from the head; keep(entry) returning false removes the
// entry. Entries keep their order.
template <class Keep>
void ActiveListSweep(ActiveList* list, Keep&& keep);

// Removes empty blocks (after a sweep).
void ActiveListCompact(ActiveList* list);

template <class Keep>
void ActiveListSweep(ActiveList* list, Keep&& keep) {
  int32_t size = 0;
  for (int32_t b = 0; b < list->blockCount; ++b) {
    ActiveBlock* block = list->blocks[b];
    int32_t kept = 0;
    for (int32_t i = 0; i < block->count; ++i) {
      StrokeEntry* entry = block->entries[i];
      if (keep(entry)) block->entries[kept++] = entry;
    }
    block->count = kept;
    size += kept;
  }
  list->size = size;
  ActiveListCompact(list);
}

}  // namespace fancy
