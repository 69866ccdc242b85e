#include "stroke/paint_pass.h"

#include <cstring>

#include "platform/crt_random.h"
#include "stroke/placement.h"
#include "stroke/variation.h"

namespace fancy {

namespace {

// The row at which a stroke is activated: trunc(top + 0.5), which is top
// itself, but top + 1 for a negative top. A stroke whose top is -1 is so
// activated at row 0 with its own row still at -1, and lands a row low.
int32_t ActivationRow(const StrokeEntry& stroke) { return TruncLow32(stroke.top + 0.5); }

// Where a newly activated stroke goes in the list. Ordered: the head, under
// every stroke already open. Random: just behind the head when at most one
// stroke follows it, else behind the one reached r steps from the head, for
// a draw r modulo the number of strokes after the head.
int32_t InsertPosition(const StrokeEngineState& s) {
  if (s.order != 0 || s.active.size == 0) return 0;
  const int32_t following = s.active.size - 1;
  if (following <= 1) return 1;
  return CrtRand() % following + 1;
}

void Activate(StrokeEngineState* s, StrokeEntry* stroke, bool stepToTop) {
  StrokeScan* scan = ScanPoolTake(&s->scans);
  if (!scan) return;  // no memory for it: the stroke is dropped
  StrokeScanSetUp(scan, *stroke, s->brush, s->height);
  // A stroke that began above the picture is stepped, unpainted, to row 0;
  // one that ends before it is dropped.
  while (stepToTop && scan->row < 0) {
    if (StrokeScanStep(scan, *stroke, s->brush, nullptr)) {
      ScanPoolGive(&s->scans, scan);
      return;
    }
  }
  if (!ActiveListInsert(&s->active, InsertPosition(*s), stroke)) {
    ScanPoolGive(&s->scans, scan);
    return;
  }
  stroke->scan = scan;
}

}  // namespace

void PaintPassBegin(StrokeEngineState* s) {
  if (s->table) SortByTop(s->table, s->count);
  s->index = 0;
  ActiveListRelease(&s->active);
}

void PaintRow(StrokeEngineState* s, uint8_t* in, uint8_t* out, int32_t r) {
  const int32_t width = s->width;
  for (int32_t i = 0; i < width; ++i) out[i * 3] = 0;  // the coverage plane
  if (!s->working.backgroundFromImage) {
    const uint8_t* colour = s->working.backgroundColour;
    for (int32_t i = 0; i < width; ++i) std::memcpy(in + i * 3, colour, 3);
  }

  while (s->index < s->count && ActivationRow(s->table[s->index]) < r) {
    StrokeEntry* stroke = &s->table[s->index++];
    if (!stroke->skip) Activate(s, stroke, true);
  }
  while (s->index < s->count && ActivationRow(s->table[s->index]) == r) {
    StrokeEntry* stroke = &s->table[s->index++];
    if (!stroke->skip) Activate(s, stroke, false);
  }

  const SpanTarget target{in, out, width, s->working.paintRule};
  ActiveListSweep(&s->active, [&](StrokeEntry* stroke) {
    if (!StrokeScanStep(stroke->scan, *stroke, s->brush, &target)) return true;
    ScanPoolGive(&s->scans, stroke->scan);
    stroke->scan = nullptr;
    return false;
  });

  std::memcpy(out, in, static_cast<size_t>(width) * 3);
}

}  // namespace fancy
