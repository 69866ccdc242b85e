// Integer arithmetic of pixel coordinates: edges and positions worked out in
// 64 bits, then held to the 32-bit range or divided with rounding down.
#pragma once

#include <algorithm>
#include <cstdint>

namespace fancy {

// v held to the 32-bit range.
inline int32_t ClampToInt32(int64_t v) {
  return static_cast<int32_t>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX));
}

// a / b rounded toward minus infinity (b != 0).
inline int64_t FloorDiv(int64_t a, int64_t b) {
  int64_t q = a / b;
  if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
  return q;
}

}  // namespace fancy
