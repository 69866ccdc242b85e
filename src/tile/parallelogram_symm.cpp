// The parallelogram cell of P1.
#include <algorithm>
#include <cmath>

#include "frame/fixed.h"
#include "tile/shapes.h"

namespace fancy {
namespace {

constexpr double kGuard = 1e-7;

int16_t ToInt16(int64_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }

int64_t Abs64(int32_t v) { return v < 0 ? -int64_t{v} : int64_t{v}; }

}  // namespace

void ParallelogramSymm::LoadParams(const SymmetryParams& params) {
  Symmetry::LoadParams(params);
  height = params.height;
  width = params.width;
  shear = params.shear;
  exactHeight = height;
  exactWidth = width;
  exactShear = shear;
}

void ParallelogramSymm::StoreParams(SymmetryParams* params) const {
  Symmetry::StoreParams(params);
  params->height = height;
  params->width = width;
  params->shear = shear;
}

void ParallelogramSymm::SetFromRect(int32_t top, int32_t left, int32_t bottom, int32_t right) {
  cellX = left;
  cellY = top;
  height = WrapSub(bottom, top);
  width = WrapSub(right, left);
  shear = 0;
  exactX = cellX;
  exactY = cellY;
  exactHeight = height;
  exactWidth = width;
  exactShear = 0.0;
}

// The extent is the bounding box; with a negative shear the top edge
// starts |shear| to the right of the box's left side.
void ParallelogramSymm::SetFromExtent(const CellExtent& extent) {
  exactY = extent.top;
  exactHeight = extent.bottom - extent.top;
  exactShear = extent.shearFraction * exactHeight;
  exactWidth = (extent.right - extent.left) - std::fabs(exactShear);
  exactX = extent.left;
  if (extent.shearFraction < 0.0) exactX -= exactShear;
  cellX = TruncToInt(exactX + kGuard);
  cellY = TruncToInt(exactY + kGuard);
  height = TruncToInt(exactHeight + kGuard);
  width = TruncToInt(exactWidth + kGuard);
  shear = TruncToInt(exactShear + kGuard);
}

void ParallelogramSymm::GetRect(Rect16* rect) const {
  const int64_t left = BoxLeft();
  rect->top = ToInt16(cellY);
  rect->left = ToInt16(left);
  rect->bottom = ToInt16(int64_t{cellY} + height);
  rect->right = ToInt16(left + width + Abs64(shear));
}

void ParallelogramSymm::GetExtent(CellExtent* extent) const {
  const double left = exactX + std::min(exactShear, 0.0);
  extent->top = exactY;
  extent->left = left;
  extent->bottom = exactY + exactHeight;
  extent->right = left + exactWidth + std::fabs(exactShear);
  extent->shearFraction = exactHeight != 0.0 ? exactShear / exactHeight : 0.0;
}

// The parallelogram has no limit of its own here: the dialog limits its
// feather through the percentage.
int32_t ParallelogramSymm::ClampFeather() { return 0; }

int32_t ParallelogramSymm::FeatherLeavesImage() const {
  const int64_t left = BoxLeft();
  const int64_t f = int64_t{feather} + 1;
  return left + width + Abs64(shear) + f > imageWidth || int64_t{cellY} + height + f > imageHeight ||
         left - f < 0 || cellY - f < 0;
}

void ParallelogramSymm::SetDefaultCell() {
  height = imageHeight / 3;
  width = imageWidth / 3;
  shear = 0;
  cellX = imageWidth / 3;
  cellY = imageHeight / 3;
  feather = 0;
  exactX = cellX;
  exactY = cellY;
  exactHeight = height;
  exactWidth = width;
  exactShear = 0.0;
}

void ParallelogramSymm::SetScaled(int32_t x, int32_t y, int32_t h, int32_t w, int32_t s,
                                  double scale) {
  exactX = x * scale;
  exactY = y * scale;
  exactHeight = h * scale;
  exactWidth = w * scale;
  exactShear = s * scale;
  cellX = TruncToInt(exactX + kGuard);
  cellY = TruncToInt(exactY + kGuard);
  height = TruncToInt(exactHeight + kGuard);
  width = TruncToInt(exactWidth + kGuard);
  shear = TruncToInt(exactShear + kGuard);
}

void ParallelogramSymm::Scale(double factor) {
  height = TruncToInt(height * factor);
  width = TruncToInt(width * factor);
  cellX = TruncToInt(cellX * factor);
  cellY = TruncToInt(cellY * factor);
  shear = TruncToInt(shear * factor);
  exactHeight *= factor;
  exactWidth *= factor;
  exactX *= factor;
  exactY *= factor;
  exactShear *= factor;
}

void ParallelogramSymm::ComputeRowShift() { rowShift = shear; }

void ParallelogramSymm::ComputeCellExtent() {
  extentWidth = static_cast<int32_t>(width + Abs64(shear));
  extentHeight = height;
}

void ParallelogramSymm::GetFeatherOffsets(int32_t* outX, int32_t* outY) const {
  int32_t a = 0;
  int32_t b = 0;
  ShearedOffsets(feather, &a, &b);
  *outX = WrapAdd(a, b);
  *outY = WrapAdd(feather, 1);
}

void ParallelogramSymm::ShearedOffsets(int32_t featherPixels, int32_t* outA, int32_t* outB) const {
  Fixed t = 0;
  if (height > 0) t = static_cast<Fixed>(static_cast<uint32_t>((Abs64(shear) << 16) / height));
  const Fixed n = FixedSqrt(WrapAdd(FixedMul(t, t), kFixedOne));
  *outA = WrapAdd(WrapMul(featherPixels, n), kFixedOne) >> 16;
  *outB = WrapAdd(WrapMul(featherPixels, t), kFixedOne) >> 16;
}

// min(height / 2, (width / 2) / sqrt(1 + (|shear| / height)^2)), the halves
// in whole pixels and the slant in floating point.
int32_t ParallelogramSymm::FeatherMaximum() const {
  if (height <= 0) return 0;
  const double ratio = static_cast<double>(Abs64(shear)) / height;
  const double across = (width / 2) / std::sqrt(1.0 + ratio * ratio);
  return TruncToInt(std::min(static_cast<double>(height / 2), across));
}

int32_t ParallelogramSymm::OuterBand() const {
  int32_t a = 0;
  int32_t b = 0;
  ShearedOffsets(feather, &a, &b);
  return WrapAdd(WrapAdd(a, b), 5);
}

int32_t ParallelogramSymm::BoxLeft() const { return WrapAdd(cellX, std::min(shear, 0)); }

}  // namespace fancy
