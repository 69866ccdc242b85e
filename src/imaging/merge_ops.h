// The merge modes as operations on one channel (F for column 0, C under a
// coverage m) and on whole pixels (Full and Covered), shared by the kernel
// tables of the types.
#pragma once

#include <cstdint>
#include <cstring>

#include "imaging/merge.h"
#include "imaging/merge_math.h"

namespace fancy::merge {

// ---- channel operations ---------------------------------------------------------
// Each has F(d, s), the mode's value, and C(d, s, m), its value under coverage
// m: the lerp of F into d unless the mode blends otherwise.

#define FANCY_LERP_COVER \
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) { return Lerp(F(d, s), d, m); }

struct OpNormal {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t, uint32_t s) { return s; }
  FANCY_LERP_COVER
};
struct OpAnd {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d & s; }
  FANCY_LERP_COVER
};
struct OpOr {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d | s; }
  FANCY_LERP_COVER
};
struct OpXor {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d ^ s; }
  FANCY_LERP_COVER
};
struct OpAndNot {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d & (255 - s); }
  FANCY_LERP_COVER
};
struct OpInvertDest {
  static constexpr bool kIgnoresSource = true;  // column 0 may be handed no source row
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t) { return 255 - d; }
  FANCY_LERP_COVER
};
struct OpInvertSource {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t, uint32_t s) { return 255 - s; }
  FANCY_LERP_COVER
};
struct OpAddClamp {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d + s > 255 ? 255 : d + s; }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) {
    uint32_t t = d + Div(s * m);
    return t > 255 ? 255 : t;
  }
};
struct OpSubtractInverse {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d + s > 255 ? d + s - 255 : 0; }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) {
    uint32_t t = Div((255 - s) * m);
    return d > t ? d - t : 0;
  }
};
struct OpMultiply {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return Div(d * s); }
  FANCY_LERP_COVER
};
struct OpDivide {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) {
    if (s == 0) return 255;
    uint32_t q = d * 255 / s;
    return q > 255 ? 255 : q;
  }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) {
    if (s == 0) return d + (255 - d) * m / 255;
    uint32_t t = d + (255 - s) * m * d / (255 * s);
    return t > 255 ? 255 : t;
  }
};
struct OpDifference {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d > s ? d - s : s - d; }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) {
    uint32_t t = Div(s * m);
    return d > t ? d - t : t - d;
  }
};
struct OpSubtractClamp {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d > s ? d - s : 0; }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) {
    uint32_t t = Div(s * m);
    return d > t ? d - t : 0;
  }
};
struct OpMultiplyInverse {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return Div(d * (255 - s)); }
  FANCY_LERP_COVER
};
// Column 0 is the no-op; under coverage the source shows where m is low.
struct OpBehind {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t) { return d; }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) { return Guarded(s * (255 - m) + d * m); }
};
struct OpScreen {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return 255 - Div((255 - d) * (255 - s)); }
  FANCY_LERP_COVER
};
struct OpOverlay {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) {
    if (d >= 128) return 255 - Div((((255 - d) * 2) & 255) * (255 - s));
    return Div(((d * 2) & 255) * s);
  }
  FANCY_LERP_COVER
};
struct OpHardLight {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) {
    if (s >= 128) return 255 - Div((((255 - s) * 2) & 255) * (255 - d));
    return Div(((s * 2) & 255) * d);
  }
  FANCY_LERP_COVER
};
struct OpSoftLight {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) {
    if (s >= 128) {
      uint32_t k = (((s - 128) * 129) >> 6) & 255;
      return Guarded(uint32_t{gImaging.sqrtTable[d]} * k + (255 - k) * d);
    }
    uint32_t k = 2 * s;
    return Guarded(Div(d * d) * (255 - k) + k * d);
  }
  FANCY_LERP_COVER
};
// Types 5 and 99: IfLighter and IfDarker on one channel.
struct OpLighter {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d > s ? d : s; }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) {
    uint32_t t = Lerp(s, d, m);
    return d > t ? d : t;
  }
};
struct OpDarker {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return d < s ? d : s; }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) {
    uint32_t t = Lerp(s, d, m);
    return d < t ? d : t;
  }
};

