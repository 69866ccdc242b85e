// Helpers of the relief tests: maps that free themselves, masks drawn from
// shapes, and distances found the slow way.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "relief/relief_maps.h"

namespace fancy::testing {

struct ByteMapFree {
  void operator()(ByteMap* map) const { FreeByteMap(map); }
};
struct HeightMapFree {
  void operator()(HeightMap* map) const { FreeHeightMap(map); }
};
using ByteMapPtr = std::unique_ptr<ByteMap, ByteMapFree>;
using HeightMapPtr = std::unique_ptr<HeightMap, HeightMapFree>;

// A one-byte map with 255 where set(x, y) holds.
inline ByteMapPtr MaskOf(int32_t width, int32_t height,
                         const std::function<bool(int32_t, int32_t)>& set) {
  ByteMapPtr map(AllocByteMap(width, height, 1, 0));
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) map->rows[y][x] = set(x, y) ? 255 : 0;
  return map;
}

// Squared Euclidean distance from (x, y) to the nearest set point; -1 when
// there is none.
inline int64_t NearestSquared(const std::vector<std::pair<int32_t, int32_t>>& points, int32_t x,
                              int32_t y) {
  int64_t best = -1;
  for (const auto& [px, py] : points) {
    const int64_t d = int64_t{px - x} * (px - x) + int64_t{py - y} * (py - y);
    if (best < 0 || d < best) best = d;
  }
  return best;
}

// A disc of radius r round (cx, cy).
inline std::function<bool(int32_t, int32_t)> Disc(double cx, double cy, double r) {
  return [=](int32_t x, int32_t y) { return std::hypot(x - cx, y - cy) < r; };
}

}  // namespace fancy::testing
