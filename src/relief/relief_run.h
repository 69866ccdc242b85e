// The relief engine: one run of Glass or The Knurl over the host's rows, or
// over a preview surface.
#pragma once

#include <cstdint>

#include "frame/host_record.h"
#include "relief/relief_maps.h"
#include "relief/relief_params.h"
#include "relief/relief_progress.h"

namespace fancy {

// What one run is to do besides what the host's record says.
struct ReliefJob {
  int32_t filterId;     // 202 or 203
  ReliefParams params;  // held to their ranges by the run
  bool isPreview;
  // Preview only: the selection of the filter rectangle's size, one byte a
  // pixel. The record's filterRect is the preview surface, and inData and
  // outData (with their row bytes) point at its source and target pixels.
  const uint8_t* mask;
  int32_t maskRowBytes;
  // Preview only: the dialog's own callbacks (the host's are used otherwise).
  AbortProc abort;
  ProgressProc progress;
};

// Everything a run holds, in one place so that any way out frees it all.
struct ReliefState {
  ByteMap* mask;
  HeightMap* field;
  // Glass: the source rows that the current band's rays may reach, kept as
  // the host first handed them (rows handed back since are already bent),
  // in a ring of ringRows rows; and a pointer to each row of the window.
  uint8_t* ring;
  int32_t ringRows;
  const uint8_t** windowRows;
  ReliefProgress progress;
};

// Rows of the filter rectangle in one band: 64000 bytes' worth, at least 1.
int32_t ReliefBandRows(int32_t planes, int32_t filterWidth);

// The whole effect: reads the selection band by band through advanceState
// (unless in preview), builds the height field, then lights (The Knurl) or
// bends and tints (Glass) the rows band by band, and ends with every
// rectangle of the record cleared. Returns 0, -108, -128, -9987 (a floating
// selection, an image the engine cannot take, or a host that did not deliver)
// or -30100 (Glass on an image under 2 x 2 pixels).
int16_t ReliefRun(FilterRecord* record, const ReliefJob& job);

}  // namespace fancy
