// Tessaris's handlers for the frame. The tile engine, its source files and
// its dialog come later; until then the effect asks for its rows a chunk at a
// time and hands them back unchanged.
#include <algorithm>

#include "frame/effect_hooks.h"
#include "frame/host_bridge.h"
#include "frame/memory_plan.h"
#include "frame/result_codes.h"

namespace fancy {

namespace {

// Asks for the chunk of rowsPerChunk rows that starts at row, or for nothing
// past filterRect's bottom.
void RequestChunkOrFinish(FilterRecord* record, const RunSlot* slot, int32_t row) {
  int32_t bottom = record->filterRect.bottom;
  if (row >= bottom) {
    ClearRowRequest(record);
    return;
  }
  int32_t end = std::min(bottom, row + std::max(slot->rowsPerChunk, 1));
  RequestRows(record, static_cast<int16_t>(row), static_cast<int16_t>(end), 0,
              static_cast<int16_t>(record->planes - 1));
}

}  // namespace

// Only the head for now; the tile record grows with the tile engine.
int32_t TileRecordSize() { return sizeof(EffectHead); }

int16_t TileCreateRecord(EffectHead*) { return kNoError; }

void TileLoadSource(FilterRecord*, RunSlot*, EffectHead*) {}

// Without its dialog the effect behaves as a dialog closed with OK untouched.
int16_t TileDialog(FilterRecord*, RunSlot*, EffectHead*) { return kNoError; }

int16_t TilePrepareCheck(FilterRecord* record, RunSlot*, EffectHead*) {
  return MemoryPlan(record);
}

int16_t TileStart(FilterRecord* record, RunSlot* slot, EffectHead*) {
  RequestChunkOrFinish(record, slot, record->filterRect.top);
  return kNoError;
}

int16_t TileStep(FilterRecord* record, RunSlot* slot, EffectHead*) {
  PassRowsThrough(record);
  RequestChunkOrFinish(record, slot, record->inRect.bottom);
  return kNoError;
}

int16_t TileRelease(FilterRecord*, RunSlot*) { return kNoError; }

}  // namespace fancy
