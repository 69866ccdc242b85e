// The square cell of P4 and the right isosceles triangle of Cm, Cmm, P4g
// and P4m, both held in a square box of side size.
#include <algorithm>

#include "frame/fixed.h"
#include "tile/shapes.h"

namespace fancy {

// ---- SquareSymm ------------------------------------------------------------

int32_t SquareSymm::ClampFeather() {
  const int32_t limit = std::max(FeatherMaximum(), 0);
  if (feather > limit) {
    feather = limit;
    return -1;
  }
  return 0;
}

void SquareSymm::SetDefaultCell() { StartDefault(std::min(imageWidth / 3, imageHeight / 3), true); }

void SquareSymm::ComputeCellExtent() {
  extentWidth = size;
  extentHeight = size;
}

void SquareSymm::GetFeatherOffsets(int32_t* outX, int32_t* outY) const {
  *outX = feather;
  *outY = feather;
}

int32_t SquareSymm::FeatherMaximum() const { return size / 2 - 1; }

int32_t SquareSymm::SizeFromRect(int32_t h, int32_t w) const { return std::min(h, w); }

double SquareSymm::SizeFromExtent(double h, double w) const { return std::min(h, w); }

// ---- T45Symm ---------------------------------------------------------------

// The limit of the clamp and the maximum for a percentage use different
// constants, 0.2928932 (1 - 1/sqrt 2) and 0.2728932; both are kept.
int32_t T45Symm::ClampFeather() {
  const int32_t limit = std::max(-2 - TruncToInt(size * -0.2928932), 0);
  if (feather > limit) {
    feather = limit;
    return -1;
  }
  return 0;
}

void T45Symm::SetDefaultCell() { StartDefault(std::min(imageWidth / 3, imageHeight / 3), true); }

void T45Symm::ComputeCellExtent() {
  extentWidth = size;
  extentHeight = size;
}

void T45Symm::GetFeatherOffsets(int32_t* outX, int32_t* outY) const {
  *outX = WrapAdd(feather, 2);
  *outY = WrapAdd(feather, 2);
}

int32_t T45Symm::FeatherMaximum() const { return TruncToInt(size * 0.2728932); }

int32_t T45Symm::SizeFromRect(int32_t h, int32_t w) const { return std::min(h, w); }

double T45Symm::SizeFromExtent(double h, double w) const { return std::min(h, w); }

}  // namespace fancy
