// What the cells measured by one size share: parameters, the float and
// integer forms of their box, scaling, and the feather test.
#include <algorithm>

#include "frame/fixed.h"
#include "tile/shapes.h"

namespace fancy {
namespace {

int16_t ToInt16(int64_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }

}  // namespace

void SizedSymm::LoadParams(const SymmetryParams& params) {
  Symmetry::LoadParams(params);
  size = params.size;
  exactSize = size;
}

void SizedSymm::StoreParams(SymmetryParams* params) const {
  Symmetry::StoreParams(params);
  params->size = size;
}

void SizedSymm::SetFromRect(int32_t top, int32_t left, int32_t bottom, int32_t right) {
  cellX = left;
  cellY = top;
  size = SizeFromRect(WrapSub(bottom, top), WrapSub(right, left));
  exactX = cellX;
  exactY = cellY;
  exactSize = size;
}

void SizedSymm::SetFromExtent(const CellExtent& extent) {
  exactX = extent.left;
  exactY = extent.top;
  exactSize = SizeFromExtent(extent.bottom - extent.top, extent.right - extent.left);
  const double guard = Guard();
  cellX = TruncToInt(exactX + guard);
  cellY = TruncToInt(exactY + guard);
  size = TruncToInt(exactSize + guard);
}

void SizedSymm::GetRect(Rect16* rect) const {
  rect->top = ToInt16(cellY);
  rect->left = ToInt16(cellX);
  rect->bottom = ToInt16(int64_t{cellY} + BoxHeight());
  rect->right = ToInt16(int64_t{cellX} + BoxWidth());
}

void SizedSymm::GetExtent(CellExtent* extent) const {
  extent->top = exactY;
  extent->left = exactX;
  extent->bottom = exactY + ExactBoxHeight();
  extent->right = exactX + ExactBoxWidth();
  extent->shearFraction = 0.0;
}

// One pixel more than the feather: the slanted edges of these cells reach
// one pixel further into the margin.
int32_t SizedSymm::FeatherLeavesImage() const {
  const int64_t f = int64_t{feather} + 1;
  return int64_t{cellX} + extentWidth + f > imageWidth ||
         int64_t{cellY} + extentHeight + f > imageHeight || cellX - f < 0 || cellY - f < 0;
}

void SizedSymm::SetScaled(int32_t x, int32_t y, int32_t h, int32_t, int32_t, double scale) {
  exactX = x * scale;
  exactY = y * scale;
  exactSize = h * scale;
  const double guard = Guard();
  cellX = TruncToInt(exactX + guard);
  cellY = TruncToInt(exactY + guard);
  size = TruncToInt(exactSize + guard);
}

void SizedSymm::Scale(double factor) {
  size = TruncToInt(size * factor);
  cellX = TruncToInt(cellX * factor);
  cellY = TruncToInt(cellY * factor);
  exactSize *= factor;
  exactX *= factor;
  exactY *= factor;
}

// Centred cells sit in the middle of the picture, the others at a third
// of it.
void SizedSymm::StartDefault(int32_t newSize, bool centred) {
  size = newSize;
  cellX = centred ? (imageWidth - size) / 2 : imageWidth / 3;
  cellY = centred ? (imageHeight - size) / 2 : imageHeight / 3;
  feather = 0;
  exactX = cellX;
  exactY = cellY;
  exactSize = size;
}

}  // namespace fancy
