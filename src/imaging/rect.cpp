#include "imaging/rect.h"

#include "imaging/coord_math.h"

namespace fancy {

Rect MakeRect(int32_t x, int32_t y, int32_t width, int32_t height) {
  Rect r;
  r.left = x;
  r.top = y;
  r.right = ClampToInt32(int64_t{x} + width - 1);
  r.bottom = ClampToInt32(int64_t{y} + height - 1);
  return r;
}

Rect EmptyRect() { return Rect{0, -1, -1, 0}; }

bool RectIsEmpty(const Rect& r) { return r.right < r.left || r.top > r.bottom; }

int64_t RectWidth(const Rect& r) {
  return RectIsEmpty(r) ? 0 : int64_t{r.right} - r.left + 1;
}

int64_t RectHeight(const Rect& r) {
  return RectIsEmpty(r) ? 0 : int64_t{r.bottom} - r.top + 1;
}

bool RectIntersect(const Rect& a, const Rect& b, Rect* out) {
  Rect r;
  r.left = std::max(a.left, b.left);
  r.top = std::max(a.top, b.top);
  r.right = std::min(a.right, b.right);
  r.bottom = std::min(a.bottom, b.bottom);
  *out = r;
  return !RectIsEmpty(r);
}

bool RectContains(const Rect& r, int32_t x, int32_t y) {
  return x >= r.left && x <= r.right && y >= r.top && y <= r.bottom;
}

bool RectInside(const Rect& inner, const Rect& outer) {
  return !RectIsEmpty(inner) && inner.left >= outer.left && inner.right <= outer.right &&
         inner.top >= outer.top && inner.bottom <= outer.bottom;
}

bool RectEqual(const Rect& a, const Rect& b) {
  return a.left == b.left && a.bottom == b.bottom && a.right == b.right && a.top == b.top;
}

}  // namespace fancy
