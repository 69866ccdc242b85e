// The one-edge conversions: each turns one model into another by a single
// formula, in the integer or double arithmetic the colour layer has always
// used (and whose results palettes and settings depend on).
//
// Each builds its result in a fresh record and writes it at the end, so dst
// and src may be the same record.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "colour/clr_convert.h"
#include "colour/clr_pixels.h"
#include "colour/cms_bridge.h"

namespace fancy {

namespace {

// A converted colour: the model, palette word 5, everything else zero.
CLRColor Result(int model) {
  CLRColor r{};
  r.model = static_cast<uint16_t>(model);
  CLRSetPaletteWord(&r, kCLRPalUser);
  return r;
}

// Writes the failure form and answers true when src is of none of the models.
bool WrongModel(CLRColor* dst, const CLRColor* src, int model, int other = -1) {
  if (src->model == model || src->model == other) return false;
  CLRSetFailure(dst);
  return true;
}

// The only lines the module writes for a debugger: the 16-bit device edges
// that have no path of their own.
void DebugOutput(const char* line) { std::fputs(line, stderr); }

struct RGBValues {
  int r, g, b;
};
RGBValues RGB8Of(const CLRColor* c) { return {c->value8[2], c->value8[1], c->value8[0]}; }
RGBValues RGB16Of(const CLRColor* c) {
  return {CLRGetU16(c, 10), CLRGetU16(c, 8), CLRGetU16(c, 6)};
}
void SetRGB8(CLRColor* c, int r, int g, int b) {
  c->value8[0] = static_cast<uint8_t>(b);
  c->value8[1] = static_cast<uint8_t>(g);
  c->value8[2] = static_cast<uint8_t>(r);
}
void SetRGB16(CLRColor* c, uint32_t r, uint32_t g, uint32_t b) {
  CLRSetU16(c, 6, b);
  CLRSetU16(c, 8, g);
  CLRSetU16(c, 10, r);
}
uint32_t Widen(uint32_t x) { return (x << 8) | x; }

double Clamp255(double v) { return v < 0.0 ? 0.0 : (v > 255.0 ? 255.0 : v); }

// Doubles go to bytes by truncation toward zero (so the formulas add 0.5 by
// hand); a value outside the byte wraps as the integer conversion would.
uint8_t TruncByte(double v) { return static_cast<uint8_t>(static_cast<int>(v)); }

// ---- hue models ---------------------------------------------------------------

// Hue of the HSB model in 16.16 sectors; the test order R, then G decides
// ties. d must not be 0.
int HSBHue(int64_t r, int64_t g, int64_t b, int64_t mx, int64_t d) {
  int64_t rc = ((mx - r) << 16) / d;
  int64_t gc = ((mx - g) << 16) / d;
  int64_t bc = ((mx - b) << 16) / d;
  int64_t h;
  if (r == mx) h = bc - gc;
  else if (g == mx) h = rc - bc + 0x20000;
  else h = gc - rc + 0x40000;
  int16_t hue = static_cast<int16_t>((h * 60 + 32768) >> 16);
  if (hue < 0) hue = static_cast<int16_t>(hue + 360);
  return hue;
}

void StoreHSB(CLRColor* r, int hue, int s, int v) {
  CLRSetU16(r, 8, static_cast<uint32_t>(hue));
  r->value8[2] = static_cast<uint8_t>(s);
  r->value8[3] = static_cast<uint8_t>(v);
}

// p, q, t of HSB to RGB in 16.16; shift is 16 for bytes, 8 for 16-bit values.
struct HSBParts {
  int sector;
  int64_t p, q, t;
};
HSBParts HSBPartsOf(int hue, int s, int v, int shift) {
  if (hue < 0) hue = hue % 360 + 360;  // a hue below 0 is read round the circle
  int64_t S = (static_cast<int64_t>(s) << 16) / 255;
  int64_t F = (static_cast<int64_t>(hue % 60) << 16) / 60;
  HSBParts parts;
  parts.sector = (hue / 60) % 6;
  parts.p = ((0x10000 - S) * v + 32768) >> shift;
  parts.q = ((0x10000 - ((F / 2 * (S / 2)) >> 14)) * v + 32768) >> shift;
  parts.t = ((0x10000 - (((0x10000 - F) / 2 * (S / 2)) >> 14)) * v + 32768) >> shift;
  return parts;
}

// The sector's (R, G, B) with v the full channel.
void SectorRGB(const HSBParts& k, int64_t v, int64_t out[3]) {
  const int64_t p = k.p, q = k.q, t = k.t;
  switch (k.sector) {
    case 0: out[0] = v, out[1] = t, out[2] = p; break;
    case 1: out[0] = q, out[1] = v, out[2] = p; break;
    case 2: out[0] = p, out[1] = v, out[2] = t; break;
    case 3: out[0] = p, out[1] = q, out[2] = v; break;
    case 4: out[0] = t, out[1] = p, out[2] = v; break;
    default: out[0] = v, out[1] = p, out[2] = q; break;
  }
}

// HLS from channels on a scale whose full value is full (255 or 65535);
// lightness comes back in bytes through lightShift.
void HLSOf(int64_t r, int64_t g, int64_t b, int64_t twiceFull, int lightShift, int* hue,
           int* light, int* sat) {
  int64_t mx = std::max(r, std::max(g, b)), mn = std::min(r, std::min(g, b));
  int64_t d = mx - mn;
  *light = static_cast<int>((mx + mn) >> lightShift);
  if (mx == mn) {
    *hue = 0;
    *sat = 0;
    return;
  }
  *sat = static_cast<int>(*light <= 127 ? d * 255 / (mx + mn) : d * 255 / (twiceFull - mx - mn));
  int64_t h;
  if (r == mx) h = (g - b) * 60 / d;
  else if (g == mx) h = (b - r) * 60 / d + 120;
  else h = (r - g) * 60 / d + 240;
  if (h < 0) h += 360;
  *hue = static_cast<int>(h);
}

// The piecewise channel of HLS to RGB.
int64_t HLSChannel(int64_t m1, int64_t m2, int64_t x) {
  if (x >= 360) x -= 360;
  else if (x < 0) x += 360;
  if (x < 60) return m1 + (m2 - m1) * x / 60;
  if (x < 180) return m2;
  if (x >= 240) return m1;
  return m1 + (m2 - m1) * (240 - x) / 60;
}

// ---- YIQ -------------------------------------------------------------------------

void StoreYIQ(CLRColor* out, double r, double g, double b) {
  double y = 0.299 * r + 0.587 * g + 0.114 * b + 0.5;
  double i = (0.596 * r - 0.274 * g - 0.322 * b + 200.0) * 0.5 + 0.5;
  double q = (0.211 * r - 0.523 * g + 0.312 * b + 200.0) * 0.5 + 0.5;
  out->value8[0] = TruncByte(y);
  out->value8[1] = TruncByte(Clamp255(i));
  out->value8[2] = TruncByte(Clamp255(q));
}

// YIQ to clamped RGB doubles.
void YIQToRGBDoubles(const CLRColor* c, double rgb[3]) {
  double y = c->value8[0] + 0.5;
  double i = 2.0 * c->value8[1] - 200.0 + 0.5;
  double q = 2.0 * c->value8[2] - 200.0 + 0.5;
  rgb[0] = Clamp255(y + 0.956 * i + 0.621 * q);
  rgb[1] = Clamp255(y - 0.272 * i - 0.647 * q);
  rgb[2] = Clamp255(y - 1.106 * i + 1.703 * q);
}

// ---- Lab and XYZ -------------------------------------------------------------------

double Cube(double x) { return x * x * x; }

}  // namespace

int32_t CLRMulDiv(int32_t a, int32_t b, int32_t c) {
  if (c == 0) return -1;
  int64_t p = static_cast<int64_t>(a) * b;
  int64_t q = p / c, r = p % c;
  int64_t absC = c < 0 ? -static_cast<int64_t>(c) : c;
  if (2 * (r < 0 ? -r : r) >= absC) q += ((p < 0) != (c < 0)) ? -1 : 1;
  if (q > std::numeric_limits<int32_t>::max() || q < std::numeric_limits<int32_t>::min())
    return -1;
  return static_cast<int32_t>(q);
}

// ---- CMYK, CMY, RGB, grey, BW ----------------------------------------------------------

void CLRConvertCMYKToCMYK255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRCMYK)) return;
  CLRColor r = Result(kCLRCMYK255);
  for (int i = 0; i < 4; ++i) r.value8[i] = static_cast<uint8_t>(CLRMulDiv(src->value8[i], 255, 100));
  *dst = r;
}

