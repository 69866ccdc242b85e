// Paint Brushka's handlers for the frame. The stroke engine, its style file
// and its dialog come later; until then the effect runs its row protocol for
// real and hands every row back unchanged.
#include "frame/current_record.h"
#include "frame/effect_hooks.h"
#include "frame/host_bridge.h"
#include "frame/result_codes.h"

namespace fancy {

namespace {

// Asks for the given row of filterRect, or for nothing past its bottom.
void RequestRowOrFinish(FilterRecord* record, int32_t row) {
  if (row >= record->filterRect.bottom)
    ClearRowRequest(record);
  else
    RequestStrokeRow(record, static_cast<int16_t>(row));
}

}  // namespace

// Loading the current style of the style file belongs here. Without the
// style file the new record keeps its zeroed state, as a missing current
// style leaves it.
int16_t StrokeCreateRecord(StrokeRecord*) { return kNoError; }

// Without its dialog the effect behaves as a dialog closed with OK untouched.
int16_t StrokeDialog(FilterRecord*, RunSlot*, StrokeRecord*) { return kNoError; }

int16_t StrokeStart(FilterRecord* record, RunSlot*, StrokeRecord*) {
  SetCurrentFilterRecord(record);
  // The start step asks for the host's objects once more and ignores them.
  HostExtension extension;
  ReadHostExtensionIfOffered(record, &extension);
  RequestRowOrFinish(record, record->filterRect.top);
  return kNoError;
}

int16_t StrokeStep(FilterRecord* record, RunSlot*, StrokeRecord*) {
  PassRowsThrough(record);
  RequestRowOrFinish(record, int32_t{record->inRect.top} + 1);
  return kNoError;
}

int16_t StrokeRelease(FilterRecord*) { return kNoError; }

}  // namespace fancy
