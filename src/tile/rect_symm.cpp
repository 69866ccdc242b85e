// The rectangular cell of Pm, Pg, Pmm, Pmg, Pgg and P2.
#include <algorithm>

#include "frame/fixed.h"
#include "tile/shapes.h"

namespace fancy {
namespace {

constexpr double kGuard = 1e-7;

int16_t ToInt16(int64_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }

}  // namespace

void RectSymm::LoadParams(const SymmetryParams& params) {
  Symmetry::LoadParams(params);
  height = params.height;
  width = params.width;
  exactHeight = height;
  exactWidth = width;
}

void RectSymm::StoreParams(SymmetryParams* params) const {
  Symmetry::StoreParams(params);
  params->height = height;
  params->width = width;
}

void RectSymm::SetFromRect(int32_t top, int32_t left, int32_t bottom, int32_t right) {
  cellX = left;
  cellY = top;
  height = WrapSub(bottom, top);
  width = WrapSub(right, left);
  exactX = cellX;
  exactY = cellY;
  exactHeight = height;
  exactWidth = width;
}

void RectSymm::SetFromExtent(const CellExtent& extent) {
  exactX = extent.left;
  exactY = extent.top;
  exactHeight = extent.bottom - extent.top;
  exactWidth = extent.right - extent.left;
  cellX = TruncToInt(exactX + kGuard);
  cellY = TruncToInt(exactY + kGuard);
  height = TruncToInt(exactHeight + kGuard);
  width = TruncToInt(exactWidth + kGuard);
}

void RectSymm::GetRect(Rect16* rect) const {
  rect->top = ToInt16(cellY);
  rect->left = ToInt16(cellX);
  rect->bottom = ToInt16(int64_t{cellY} + height);
  rect->right = ToInt16(int64_t{cellX} + width);
}

void RectSymm::GetExtent(CellExtent* extent) const {
  extent->top = exactY;
  extent->left = exactX;
  extent->bottom = exactY + exactHeight;
  extent->right = exactX + exactWidth;
  extent->shearFraction = 0.0;
}

int32_t RectSymm::ClampFeather() {
  const int32_t limit = std::max(FeatherMaximum(), 0);
  if (feather > limit) {
    feather = limit;
    return -1;
  }
  return 0;
}

int32_t RectSymm::FeatherLeavesImage() const {
  const int64_t f = feather;
  return int64_t{cellX} + width + f > imageWidth || int64_t{cellY} + height + f > imageHeight ||
         cellX - f < 0 || cellY - f < 0;
}

void RectSymm::SetDefaultCell() {
  height = imageHeight / 3;
  width = imageWidth / 3;
  cellX = imageWidth / 3;
  cellY = imageHeight / 3;
  feather = 0;
  exactX = cellX;
  exactY = cellY;
  exactHeight = height;
  exactWidth = width;
}

void RectSymm::SetScaled(int32_t x, int32_t y, int32_t h, int32_t w, int32_t, double scale) {
  exactX = x * scale;
  exactY = y * scale;
  exactHeight = h * scale;
  exactWidth = w * scale;
  cellX = TruncToInt(exactX + kGuard);
  cellY = TruncToInt(exactY + kGuard);
  height = TruncToInt(exactHeight + kGuard);
  width = TruncToInt(exactWidth + kGuard);
}

void RectSymm::Scale(double factor) {
  height = TruncToInt(height * factor);
  width = TruncToInt(width * factor);
  cellX = TruncToInt(cellX * factor);
  cellY = TruncToInt(cellY * factor);
  exactHeight *= factor;
  exactWidth *= factor;
  exactX *= factor;
  exactY *= factor;
}

void RectSymm::ComputeCellExtent() {
  extentWidth = width;
  extentHeight = height;
}

void RectSymm::GetFeatherOffsets(int32_t* outX, int32_t* outY) const {
  *outX = feather;
  *outY = feather;
}

int32_t RectSymm::FeatherMaximum() const { return std::min(height, width) / 2 - 1; }

}  // namespace fancy