void CLRConvertCMYK255ToCMYK(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRCMYK255, kCLRCMYK100)) return;
  CLRColor r = Result(kCLRCMYK);
  for (int i = 0; i < 4; ++i) r.value8[i] = static_cast<uint8_t>(CLRMulDiv(src->value8[i], 100, 255));
  *dst = r;
}

void CLRConvertCMY255ToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRCMY255)) return;
  CLRColor r = Result(kCLRRGB255);
  const uint8_t* v = src->value8;
  SetRGB8(&r, 255 - v[0], 255 - v[1], 255 - v[2]);
  *dst = r;
}

void CLRConvertRGB255ToCMY255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  CLRColor r = Result(kCLRCMY255);
  RGBValues c = RGB8Of(src);
  r.value8[0] = static_cast<uint8_t>(255 - c.r);
  r.value8[1] = static_cast<uint8_t>(255 - c.g);
  r.value8[2] = static_cast<uint8_t>(255 - c.b);
  *dst = r;
}

void CLRConvertRGB255ToRGB48(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  CLRColor r = Result(kCLRRGB48);
  RGBValues c = RGB8Of(src);
  SetRGB16(&r, Widen(c.r), Widen(c.g), Widen(c.b));
  *dst = r;
}

void CLRConvertRGB48ToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB48)) return;
  CLRColor r = Result(kCLRRGB255);
  RGBValues c = RGB16Of(src);
  SetRGB8(&r, c.r >> 8, c.g >> 8, c.b >> 8);
  *dst = r;
}

