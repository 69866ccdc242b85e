// Inline arithmetic of the merge kernels. The division by 255 is computed by
// the DivTable's own rule rather than read from it: the rule vectorises where
// a table read can't, and gives the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/merge.h"

// The kernels are many small templates in a few big files; the compiler's
// unit-growth limits would leave these helpers as calls in the inner loops.
#if defined(_MSC_VER) && !defined(__clang__)
#define FANCY_KERNEL_INLINE __forceinline
#else
#define FANCY_KERNEL_INLINE inline __attribute__((always_inline))
#endif

namespace fancy::merge {

// T[x] for x from 0 to 65025, by the rule that builds the table. Every step
// fits in 16 bits, and is written so, which lets the compiler keep eight
// values to a vector register.
FANCY_KERNEL_INLINE uint32_t Div(uint32_t x) {
  uint16_t x16 = static_cast<uint16_t>(x);
  uint16_t v = static_cast<uint16_t>(x16 - (x16 > 32512 ? 1 : 0));
  uint16_t q = static_cast<uint16_t>(static_cast<uint16_t>((v >> 8) + v + 1) >> 8);
  uint16_t y = static_cast<uint16_t>(x16 + q);
  return static_cast<uint16_t>(static_cast<uint16_t>((y >> 8) + y + 1) >> 8);
}

// T[x] with the guard: an index past the table's 65,026 entries gives 0.
FANCY_KERNEL_INLINE uint32_t Guarded(uint32_t x) { return x >= 65026 ? 0 : Div(x); }

// The blend of f over d by coverage m.
// The sum is at most 255 x 255 for bytes f, d and m, so it is formed in 16
// bits, where it vectorises best.
FANCY_KERNEL_INLINE uint32_t Lerp(uint32_t f, uint32_t d, uint32_t m) {
  return Guarded(static_cast<uint16_t>(static_cast<uint16_t>(f * m) +
                                       static_cast<uint16_t>(d * (255 - m))));
}

FANCY_KERNEL_INLINE uint32_t WideDiv(uint32_t w) {
  uint32_t v = w > 0x7F7F80u ? w - 1 : w;
  uint32_t u = w + (((v >> 16) + v + 1) >> 16);
  uint32_t a = ((u >> 8) + u + 257) >> 8;
  uint32_t b = (a + u) >> 8;
  return (b + u + 1) >> 8;
}

FANCY_KERNEL_INLINE uint32_t WideLerp(uint32_t a, uint32_t b, uint32_t m) {
  return WideDiv(a * m + b * (255 - m));
}

FANCY_KERNEL_INLINE uint32_t Max3(const uint8_t* p) {
  uint32_t m = p[0] > p[1] ? p[0] : p[1];
  return m > p[2] ? m : p[2];
}
FANCY_KERNEL_INLINE uint32_t Min3(const uint8_t* p) {
  uint32_t m = p[0] < p[1] ? p[0] : p[1];
  return m < p[2] ? m : p[2];
}

// Coverage of pixel i in column Col (1 to 5).
template <int Col>
FANCY_KERNEL_INLINE uint32_t CoverageAt(const Coverage* c, size_t i) {
  if constexpr (Col == 1) return c->mask1[i];
  else if constexpr (Col == 2) return c->opacity;
  else if constexpr (Col == 3) return Div(uint32_t{c->mask1[i]} * c->mask2[i]);
  else if constexpr (Col == 4) return Div(uint32_t{c->mask1[i]} * c->opacity);
  else return Div(Div(uint32_t{c->mask1[i]} * c->mask2[i]) * c->opacity);
}

FANCY_KERNEL_INLINE HsvColor ToHsv(uint32_t r, uint32_t g, uint32_t b) {
  int32_t M = static_cast<int32_t>(r > g ? (r > b ? r : b) : (g > b ? g : b));
  int32_t n = static_cast<int32_t>(r < g ? (r < b ? r : b) : (g < b ? g : b));
  int32_t c = M - n;
  if (M == 0 || c <= 0) return HsvColor{0, 0, M};
  int32_t h;
  if (static_cast<int32_t>(r) == M) h = static_cast<int32_t>(g) - static_cast<int32_t>(b);
  else if (static_cast<int32_t>(g) == M) h = 2 * c - static_cast<int32_t>(r) + static_cast<int32_t>(b);
  else h = 4 * c - static_cast<int32_t>(g) + static_cast<int32_t>(r);
  int32_t hue = ((c >> 1) + h * 60) / c;
  if (hue < 0) hue += 360;
  return HsvColor{hue, c * 255 / M, M};
}

FANCY_KERNEL_INLINE void FromHsv(int32_t H, int32_t S, int32_t V, uint8_t* bgr) {
  if (S == 0) {
    bgr[0] = bgr[1] = bgr[2] = static_cast<uint8_t>(V);
    return;
  }
  int32_t p = S * 65536 / 255;
  int32_t f = (H % 60) * 65536 / 60;
  int32_t sector = (H / 60) % 6;
  int32_t a = ((65536 - p) * V + 32768) >> 16;
  int32_t b = ((65536 - (((f / 2) * (p / 2)) >> 14)) * V + 32768) >> 16;
  int32_t c = ((65536 - ((((65536 - f) >> 1) * (p / 2)) >> 14)) * V + 32768) >> 16;
  int32_t r, g, bl;
  switch (sector) {
    case 0: r = V; g = c; bl = a; break;
    case 1: r = b; g = V; bl = a; break;
    case 2: r = a; g = V; bl = c; break;
    case 3: r = a; g = b; bl = V; break;
    case 4: r = c; g = a; bl = V; break;
    default: r = V; g = a; bl = b; break;
  }
  bgr[0] = static_cast<uint8_t>(bl);
  bgr[1] = static_cast<uint8_t>(g);
  bgr[2] = static_cast<uint8_t>(r);
}

}  // namespace fancy::merge
