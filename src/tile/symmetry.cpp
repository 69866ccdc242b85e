// What every group shares: parameters, the feather from a percentage, the
// fit of the feather to the picture, margins and bounds, and the float box
// kept inside the picture.
#include "tile/symmetry.h"

#include <algorithm>

#include "frame/result_codes.h"

namespace fancy {
namespace {

int16_t ToInt16(int64_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }

void MakeBounds(const int16_t margin[4], int32_t extentWidth, int32_t extentHeight,
                int16_t bounds[4]) {
  bounds[kSideTop] = ToInt16(int64_t{margin[kSideTop]} + extentHeight);
  bounds[kSideLeft] = ToInt16(-int64_t{margin[kSideLeft]});
  bounds[kSideBottom] = ToInt16(-int64_t{margin[kSideBottom]});
  bounds[kSideRight] = ToInt16(int64_t{margin[kSideRight]} + extentWidth);
}

}  // namespace

void Symmetry::LoadParams(const SymmetryParams& params) {
  cellX = params.cellX;
  cellY = params.cellY;
  exactX = cellX;
  exactY = cellY;
  feather = params.feather;
  featherPercent = params.featherPercent;
  reserved = params.reserved;
}

void Symmetry::StoreParams(SymmetryParams* params) const {
  params->groupId = groupId;
  params->imageWidth = imageWidth;
  params->imageHeight = imageHeight;
  params->cellX = cellX;
  params->cellY = cellY;
  params->feather = feather;
  params->featherPercent = featherPercent;
  params->reserved = reserved;
}

void Symmetry::ComputeRowShift() { rowShift = 0; }

void Symmetry::SetFeatherPercent(int32_t percent) {
  percent = std::clamp(percent, 0, 100);
  featherPercent = percent;
  const int64_t pixels = int64_t{FeatherMaximum()} * percent / 100;
  feather = static_cast<int32_t>(std::min<int64_t>(pixels, FeatherCap()));
  ClampToPicture();
}

void Symmetry::GetSourceRect(Rect16* rect) const {
  Rect16 box;
  GetRect(&box);
  rect->top = ToInt16(int64_t{box.top} - featherMargin[kSideTop]);
  rect->left = ToInt16(int64_t{box.left} - featherMargin[kSideLeft]);
  rect->bottom = ToInt16(int64_t{box.bottom} + featherMargin[kSideBottom]);
  rect->right = ToInt16(int64_t{box.right} + featherMargin[kSideRight]);
}

int16_t Symmetry::BuildTile(const uint8_t*, int32_t, int32_t, int32_t, uint8_t*, int32_t,
                            int32_t, TileBuildHooks*) {
  return kErrFilterFailure;
}

int16_t Symmetry::BuildFeatheredCell(const uint8_t*, int32_t, int32_t, int32_t, uint8_t*,
                                     int32_t, int32_t) {
  return kErrFilterFailure;
}

// A cell that touches an edge leaves no room for a feather; the feather
// then becomes 0 rather than negative, which the tile maker would take for
// a feather to draw.
void Symmetry::ClampToPicture() {
  const int64_t left = BoxLeft();
  const int64_t top = cellY;
  int64_t f = feather;
  if (left + f + extentWidth > int64_t{imageWidth} - 1) {
    f = std::min<int64_t>(f, int64_t{imageWidth} - extentWidth - left - 1);
  }
  if (left - f < 1) f = std::min<int64_t>(f, left - 1);
  if (top + f + extentHeight > int64_t{imageHeight} - 1) {
    f = std::min<int64_t>(f, int64_t{imageHeight} - extentHeight - top - 1);
  }
  if (top - f < 1) f = std::min<int64_t>(f, top - 1);
  feather = static_cast<int32_t>(std::max<int64_t>(f, 0));
}

void Symmetry::ClearCellMargin() { std::fill(cellMargin, cellMargin + 4, int16_t{0}); }

void Symmetry::SetCellBounds() { MakeBounds(cellMargin, extentWidth, extentHeight, cellBounds); }

void Symmetry::SetFeatherMargin() {
  for (int i = 0; i < 4; ++i) featherMargin[i] = ToInt16(std::max<int64_t>(cellMargin[i], feather));
}

void Symmetry::SetFeatherBounds() {
  MakeBounds(featherMargin, extentWidth, extentHeight, featherBounds);
}

void Symmetry::SetOuterMargin() {
  const int32_t band = OuterBand();
  for (int i = 0; i < 4; ++i) outerMargin[i] = ToInt16(std::max<int64_t>(featherMargin[i], band));
}

void Symmetry::SetOuterBounds() { MakeBounds(outerMargin, extentWidth, extentHeight, outerBounds); }

void Symmetry::PrepareMargins() {
  ClearCellMargin();
  SetCellBounds();
  SetFeatherMargin();
  SetFeatherBounds();
}

// Each side under the minimum is raised, so a box small both ways comes
// out valid both ways.
void Symmetry::NormalizeExtent(CellExtent* extent) const {
  const double minSide = groupId >= kGroupP3 ? 12.0 : 10.0;
  bool raised = false;
  if (extent->right - extent->left < minSide) {
    extent->right = extent->left + minSide;
    raised = true;
  }
  if (extent->bottom - extent->top < minSide) {
    extent->bottom = extent->top + minSide;
    raised = true;
  }
  if (raised) extent->shearFraction = 0.0;

  const double lastColumn = static_cast<double>(imageWidth) - 1.0;
  if (extent->right > lastColumn) {
    const double d = extent->right - lastColumn;
    extent->right -= d;
    extent->left -= d;
  }
  if (extent->left < 1.0) {
    const double d = 1.0 - extent->left;
    extent->left += d;
    extent->right += d;
  }
  const double lastRow = static_cast<double>(imageHeight) - 1.0;
  if (extent->bottom > lastRow) {
    const double d = extent->bottom - lastRow;
    extent->bottom -= d;
    extent->top -= d;
  }
  if (extent->top < 1.0) {
    const double d = 1.0 - extent->top;
    extent->top += d;
    extent->bottom += d;
  }
}

}  // namespace fancy
