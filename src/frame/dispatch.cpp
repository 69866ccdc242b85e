// The dispatcher: selectors 1..5 of one run, and the clean-up after a failure.
#include <cstring>

#include "frame/block.h"
#include "frame/effect_hooks.h"
#include "frame/effect_record.h"
#include "frame/entry.h"
#include "frame/host_bridge.h"
#include "frame/module_handle.h"
#include "frame/prepare.h"
#include "frame/result_codes.h"
#include "frame/run_slot.h"

namespace fancy {

namespace {

RunSlot* NewRunSlot(intptr_t* data) {
  auto* slot = static_cast<RunSlot*>(BlockAlloc(sizeof(RunSlot)));
  *data = reinterpret_cast<intptr_t>(slot);
  return slot;
}

void FreeRunSlot(intptr_t* data) {
  BlockFree(RunSlotOf(data));
  *data = 0;
}

// Bytes of a new EffectRecord of filterId; 0 for an id out of range.
int32_t EffectRecordSize(int32_t filterId) {
  switch (filterId) {
    case kFilterBrushka: return sizeof(StrokeRecord);
    case kFilterTessaris: return TileRecordSize();
    case kFilterGlass:
    case kFilterKnurl: return ReliefRecordSize(filterId);
    default: return 0;
  }
}

// The EffectRecord of this run, when `parameters` holds one that this entry
// can act on: its own FilterId with its own class. Anything else the host
// hands in is refused rather than read as another effect's record.
EffectHead* UsableEffectRecord(const FilterRecord* record, int32_t filterId) {
  EffectHead* effect = EffectRecordOf(record);
  if (!effect || effect->filterId != filterId ||
      effect->effectClass != EffectClassOf(filterId))
    return nullptr;
  return effect;
}

int16_t CreateEffectRecord(FilterRecord* record, int32_t filterId) {
  // The new handle goes into `parameters` even when it is null, so that the
  // clean-up after this failure never frees a block that the host brought.
  int32_t size = EffectRecordSize(filterId);
  ModuleHandle handle =
      size >= static_cast<int32_t>(sizeof(EffectHead)) ? ModuleHandleAlloc(size) : nullptr;
  record->parameters = handle;
  if (!handle) return kErrFilterFailure;
  auto* effect = static_cast<EffectHead*>(ModuleHandleData(handle));
  effect->filterId = filterId;
  effect->effectClass = EffectClassOf(filterId);
  int16_t created = kErrFilterFailure;
  switch (filterId) {
    case kFilterBrushka:
      created = StrokeCreateRecord(reinterpret_cast<StrokeRecord*>(effect));
      break;
    case kFilterTessaris: created = TileCreateRecord(effect); break;
    case kFilterGlass:
    case kFilterKnurl: created = ReliefCreateRecord(effect); break;
  }
  return created == kNoError ? kNoError : kErrFilterFailure;
}

int16_t RunDialog(FilterRecord* record, RunSlot* slot, EffectHead* effect) {
  switch (effect->filterId) {
    case kFilterBrushka:
      return StrokeDialog(record, slot, reinterpret_cast<StrokeRecord*>(effect));
    case kFilterTessaris: return TileDialog(record, slot, effect);
    case kFilterGlass:
    case kFilterKnurl: return ReliefDialog(record, slot, effect);
    default: return kErrFilterFailure;
  }
}

int16_t Parameters(FilterRecord* record, intptr_t* data, int32_t filterId) {
  RunSlot* slot = NewRunSlot(data);
  if (!slot) return kErrOutOfMemory;
  EffectHead* found = EffectRecordOf(record);
  slot->isFresh = !(found && found->filterId == filterId);
  if (slot->isFresh) {
    // A block of another effect is overwritten in `parameters`, not freed:
    // it is the host's.
    int16_t created = CreateEffectRecord(record, filterId);
    if (created != kNoError) return created;
  }
  int16_t prepared = PrepareStep(record, slot, filterId);
  if (prepared != kNoError) return prepared;
  EffectHead* effect = UsableEffectRecord(record, filterId);
  if (!effect) return kErrFilterFailure;
  return RunDialog(record, slot, effect);
}

int16_t Prepare(FilterRecord* record, intptr_t* data, int32_t filterId) {
  record->bufferSpace = 0;
  if (!record->parameters) return kNoError;
  if (filterId != kFilterTessaris) return kNoError;
  EffectHead* effect = UsableEffectRecord(record, filterId);
  if (!effect) return kErrFilterFailure;
  return TilePrepareCheck(record, RunSlotOf(data), effect);
}

int16_t Start(FilterRecord* record, intptr_t* data, int32_t filterId) {
  // The host keeps the EffectRecord; a repeat without dialog comes here with
  // an empty data slot and the last parameters.
  EffectHead* effect = UsableEffectRecord(record, filterId);
  if (!effect) return kErrFilterFailure;
  RunSlot* slot = RunSlotOf(data);
  if (!slot) {
    slot = NewRunSlot(data);
    if (!slot) return kErrOutOfMemory;
    slot->isFresh = 0;
    int16_t prepared = PrepareStep(record, slot, filterId);
    if (prepared != kNoError) {
      FreeRunSlot(data);
      return prepared;
    }
  }
  if (record->progressProc) record->progressProc(-1, 1);
  RequestAllPlanes(record);
  slot->rowsPerChunk = RowsPerChunk(record->filterRect, record->planes);

  switch (effect->effectClass) {
    case kClassStroke:
      return StrokeStart(record, slot, reinterpret_cast<StrokeRecord*>(effect));
    case kClassTile: return TileStart(record, slot, effect);
    case kClassRelief: return ReliefRun(record, slot, effect);
    default: return kErrFilterFailure;
  }
}

int16_t Continue(FilterRecord* record, intptr_t* data, int32_t filterId) {
  EffectHead* effect = UsableEffectRecord(record, filterId);
  RunSlot* slot = RunSlotOf(data);
  if (!effect || !slot) return kErrFilterFailure;
  int16_t stepped = kErrFilterFailure;
  switch (effect->effectClass) {
    case kClassStroke:
      stepped = StrokeStep(record, slot, reinterpret_cast<StrokeRecord*>(effect));
      break;
    case kClassTile: stepped = kNoError; break;  // the tile works below
    default: break;  // relief effects finish in selector 3
  }
  if (stepped != kNoError) return stepped;
  if (filterId == kFilterBrushka) {
    if (record->abortProc && (record->abortProc() & 0xFF)) return kErrUserCancelled;
    return kNoError;
  }
  if (filterId == kFilterTessaris) return TileStep(record, slot, effect);
  return kNoError;
}

int16_t Finish(FilterRecord* record, intptr_t* data, int32_t filterId) {
  if (record->progressProc) record->progressProc(-3, 1);
  int16_t released = kNoError;
  switch (filterId) {
    case kFilterBrushka: released = StrokeRelease(record); break;
    case kFilterTessaris: released = TileRelease(record, RunSlotOf(data)); break;
    default: break;
  }
  if (RunSlotOf(data)) FreeRunSlot(data);
  return released;
}

}  // namespace

int16_t FilterDispatch(int16_t selector, FilterRecord* record, intptr_t* data, int32_t filterId) {
  if (!data) return kErrFilterFailure;
  int16_t result = kErrFilterFailure;
  if (record) {
    switch (selector) {
      // Selector 0 never gets here: the entry shows the about box itself.
      case kSelectorAbout: result = kNoError; break;
      case kSelectorParameters: result = Parameters(record, data, filterId); break;
      case kSelectorPrepare: result = Prepare(record, data, filterId); break;
      case kSelectorStart: result = Start(record, data, filterId); break;
      case kSelectorContinue: result = Continue(record, data, filterId); break;
      case kSelectorFinish: result = Finish(record, data, filterId); break;
      default: break;
    }
  }
  if (result == kNoError) return result;

  // A failure ends the run. A block made for this run goes with it; one that
  // the host brought in survives, edits and all. `parameters` itself is the
  // host's field and is left as it stands.
  RunSlot* slot = RunSlotOf(data);
  if (!slot) return result;
  if (slot->isFresh && record && record->parameters) ModuleHandleFree(record->parameters);
  FreeRunSlot(data);
  return result;
}

}  // namespace fancy
