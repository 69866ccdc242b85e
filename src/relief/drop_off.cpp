#include "relief/drop_off.h"

#include <algorithm>

namespace fancy {

namespace {

int32_t GaussianTable(Fixed* table, int32_t limit, int32_t bevelWidth) {
  const Fixed c = 2 * FixedRecip(WrapShl(bevelWidth, 16));
  int32_t n = 1;
  for (int32_t i = 1; i < limit; ++i) {
    const Fixed x = WrapMul(c, i);
    table[i] = FixedExp(WrapNeg(FixedMul(x, x)));
    n = i + 1;
    if (table[i] < kGaussianTail) break;
  }
  return n;
}

int32_t LineTable(Fixed* table, int32_t limit, int32_t bevelWidth, bool mesa) {
  const int32_t n = std::min(limit, bevelWidth);
  for (int32_t i = 1; i < n; ++i) {
    // Exact division: a Mesa at t = 0.5 is exactly 1/16.
    const Fixed t = static_cast<Fixed>((static_cast<int64_t>(n - 1 - i) << 16) / (n - 1));
    if (mesa) {
      const Fixed tt = FixedMul(t, t);
      table[i] = FixedMul(tt, tt);
    } else {
      table[i] = t;
    }
  }
  return n;
}

}  // namespace

int32_t MakeDropOffTable(Fixed* table, int32_t limit, int32_t bevelWidth, int32_t dropOff) {
  if (limit < 1) limit = 1;
  if (bevelWidth < 1) bevelWidth = 1;
  table[0] = kDropOffTop;
  switch (dropOff) {
    case kDropOffGaussian: return GaussianTable(table, limit, bevelWidth);
    case kDropOffMesa: return LineTable(table, limit, bevelWidth, true);
    default: return LineTable(table, limit, bevelWidth, false);
  }
}

}  // namespace fancy
