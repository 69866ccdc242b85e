#include "frame/entry.h"

#include "frame/result_codes.h"

namespace fancy {

// Provisional: the frame replaces this with the selector dispatch.
int16_t FilterDispatch(int16_t selector, FilterRecord*, intptr_t*, int32_t) {
  return selector == kSelectorAbout ? kNoError : kErrFilterFailure;
}

void FilterEntry(int16_t selector, FilterRecord* record, intptr_t* data, int16_t* result,
                 int32_t filterId) {
  int16_t code = FilterDispatch(selector, record, data, filterId);
  if (result) *result = code;
}

}  // namespace fancy
