#include "frame/prepare.h"

#include "config/config.h"
#include "config/strings.h"
#include "frame/current_record.h"
#include "frame/effect_hooks.h"
#include "frame/host_bridge.h"
#include "frame/module_state.h"
#include "frame/result_codes.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

constexpr uint32_t kStrError = 1075;
constexpr uint32_t kStrNeedsMask = 1084;
constexpr int32_t kChunkBytes = 64000;

}  // namespace

bool AcceptsImage(int16_t planes, int16_t imageMode) {
  if (planes == 4) return true;
  return (planes == 1 || planes == 3) && imageMode != kModeCMYK;
}

int32_t RowsPerChunk(const Rect16& filterRect, int16_t planes) {
  int64_t width = int64_t{filterRect.right} - filterRect.left;
  int64_t rowBytes = (width * planes + 3) & ~int64_t{3};
  if (rowBytes <= 0) return 1;
  int64_t rows = kChunkBytes / rowBytes;
  return rows < 1 ? 1 : static_cast<int32_t>(rows);
}

int16_t PrepareStep(FilterRecord* record, RunSlot* slot, int32_t filterId) {
  HostExtension extension;
  ReadHostExtension(record, &extension);
  char helpFile[sizeof(extension.helpFile)];
  CopyHelpFile(extension, helpFile, sizeof(helpFile));
  SetModuleHelpPath(helpFile);
  GetHostDir(slot->hostDir, sizeof(slot->hostDir));

  if (!AcceptsImage(record->planes, record->imageMode)) return kErrFilterFailure;
  if (!extension.sourceImage || !extension.displayContext) return kErrFilterFailure;

  slot->sourceImage = extension.sourceImage;
  slot->displayContext = extension.displayContext;
  slot->maskImage = extension.maskImage;
  slot->reserved = 0;

  switch (filterId) {
    case kFilterBrushka:
      SetCurrentFilterRecord(record);
      break;
    case kFilterTessaris:
      SetCurrentFilterRecord(record);
      slot->loadedSource = nullptr;
      slot->loadedSourceInfo[0] = slot->loadedSourceInfo[1] = slot->loadedSourceInfo[2] = 0;
      if (EffectHead* effect = EffectRecordOf(record)) TileLoadSource(record, slot, effect);
      SetCurrentFilterRecord(record);
      break;
    case kFilterGlass:
    case kFilterKnurl:
      if (!record->haveMask) {
        ShowMessageBox(nullptr, LoadTempString(kStrNeedsMask), LoadTempString(kStrError), kMbOk);
        return kErrReportedFailure;
      }
      break;
    default:
      return kErrFilterFailure;
  }
  return kNoError;
}

}  // namespace fancy
