// The frame's door: what each exported entry does, for a given FilterId.
#pragma once

#include <cstdint>

#include "frame/host_record.h"

namespace fancy {

// The whole entry sequence for one call: about box for selector 0, host
// window for the rest, then the dispatcher. Writes the result word.
void FilterEntry(int16_t selector, FilterRecord* record, intptr_t* data, int16_t* result,
                 int32_t filterId);

// The dispatcher: selectors 1..5 with the failure clean-up rule.
int16_t FilterDispatch(int16_t selector, FilterRecord* record, intptr_t* data, int32_t filterId);

}  // namespace fancy
