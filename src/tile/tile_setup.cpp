// The run's start: the size test of selector 2, and the set-up of selector 3
// that turns the record into a symmetry, a tile buffer's settings and the
// host rows the tile is cut from.
#include <algorithm>
#include <cmath>

#include "config/strings.h"
#include "frame/memory_plan.h"
#include "frame/result_codes.h"
#include "tile/source_convert.h"
#include "tile/source_file.h"
#include "tile/tile_pixel.h"
#include "tile/tile_run.h"
#include "tile/tile_state.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

int32_t FilterWidth(const FilterRecord* host) {
  return host->filterRect.right - host->filterRect.left;
}
int32_t FilterHeight(const FilterRecord* host) {
  return host->filterRect.bottom - host->filterRect.top;
}

bool CropLiesIn(const TileRecord& params, const Image& loaded) {
  return params.cropLeft >= 0 && params.cropTop >= 0 && params.cropLeft < params.cropRight &&
         params.cropTop < params.cropBottom && params.cropRight <= loaded.width &&
         params.cropBottom <= loaded.height;
}

// The stored fractions become the cell, kept inside the source picture.
void TileApplyStoredCell(const TileRecord& params, Symmetry* symmetry) {
  const double w = symmetry->imageWidth, h = symmetry->imageHeight;
  CellExtent extent{params.cellFracTop * h, params.cellFracLeft * w, params.cellFracBottom * h,
                    params.cellFracRight * w, params.cellShear};
  symmetry->NormalizeExtent(&extent);
  symmetry->SetFromExtent(extent);
}

// The tile's pixel type and the planes of a host mode; 0 for a mode the
// effect cannot work in, or planes that do not agree with it.
int32_t PixelTypeOfHost(const FilterRecord* host) {
  switch (host->imageMode) {
    case kModeGray: return host->planes == 1 ? kTilePixelGray : 0;
    case kModeRGB: return host->planes == 3 ? kTilePixelRgb : 0;
    case kModeCMYK: return host->planes == 4 ? kTilePixelCmyk : 0;
    default: return 0;
  }
}

}  // namespace

int16_t TilePrepare(FilterRecord* host) {
  if (FilterWidth(host) < kTileMinimumImageSide || FilterHeight(host) < kTileMinimumImageSide) {
    ShowMessageBox(nullptr, LoadTempString(kStrTileTooSmall), LoadTempString(kStrTessaris), kMbOk);
    gTileState.errorCode = kTileErrorTooSmall;
    return kErrUserCancelled;
  }
  gTileState.errorCode = MemoryPlan(host);
  return kNoError;
}

bool TileLoadedSourceFits(const Image* loaded) {
  return loaded && loaded->width >= kTileMinimumImageSide &&
         loaded->height >= kTileMinimumImageSide;
}

void TileAdoptLoadedSource(TileRecord* params, const Image* loaded, int32_t filteredWidth,
                           int32_t filteredHeight, bool isNew) {
  params->loadedType = TilePixelTypeOfImage(loaded->type);
  params->loadedWidth = loaded->width;
  params->loadedHeight = loaded->height;
  if (!isNew && CropLiesIn(*params, *loaded)) return;
  SourceCrop crop;
  params->cropSet = ComputeSourceCrop(loaded->width, loaded->height, filteredWidth,
                                      filteredHeight, &crop)
                        ? 1
                        : 0;
  params->cropLeft = crop.left;
  params->cropTop = crop.top;
  params->cropRight = crop.right;
  params->cropBottom = crop.bottom;
  TileDefaultCell(params, crop.right - crop.left, crop.bottom - crop.top);
}