// Type 3: a mode computed on the complements of the inks, its result
// complemented, so that it means on the page what it means on screen.
template <class Op>
struct OpOnInks {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return 255 - Op::F(255 - d, 255 - s); }
  FANCY_KERNEL_INLINE static uint32_t C(uint32_t d, uint32_t s, uint32_t m) { return 255 - Op::C(255 - d, 255 - s, m); }
};
struct OpMultiplyInverseInks {
  FANCY_KERNEL_INLINE static uint32_t F(uint32_t d, uint32_t s) { return 255 - Div((255 - d) * s); }
  FANCY_LERP_COVER
};

#undef FANCY_LERP_COVER

// ---- pixel operations -------------------------------------------------------------
// Full(d, s) for column 0 and Covered(d, s, m) under coverage, on one pixel of
// N bytes; d and s may be the same pixel.

// One byte K of the pixel taken from the source.
template <int K>
struct PixChannel {
  FANCY_KERNEL_INLINE static void Full(uint8_t* d, const uint8_t* s) { d[K] = s[K]; }
  FANCY_KERNEL_INLINE static void Covered(uint8_t* d, const uint8_t* s, uint32_t m) {
    d[K] = static_cast<uint8_t>(Lerp(s[K], d[K], m));
  }
};

// Whole-pixel choice: the source (or its blend t) replaces the destination
// when Test(d, candidate) holds.
template <class Test, int N>
struct PixChoose {
  FANCY_KERNEL_INLINE static void Full(uint8_t* d, const uint8_t* s) {
    if (Test::Take(d, s)) std::memmove(d, s, N);
  }
  FANCY_KERNEL_INLINE static void Covered(uint8_t* d, const uint8_t* s, uint32_t m) {
    uint8_t t[N];
    for (int k = 0; k < N; ++k) t[k] = static_cast<uint8_t>(Lerp(s[k], d[k], m));
    if (Test::Take(d, t)) std::memcpy(d, t, N);
  }
};

struct TakeLighter3 {
  FANCY_KERNEL_INLINE static bool Take(const uint8_t* d, const uint8_t* s) { return Max3(d) < Max3(s); }
};
struct TakeDarker3 {
  FANCY_KERNEL_INLINE static bool Take(const uint8_t* d, const uint8_t* s) { return Max3(d) >= Max3(s); }
};
// Brightest of the three inks with black added, as seen on the page.
FANCY_KERNEL_INLINE uint32_t InkBrightness(const uint8_t* p) {
  uint32_t k = p[3], best = 0;
  for (int c = 0; c < 3; ++c) {
    uint32_t ink = p[c] + k > 255 ? 255 : p[c] + k;
    if (255 - ink > best) best = 255 - ink;
  }
  return best;
}
struct TakeLighterInks {
  FANCY_KERNEL_INLINE static bool Take(const uint8_t* d, const uint8_t* s) { return InkBrightness(d) < InkBrightness(s); }
};
struct TakeDarkerInks {
  FANCY_KERNEL_INLINE static bool Take(const uint8_t* d, const uint8_t* s) { return InkBrightness(d) >= InkBrightness(s); }
};
struct TakeLighterLab {
  FANCY_KERNEL_INLINE static bool Take(const uint8_t* d, const uint8_t* s) { return s[0] > d[0]; }
};
struct TakeDarkerLab {
  FANCY_KERNEL_INLINE static bool Take(const uint8_t* d, const uint8_t* s) { return s[0] < d[0]; }
};

// Texturize: every channel multiplied by the source's mid level
// (max + min) / 2 over its N channels.
template <int N>
struct PixTexturize {
  FANCY_KERNEL_INLINE static uint32_t Level(const uint8_t* s) {
    uint32_t hi = s[0], lo = s[0];
    for (int k = 1; k < N; ++k) {
      if (s[k] > hi) hi = s[k];
      if (s[k] < lo) lo = s[k];
    }
    return (hi + lo) >> 1;
  }
  FANCY_KERNEL_INLINE static void Full(uint8_t* d, const uint8_t* s) {
    uint32_t L = Level(s);
    for (int k = 0; k < N; ++k) d[k] = static_cast<uint8_t>(Div(d[k] * L));
  }
  FANCY_KERNEL_INLINE static void Covered(uint8_t* d, const uint8_t* s, uint32_t m) {
    uint32_t L = Level(s);
    for (int k = 0; k < N; ++k) d[k] = static_cast<uint8_t>(Lerp(Div(d[k] * L), d[k], m));
  }
};

