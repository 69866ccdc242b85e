// The relief dialogs' preview: the engine run on scaled copies of the
// picture and its selection instead of the host's rows.
#pragma once

#include <cstdint>

#include "frame/host_record.h"
#include "relief/relief_params.h"

namespace fancy {

struct Image;

// What a relief dialog hands its preview. The images are one-cell images of
// the same size: source and target of the host's mode and bytes (type 5
// grey, 1 blue green red, 3 CMYK stored inverted as the host's rows are, 11
// Lab), mask of type 5 or 99.
struct ReliefPreviewJob {
  FilterRecord* record;  // the host's record, borrowed for the time of the run
  int32_t filterId;
  ReliefParams params;   // the settings as they stand, for the whole picture
  const Image* source;
  const Image* mask;
  Image* target;
  AbortProc abort;       // the dialog's own callbacks, or null
  ProgressProc progress;
};

// The settings for a preview of previewWidth x previewHeight of a filter
// rectangle of filterWidth x filterHeight: the bevel scaled by the widths and
// the height by the heights, each at least 3.
ReliefParams ScaleReliefForPreview(const ReliefParams& params, int32_t previewWidth,
                                   int32_t previewHeight, int32_t filterWidth,
                                   int32_t filterHeight);

// Runs the effect on the preview images into the target: the record's
// rectangles, data and planes are saved, pointed at the preview surface for
// the run, and restored. Progress goes to the job's callback, (-1, 100)
// first and (-3, 100) last. The dialog then shows the target. Returns what
// the run returns, or -9987 for images that do not fit together.
int16_t ReliefPreview(const ReliefPreviewJob& job);

}  // namespace fancy
