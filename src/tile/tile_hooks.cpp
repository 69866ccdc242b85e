// Tessaris's handlers for the frame: the record, the source file at the
// prepare step, the dialog (until it comes, a dialog closed with OK as it
// opened), and the run's selectors.
#include "config/strings.h"
#include "frame/effect_hooks.h"
#include "frame/host_bridge.h"
#include "frame/result_codes.h"
#include "tile/source_file.h"
#include "tile/tile_run.h"
#include "tile/tile_state.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

// The loader's three words in the RunSlot.
enum : int {
  kInfoLoadResult = 0,  // LoadSourceBmp's code
  kInfoNewPicture = 1,  // 1 when the picture's size is not the one the record knew
  kInfoImageType = 2,   // ImageType of the loaded picture
};

int32_t FilterWidth(const FilterRecord* r) { return r->filterRect.right - r->filterRect.left; }
int32_t FilterHeight(const FilterRecord* r) { return r->filterRect.bottom - r->filterRect.top; }

// The record's way back to the image itself, with a first cell made in it.
void UseOriginalImage(const FilterRecord* record, TileRecord* params) {
  params->sourceKind = kTileSourceImage;
  params->loadedWidth = FilterWidth(record);
  params->loadedHeight = FilterHeight(record);
  params->firstRun = 0;
  TileDefaultCell(params, FilterWidth(record), FilterHeight(record));
}

}  // namespace

int32_t TileRecordSize() { return sizeof(TileRecord); }

int16_t TileCreateRecord(EffectHead* effect) {
  TileResetState();
  TileReset(nullptr, TileRecordOf(effect));
  return kNoError;
}

void TileLoadSource(FilterRecord* record, RunSlot* slot, EffectHead* effect) {
  TileRecord* params = TileRecordOf(effect);
  gTileState.loadedSource.reset();
  if (params->sourceKind != kTileSourceFile || !TileRecordIsUsable(*params) ||
      params->sourcePath[0] == '\0')
    return;
  Image* loaded = nullptr;
  const int16_t code = LoadSourceBmp(params->sourcePath, &loaded, record->imageMode);
  slot->loadedSourceInfo[kInfoLoadResult] = code;
  if (code != kSourceFileOk) return;
  gTileState.loadedSource.reset(loaded);
  slot->loadedSource = loaded;
  slot->loadedSourceInfo[kInfoImageType] = loaded->type;
  slot->loadedSourceInfo[kInfoNewPicture] =
      loaded->width != params->loadedWidth || loaded->height != params->loadedHeight;
  params->loadedWidth = loaded->width;
  params->loadedHeight = loaded->height;
}

// No dialog yet: the effect behaves as its dialog opened and closed with OK
// untouched. Opening settles the source: a named file that did not load is
// reported and gives way to the image itself; a loaded picture too small for
// a cell is refused the same way; a new picture is cropped and gets its
// first cell. OK flags the first run.
int16_t TileDialog(FilterRecord* record, RunSlot* slot, EffectHead* effect) {
  TileRecord* params = TileRecordOf(effect);
  if (!TileRecordIsUsable(*params)) return kErrFilterFailure;
  if (params->sourceKind == kTileSourceFile) {
    const Image* loaded = slot->loadedSource;
    if (!loaded) {
      ShowFileError(nullptr, params->sourcePath, static_cast<int16_t>(
                                                     slot->loadedSourceInfo[kInfoLoadResult]));
      UseOriginalImage(record, params);
    } else if (!TileLoadedSourceFits(loaded)) {
      ShowMessageBox(nullptr, LoadTempString(kStrTileTooSmall), LoadTempString(kStrTessaris),
                     kMbOk);
      UseOriginalImage(record, params);
    } else {
      TileAdoptLoadedSource(params, loaded, FilterWidth(record), FilterHeight(record),
                            slot->loadedSourceInfo[kInfoNewPicture] != 0);
    }
  }
  if (params->paramsWidth <= 0 || params->paramsHeight <= 0) {
    if (params->sourceKind == kTileSourceFile)
      TileDefaultCell(params, params->cropRight - params->cropLeft,
                      params->cropBottom - params->cropTop);
    else
      TileDefaultCell(params, FilterWidth(record), FilterHeight(record));
  }
  params->firstRun = 1;
  return kNoError;
}

int16_t TilePrepareCheck(FilterRecord* record, RunSlot*, EffectHead*) {
  return TilePrepare(record);
}

int16_t TileStart(FilterRecord* record, RunSlot* slot, EffectHead* effect) {
  TileRecord* params = TileRecordOf(effect);
  TileEngineState& s = gTileState;
  TileReleaseEngine();
  s.recordFresh = slot && slot->isFresh;
  s.userAborted = 0;
  s.errorCode = 0;
  if (!TileRecordIsUsable(*params)) return kErrFilterFailure;
  if (TileHostPixelType(record) == 0) {
    s.errorCode = kTileErrorBadMode;
    return kErrBadImageMode;
  }
  const int16_t set = TileSetup(record, params, slot);
  if (set != kNoError) {
    TileReleaseEngine();
    return set;
  }
  // The image itself is read at once: its source rows are asked for. A
  // loaded picture needs none; the first row is asked for so that the tile
  // is made at the next step.
  const Rect16& want = s.sourceRequest;
  if (s.sourceKind == kTileSourceImage) {
    ClearRowRequest(record);
    record->inRect = want;
    RequestAllPlanes(record);
  } else {
    const int16_t top = record->filterRect.top;
    const int16_t hi = static_cast<int16_t>(record->planes - 1);
    RequestRows(record, top, static_cast<int16_t>(top + 1), 0, hi);
  }
  s.phase = kTilePhaseMakeTile;
  return kNoError;
}

int16_t TileStep(FilterRecord* record, RunSlot*, EffectHead* effect) {
  return TileContinue(record, TileRecordOf(effect));
}

int16_t TileRelease(FilterRecord* record, RunSlot* slot) {
  // After a failed step the frame has already freed a record that this run
  // made; only a record the host still holds is written.
  TileRecord* params = nullptr;
  if (slot || !gTileState.recordFresh) {
    EffectHead* effect = EffectRecordOf(record);
    if (effect && effect->filterId == kFilterTessaris && effect->effectClass == kClassTile)
      params = TileRecordOf(effect);
  }
  return TileFinish(record, params);
}

}  // namespace fancy