int16_t TileSetup(FilterRecord* host, TileRecord* params, const RunSlot* slot) {
  TileEngineState& s = gTileState;
  // 1. The records, and the symmetry of the group.
  if (!s.recordsMade) {
    s.tileBuffer = TileBuffer{};
    s.tileBuffer.state = kTileBufferEmpty;
    s.cellBuffer = TileWorkBuffer{};
    s.auxBuffer = TileWorkBuffer{};
    s.recordsMade = true;
  }
  s.symmetry = MakeSymmetry(params->groupId);
  if (!s.symmetry) return kErrOutOfMemory;
  Symmetry& symmetry = *s.symmetry;
  s.groupId = params->groupId;

  // 2. The filtered rectangle, and the source rectangle at its size.
  s.filterRect = host->filterRect;
  const int32_t filterWidth = FilterWidth(host), filterHeight = FilterHeight(host);
  if (filterWidth <= 0 || filterHeight <= 0) return kErrFilterFailure;
  s.sourceLeft = s.sourceTop = 0;
  s.sourceWidth = filterWidth;
  s.sourceHeight = filterHeight;
  s.cropLeft = s.cropTop = 0;

  // 3. A file that did not load (or cannot hold a cell, or is not of the
  // host's type) gives way to the image itself, silently.
  s.pixelType = PixelTypeOfHost(host);
  s.planes = host->planes;
  s.sourceKind = params->sourceKind;
  const Image* loaded = slot ? slot->loadedSource : nullptr;
  if (s.sourceKind == kTileSourceFile &&
      (!TileLoadedSourceFits(loaded) || TilePixelTypeOfImage(loaded->type) != s.pixelType))
    s.sourceKind = kTileSourceImage;

  // 4. A loaded picture is used through its crop.
  if (s.sourceKind == kTileSourceFile) {
    if (!CropLiesIn(*params, *loaded))
      TileAdoptLoadedSource(params, loaded, filterWidth, filterHeight, true);
    s.sourceLeft = s.cropLeft = params->cropLeft;
    s.sourceTop = s.cropTop = params->cropTop;
    s.sourceWidth = params->cropRight - params->cropLeft;
    s.sourceHeight = params->cropBottom - params->cropTop;
  }

  // 5, 6. The cell from the stored fractions, in the source's size; the
  // tile buffer's settings.
  symmetry.imageWidth = s.sourceWidth;
  symmetry.imageHeight = s.sourceHeight;
  if (params->paramsWidth <= 0 || params->paramsHeight <= 0)
    TileDefaultCell(params, s.sourceWidth, s.sourceHeight);
  TileApplyStoredCell(*params, &symmetry);
  TileBuffer& tile = s.tileBuffer;
  tile.panX = static_cast<int32_t>(std::trunc(filterWidth * params->panFractionX));
  tile.panY = static_cast<int32_t>(std::trunc(filterHeight * params->panFractionY));
  tile.opacity = static_cast<uint8_t>(std::clamp(params->opacity, 0, 100));
  tile.mode = static_cast<int16_t>(params->mode);

  // 7. Tile size, cell extent, row shift, feather, margins.
  symmetry.ComputeTileSize();
  symmetry.ComputeCellExtent();
  symmetry.ComputeRowShift();
  symmetry.SetFeatherPercent(params->featherPercent);
  if (TileGroupTakesNoFeather(symmetry.groupId)) symmetry.feather = 0;
  symmetry.PrepareMargins();
  symmetry.StoreParams(&params->cell);
  if (symmetry.tileWidth <= 0 || symmetry.tileHeight <= 0 || symmetry.extentWidth <= 0 ||
      symmetry.extentHeight <= 0)
    return kErrFilterFailure;

  // The cell's box must lie in the source picture; its region (which may
  // pass the box by a pixel or two, and by the feather) is read as far as
  // the picture has it.
  Rect16 box, region;
  symmetry.GetRect(&box);
  TileSourceRegion(symmetry, &region);
  if (box.top < 0 || box.left < 0 || box.bottom > s.sourceHeight || box.right > s.sourceWidth ||
      box.top >= box.bottom || box.left >= box.right)
    return kErrFilterFailure;

  // 8. The image itself: its rows of the region are asked for.
  s.sourceRequest = Rect16{};
  if (s.sourceKind == kTileSourceImage) {
    const Rect16& f = host->filterRect;
    s.sourceRequest = Rect16{static_cast<int16_t>(std::max<int32_t>(region.top, 0) + f.top),
                             static_cast<int16_t>(std::max<int32_t>(region.left, 0) + f.left),
                             static_cast<int16_t>(std::min(region.bottom, int16_t(filterHeight)) + f.top),
                             static_cast<int16_t>(std::min(region.right, int16_t(filterWidth)) + f.left)};
  }
  return kNoError;
}

int32_t TileHostPixelType(const FilterRecord* host) { return PixelTypeOfHost(host); }

void TileSourceRegion(const Symmetry& symmetry, Rect16* region) {
  Rect16 box;
  symmetry.GetRect(&box);
  const int16_t* margin = symmetry.featherMargin;
  region->top = static_cast<int16_t>(box.top - margin[kSideTop]);
  region->left = static_cast<int16_t>(box.left - margin[kSideLeft]);
  region->bottom =
      static_cast<int16_t>(box.top + symmetry.extentHeight + margin[kSideBottom]);
  region->right = static_cast<int16_t>(box.left + symmetry.extentWidth + margin[kSideRight]);
}

}  // namespace fancy
