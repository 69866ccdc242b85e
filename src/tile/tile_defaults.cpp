// The tile record's defaults, its first cell, the state a cancelled run
// stores back, and the test that a record (perhaps from a saved block) can
// be run at all.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "tile/symmetry.h"
#include "tile/tile_buffer.h"
#include "tile/tile_run.h"

namespace fancy {

void TileDefaultCell(TileRecord* params, int32_t sourceWidth, int32_t sourceHeight) {
  const int32_t w = std::max(sourceWidth, 1), h = std::max(sourceHeight, 1);
  const int32_t side = std::min(w / 3, h / 3);
  params->cellLeft = w / 2 - side / 2;
  params->cellTop = h / 2 - side / 2;
  params->cellRight = params->cellLeft + side;
  params->cellBottom = params->cellTop + side;
  params->cellFracLeft = double(params->cellLeft) / w;
  params->cellFracTop = double(params->cellTop) / h;
  params->cellFracRight = double(params->cellRight) / w;
  params->cellFracBottom = double(params->cellBottom) / h;
  params->cellShear = 0.0;
  params->paramsWidth = w;
  params->paramsHeight = h;
}

void TileReset(const FilterRecord* host, TileRecord* params) {
  params->groupId = kGroupP4;
  params->mode = kTileModeNormal;
  params->sourceKind = kTileSourceImage;
  params->featherPercent = 0;
  params->opacity = 100;
  params->continuousPreview = 0;
  params->symmetryPreview = 1;
  params->showFeatherBoundary = 1;
  params->panFractionX = params->panFractionY = 0.0;
  params->panX = params->panY = 0;
  params->previewColour[0] = params->previewColour[1] = kTilePreviewNeutral;
  params->errorState = 0;
  params->firstRun = 0;
  params->cell = SymmetryParams{};
  if (host) {
    const int32_t w = host->filterRect.right - host->filterRect.left;
    const int32_t h = host->filterRect.bottom - host->filterRect.top;
    params->loadedWidth = w;
    params->loadedHeight = h;
    TileDefaultCell(params, w, h);
  } else {
    params->paramsWidth = params->paramsHeight = 0;
  }
}

void TileStoreState(const TileBuffer& tile, TileRecord* params) {
  params->panFractionX = tile.imageWidth > 0 ? double(tile.panX) / tile.imageWidth : 0.0;
  params->panFractionY = tile.imageHeight > 0 ? double(tile.panY) / tile.imageHeight : 0.0;
  params->mode = tile.mode;
  params->opacity = tile.opacity;
  params->panX = tile.panX;
  params->panY = tile.panY;
}

bool TileRecordIsUsable(const TileRecord& params) {
  if (params.head.filterId != kFilterTessaris || params.head.effectClass != kClassTile)
    return false;
  if (params.groupId < kGroupFirst || params.groupId > kGroupLast) return false;
  if (params.mode < kTileModeFirst || params.mode > kTileModeLast) return false;
  if (params.sourceKind != kTileSourceFile && params.sourceKind != kTileSourceImage) return false;
  if (!std::memchr(params.sourcePath, 0, sizeof params.sourcePath)) return false;
  // The run multiplies these by sizes and truncates: they must be numbers
  // of a sensible size.
  const double fractions[] = {params.cellFracTop,  params.cellFracLeft, params.cellFracBottom,
                              params.cellFracRight, params.cellShear,   params.panFractionX,
                              params.panFractionY};
  for (double f : fractions)
    if (!std::isfinite(f) || std::fabs(f) > 1000.0) return false;
  return true;
}

}  // namespace fancy
