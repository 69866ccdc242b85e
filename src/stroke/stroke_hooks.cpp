// Paint Brushka's handlers for the frame.
#include "frame/effect_hooks.h"
#include "frame/result_codes.h"
#include "stroke/stroke_engine.h"
#include "stroke/style_file.h"

namespace fancy {

// A new record takes the current style of the style file. A missing current
// style is no failure here: the record stays as loading left it.
int16_t StrokeCreateRecord(StrokeRecord* effect) {
  effect->loadedBrushPath[0] = '\0';
  StyleLoad(effect);
  return kNoError;
}

// Until the style dialog comes, the effect behaves as a dialog closed with
// OK untouched: the record is used as it stands.
int16_t StrokeDialog(FilterRecord*, RunSlot*, StrokeRecord*) { return kNoError; }

int16_t StrokeStart(FilterRecord* record, RunSlot*, StrokeRecord* effect) {
  return StrokeEngineStart(record, effect);
}

int16_t StrokeStep(FilterRecord* record, RunSlot*, StrokeRecord* effect) {
  return StrokeEngineStep(record, effect);
}

int16_t StrokeRelease(FilterRecord* record) {
  StrokeEngineRelease(record);
  return kNoError;
}

}  // namespace fancy
