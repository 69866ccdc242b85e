#include "stroke/scan_pool.h"

#include "frame/block.h"

namespace fancy {

StrokeScan* ScanPoolTake(ScanPool* pool) {
  if (!pool->free) {
    auto* chunk = static_cast<ScanChunk*>(BlockAlloc(sizeof(ScanChunk)));
    if (!chunk) return nullptr;
    chunk->next = pool->chunks;
    pool->chunks = chunk;
    for (int32_t i = kScansPerChunk - 1; i >= 0; --i) {
      chunk->slots[i].nextFree = pool->free;
      pool->free = &chunk->slots[i];
    }
  }
  ScanSlot* slot = pool->free;
  pool->free = slot->nextFree;
  slot->scan = StrokeScan{};
  ++pool->open;
  return &slot->scan;
}

void ScanPoolGive(ScanPool* pool, StrokeScan* scan) {
  if (!scan) return;
  auto* slot = reinterpret_cast<ScanSlot*>(scan);
  slot->nextFree = pool->free;
  pool->free = slot;
  --pool->open;
}

void ScanPoolRelease(ScanPool* pool) {
  for (ScanChunk* chunk = pool->chunks; chunk;) {
    ScanChunk* next = chunk->next;
    BlockFree(chunk);
    chunk = next;
  }
  *pool = ScanPool{};
}

}  // namespace fancy