void CLRConvertGray255ToGray16(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRGray255)) return;
  CLRColor r = Result(kCLRGray16);
  CLRSetU16(&r, 8, Widen(src->value8[0]));
  *dst = r;
}

void CLRConvertGray16ToGray255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRGray16)) return;
  CLRColor r = Result(kCLRGray255);
  r.value8[0] = static_cast<uint8_t>(CLRGetU16(src, 8) >> 8);
  *dst = r;
}

void CLRConvertGray16ToRGB48(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRGray16)) return;
  CLRColor r = Result(kCLRRGB48);
  uint32_t level = CLRGetU16(src, 8);
  SetRGB16(&r, level, level, level);
  *dst = r;
}

void CLRConvertGray255ToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRGray255)) return;
  CLRColor r = Result(kCLRRGB255);
  int level = src->value8[0];
  SetRGB8(&r, level, level, level);
  *dst = r;
}

void CLRConvertGray255ToBW(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRGray255)) return;
  CLRColor r = Result(kCLRBW);
  CLRSetI32(&r, 8, src->value8[0] > 127 ? 1 : 0);
  *dst = r;
}

void CLRConvertBWToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRBW)) return;
  CLRColor r = Result(kCLRRGB255);
  int level = CLRGetI32(src, 8) != 0 ? 255 : 0;
  SetRGB8(&r, level, level, level);
  *dst = r;
}

void CLRConvertBWToGray255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRBW)) return;
  CLRColor r = Result(kCLRGray255);
  r.value8[0] = CLRGetI32(src, 8) != 0 ? 255 : 0;
  *dst = r;
}

void CLRConvertRGB255ToGray255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  CLRColor r = Result(kCLRGray255);
  RGBValues c = RGB8Of(src);
  r.value8[0] = static_cast<uint8_t>((c.r * 299 + c.g * 587 + c.b * 114) / 1000);
  *dst = r;
}

void CLRConvertRGB255ToGray16(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  CLRColor r = Result(kCLRGray16);
  RGBValues c = RGB8Of(src);
  // Weights of 16384 in all: full white gives 65280, not 65535.
  uint32_t sum = static_cast<uint32_t>(c.r * 4899 + c.g * 9617 + c.b * 1868) & 0x3FFFFFFu;
  CLRSetU16(&r, 8, sum >> 6);
  *dst = r;
}

void CLRConvertRGB48ToGray16(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB48)) return;
  CLRColor r = Result(kCLRGray16);
  RGBValues c = RGB16Of(src);
  CLRSetU16(&r, 8, static_cast<uint32_t>((c.r * 299 + c.g * 587 + c.b * 114) / 1000));
  *dst = r;
}

