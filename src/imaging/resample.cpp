#include "imaging/resample.h"

#include <algorithm>
#include <cstring>

#include "imaging/coord_math.h"
#include "imaging/image_types.h"

namespace fancy {

ResamplePixel ResamplePixelOf(int32_t type) {
  switch (type) {
    case kImageBGR24:
    case kImageLab24: return {3, 0, 3};
    case kImageCMYK32: return {4, 0, 4};
    case kImageGrey8:
    case kImageIndexed:
    case kImageMask: return {1, 0, 1};
    case kImageRGB48:
    case kImageRaw48: return {3, 1, 6};
    case kImageGrey16: return {1, 1, 2};
    default: return {0, 0, 0};  // 1-bit
  }
}

Divider MakeDivider(uint64_t divisor, uint64_t largestDividend) {
  Divider d{divisor ? divisor : 1, 0};
#if defined(__SIZEOF_INT128__)
  // q = (n x m) >> 64 with m = floor(2^64 / d) + 1 is exact while n < 2^64 / d.
  if (d.divisor > 1 && largestDividend < UINT64_MAX / d.divisor)
    d.magic = UINT64_MAX / d.divisor + 1;
#else
  (void)largestDividend;
#endif
  return d;
}

namespace {

// ---- channel access ------------------------------------------------------------

template <bool Wide>
inline uint32_t Chan(const uint8_t* row, int64_t i) {
  if constexpr (Wide) return uint32_t{row[2 * i]} | (uint32_t{row[2 * i + 1]} << 8);
  else return row[i];
}

template <bool Wide>
inline void SetChan(uint8_t* row, int64_t i, uint64_t v) {
  if constexpr (Wide) {
    row[2 * i] = static_cast<uint8_t>(v);
    row[2 * i + 1] = static_cast<uint8_t>(v >> 8);
  } else {
    row[i] = static_cast<uint8_t>(v);
  }
}

// The logical source position that nearest sampling takes for logical
// target position i: floor((i + 0.5) x src / dst).
int64_t NearestOf(int64_t i, int64_t src, int64_t dst) { return FloorDiv((2 * i + 1) * src, 2 * dst); }

// ---- horizontal rows -----------------------------------------------------------

// Target pixels i0 .. i0 + n - 1 of a shrinking axis: each the area average
// of the source, with `src` the logical source row from position `base`.
template <int C, bool Wide, bool Masked>
void ShrinkRow(const Resampler* r, const uint8_t* src, const uint8_t* mask, int64_t base,
               uint8_t* out, int64_t i0, int32_t n) {
  const int64_t sn = r->setup.x.srcCount, dn = r->setup.x.dstCount;
  const uint32_t* mul = r->mulTable.size() ? r->mulTable.data() : nullptr;
  int64_t pos = i0 * sn;
  int64_t j = pos / dn;
  int64_t rem = (j + 1) * dn - pos;
  for (int32_t k = 0; k < n; ++k) {
    uint64_t sums[C] = {};
    uint64_t weight = 0;
    int64_t need = sn;
    while (need > 0) {
      int64_t take = need < rem ? need : rem;
      int64_t at = j - base;
      if (!Masked || mask[at]) {
        for (int c = 0; c < C; ++c) {
          uint32_t p = Chan<Wide>(src, at * C + c);
          if (!Wide && mul && take == dn) sums[c] += mul[p];
          else sums[c] += uint64_t{p} * static_cast<uint64_t>(take);
        }
        weight += static_cast<uint64_t>(take);
      }
      need -= take;
      rem -= take;
      if (rem == 0) {
        ++j;
        rem = dn;
      }
    }
    if constexpr (Masked) {
      if (weight)
        for (int c = 0; c < C; ++c) SetChan<Wide>(out, int64_t{k} * C + c, sums[c] / weight);
    } else {
      for (int c = 0; c < C; ++c)
        SetChan<Wide>(out, int64_t{k} * C + c, r->shrinkDivider.Divide(sums[c]));
    }
  }
}

// Target pixels of a growing axis: centred linear interpolation in half
// steps, the ends replicated. The left source pixel and the right one's
// weight of each target pixel come from the tables made at opening.
template <int C, bool Wide, bool Masked>
void GrowRow(const Resampler* r, const uint8_t* src, const uint8_t* mask, int64_t base,
             uint8_t* out, int64_t i0, int32_t n) {
  const uint64_t twoD = 2 * static_cast<uint64_t>(r->setup.x.dstCount);
  const int32_t* index = r->growIndex.data() + (i0 - r->logicalFirst);
  const uint32_t* weight = r->growWeight.data() + (i0 - r->logicalFirst);
  for (int32_t k = 0; k < n; ++k) {
    const int64_t a = index[k] - base;
    const int64_t b = weight[k] ? a + 1 : a;  // a right pixel of no weight is not read
    uint64_t wb = weight[k], wa = twoD - wb;
    if constexpr (Masked) {
      if (!mask[a]) wa = 0;
      if (!mask[b]) wb = 0;
      uint64_t total = wa + wb;
      if (!total) continue;  // nothing weighs here: the pixel stays
      for (int c = 0; c < C; ++c) {
        uint64_t v = Chan<Wide>(src, a * C + c) * wa + Chan<Wide>(src, b * C + c) * wb;
        SetChan<Wide>(out, int64_t{k} * C + c, v / total);
      }
    } else if constexpr (!Wide) {
      const uint8_t* pa = src + a * C;
      const uint8_t* pb = src + b * C;
      uint8_t* o = out + int64_t{k} * C;
      for (int c = 0; c < C; ++c) o[c] = static_cast<uint8_t>(r->growDivider.Divide(pa[c] * wa + pb[c] * wb));
    } else {
      for (int c = 0; c < C; ++c) {
        uint64_t v = Chan<Wide>(src, a * C + c) * wa + Chan<Wide>(src, b * C + c) * wb;
        SetChan<Wide>(out, int64_t{k} * C + c, r->growDivider.Divide(v));
      }
    }
  }
}

template <int C, bool Wide, bool Masked>
void EqualRow(const Resampler*, const uint8_t* src, const uint8_t* mask, int64_t base,
              uint8_t* out, int64_t i0, int32_t n) {
  constexpr int B = C * (Wide ? 2 : 1);
  const uint8_t* s = src + (i0 - base) * B;
  if constexpr (!Masked) {
    std::memcpy(out, s, static_cast<size_t>(n) * B);
  } else {
    const uint8_t* m = mask + (i0 - base);
    for (int32_t k = 0; k < n; ++k)
      if (m[k]) std::memcpy(out + int64_t{k} * B, s + int64_t{k} * B, B);
  }
}

using HorizontalFn = void (*)(const Resampler*, const uint8_t*, const uint8_t*, int64_t, uint8_t*,
                              int64_t, int32_t);

template <int C, bool Wide, bool Masked>
HorizontalFn PickHorizontal(int64_t sn, int64_t dn) {
  if (dn < sn) return &ShrinkRow<C, Wide, Masked>;
  if (dn > sn) return &GrowRow<C, Wide, Masked>;
  return &EqualRow<C, Wide, Masked>;
}

template <bool Masked>
HorizontalFn HorizontalFor(const ResamplePixel& p, int64_t sn, int64_t dn) {
  if (p.wide) return p.channels == 3 ? PickHorizontal<3, true, Masked>(sn, dn)
                                     : PickHorizontal<1, true, Masked>(sn, dn);
  switch (p.channels) {
    case 3: return PickHorizontal<3, false, Masked>(sn, dn);
    case 4: return PickHorizontal<4, false, Masked>(sn, dn);
    default: return PickHorizontal<1, false, Masked>(sn, dn);
  }
}

// The ordinary row function of a type 99 mask.
HorizontalFn MaskHorizontal(int64_t sn, int64_t dn) { return PickHorizontal<1, false, false>(sn, dn); }

// ---- reading source rows in logical order ----------------------------------------

// Copies the logical source columns needFirst .. needLast of physical row y
// into `out` in logical order, clamping positions outside the clipped range.
// Answers the row (straight from the reader when no copy is needed).
const uint8_t* LogicalRow(const Resampler* r, ResampleRowReader read, void* user, int32_t y,
                          int32_t bytes, uint8_t* out) {
  const ResampleAxis& ax = r->setup.x;
  int64_t lo = std::clamp<int64_t>(r->needFirst, ax.srcLo, ax.srcHi);
  int64_t hi = std::clamp<int64_t>(r->needLast, ax.srcLo, ax.srcHi);
  int64_t p0 = ax.srcDir > 0 ? ax.srcFirst + lo : ax.srcFirst - hi;
  int32_t count = static_cast<int32_t>(hi - lo + 1);
  int32_t bit = 0;
  const uint8_t* row = read(user, y, static_cast<int32_t>(p0), count, &bit);
  if (!row) return nullptr;
  if (ax.srcDir > 0 && lo == r->needFirst && hi == r->needLast) return row;
  for (int64_t j = r->needFirst; j <= r->needLast; ++j) {
    int64_t c = std::clamp<int64_t>(j, lo, hi);
    int64_t at = ax.srcDir > 0 ? c - lo : hi - c;
    std::memcpy(out + (j - r->needFirst) * bytes, row + at * bytes, static_cast<size_t>(bytes));
  }
  return out;
}

void ReversePixels(uint8_t* row, int32_t count, int32_t bytes) {
  uint8_t t[8];
  for (int32_t a = 0, b = count - 1; a < b; ++a, --b) {
    std::memcpy(t, row + int64_t{a} * bytes, bytes);
    std::memcpy(row + int64_t{a} * bytes, row + int64_t{b} * bytes, bytes);
    std::memcpy(row + int64_t{b} * bytes, t, bytes);
  }
}

// The horizontally resampled logical source row `lr`, from the two-row cache
// or built into its older slot. *mask gets the matching mask row.
const uint8_t* HorizontalRow(Resampler* r, int32_t lr, const uint8_t** mask) {
  const int32_t bytes = r->pixel.bytes;
  const size_t rowSize = static_cast<size_t>(r->width) * bytes;
  ++r->age;
  for (int s = 0; s < 2; ++s) {
    if (r->cachedRows[s] == lr) {
      r->cacheAge[s] = r->age;
      if (mask) *mask = r->masked ? r->maskRowStore.data() + static_cast<size_t>(s) * r->width : nullptr;
      return r->rowStore.data() + s * rowSize;
    }
  }
  int s = r->cacheAge[0] <= r->cacheAge[1] ? 0 : 1;
  r->cachedRows[s] = -1;
  const ResampleAxis& ay = r->setup.y;
  int32_t y = ay.srcDir > 0 ? ay.srcFirst + lr : ay.srcFirst - lr;
  const uint8_t* src = LogicalRow(r, r->setup.read, r->setup.readUser, y, bytes, r->logicalRow.data());
  if (!src) return nullptr;
  const uint8_t* m = nullptr;
  uint8_t* outMask = nullptr;
  if (r->masked) {
    m = LogicalRow(r, r->setup.readMask, r->setup.maskUser, y, 1, r->logicalMask.data());
    if (!m) return nullptr;
    outMask = r->maskRowStore.data() + static_cast<size_t>(s) * r->width;
  }
  uint8_t* out = r->rowStore.data() + s * rowSize;
  const int64_t sn = r->setup.x.srcCount, dn = r->setup.x.dstCount;
  if (r->masked) {
    HorizontalFor<true>(r->pixel, sn, dn)(r, src, m, r->needFirst, out, r->logicalFirst, r->width);
    MaskHorizontal(sn, dn)(r, m, nullptr, r->needFirst, outMask, r->logicalFirst, r->width);
  } else {
    HorizontalFor<false>(r->pixel, sn, dn)(r, src, nullptr, r->needFirst, out, r->logicalFirst,
                                          r->width);
  }
  if (r->setup.x.dstDir < 0) {
    ReversePixels(out, r->width, bytes);
    if (outMask) ReversePixels(outMask, r->width, 1);
  }
  r->cachedRows[s] = lr;
  r->cacheAge[s] = r->age;
  if (mask) *mask = outMask;
  return out;
}

// ---- vertical ---------------------------------------------------------------------

// The source rows of target row d and their weights in units of 1/D.
struct VerticalPlan {
  int64_t first, last;
  int64_t d;  // denominator D
  int64_t n, e;
  bool grow, edge;
};

VerticalPlan PlanRows(const ResampleAxis& ay, int64_t d) {
  const int64_t sh = ay.srcCount, dh = ay.dstCount;
  VerticalPlan p{};
  p.n = d * sh;
  if (dh < sh) {
    p.first = p.n / dh;
    p.last = (p.n + sh - 1) / dh;
    p.d = sh;
  } else if (dh > sh) {
    p.grow = true;
    p.e = sh + 2 * p.n;
    p.d = 2 * dh;
    if (p.e < dh) {
      p.first = p.last = 0;
      p.edge = true;
    } else if (2 * sh * dh - p.e <= dh) {
      p.first = p.last = sh - 1;
      p.edge = true;
    } else {
      p.first = (p.e - dh) / (2 * dh);
      p.last = p.first + 1;
    }
  } else {
    p.first = p.last = d;
    p.d = 1;
  }
  return p;
}

int64_t RowWeight(const VerticalPlan& p, const ResampleAxis& ay, int64_t row) {
  const int64_t sh = ay.srcCount, dh = ay.dstCount;
  if (p.first == p.last) return p.d;
  if (p.grow) {
    if (row == p.first) return (2 * p.last + 1) * dh - p.e;
    return p.e - (2 * p.first + 1) * dh;
  }
  if (row == p.first) return row * dh - p.n + dh;
  if (row == p.last) return p.n - row * dh + sh;
  return dh;
}

int32_t PowerAtLeast(int64_t d) {
  int32_t k = 0;
  while ((int64_t{1} << k) < d) ++k;
  return k;
}

int32_t ClampRow(const ResampleAxis& ay, int64_t row) {
  return static_cast<int32_t>(std::clamp<int64_t>(row, ay.srcLo, ay.srcHi));
}

template <class Acc>
void Accumulate(Acc* acc, const uint8_t* row, size_t n, bool wide, uint64_t w) {
  if (wide) {
    for (size_t i = 0; i < n; ++i) acc[i] += static_cast<Acc>(Chan<true>(row, i) * w);
  } else if (w == 1) {
    for (size_t i = 0; i < n; ++i) acc[i] += row[i];
  } else {
    const Acc ww = static_cast<Acc>(w);
    for (size_t i = 0; i < n; ++i) acc[i] += static_cast<Acc>(row[i]) * ww;
  }
}

template <class Acc>
void Emit(const Acc* acc, uint8_t* out, size_t n, bool wide, int32_t k) {
  if (wide) {
    for (size_t i = 0; i < n; ++i) SetChan<true>(out, i, acc[i] >> k);
  } else {
    for (size_t i = 0; i < n; ++i) out[i] = static_cast<uint8_t>(acc[i] >> k);
  }
}

// Two rows with weights that sum to 2^k, straight to the output.
void Blend2(const uint8_t* a, const uint8_t* b, uint8_t* out, size_t n, bool wide, uint64_t wa,
            uint64_t wb, int32_t k) {
  if (wide) {
    for (size_t i = 0; i < n; ++i)
      SetChan<true>(out, i, (Chan<true>(a, i) * wa + Chan<true>(b, i) * wb) >> k);
  } else if (k <= 23) {
    const uint32_t x = static_cast<uint32_t>(wa), y = static_cast<uint32_t>(wb);
    for (size_t i = 0; i < n; ++i) out[i] = static_cast<uint8_t>((a[i] * x + b[i] * y) >> k);
  } else {
    for (size_t i = 0; i < n; ++i) out[i] = static_cast<uint8_t>((a[i] * wa + b[i] * wb) >> k);
  }
}

const uint8_t* SmoothRow(Resampler* r, int32_t y, uint8_t* out) {
  const ResampleAxis& ay = r->setup.y;
  const int64_t d = int64_t{y - ay.dstFirst} * ay.dstDir;
  const VerticalPlan plan = PlanRows(ay, d);
  const int32_t bytes = r->pixel.bytes;
  const int32_t channels = r->pixel.channels;
  const bool wide = r->pixel.wide != 0;
  const size_t values = static_cast<size_t>(r->width) * channels;

  if (plan.first == plan.last) {
    const uint8_t* row = HorizontalRow(r, ClampRow(ay, plan.first), nullptr);
    if (!row) return nullptr;
    std::memcpy(out, row, static_cast<size_t>(r->width) * bytes);
    return out;
  }

  const int32_t k = PowerAtLeast(plan.d);
  const double scale = static_cast<double>(uint64_t{1} << k) / static_cast<double>(plan.d);
  const uint64_t whole = uint64_t{1} << k;
  uint64_t sum = 0;

  if (plan.grow && !r->masked) {
    // Two terms a row, no accumulator.
    uint64_t wa = static_cast<uint64_t>(RowWeight(plan, ay, plan.first) * scale);
    uint64_t wb = static_cast<uint64_t>(RowWeight(plan, ay, plan.last) * scale);
    if (wa + wb < whole) wb += whole - wa - wb;
    const uint8_t* a = HorizontalRow(r, ClampRow(ay, plan.first), nullptr);
    if (!a) return nullptr;
    // Keep `a` while the second row is built: the cache never evicts the
    // row used last.
    const uint8_t* b = HorizontalRow(r, ClampRow(ay, plan.last), nullptr);
    if (!b) return nullptr;
    Blend2(a, b, out, values, wide, wa, wb, k);
    return out;
  }

  if (r->masked) {
    uint64_t* acc = r->wideAccumulator.data();
    uint64_t* msum = r->maskSums.data();
    std::memset(acc, 0, values * sizeof(uint64_t));
    std::memset(msum, 0, static_cast<size_t>(r->width) * sizeof(uint64_t));
    for (int64_t row = plan.first; row <= plan.last; ++row) {
      uint64_t w = static_cast<uint64_t>(RowWeight(plan, ay, row) * scale);
      sum += w;
      if (row == plan.last && sum < whole) w += whole - sum;
      const uint8_t* m = nullptr;
      const uint8_t* p = HorizontalRow(r, ClampRow(ay, row), &m);
      if (!p) return nullptr;
      for (int32_t i = 0; i < r->width; ++i) {
        uint64_t mw = uint64_t{m[i]} * w;
        if (!mw) continue;
        msum[i] += mw;
        for (int32_t c = 0; c < channels; ++c) {
          size_t at = static_cast<size_t>(i) * channels + c;
          acc[at] += (wide ? Chan<true>(p, at) : p[at]) * mw;
        }
      }
    }
    for (int32_t i = 0; i < r->width; ++i) {
      if (!msum[i]) continue;  // nothing weighs here: the pixel stays
      for (int32_t c = 0; c < channels; ++c) {
        size_t at = static_cast<size_t>(i) * channels + c;
        uint64_t v = acc[at] / msum[i];
        if (wide) SetChan<true>(out, at, v);
        else out[at] = static_cast<uint8_t>(v);
      }
    }
    return out;
  }

  auto run = [&](auto* acc) {
    std::memset(acc, 0, values * sizeof(*acc));
    for (int64_t row = plan.first; row <= plan.last; ++row) {
      uint64_t w = static_cast<uint64_t>(RowWeight(plan, ay, row) * scale);
      sum += w;
      if (row == plan.last && sum < whole) w += whole - sum;
      const uint8_t* p = HorizontalRow(r, ClampRow(ay, row), nullptr);
      if (!p) return false;
      Accumulate(acc, p, values, wide, w);
    }
    Emit(acc, out, values, wide, k);
    return true;
  };
  bool ok = r->wideSums ? run(r->wideAccumulator.data()) : run(r->accumulator.data());
  return ok ? out : nullptr;
}

// ---- nearest ----------------------------------------------------------------------

const uint8_t* NearestRow(Resampler* r, int32_t y) {
  const ResampleAxis& ay = r->setup.y;
  int64_t d = int64_t{y - ay.dstFirst} * ay.dstDir;
  int64_t j = std::clamp<int64_t>(NearestOf(d, ay.srcCount, ay.dstCount), ay.srcLo, ay.srcHi);
  int32_t sy = static_cast<int32_t>(ay.srcDir > 0 ? ay.srcFirst + j : ay.srcFirst - j);
  if (r->rowValid && sy == r->lastSourceRow) return r->rowImage.data();
  int32_t bit = 0;
  const uint8_t* src = r->setup.read(r->setup.readUser, sy, r->sourceLeft, r->sourceCount, &bit);
  if (!src) return nullptr;
  uint8_t* out = r->rowImage.data();
  const int32_t* map = r->columnMap.data();
  const int32_t bytes = r->pixel.bytes;
  if (bytes == 0) {
    std::memset(out, 0, r->rowImage.size());
    for (int32_t k = 0; k < r->width; ++k) {
      int64_t b = bit + map[k];
      if ((src[b >> 3] >> (7 - (b & 7))) & 1) out[k >> 3] |= static_cast<uint8_t>(0x80 >> (k & 7));
    }
  } else if (bytes == 1) {
    for (int32_t k = 0; k < r->width; ++k) out[k] = src[map[k]];
  } else if (bytes == 3) {
    for (int32_t k = 0; k < r->width; ++k, out += 3) {
      const uint8_t* p = src + map[k] * 3;
      out[0] = p[0];
      out[1] = p[1];
      out[2] = p[2];
    }
  } else {
    for (int32_t k = 0; k < r->width; ++k)
      std::memcpy(out + int64_t{k} * bytes, src + int64_t{map[k]} * bytes, bytes);
  }
  r->lastSourceRow = sy;
  r->rowValid = true;
  return r->rowImage.data();
}

// The column map of nearest sampling, by an error term rather than a
// division a column: (2i + 1) x src against 2 x dst.
bool BuildColumnMap(Resampler* r) {
  const ResampleAxis& ax = r->setup.x;
  if (!r->columnMap.Allocate(static_cast<size_t>(r->width))) return false;
  const int64_t sn = ax.srcCount, dn = ax.dstCount;
  int64_t i = r->logicalFirst;
  int64_t j = NearestOf(i, sn, dn);
  int64_t err = (2 * i + 1) * sn - j * 2 * dn;  // 0 <= err < 2 dn
  int64_t lo = INT64_MAX, hi = INT64_MIN;
  int32_t* map = r->columnMap.data();
  for (int32_t n = 0; n < r->width; ++n, ++i) {
    if (n > 0) {
      err += 2 * sn;
      if (err >= 2 * dn) {
        int64_t step = err / (2 * dn);
        j += step;
        err -= step * 2 * dn;
      }
    }
    int64_t c = std::clamp<int64_t>(j, ax.srcLo, ax.srcHi);
    int64_t px = ax.srcDir > 0 ? ax.srcFirst + c : ax.srcFirst - c;
    int32_t k = ax.dstDir > 0 ? n : r->width - 1 - n;
    map[k] = static_cast<int32_t>(px);
    lo = std::min(lo, px);
    hi = std::max(hi, px);
  }
  r->sourceLeft = static_cast<int32_t>(lo);
  r->sourceCount = static_cast<int32_t>(hi - lo + 1);
  for (int32_t k = 0; k < r->width; ++k) map[k] -= r->sourceLeft;
  return true;
}

// For each target pixel of a growing axis: the source pixel left of its
// centre and the weight of the one to the right, in units of 1 / (2 dstW);
// the centre is (2i + 1) x srcW in those units, the first source centre at
// dstW. Before the first centre and past the last the end pixel is taken.
bool BuildGrowTables(Resampler* r) {
  const int64_t sn = r->setup.x.srcCount, dn = r->setup.x.dstCount;
  if (!r->growIndex.Allocate(static_cast<size_t>(r->width)) ||
      !r->growWeight.Allocate(static_cast<size_t>(r->width)))
    return false;
  for (int32_t k = 0; k < r->width; ++k) {
    int64_t i = int64_t{r->logicalFirst} + k;
    int64_t t = (2 * i + 1) * sn - dn;
    int64_t index = 0, weight = 0;
    if (t >= 0) {
      index = t / (2 * dn);
      weight = t % (2 * dn);
      if (index + 1 > sn - 1) {
        index = sn - 1;
        weight = 0;
      }
    }
    r->growIndex[k] = static_cast<int32_t>(index);
    r->growWeight[k] = static_cast<uint32_t>(weight);
  }
  return true;
}

bool ValidAxis(const ResampleAxis& a) {
  return a.srcCount > 0 && a.dstCount > 0 && (a.srcDir == 1 || a.srcDir == -1) &&
         (a.dstDir == 1 || a.dstDir == -1) && a.srcLo >= 0 && a.srcLo <= a.srcHi &&
         a.srcHi < a.srcCount;
}

}  // namespace

int ResamplerOpen(Resampler* r, const ResampleSetup& setup) {
  r->setup = setup;
  r->pixel = ResamplePixelOf(setup.workingType);
  r->filter = r->pixel.bytes == 0 ? 1 : setup.filter;  // 1-bit rows: nearest only
  r->masked = r->filter == 2 && setup.readMask != nullptr;
  r->width = setup.dstRight - setup.dstLeft + 1;
  r->rowValid = false;
  r->lastSourceRow = -1;
  r->cachedRows[0] = r->cachedRows[1] = -1;
  r->cacheAge[0] = r->cacheAge[1] = 0;
  r->age = 0;
  if (!setup.read || r->width <= 0 || !ValidAxis(setup.x) || !ValidAxis(setup.y)) return 0;
  const ResampleAxis& ax = setup.x;
  int64_t a = ax.dstDir > 0 ? int64_t{setup.dstLeft} - ax.dstFirst
                            : int64_t{ax.dstFirst} - setup.dstRight;
  int64_t b = a + r->width - 1;
  if (a < 0 || b >= ax.dstCount) return 0;
  r->logicalFirst = static_cast<int32_t>(a);
  r->logicalLast = static_cast<int32_t>(b);
  size_t rowBytes = r->pixel.bytes ? static_cast<size_t>(r->width) * r->pixel.bytes
                                   : (static_cast<size_t>(r->width) + 7) / 8;
  if (!r->rowImage.Allocate(rowBytes)) return 0;
  if (r->filter != 2) return BuildColumnMap(r) ? 1 : 0;

  const int64_t sn = ax.srcCount, dn = ax.dstCount;
  if (dn > sn && !BuildGrowTables(r)) return 0;
  if (dn < sn) {
    r->needFirst = static_cast<int32_t>(a * sn / dn);
    r->needLast = static_cast<int32_t>(((b + 1) * sn - 1) / dn);
  } else if (dn > sn) {
    auto index = [&](int64_t i) {
      int64_t t = (2 * i + 1) * sn - dn;
      return t < 0 ? int64_t{0} : t / (2 * dn);
    };
    r->needFirst = static_cast<int32_t>(index(a));
    r->needLast = static_cast<int32_t>(std::min(index(b) + 1, sn - 1));
  } else {
    r->needFirst = static_cast<int32_t>(a);
    r->needLast = static_cast<int32_t>(b);
  }
  const size_t need = static_cast<size_t>(r->needLast - r->needFirst + 1);
  const size_t values = static_cast<size_t>(r->width) * r->pixel.channels;
  const uint64_t top = r->pixel.wide ? 65535 : 255;
  if (!r->logicalRow.Allocate(need * r->pixel.bytes) || !r->rowStore.Allocate(2 * rowBytes))
    return 0;
  if (!r->pixel.wide && dn <= (int64_t{1} << 24)) {
    if (!r->mulTable.Allocate(256)) return 0;
    for (uint32_t p = 0; p < 256; ++p) r->mulTable[p] = p * static_cast<uint32_t>(dn);
  }
  r->shrinkDivider = MakeDivider(static_cast<uint64_t>(sn), top * static_cast<uint64_t>(sn));
  r->growDivider = MakeDivider(static_cast<uint64_t>(2 * dn), top * static_cast<uint64_t>(2 * dn));
  // The vertical sums stay in 32 bits while the largest value times 2^k does.
  int32_t k = PowerAtLeast(setup.y.dstCount > setup.y.srcCount ? 2 * int64_t{setup.y.dstCount}
                                                                : setup.y.srcCount);
  r->wideSums = r->pixel.wide || k > 23;
  if (r->masked) {
    if (!r->logicalMask.Allocate(need) || !r->maskRowStore.Allocate(2 * static_cast<size_t>(r->width)) ||
        !r->wideAccumulator.Allocate(values) || !r->maskSums.Allocate(static_cast<size_t>(r->width)))
      return 0;
  } else if (r->wideSums) {
    if (!r->wideAccumulator.Allocate(values)) return 0;
  } else if (!r->accumulator.Allocate(values)) {
    return 0;
  }
  return 1;
}

const uint8_t* ResamplerRow(Resampler* r, int32_t y) {
  return r->filter == 2 ? SmoothRow(r, y, r->rowImage.data()) : NearestRow(r, y);
}

const uint8_t* ResamplerRowInto(Resampler* r, int32_t y, uint8_t* out) {
  if (r->filter == 2 && !r->masked) return SmoothRow(r, y, out);
  const uint8_t* row = ResamplerRow(r, y);
  if (row) std::memcpy(out, row, r->rowImage.size());
  return row ? out : nullptr;
}

}  // namespace fancy