// Hue, saturation and value merges of type 1 (bytes blue, green, red).
// Which components come from the source: hue, saturation, value.
template <bool H, bool S, bool V>
struct PixHsv {
  FANCY_KERNEL_INLINE static HsvColor Of(const uint8_t* p) { return ToHsv(p[2], p[1], p[0]); }
  FANCY_KERNEL_INLINE static void Full(uint8_t* d, const uint8_t* s) {
    HsvColor a = Of(d), b = Of(s);
    FromHsv(H ? b.hue : a.hue, S ? b.saturation : a.saturation, V ? b.value : a.value, d);
  }
  FANCY_KERNEL_INLINE static void Covered(uint8_t* d, const uint8_t* s, uint32_t m) {
    HsvColor a = Of(d), b = Of(s);
    int32_t hue = a.hue, sat = a.saturation, val = a.value;
    if (H && S) {
      // ColorMerge takes the source's hue whole and blends saturation only.
      hue = b.hue;
      sat = static_cast<int32_t>(Guarded(b.saturation * m + a.saturation * (255 - m)));
    } else if (H) {
      hue = static_cast<int32_t>(WideDiv(b.hue * m + a.hue * (255 - m)));
    } else if (S) {
      sat = static_cast<int32_t>(Guarded(b.saturation * m + a.saturation * (255 - m)));
    } else if (V) {
      val = static_cast<int32_t>(Guarded(b.value * m + a.value * (255 - m)));
    }
    FromHsv(hue, sat, val, d);
  }
};

// Type 11: lightness multiplied, a and b multiplied about 128.
FANCY_KERNEL_INLINE uint32_t MultiplyAroundMid(uint32_t d, uint32_t s) {
  uint32_t t = d > 127 ? 255 : 0;
  return (((d ^ t) * (s ^ t)) >> 7) ^ t;
}
struct PixLabMultiply {
  FANCY_KERNEL_INLINE static void Value(const uint8_t* d, const uint8_t* s, uint8_t* out) {
    out[0] = static_cast<uint8_t>(Div(uint32_t{d[0]} * s[0]));
    out[1] = static_cast<uint8_t>(MultiplyAroundMid(d[1], s[1]));
    out[2] = static_cast<uint8_t>(MultiplyAroundMid(d[2], s[2]));
  }
  FANCY_KERNEL_INLINE static void Full(uint8_t* d, const uint8_t* s) {
    uint8_t f[3];
    Value(d, s, f);
    std::memcpy(d, f, 3);
  }
  FANCY_KERNEL_INLINE static void Covered(uint8_t* d, const uint8_t* s, uint32_t m) {
    uint8_t f[3];
    Value(d, s, f);
    for (int k = 0; k < 3; ++k) d[k] = static_cast<uint8_t>(Lerp(f[k], d[k], m));
  }
};
struct PixLabScreen {
  FANCY_KERNEL_INLINE static void Value(const uint8_t* d, const uint8_t* s, uint8_t* out) {
    out[0] = static_cast<uint8_t>(255 - Div((255u - d[0]) * (255u - s[0])));
    out[1] = static_cast<uint8_t>(MultiplyAroundMid(d[1], s[1]));
    out[2] = static_cast<uint8_t>(MultiplyAroundMid(d[2], s[2]));
  }
  FANCY_KERNEL_INLINE static void Full(uint8_t* d, const uint8_t* s) {
    uint8_t f[3];
    Value(d, s, f);
    std::memcpy(d, f, 3);
  }
  FANCY_KERNEL_INLINE static void Covered(uint8_t* d, const uint8_t* s, uint32_t m) {
    uint8_t f[3];
    Value(d, s, f);
    for (int k = 0; k < 3; ++k) d[k] = static_cast<uint8_t>(Lerp(f[k], d[k], m));
  }
};

// Types 12 and 14: 16-bit channels (C of them, little-endian, starting at
// channel First) blended by the wide division.
template <int First, int C>
struct PixWide {
  FANCY_KERNEL_INLINE static void Full(uint8_t* d, const uint8_t* s) { std::memmove(d + 2 * First, s + 2 * First, 2 * C); }
  FANCY_KERNEL_INLINE static void Covered(uint8_t* d, const uint8_t* s, uint32_t m) {
    for (int k = First; k < First + C; ++k) {
      uint32_t a = s[2 * k] | (uint32_t{s[2 * k + 1]} << 8);
      uint32_t b = d[2 * k] | (uint32_t{d[2 * k + 1]} << 8);
      uint32_t v = WideLerp(a, b, m);
      d[2 * k] = static_cast<uint8_t>(v);
      d[2 * k + 1] = static_cast<uint8_t>(v >> 8);
    }
  }
};

}  // namespace fancy::merge