// ---- Lab, Lab255, XYZ ------------------------------------------------------------------

void CLRConvertLABToLAB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRLab)) return;
  CLRColor r = Result(kCLRLab255);
  r.value8[0] = src->value8[0];
  r.value8[1] = static_cast<uint8_t>(src->value8[1] + 128);
  r.value8[2] = static_cast<uint8_t>(src->value8[2] + 128);
  *dst = r;
}

void CLRConvertLAB255ToLAB(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRLab255)) return;
  CLRColor r = Result(kCLRLab);
  r.value8[0] = src->value8[0];
  r.value8[1] = static_cast<uint8_t>(src->value8[1] + 128);
  r.value8[2] = static_cast<uint8_t>(src->value8[2] + 128);
  *dst = r;
}

// The X, y and Z bytes are fractions of unity truncated, so they hold 0 or 1:
// that is what the model stores, and no scaling is added.
void CLRConvertLABToXYZ(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRLab)) return;
  double Ls = src->value8[0] * 100.0 / 255.0;
  double as = static_cast<int8_t>(src->value8[1]) * 60.0 / 127.0;
  double bs = static_cast<int8_t>(src->value8[2]) * 60.0 / 127.0;
  double y, fy;
  if (Ls > 7.9996247999999985) {
    y = Cube((Ls + 16.0) * 0.008620689655172414);
    fy = std::cbrt(y);
  } else {
    y = Ls * 0.0011070519207350825;
    fy = 0.13793103448275862 + 7.787 * y;
  }
  double fx = fy + 0.002 * as;
  double fz = fy - 0.005 * bs;
  double X = as > 500.0 * (0.2068927064827586 - fy) ? Cube(fx)
                                                    : (fx - 0.13793103448275862) * 0.1284191601386927;
  X *= 0.9500000476837158;
  double Z = bs > 200.0 * (0.2068927064827586 - fz) ? Cube(fz)
                                                    : (fz - 0.13793103448275862) * 0.1284191601386927;
  Z *= 1.0877000093460083;
  CLRColor r = Result(kCLRXYZ);
  r.value8[0] = TruncByte(X);
  r.value8[1] = TruncByte(y);
  r.value8[2] = TruncByte(Z);
  *dst = r;
}

// ---- HSB, HLS, YIQ ------------------------------------------------------------------------

void CLRConvertRGB255ToHSB(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  RGBValues c = RGB8Of(src);
  int mx = std::max(c.r, std::max(c.g, c.b)), mn = std::min(c.r, std::min(c.g, c.b));
  int d = mx - mn;
  int s = mx ? d * 255 / mx : 0;
  int hue = s ? HSBHue(c.r, c.g, c.b, mx, d) : 0;
  CLRColor r = Result(kCLRHSB);
  StoreHSB(&r, hue, s, mx);
  *dst = r;
}

void CLRConvertRGB48ToHSB(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB48)) return;
  RGBValues c = RGB16Of(src);
  int mx = std::max(c.r, std::max(c.g, c.b)), mn = std::min(c.r, std::min(c.g, c.b));
  int d = mx - mn;
  int s = mx ? d * 255 / mx : 0;
  int hue = s ? HSBHue(c.r, c.g, c.b, mx, d) : 0;
  CLRColor r = Result(kCLRHSB);
  StoreHSB(&r, hue, s, mx >> 8);
  *dst = r;
}

void CLRConvertHSBToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRHSB)) return;
  int hue = CLRGetI16(src, 8), s = src->value8[2], v = src->value8[3];
  CLRColor r = Result(kCLRRGB255);
  if (s == 0) {
    SetRGB8(&r, v, v, v);
  } else {
    int64_t rgb[3];
    SectorRGB(HSBPartsOf(hue, s, v, 16), v, rgb);
    SetRGB8(&r, static_cast<int>(rgb[0]), static_cast<int>(rgb[1]), static_cast<int>(rgb[2]));
  }
  *dst = r;
}

