#include "relief/distance_field.h"

#include <algorithm>

#include "frame/result_codes.h"
#include "relief/drop_off.h"
#include "relief/relief_memory.h"

namespace fancy {

namespace {

constexpr uint8_t kSetThreshold = 127;

// No column is this far from another.
constexpr int32_t kNoColumn = INT32_MAX / 2;

// For every column of a mask row, how far the nearest column is whose
// distance is below limit (kNoColumn when there is none).
void NearestCloseColumn(const uint8_t* d, int32_t width, int32_t limit, int32_t* nearest) {
  int32_t last = -kNoColumn;
  for (int32_t x = 0; x < width; ++x) {
    if (d[x] < limit) last = x;
    nearest[x] = x - last;
  }
  last = kNoColumn + width;
  for (int32_t x = width - 1; x >= 0; --x) {
    if (d[x] < limit) last = x;
    nearest[x] = std::min(nearest[x], last - x);
  }
}

}  // namespace

void VerticalDistances(ByteMap* mask, int32_t* counters) {
  const int32_t width = mask->width;
  const int32_t height = mask->height;
  // Row by row, one counter a column, so that the map is read in its order.
  for (int32_t x = 0; x < width; ++x) counters[x] = kFarDistance;
  for (int32_t y = 0; y < height; ++y) {
    uint8_t* row = mask->rows[y];
    for (int32_t x = 0; x < width; ++x) {
      int32_t c = counters[x];
      if (row[x] > kSetThreshold) {
        // The rows above, from the nearest up, are nearer to this pixel
        // than to the one that the counter measured from.
        const int32_t reach = std::min((c - 1) / 2, y);
        for (int32_t j = 1; j <= reach; ++j) mask->rows[y - j][x] = static_cast<uint8_t>(j);
        c = 0;
      }
      row[x] = static_cast<uint8_t>(c);
      counters[x] = c < kFarDistance ? c + 1 : c;
    }
  }
}

void HeightsBySquare(const Fixed* table, int32_t n, int32_t smoothness, Fixed* out) {
  const int32_t last = (n - 1) * (n - 1);
  for (int32_t b = 0; b <= last; ++b) {
    if (smoothness <= 0) {
      out[b] = table[std::min(FixedSqrtInt(b), n - 1)];
      continue;
    }
    // The distance in 16.16, six bits of it exact: sqrt(b << 12) is 64 sqrt(b).
    const int32_t r = WrapShl(FixedSqrtInt(WrapShl(b, 12)), 10);
    const int32_t i = r >> 16;
    out[b] = i >= n - 1 ? table[n - 1] : table[i] + FixedMul(table[i + 1] - table[i], r & 0xFFFF);
  }
}

int16_t DistanceToHeight(const ByteMap* mask, HeightMap* field, const Fixed* heights, int32_t n,
                         int32_t offsetX, int32_t offsetY, int32_t* nearest,
                         ReliefProgress* progress) {
  const int32_t mw = mask->width;
  const int32_t mh = mask->height;
  const int32_t fw = field->width;
  const int32_t fh = field->height;
  // Every distance of n - 1 or more gives the table's last entry, so the
  // search needs no column that far away, and b is held there.
  const int32_t reach = n - 1;
  const int32_t farthest = reach * reach;
  const Fixed far = heights[farthest];

  for (int32_t y = 0; y < fh; ++y) {
    int32_t my = y + offsetY;
    int32_t e = 0;
    if (my < 0) {
      e = -my;
      my = 0;
    } else if (my >= mh) {
      e = my - (mh - 1);
      my = mh - 1;
    }
    const uint8_t* d = mask->rows[my];
    Fixed* out = field->rows[y];
    // Pixels with no column nearer than reach within reach are far away:
    // most of a large picture, found without a search.
    NearestCloseColumn(d, mw, reach - e, nearest);
    for (int32_t x = 0; x < fw; ++x) {
      const int32_t cx = x + offsetX;
      const bool inside = cx >= 0 && cx < mw;
      if (inside && nearest[cx] >= reach) {
        out[x] = far;
        continue;
      }
      const int32_t mx = std::clamp(cx, 0, mw - 1);
      const int64_t v0 = int64_t{d[mx]} + e;
      int64_t bestV = v0;
      int64_t b = v0 * v0;
      int64_t bound = std::min<int64_t>(v0, reach);
      // Columns nearer than the nearest close one can only give distances
      // of reach or more: the search starts there.
      for (int32_t dx = inside ? std::max(nearest[cx], 1) : 1; dx < bound; ++dx) {
        const int32_t left = std::clamp(cx - dx, 0, mw - 1);
        const int32_t right = std::clamp(cx + dx, 0, mw - 1);
        const int64_t v = int64_t{std::min(d[left], d[right])} + e;
        if (v < bestV) {
          bestV = v;
          b = std::min(b, int64_t{dx} * dx + v * v);
          bound = std::min(bound, bestV + dx);
        }
      }
      out[x] = heights[std::min<int64_t>(b, farthest)];
    }
    if (ReliefTick(progress)) return kErrUserCancelled;
  }
  return kNoError;
}

int16_t ScaledDistanceField(ByteMap* mask, HeightMap* field, int32_t width, int32_t smoothness,
                            int32_t dropOff, int32_t offsetX, int32_t offsetY,
                            ReliefProgress* progress) {
  const int32_t limit = std::max<int32_t>(field->width, field->height);
  auto* table = static_cast<Fixed*>(AllocRelief(limit * static_cast<int32_t>(sizeof(Fixed))));
  if (!table) return kErrOutOfMemory;
  const int32_t n = MakeDropOffTable(table, limit, width, dropOff);
  const int64_t squares = int64_t{n - 1} * (n - 1) + 1;
  Fixed* heights = nullptr;
  if (squares * static_cast<int64_t>(sizeof(Fixed)) <= INT32_MAX)
    heights = static_cast<Fixed*>(AllocRelief(static_cast<int32_t>(squares * sizeof(Fixed))));
  auto* nearest =
      static_cast<int32_t*>(AllocRelief(mask->width * static_cast<int32_t>(sizeof(int32_t))));
  int16_t result = kErrOutOfMemory;
  if (heights && nearest) {
    HeightsBySquare(table, n, smoothness, heights);
    VerticalDistances(mask, nearest);
    result = DistanceToHeight(mask, field, heights, n, offsetX, offsetY, nearest, progress);
  }
  FreeRelief(nearest);
  FreeRelief(heights);
  FreeRelief(table);
  return result;
}

}  // namespace fancy
