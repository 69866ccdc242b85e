#include "merge_reference.h"

#include <algorithm>
#include <cstdlib>

#include "imaging/merge.h"

namespace fancy::testing {

namespace {

int T(int x) { return x < 0 || x > 65025 ? 0 : DivTable()[x]; }
int Inv(int x) { return 255 - x; }
int Lerp(int f, int d, int m) { return T(f * m + d * (255 - m)); }

}  // namespace

int RefCoverage(int column, int mask1, int mask2, int opacity) {
  switch (column) {
    case 1: return mask1;
    case 2: return opacity;
    case 3: return T(mask1 * mask2);
    case 4: return T(mask1 * opacity);
    default: return T(T(mask1 * mask2) * opacity);
  }
}

int RefChannel(int mode, int d, int s) {
  switch (mode) {
    case 0: return s;
    case 1: return d & s;
    case 2: return d | s;
    case 3: return d ^ s;
    case 4: return d & Inv(s);
    case 5: return Inv(d);
    case 6: return Inv(s);
    case 7: return std::min(d + s, 255);
    case 8: return std::max(d + s - 255, 0);
    case 9: return T(d * s);
    case 10: return s == 0 ? 255 : std::min(d * 255 / s, 255);
    case 24: return std::abs(d - s);
    case 25: return std::max(d - s, 0);
    case 26: return T(d * Inv(s));
    case 27: return d;
    case 28: return Inv(T(Inv(d) * Inv(s)));
    case 29: return d >= 128 ? Inv(T(((Inv(d) * 2) & 255) * Inv(s))) : T(((d * 2) & 255) * s);
    case 30: {
      if (s >= 128) {
        int k = (((s - 128) * 129) >> 6) & 255;
        return T(SqrtTable()[d] * k + (255 - k) * d);
      }
      int k = 2 * s;
      return T(SquareTable()[d] * (255 - k) + k * d);
    }
    case 31: return s >= 128 ? Inv(T(((Inv(s) * 2) & 255) * Inv(d))) : T(((s * 2) & 255) * d);
    default: std::abort();
  }
}

int RefChannelCovered(int mode, int d, int s, int m) {
  switch (mode) {
    case 7: return std::min(d + T(s * m), 255);
    case 8: return std::max(d - T((255 - s) * m), 0);
    case 10:
      if (s == 0) return d + (255 - d) * m / 255;
      return std::min(d + (255 - s) * m * d / (255 * s), 255);
    case 24: return std::abs(d - T(s * m));
    case 25: return std::max(d - T(s * m), 0);
    case 27: return T(s * (255 - m) + d * m);
    default: return Lerp(RefChannel(mode, d, s), d, m);
  }
}

int RefInk(int mode, int d, int s) {
  if (mode >= 7 && mode <= 10) return Inv(RefChannel(mode, Inv(d), Inv(s)));
  if (mode == 26) return Inv(T(Inv(d) * s));
  return RefChannel(mode, d, s);
}

int RefInkCovered(int mode, int d, int s, int m) {
  if (mode >= 7 && mode <= 10) return Inv(RefChannelCovered(mode, Inv(d), Inv(s), m));
  if (mode == 26) return Lerp(RefInk(mode, d, s), d, m);
  return RefChannelCovered(mode, d, s, m);
}

namespace {

int InkBright(const uint8_t* p) {
  int best = 0;
  for (int c = 0; c < 3; ++c) best = std::max(best, 255 - std::min(p[c] + p[3], 255));
  return best;
}

int AroundMid(int d, int s) {
  int t = d > 127 ? 255 : 0;
  return (((d ^ t) * (s ^ t)) >> 7) ^ t;
}

}  // namespace

void RefPixel(int type, int mode, uint8_t* d, const uint8_t* s, int m) {
  const int n = type == 3 ? 4 : 3;
  uint8_t f[4] = {};
  auto apply = [&] {
    for (int k = 0; k < n; ++k) d[k] = static_cast<uint8_t>(m < 0 ? f[k] : Lerp(f[k], d[k], m));
  };
  if (type == 11 && mode == 17) mode = 18;
  switch (mode) {
    case 9:  // Lab
    case 28: {
      f[0] = static_cast<uint8_t>(mode == 9 ? T(d[0] * s[0]) : Inv(T(Inv(d[0]) * Inv(s[0]))));
      f[1] = static_cast<uint8_t>(AroundMid(d[1], s[1]));
      f[2] = static_cast<uint8_t>(AroundMid(d[2], s[2]));
      apply();
      return;
    }
    case 11:
    case 12: {
      uint8_t t[4];
      for (int k = 0; k < n; ++k) t[k] = static_cast<uint8_t>(m < 0 ? s[k] : Lerp(s[k], d[k], m));
      bool take;
      if (type == 1) {
        int a = std::max({d[0], d[1], d[2]}), b = std::max({t[0], t[1], t[2]});
        take = mode == 11 ? a < b : a >= b;
      } else if (type == 3) {
        take = mode == 11 ? InkBright(d) < InkBright(t) : InkBright(d) >= InkBright(t);
      } else {
        take = mode == 11 ? t[0] > d[0] : t[0] < d[0];
      }
      if (take)
        for (int k = 0; k < n; ++k) d[k] = t[k];
      return;
    }
    case 13: {
      int hi = *std::max_element(s, s + n), lo = *std::min_element(s, s + n);
      int level = (hi + lo) >> 1;
      for (int k = 0; k < n; ++k) f[k] = static_cast<uint8_t>(T(d[k] * level));
      apply();
      return;
    }
    case 14:
    case 15:
    case 16:
    case 17: {
      HsvColor a = RgbToHsv(d[2], d[1], d[0]), b = RgbToHsv(s[2], s[1], s[0]);
      int h = a.hue, sat = a.saturation, v = a.value;
      if (m < 0) {
        if (mode == 14 || mode == 15) h = b.hue;
        if (mode == 14 || mode == 16) sat = b.saturation;
        if (mode == 17) v = b.value;
      } else if (mode == 14) {
        h = b.hue;
        sat = T(b.saturation * m + a.saturation * (255 - m));
      } else if (mode == 15) {
        h = static_cast<int>(WideDivide(b.hue * m + a.hue * (255 - m)));
      } else if (mode == 16) {
        sat = T(b.saturation * m + a.saturation * (255 - m));
      } else {
        v = T(b.value * m + a.value * (255 - m));
      }
      HsvToBgr(h, sat, v, d);
      return;
    }
    case 18:
    case 19:
    case 20:
    case 21: {
      for (int k = 0; k < n; ++k) f[k] = d[k];
      f[mode - 18] = s[mode - 18];
      apply();
      return;
    }
    default: std::abort();
  }
}

}  // namespace fancy::testing