void CLRConvertHSBToRGB48(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRHSB)) return;
  int hue = CLRGetI16(src, 8), s = src->value8[2], v = src->value8[3];
  uint32_t w = Widen(static_cast<uint32_t>(v));
  CLRColor r = Result(kCLRRGB48);
  if (s == 0) {
    SetRGB16(&r, w, w, w);
  } else {
    int64_t rgb[3];
    SectorRGB(HSBPartsOf(hue, s, v, 8), w, rgb);
    SetRGB16(&r, static_cast<uint32_t>(rgb[0]), static_cast<uint32_t>(rgb[1]),
             static_cast<uint32_t>(rgb[2]));
  }
  *dst = r;
}

void CLRConvertRGB255ToHLS(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  RGBValues c = RGB8Of(src);
  int hue, light, sat;
  HLSOf(c.r, c.g, c.b, 510, 1, &hue, &light, &sat);
  CLRColor r = Result(kCLRHLS);
  StoreHSB(&r, hue, light, sat);
  *dst = r;
}

void CLRConvertRGB48ToHLS(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB48)) return;
  RGBValues c = RGB16Of(src);
  int hue, light, sat;
  HLSOf(c.r, c.g, c.b, 0x1FFFE, 9, &hue, &light, &sat);
  CLRColor r = Result(kCLRHLS);
  StoreHSB(&r, hue, light, sat);
  *dst = r;
}

void CLRConvertHLSToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRHLS)) return;
  int64_t h = CLRGetI16(src, 8), L = src->value8[2], S = src->value8[3];
  CLRColor r = Result(kCLRRGB255);
  if (S == 0) {
    SetRGB8(&r, static_cast<int>(L), static_cast<int>(L), static_cast<int>(L));
  } else {
    int64_t m2 = L > 127 ? L + S - L * S / 255 : (S + 255) * L / 255;
    int64_t m1 = 2 * L - m2;
    SetRGB8(&r, static_cast<int>(HLSChannel(m1, m2, h + 120)),
            static_cast<int>(HLSChannel(m1, m2, h)), static_cast<int>(HLSChannel(m1, m2, h - 120)));
  }
  *dst = r;
}

void CLRConvertHLSToRGB48(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRHLS)) return;
  int64_t h = CLRGetI16(src, 8), L = src->value8[2], S = src->value8[3];
  CLRColor r = Result(kCLRRGB48);
  if (S == 0) {
    uint32_t w = static_cast<uint32_t>(L * 257);
    SetRGB16(&r, w, w, w);
  } else {
    // 13-bit arithmetic: 8191 stands for 255 and 4095 for 127.
    int64_t L13 = L * 32 + (L >> 3), S13 = S * 32 + (S >> 3);
    int64_t m2 = L13 > 4095 ? L13 + S13 - L13 * S13 / 8191 : L13 * (S13 + 8191) / 8191;
    int64_t m1 = 2 * L13 - m2;
    auto widen13 = [](int64_t x) { return static_cast<uint32_t>(x * 8 + ((x * 8) >> 13)); };
    SetRGB16(&r, widen13(HLSChannel(m1, m2, h + 120)), widen13(HLSChannel(m1, m2, h)),
             widen13(HLSChannel(m1, m2, h - 120)));
  }
  *dst = r;
}

void CLRConvertRGB255ToYIQ255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  RGBValues c = RGB8Of(src);
  CLRColor r = Result(kCLRYIQ255);
  StoreYIQ(&r, c.r, c.g, c.b);
  *dst = r;
}

void CLRConvertRGB48ToYIQ255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB48)) return;
  RGBValues c = RGB16Of(src);
  CLRColor r = Result(kCLRYIQ255);
  StoreYIQ(&r, c.r * 0.00390625, c.g * 0.00390625, c.b * 0.00390625);
  *dst = r;
}

void CLRConvertYIQ255ToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRYIQ255)) return;
  double rgb[3];
  YIQToRGBDoubles(src, rgb);
  CLRColor r = Result(kCLRRGB255);
  SetRGB8(&r, TruncByte(rgb[0]), TruncByte(rgb[1]), TruncByte(rgb[2]));
  *dst = r;
}

void CLRConvertYIQ255ToRGB48(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRYIQ255)) return;
  double rgb[3];
  YIQToRGBDoubles(src, rgb);
  CLRColor r = Result(kCLRRGB48);
  // 255 becomes 65280: the doubles are scaled by 256, not 257.
  SetRGB16(&r, static_cast<uint32_t>(rgb[0] * 256.0), static_cast<uint32_t>(rgb[1] * 256.0),
           static_cast<uint32_t>(rgb[2] * 256.0));
  *dst = r;
}

