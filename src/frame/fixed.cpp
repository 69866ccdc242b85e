// The table-driven 16.16 routines: exponential, integer power, square root,
// CORDIC rotation, sine and cosine.
#include "frame/fixed.h"

namespace fancy {
namespace {

// e to the (2 to the (i - 16)) as Fixed, one entry per argument bit.
constexpr Fixed kExpTable[20] = {
    0x10001, 0x10002, 0x10004, 0x10008, 0x10010, 0x10020,  0x10040,   0x10080,  0x10101,   0x10202,
    0x10408, 0x10820, 0x11083, 0x12216, 0x148B6, 0x1A613, 0x2B7E1, 0x76399, 0x369920, 0xBA4F53F,
};

// atan(2 to the -i) with 28 fraction bits; from entry 10 on each is half
// the one before, down to 1.
constexpr int32_t kAtanTable[29] = {
    0x0C90FDAA, 0x076B19C1, 0x03EB6EBF, 0x01FD5BAA, 0x00FFAADE, 0x007FF557,
    0x003FFEAB, 0x001FFFD5, 0x000FFFFB, 0x0007FFFF, 0x00040000, 0x00020000,
    0x00010000, 0x00008000, 0x00004000, 0x00002000, 0x00001000, 0x00000800,
    0x00000400, 0x00000200, 0x00000100, 0x00000080, 0x00000040, 0x00000020,
    0x00000010, 0x00000008, 0x00000004, 0x00000002, 0x00000001,
};

constexpr int32_t kAtanTwo = 0x11B6E193;   // atan 2, 28 fraction bits
constexpr Fixed kInverseGain = 17797;      // 1 / 3.682, the CORDIC gain

// e to a non-negative argument given as its magnitude. Taking the magnitude
// unsigned lets -0x80000000, whose negation does not fit, saturate like any
// other large argument.
Fixed ExpOfMagnitude(uint32_t x) {
  if (x > static_cast<uint32_t>(kFixedExpLimit)) return kFixedExpSaturation;
  Fixed r = kFixedOne;
  for (int i = 0; i < 20; ++i) {
    if ((x >> i) & 1u) r = FixedMul(r, kExpTable[i]);
  }
  return r;
}

Fixed PowOfMagnitude(Fixed a, uint32_t n) {
  uint32_t bits = (n >> 16) & 0xFFFFu;  // the integer part as a 16-bit value
  Fixed r = kFixedOne;
  Fixed p = a;
  for (int round = 0; round < 6; ++round) {
    if (bits & 1u) r = FixedMul(r, p);
    bits >>= 1;
    p = FixedMul(p, p);
  }
  return r;
}

uint32_t Magnitude(int32_t v) {
  return v < 0 ? 0u - static_cast<uint32_t>(v) : static_cast<uint32_t>(v);
}

}  // namespace

Fixed FixedExp(Fixed x) {
  if (x < 0) return FixedRecip(ExpOfMagnitude(Magnitude(x)));
  return ExpOfMagnitude(static_cast<uint32_t>(x));
}

Fixed FixedPowInt(Fixed a, Fixed n) {
  if (n < 0) return FixedRecip(PowOfMagnitude(a, Magnitude(n)));
  return PowOfMagnitude(a, static_cast<uint32_t>(n));
}

int32_t FixedSqrtInt(int32_t v) {
  if (v < 0) return 0;
  if (v >= 0x40000000) return 32768;
  // p runs over powers of 4 and q over the matching powers of 2.
  int32_t p = 1;
  int32_t q = 1;
  if (v >= 1) {
    while (p <= v) {
      p <<= 2;
      q <<= 1;
    }
  }
  if (q < 2) return 0;
  int32_t root = 0;
  int32_t t = 0;
  int32_t r = v;
  while (q > 1 && r >= 1) {  // stops early once the remainder is 0
    p >>= 2;
    q >>= 1;
    const int32_t d = r - (t | p);
    if (d >= 0) {
      root |= q;
      r = d;
      t |= p << 1;
    }
    t >>= 1;
  }
  return root;
}

void FixedRotate(int32_t& x, int32_t& y, int32_t angle) {
  int32_t cx;
  int32_t cy;
  if (angle < 0) {
    cx = WrapAdd(x, WrapMul(y, 2));
    cy = WrapSub(y, WrapMul(x, 2));
    angle = WrapAdd(angle, kAtanTwo);
  } else {
    cx = WrapSub(x, WrapMul(y, 2));
    cy = WrapAdd(y, WrapMul(x, 2));
    angle = WrapSub(angle, kAtanTwo);
  }
  for (int i = 0; i < 29; ++i) {
    const int32_t oldX = cx;
    if (angle < 0) {
      cx = WrapAdd(cx, cy >> i);
      angle = WrapAdd(angle, kAtanTable[i]);
      cy = WrapSub(cy, oldX >> i);
    } else {
      cx = WrapSub(cx, cy >> i);
      angle = WrapSub(angle, kAtanTable[i]);
      cy = WrapAdd(cy, oldX >> i);
    }
  }
  x = cx;
  y = cy;
}

Fixed FixedSin(Fixed angle) {
  int32_t c = FixedMod(angle, kFixedFullTurn);
  if (c >= kFixedHalfTurnTest) c -= kFixedFullTurn;
  // Fold into the half turn round zero, where the rotation converges.
  if (c >= kFixedQuarterTurnTest) c = 205887 - c;
  if (c < -102943) c = -205887 - c;
  int32_t x = 0x10000000;
  int32_t y = 0;
  FixedRotate(x, y, WrapShl(c, 12));
  return FixedMul(kInverseGain, y >> 12);
}

// The quarter turn added here is one less than the fold's test value.
Fixed FixedCos(Fixed angle) { return FixedSin(WrapAdd(angle, 102943)); }

}  // namespace fancy
