// The kite of P31m and P6, a third of a hexagon: 0.75 size wide and
// 0.866 size high, with corners (0, 0), (0.75 size, h/2), (0.5 size, h),
// (0, h).
#include <algorithm>

#include "frame/fixed.h"
#include "tile/shapes.h"

namespace fancy {

int32_t KiteSymm::BoxWidth() const { return TruncToInt(0.75 * size); }

int32_t KiteSymm::BoxHeight() const { return TruncToInt(0.8660254 * size); }

double KiteSymm::ExactBoxWidth() const { return 0.75 * exactSize; }

double KiteSymm::ExactBoxHeight() const { return 0.8660254 * exactSize; }

int32_t KiteSymm::SizeFromRect(int32_t h, int32_t w) const {
  return TruncToInt(std::min(h * 1.1547005, w * 1.33333333));
}

double KiteSymm::SizeFromExtent(double h, double w) const {
  return std::min(h * 1.1547005, w * 1.33333333);
}

// The feather that fits inside the kite: with a = 0.866 size,
// c = a / (1 + 2a / size) and d = trunc(2 a c / size), trunc(a - d).
int32_t KiteSymm::FeatherBase() const {
  if (size <= 0) return 0;
  const double a = size * 0.8660254;
  const double c = a / (1.0 + 2.0 * a / size);
  const int32_t d = TruncToInt(2.0 * a * c / size);
  return TruncToInt(a - d);
}

int32_t KiteSymm::ClampFeather() {
  const int32_t limit = std::max(FeatherBase() - 6, 0);
  if (feather > limit) {
    feather = limit;
    return -1;
  }
  return 0;
}

int32_t KiteSymm::FeatherMaximum() const { return FeatherBase() - 1; }

int32_t KiteSymm::OuterBand() const { return TruncToInt(feather * 1.5 + 5); }

void KiteSymm::SetDefaultCell() {
  StartDefault(TruncToInt(std::min(imageWidth * 0.444444, imageHeight * 0.3849002)), false);
}

void KiteSymm::ComputeCellExtent() {
  extentWidth = TruncToInt(0.75 * size);
  extentHeight = 1 - TruncToInt(0.5 - 0.8660254 * size);
}

void KiteSymm::GetFeatherOffsets(int32_t* outX, int32_t* outY) const {
  *outX = WrapAdd(feather, 6);
  *outY = WrapAdd(feather, 6);
}

}  // namespace fancy