// ---- the device edges, one pixel ------------------------------------------------------------
// Pixel arrays of one pixel: an RGB array of width 1 has the stride 4.

void CLRConvertRGB255ToCMYK255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  CLRColor r = Result(kCLRCMYK255);
  CLRPixelsRGBToCMYK(src->value8, CLRRGBArrayStride(1), r.value8, 4, 1, 1);
  *dst = r;
}

void CLRConvertCMYK255ToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRCMYK255, kCLRCMYK100)) return;
  CLRColor r = Result(kCLRRGB255);
  CLRPixelsCMYKToRGB(src->value8, 4, r.value8, CLRRGBArrayStride(1), 1, 1);
  *dst = r;
}

void CLRConvertRGB255ToLAB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRRGB255)) return;
  CLRColor r = Result(kCLRLab255);
  CLRPixelsRGBToLab(src->value8, CLRRGBArrayStride(1), r.value8, 4, 1, 1);
  *dst = r;
}

void CLRConvertLAB255ToRGB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRLab255)) return;
  CLRColor r = Result(kCLRRGB255);
  CLRPixelsLabToRGB(src->value8, 4, r.value8, CLRRGBArrayStride(1), 1, 1);
  *dst = r;
}

void CLRConvertCMYK255ToLAB255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRCMYK255, kCLRCMYK100)) return;
  CLRColor r = Result(kCLRLab255);
  if (!CmsFromCMYK(nullptr, kCmsToLab, src->value8, 4, r.value8, 4, 1, 1)) {
    uint8_t rgb[4] = {};
    CLRPixelsCMYKToRGB(src->value8, 4, rgb, 4, 1, 1);
    CLRPixelsRGBToLab(rgb, 4, r.value8, 4, 1, 1);
  }
  *dst = r;
}

void CLRConvertLAB255ToCMYK255(CLRColor* dst, const CLRColor* src) {
  if (WrongModel(dst, src, kCLRLab255)) return;
  CLRColor r = Result(kCLRCMYK255);
  if (!CmsToDeviceFromLab(nullptr, src->value8, 4, r.value8, 4, 1, 1)) {
    uint8_t rgb[4] = {};
    CLRPixelsLabToRGB(src->value8, 4, rgb, 4, 1, 1);
    CLRPixelsRGBToCMYK(rgb, 4, r.value8, 4, 1, 1);
  }
  *dst = r;
}

void CLRConvertRGB48ToLAB255(CLRColor* dst, const CLRColor* src) {
  DebugOutput("CLRConvertRGB48ToLAB255 not implemented yet!\n");
  if (WrongModel(dst, src, kCLRRGB48)) return;
  CLRColor rgb;
  CLRConvertRGB48ToRGB255(&rgb, src);
  CLRConvertRGB255ToLAB255(dst, &rgb);
}

void CLRConvertLAB255ToRGB48(CLRColor* dst, const CLRColor* src) {
  DebugOutput("CLRConvertLAB255ToRGB48 not implemented yet!\n");
  if (WrongModel(dst, src, kCLRLab255)) return;
  CLRColor rgb;
  CLRConvertLAB255ToRGB255(&rgb, src);
  CLRConvertRGB255ToRGB48(dst, &rgb);
}

void CLRConvertCMYK255ToRGB48(CLRColor* dst, const CLRColor* src) {
  DebugOutput("CLRConvertCMYK255ToRGB48 not implemented yet!\n");
  if (WrongModel(dst, src, kCLRCMYK255, kCLRCMYK100)) return;
  CLRColor rgb;
  CLRConvertCMYK255ToRGB255(&rgb, src);
  CLRConvertRGB255ToRGB48(dst, &rgb);
}

void CLRConvertRGB48ToCMYK255(CLRColor* dst, const CLRColor* src) {
  DebugOutput("CLRConvertRGB48ToCMYK255 not implemented yet!\n");
  if (WrongModel(dst, src, kCLRRGB48)) return;
  CLRColor rgb;
  CLRConvertRGB48ToRGB255(&rgb, src);
  CLRConvertRGB255ToCMYK255(dst, &rgb);
}

}  // namespace fancy
