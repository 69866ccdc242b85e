// Rect: an inclusive rectangle of pixels. Rows grow downward, so `top` is the
// numerically smallest row; a rectangle is empty when right < left or
// top > bottom. Field order is left, bottom, right, top.
#pragma once

#include <cstdint>

namespace fancy {

struct Rect {
  int32_t left;
  int32_t bottom;
  int32_t right;
  int32_t top;
};

// The rectangle of w x h pixels whose top-left pixel is (x, y). Edges that
// would pass the 32-bit range are held at its limit.
Rect MakeRect(int32_t x, int32_t y, int32_t width, int32_t height);

// A rectangle that holds nothing (left 0, top 0, right -1, bottom -1).
Rect EmptyRect();

bool RectIsEmpty(const Rect& r);

// Width and height as 64-bit values, 0 for an empty rectangle.
int64_t RectWidth(const Rect& r);
int64_t RectHeight(const Rect& r);

// Writes the intersection (larger left and top, smaller right and bottom) to
// *out (which may alias a or b) and answers whether anything is left.
bool RectIntersect(const Rect& a, const Rect& b, Rect* out);

bool RectContains(const Rect& r, int32_t x, int32_t y);

// True when `inner` is not empty and lies wholly in `outer`.
bool RectInside(const Rect& inner, const Rect& outer);

bool RectEqual(const Rect& a, const Rect& b);

}  // namespace fancy
