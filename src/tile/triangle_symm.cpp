// The two triangles whose every edge is a mirror, so that they take no
// feather: the equilateral triangle of P3m1 and the 30-60-90 triangle of
// P6m.
#include <algorithm>

#include "frame/fixed.h"
#include "tile/shapes.h"

namespace fancy {
namespace {

int32_t DropFeather(int32_t* feather) {
  if (*feather > 0) {
    *feather = 0;
    return -1;
  }
  return 0;
}

int32_t LeavesImage(const Symmetry& s) {
  return s.cellX < 0 || s.cellY < 0 || int64_t{s.cellX} + s.extentWidth > s.imageWidth ||
         int64_t{s.cellY} + s.extentHeight > s.imageHeight;
}

}  // namespace

// ---- T60Symm: base on the top row, side size -------------------------------

int32_t T60Symm::BoxHeight() const { return TruncToInt(0.8660254 * size); }

double T60Symm::ExactBoxHeight() const { return 0.8660254 * exactSize; }

int32_t T60Symm::SizeFromRect(int32_t h, int32_t w) const {
  return std::min(TruncToInt(h * 1.1547005), w);
}

double T60Symm::SizeFromExtent(double h, double w) const { return std::min(h * 1.1547005, w); }

int32_t T60Symm::ClampFeather() { return DropFeather(&feather); }

int32_t T60Symm::FeatherLeavesImage() const { return LeavesImage(*this); }

void T60Symm::SetDefaultCell() {
  StartDefault(TruncToInt(std::min(static_cast<double>(imageWidth / 3),
                                   imageHeight * 0.38490018114172325)),
               false);
}

void T60Symm::ComputeCellExtent() {
  extentWidth = size;
  extentHeight = 2 - TruncToInt(-0.8660254 * size);
}

void T60Symm::GetFeatherOffsets(int32_t* outX, int32_t* outY) const {
  *outX = 0;
  *outY = 0;
}

// ---- T30Symm: short side size along the bottom, sqrt 3 size high ----------

// The integer box uses 0.577503 to get the size from a height (a constant
// kept with its digits); the float forms use the exact ratio.
int32_t T30Symm::BoxHeight() const { return TruncToInt(1.7320508 * size); }

double T30Symm::ExactBoxHeight() const { return 1.7320508075688772 * exactSize; }

int32_t T30Symm::SizeFromRect(int32_t h, int32_t w) const {
  return TruncToInt(std::min(h * 0.577503, static_cast<double>(w)));
}

double T30Symm::SizeFromExtent(double h, double w) const {
  return std::min(h * 0.5773502691925848, w);
}

int32_t T30Symm::ClampFeather() { return DropFeather(&feather); }

int32_t T30Symm::FeatherLeavesImage() const { return LeavesImage(*this); }

void T30Symm::SetDefaultCell() {
  StartDefault(TruncToInt(std::min(static_cast<double>(imageWidth / 3),
                                   imageHeight * 0.19245009057086163)),
               false);
}

void T30Symm::ComputeCellExtent() {
  extentWidth = size;
  extentHeight = 1 - TruncToInt(-1.7320508 * size);
}

void T30Symm::GetFeatherOffsets(int32_t* outX, int32_t* outY) const {
  *outX = 0;
  *outY = 0;
}

}  // namespace fancy
