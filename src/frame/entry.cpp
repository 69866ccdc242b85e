#include "frame/entry.h"

#include "config/strings.h"
#include "frame/module_state.h"
#include "frame/result_codes.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

constexpr uint32_t kStrAboutCaption = 1320;

// The about text of an effect with an entry; 0 for the others.
uint32_t AboutTextId(int32_t filterId) {
  switch (filterId) {
    case kFilterBrushka: return 1321;
    case kFilterTessaris: return 1322;
    default: return 0;
  }
}

}  // namespace

// The host's framework state has no counterpart here: the module keeps its
// own state in plain globals, so there is nothing to switch on the way in or
// to restore on the way out.
void FilterEntry(int16_t selector, FilterRecord* record, intptr_t* data, int16_t* result,
                 int32_t filterId) {
  ModuleStartup();
  if (selector == kSelectorAbout) {
    // The about box needs neither the record nor the data slot.
    ShowMessageBox(nullptr, LoadTempString(AboutTextId(filterId)),
                   LoadTempString(kStrAboutCaption), kMbOk);
    if (result) *result = kNoError;
    return;
  }
  // The host's window becomes the owner of every dialog of the module.
  if (record && record->platformData) AttachHostWindow(record->platformData->hostWindow);
  int16_t code = FilterDispatch(selector, record, data, filterId);
  if (result) *result = code;
}

}  // namespace fancy
