// The rhombus of P3: a 60 degree corner at the top left, size rows high
// and about 1.732 size wide.
#include <algorithm>

#include "frame/fixed.h"
#include "tile/shapes.h"

namespace fancy {

// The width of the integer box uses 1.73202508, which differs from sqrt 3
// in its digits; the float box uses 1.73205080756. Both are kept.
int32_t DiamondSymm::BoxWidth() const { return TruncToInt(size * 1.73202508); }

double DiamondSymm::ExactBoxWidth() const { return exactSize * 1.73205080756; }

int32_t DiamondSymm::SizeFromRect(int32_t h, int32_t w) const {
  return std::min(h, TruncToInt(w * 0.5773503));
}

double DiamondSymm::SizeFromExtent(double h, double w) const {
  return std::min(h, w * 0.5773502691925848);
}

// The inscribed feather: half the height, or the rhombus's inner height.
int32_t DiamondSymm::FeatherBase() const {
  const int32_t half = TruncToInt(size * 0.5);
  return TruncToInt(std::min(static_cast<double>(half), size * 0.57735025 * 0.8660254));
}

int32_t DiamondSymm::ClampFeather() {
  const int32_t limit = std::max(FeatherBase() - 4, 0);
  if (feather > limit) {
    feather = limit;
    return -1;
  }
  return 0;
}

int32_t DiamondSymm::FeatherMaximum() const { return FeatherBase() - 1; }

int32_t DiamondSymm::OuterBand() const { return TruncToInt(feather * 1.25) + 5; }

void DiamondSymm::SetDefaultCell() {
  StartDefault(TruncToInt(std::min(imageWidth * 0.19245009057086163,
                                   imageHeight * 0.3333333333333333)),
               false);
}

void DiamondSymm::ComputeCellExtent() {
  extentWidth = 1 - TruncToInt(0.5 - size * 1.1547005 * 1.5);
  extentHeight = size;
}

void DiamondSymm::GetFeatherOffsets(int32_t* outX, int32_t* outY) const {
  *outX = WrapAdd(feather, 4);
  *outY = WrapAdd(feather, 4);
}

}  // namespace fancy
