// Glass's and The Knurl's handlers for the frame.
#include "frame/effect_hooks.h"
#include "frame/result_codes.h"
#include "relief/relief_params.h"
#include "relief/relief_run.h"
#include "relief/relief_styles.h"

namespace fancy {

int32_t ReliefRecordSize(int32_t) { return sizeof(ReliefRecord); }

int16_t ReliefCreateRecord(EffectHead*) { return kNoError; }

// Until the dialogs have windows, the dialog step is what a dialog opened
// and closed with OK untouched does to the record and to PLGPARAM.INI.
int16_t ReliefDialog(FilterRecord*, RunSlot*, EffectHead* effect) {
  auto* record = reinterpret_cast<ReliefRecord*>(effect);
  return ReliefStyleStep(effect->filterId, &record->params);
}

// The whole effect happens here, rows through advanceState; the empty
// request that it leaves ends the run.
int16_t ReliefRun(FilterRecord* record, RunSlot*, EffectHead* effect) {
  ReliefJob job{};
  job.filterId = effect->filterId;
  job.params = reinterpret_cast<ReliefRecord*>(effect)->params;
  return ReliefRun(record, job);
}

}  // namespace fancy
