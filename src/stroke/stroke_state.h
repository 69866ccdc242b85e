// The stroke engine's state: one run at a time, so it is one record,
// gStrokeEngine, put back to its defaults at the start of a run and at its
// release.
#pragma once

#include <cstdint>

#include "frame/host_record.h"
#include "stroke/active_list.h"
#include "stroke/brush_mask.h"
#include "stroke/scan_pool.h"
#include "stroke/stroke_scan.h"
#include "stroke/stroke_table.h"
#include "stroke/style_model.h"

namespace fancy {

enum StrokePass : int32_t { kFirstPass = 0, kSecondPass = 1 };

struct StrokeEngineState {
  bool started;      // from the first continue to the release
  int32_t pass;
  bool prepared;     // the first pass's set-up is done
  Rect16 savedIn;    // the first request, asked again for the second pass
  Rect16 savedOut;
  int16_t savedTop;  // filterRect.top: rows count from it
  int32_t width;     // the engine's rectangle: (0, 0) to (width, height)
  int32_t height;

  StrokeWorking working;
  uint32_t colourModes;  // ColourModeFlags of the working numbers
  // The layering order, 0 random and 1 ordered. A style without a layering
  // keeps the order of the run before, so this one value is kept when the
  // rest is put back to its defaults.
  int32_t order;

  StrokeEntry* table;  // the StrokeTable, from the block allocator
  int32_t count;
  int32_t index;       // the next stroke to evaluate, then to activate
  ActiveList active;
  ScanPool scans;
  BrushMask mask;
  InstalledBrush brush;
  int32_t limitX;      // width - 1, height - 1
  int32_t limitY;
};

extern StrokeEngineState gStrokeEngine;

// Frees what the state holds and puts it back to its defaults, keeping the
// layering order.
void StrokeEngineReset(StrokeEngineState* state);

}  // namespace fancy
