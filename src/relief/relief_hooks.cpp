// Glass's and The Knurl's handlers for the frame. The relief engine and its
// dialogs come later; until then a run with a mask leaves the image as it is.
#include "frame/effect_hooks.h"
#include "frame/host_bridge.h"
#include "frame/result_codes.h"

namespace fancy {

// Only the head for now; the relief records grow with their dialogs.
int32_t ReliefRecordSize(int32_t) { return sizeof(EffectHead); }

int16_t ReliefCreateRecord(EffectHead*) { return kNoError; }

// Without their dialogs the effects behave as a dialog closed with OK untouched.
int16_t ReliefDialog(FilterRecord*, RunSlot*, EffectHead*) { return kNoError; }

// The whole effect happens here; with no engine yet there is nothing to ask
// the host for, and the empty request ends the run.
int16_t ReliefRun(FilterRecord* record, RunSlot*, EffectHead*) {
  ClearRowRequest(record);
  return kNoError;
}

}  // namespace fancy
