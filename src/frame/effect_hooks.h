// The effects' handlers, as the frame calls them. Each effect defines its own
// in its subsystem folder (stroke/stroke_hooks.cpp, tile/tile_hooks.cpp,
// relief/relief_hooks.cpp); the frame only switches on FilterId and
// EffectClass and calls these.
//
// Conventions: results are the system's codes (0, -108, -128, -9987, ...);
// `record` is the host's filter record of the call, `slot` the run's RunSlot
// and `effect` the EffectRecord behind `parameters`. Rows move through the
// record's inRect/outRect as frame/host_bridge.h describes; a step that has
// finished leaves an empty request.
#pragma once

#include <cstdint>

#include "frame/effect_record.h"
#include "frame/host_record.h"
#include "frame/run_slot.h"

namespace fancy {

// ---- Paint Brushka (200, class 1) ------------------------------------------

// Fills a new, zeroed record (head written) from the current style of the
// style file. A missing current style is not an error; the record stays as
// loading left it. Non-zero fails the creation.
int16_t StrokeCreateRecord(StrokeRecord* effect);
// The style dialog: 0 for OK, -128 for Cancel, or an error.
int16_t StrokeDialog(FilterRecord* record, RunSlot* slot, StrokeRecord* effect);
// Selector 3: sets up and asks for the first row.
int16_t StrokeStart(FilterRecord* record, RunSlot* slot, StrokeRecord* effect);
// Selector 4: one step over the delivered row, then asks for the next (or
// for nothing when the picture is done). The frame tests abort after it.
int16_t StrokeStep(FilterRecord* record, RunSlot* slot, StrokeRecord* effect);
// Selector 5: releases the engine; also reached when no run is under way.
int16_t StrokeRelease(FilterRecord* record);

// ---- Tessaris (201, class 2) -------------------------------------------------

// Bytes of the tile EffectRecord, head included.
int32_t TileRecordSize();
// Writes the tile defaults into a new, zeroed record (head written) and
// resets the tile state.
int16_t TileCreateRecord(EffectHead* effect);
// The tile's share of the prepare step: when the record names a source file, loads it into
// slot->loadedSource and copies its size to the record. Failures leave the
// slot's source empty.
void TileLoadSource(FilterRecord* record, RunSlot* slot, EffectHead* effect);
// The tile dialog: 0 for OK, -128 for Cancel, or an error.
int16_t TileDialog(FilterRecord* record, RunSlot* slot, EffectHead* effect);
// Selector 2: the size test and the memory plan. slot may be null (a repeat
// without dialog reaches selector 2 before any RunSlot exists).
int16_t TilePrepareCheck(FilterRecord* record, RunSlot* slot, EffectHead* effect);
// Selector 3: sets up the tile and asks for the first rows.
int16_t TileStart(FilterRecord* record, RunSlot* slot, EffectHead* effect);
// Selector 4: works the delivered rows and asks for the next.
int16_t TileStep(FilterRecord* record, RunSlot* slot, EffectHead* effect);
// Selector 5: frees the tile; slot may be null.
int16_t TileRelease(FilterRecord* record, RunSlot* slot);

// ---- Glass (202) and The Knurl (203), class 3 -------------------------------

// Bytes of the relief EffectRecord of filterId, head included.
int32_t ReliefRecordSize(int32_t filterId);
// A new record of class 3 (head written, the rest zero).
int16_t ReliefCreateRecord(EffectHead* effect);
// The relief dialogs: 0 for OK, -128 for Cancel, or an error.
int16_t ReliefDialog(FilterRecord* record, RunSlot* slot, EffectHead* effect);
// Selector 3: the whole effect, rows through advanceState; leaves an empty
// request. The frame has checked that the host has a mask.
int16_t ReliefRun(FilterRecord* record, RunSlot* slot, EffectHead* effect);

}  // namespace fancy
