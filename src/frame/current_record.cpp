#include "frame/current_record.h"

namespace fancy {

namespace {
// One run at a time, on the host's thread.
FilterRecord* gCurrentFilterRecord = nullptr;
}  // namespace

FilterRecord* CurrentFilterRecord() { return gCurrentFilterRecord; }
void SetCurrentFilterRecord(FilterRecord* record) { gCurrentFilterRecord = record; }

}  // namespace fancy
