// The prepare step shared by selectors 1 and 3: takes the host's objects,
// checks the image, and does the effect's own preparation.
#pragma once

#include <cstdint>

#include "frame/host_record.h"
#include "frame/run_slot.h"

namespace fancy {

// 0, -9987 for an image or host the effects cannot work on, or 9987 after
// telling the user that a relief effect needs a mask.
int16_t PrepareStep(FilterRecord* record, RunSlot* slot, int32_t filterId);

// The image test: four planes, or one or three planes of any mode but CMYK.
bool AcceptsImage(int16_t planes, int16_t imageMode);

// Rows of filterRect in one request of at most 64000 bytes, rows padded to
// four bytes; at least 1.
int32_t RowsPerChunk(const Rect16& filterRect, int16_t planes);

}  // namespace fancy
