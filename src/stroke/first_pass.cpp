#include "stroke/first_pass.h"

#include <cstdint>
#include <cstring>

#include "frame/block.h"
#include "frame/result_codes.h"
#include "platform/clock.h"
#include "platform/crt_random.h"
#include "stroke/placement.h"

namespace fancy {

namespace {

// The seed that means "a new picture each time": the generator is seeded
// with the time instead.
constexpr int32_t kTimeSeed = 13;

}  // namespace

int16_t FirstPassSetUp(StrokeEngineState* s, StrokeRecord* style) {
  StrokeMakeWorking(style, &s->working, &s->order);
  if (s->working.seed == kTimeSeed)
    CrtSrand(static_cast<uint32_t>(CrtTime()));
  else
    CrtSrand(static_cast<uint32_t>(s->working.seed));

  const StrokeGrid grid = StrokeGridOf(s->width, s->height, style->density);
  // The table is one block of the allocator, whose sizes are 32-bit.
  if (grid.count > INT32_MAX / static_cast<int64_t>(sizeof(StrokeEntry))) return kErrOutOfMemory;
  s->table = static_cast<StrokeEntry*>(
      BlockAlloc(static_cast<int32_t>(grid.count * static_cast<int64_t>(sizeof(StrokeEntry)))));
  if (!s->table) return kErrOutOfMemory;
  s->count = static_cast<int32_t>(grid.count);
  s->index = 0;
  PlaceStrokes(s->table, grid, s->width, s->height, s->working.jitterX, s->working.jitterY);
  SortByAnchor(s->table, s->count);

  s->colourModes = ColourModeFlags(s->working);
  // The record comes from the host: its path is taken only up to the end of
  // the field, terminated or not.
  char brushPath[sizeof style->brushPath + 1];
  const size_t length = strnlen(style->brushPath, sizeof style->brushPath);
  std::memcpy(brushPath, style->brushPath, length);
  brushPath[length] = '\0';
  BrushMaskLoad(brushPath, &s->mask);
  s->brush = InstallBrush(s->mask);
  s->limitX = s->width - 1;
  s->limitY = s->height - 1;
  s->prepared = true;
  return kNoError;
}

int32_t FirstPassStep(StrokeEngineState* s, const uint8_t* row, int32_t r) {
  StrokeEntry* table = s->table;
  if (s->index >= s->count) return 0;
  if (table[s->index].y > r) return table[s->index].y - r;
  // Strokes anchored above r were jumped over; they stay unevaluated.
  while (s->index < s->count && table[s->index].y < r) ++s->index;
  if (s->index >= s->count) return 1;

  for (; s->index < s->count && table[s->index].y == r; ++s->index) {
    StrokeEntry* stroke = &table[s->index];
    if (stroke->x < 0 || stroke->x > s->width || stroke->y < 0 || stroke->y > s->height) {
      stroke->skip = 1;
    } else if (!EvaluateStroke(stroke, row, s->width, s->height, s->working, s->colourModes,
                               s->brush)) {
      stroke->skip = 1;
    }
    stroke->scan = nullptr;
  }
  if (s->index < s->count) return table[s->index].y - r;
  return 1;
}

}  // namespace fancy
