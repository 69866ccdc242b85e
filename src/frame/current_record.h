// The filter record of the current call. Engine code reads the host's
// rectangles through it; it is set by the prepare step of Paint Brushka and
// Tessaris and at the start of stroke painting, and holds for one run.
#pragma once

#include "frame/host_record.h"

namespace fancy {

FilterRecord* CurrentFilterRecord();
void SetCurrentFilterRecord(FilterRecord* record);

}  // namespace fancy
