// Conditions: unexpected failures (memory not obtained, not locked, not
// resized, and a few others) shown to the user in a message box.
#pragma once

#include <cstdint>

namespace fancy {

enum : int32_t {
  kConditionNotObtained = 1000,
  kConditionNotLocked = 1001,
  kConditionNotResized = 1002,
  kConditionColorContext = 5000,
  kConditionUnknownUnit = 5002,
};

// Caption "<caption>  Condition #<code>-<MODULE>-<line>" (module upper-cased,
// without its extension); text about memory when memoryFlag is set, else the
// general text.
void ReportCondition(int32_t code, const char* module, int32_t line, const char* caption,
                     int memoryFlag);

}  // namespace fancy
