// RegionWalk: runs through a rectangle of target pixels under up to four
// coverage sources (run masks and mask images) and hands each stretch of a
// row that some coverage reaches to a span function, with pointers to the
// coverage bytes of the stretch. Stretches that a source leaves clear are
// skipped; stretches fully covered by every source come with no pointer.
#pragma once

#include <cstdint>

#include "imaging/draw_context.h"
#include "imaging/image.h"
#include "imaging/merge.h"
#include "imaging/rect.h"
#include "imaging/run_mask.h"

namespace fancy {

// The functions a walk calls. begin, lineEnd and end may be null. begin and
// span answer 0 to stop the walk; lineEnd too.
struct SpanTable {
  void* user;
  int (*begin)(void* user, const Rect& rect);
  int (*lineEnd)(void* user);
  int (*span)(void* user, int32_t x, int32_t y, int32_t count, const Coverage* coverage);
  int (*end)(void* user);
};

enum CoverageSourceKind : int32_t {
  kCoverageRuns = 1,   // a RunMask
  kCoverageImage = 2,  // a mask image (type 99): its bytes are the coverage
};

struct CoverageSource {
  int32_t kind;         // CoverageSourceKind
  const RunMask* runs;  // kCoverageRuns
  Image* image;         // kCoverageImage
  Rect rect;            // the target pixels it lies over; its pixel (0, 0) is at
                        // (rect.left, rect.top)
  int32_t readMode;     // the context's maskReadMode, kept with the source
};

constexpr int32_t kRegionWalkSources = 4;

// Walks `rect` under `count` (0 to 4) sources and answers 1 when done, or
// when nothing is left of the rectangle; 0 when a span or line end stopped
// it, progress asked to stop, a run mask does not reach over the scan area,
// or a mask image has no pixels. The coverage block's opacity is the
// context's.
//
// Without sources, begin is followed by one span for the whole rectangle
// (y its top, count its width) when lineEnd is null, else one span a row.
// Progress goes to the context about twenty times over the rows.
int RegionWalk(DrawContext* context, const SpanTable* table, const Rect& rect,
               const CoverageSource* sources, int32_t count);

}  // namespace fancy
