// The cell's outline by group, in source-picture pixels.
#include "tile/cell_polygon.h"

#include <algorithm>
#include <initializer_list>

#include "frame/fixed.h"
#include "tile/symmetry.h"

namespace fancy {
namespace {

constexpr int32_t kMinSide = 10;

void Close(CellPolygon* polygon, std::initializer_list<PolygonPoint> points,
           std::initializer_list<int32_t> handles) {
  int32_t n = 0;
  for (const PolygonPoint& p : points) polygon->points[n++] = p;
  polygon->points[n++] = polygon->points[0];
  polygon->pointCount = n;
  int32_t h = 0;
  for (int32_t index : handles) polygon->handles[h++] = index;
  polygon->handles[h] = -1;
}

}  // namespace

bool BuildPolygon(int32_t groupId, int32_t left, int32_t top, int32_t width, int32_t height,
                  int32_t shear, const PolygonClip& clip, CellPolygon* polygon) {
  polygon->pointCount = 0;
  polygon->handles[0] = -1;
  if (groupId < kGroupFirst || groupId > kGroupLast) return false;

  width = std::max(width, kMinSide);
  height = std::max(height, kMinSide);
  const int64_t boxLeft = std::max<int64_t>(left, clip.left);
  const int64_t boxTop = std::max<int64_t>(top, clip.top);
  const int64_t boxRight = std::min<int64_t>(int64_t{left} + width, clip.right);
  const int64_t boxBottom = std::min<int64_t>(int64_t{top} + height, clip.bottom);
  if (boxRight - boxLeft < 1 || boxBottom - boxTop < 1) return false;

  const int32_t x = static_cast<int32_t>(boxLeft);
  const int32_t y = static_cast<int32_t>(boxTop);
  int32_t w = static_cast<int32_t>(boxRight - boxLeft - 1);
  const int32_t h = static_cast<int32_t>(boxBottom - boxTop - 1);
  const int32_t rowsLeft = clip.bottom - 1 - y;  // the last row a vertex may take

  switch (groupId) {
    case kGroupP1: {
      const int32_t s = shear;
      if (s <= 0) {
        Close(polygon, {{x, y}, {x - s, y + h}, {x + w, y + h}, {x + w + s, y}}, {1, 3});
      } else {
        Close(polygon, {{x + s, y}, {x, y + h}, {x + w - s, y + h}, {x + w, y}}, {1, 3});
      }
      break;
    }
    case kGroupCm:
    case kGroupP4g:
    case kGroupP4m:
    case kGroupCmm: {
      const int32_t s = y + w > clip.bottom - 1 ? rowsLeft : w;
      Close(polygon, {{x, y}, {x, y + s}, {x + s, y + s}}, {2});
      break;
    }
    case kGroupP4: {
      const int32_t s = y + w > clip.bottom - 1 ? rowsLeft : w;
      Close(polygon, {{x, y}, {x, y + s}, {x + s, y + s}, {x + s, y}}, {2});
      break;
    }
    case kGroupP3: {
      // A rhombus with a 60 degree corner: s rows high, t the length of a
      // side's horizontal run.
      int32_t s = TruncToInt(0.5 + 0.5773503 * w);
      if (y + s > clip.bottom - 1) {
        s = rowsLeft;
        w = TruncToInt(0.5 + 1.7320507151377595 * s);
      }
      const int32_t t = TruncToInt(0.5 + 0.6666666666666666 * w);
      Close(polygon, {{x, y}, {x + t / 2, y + s}, {x + w, y + s}, {x + t, y}}, {3});
      break;
    }
    case kGroupP3m1: {
      int32_t s = TruncToInt(0.8660254 * w);
      if (y + s > clip.bottom - 1) {
        s = rowsLeft;
        w = TruncToInt(1.1547005434251698 * s);
      }
      Close(polygon, {{x, y}, {x + w / 2, y + s}, {x + w, y}}, {2});
      break;
    }
    case kGroupP31m:
    case kGroupP6: {
      int32_t k = TruncToInt(1.1547005333333331 * w);
      if (y + k > clip.bottom - 1) {
        k = rowsLeft;
        w = TruncToInt(0.8660254075688774 * k);
      }
      Close(polygon, {{x, y}, {x, y + k}, {x + 4 * w / 6, y + k}, {x + w, y + k / 2}}, {3});
      break;
    }
    case kGroupP6m: {
      int32_t k = TruncToInt(1.7320508 * w);
      if (y + k > clip.bottom - 1) {
        k = rowsLeft;
        w = TruncToInt(0.5773502717125849 * k);
      }
      Close(polygon, {{x, y}, {x, y + k}, {x + w, y + k}}, {2});
      break;
    }
    default:  // Pm, P2, Pg, Pgg, Pmm, Pmg
      Close(polygon, {{x, y}, {x, y + h}, {x + w, y + h}, {x + w, y}}, {2});
      break;
  }
  return true;
}

}  // namespace fancy
