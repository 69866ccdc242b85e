// 16.16 fixed-point arithmetic and the bilinear byte samplers built on it.
//
// These routines stand in for floating point inside the per-pixel loops of
// the tile and relief engines, so their rounding and range behaviour is part
// of every picture they help to make: each one is exact to the bit. All
// arithmetic wraps at 32 bits, with no saturation and no rounding unless a
// routine says otherwise; the wrapping is done on unsigned values so that it
// is defined behaviour.
//
// The routines called once or more per pixel channel (FixedMul, the
// reciprocals, FixedMod and the samplers) are inline; the table-driven ones
// live in fixed.cpp.
#pragma once

#include <cstdint>

namespace fancy {

using Fixed = int32_t;  // signed, 16 fraction bits: 0x10000 is 1.0

inline constexpr Fixed kFixedOne = 0x10000;

// Angles of FixedSin and FixedCos are radians as Fixed. A full turn is
// 411775; the folds test against 205888 (half) and 102944 (quarter).
inline constexpr Fixed kFixedFullTurn = 411775;
inline constexpr Fixed kFixedHalfTurnTest = 205888;
inline constexpr Fixed kFixedQuarterTurnTest = 102944;

// FixedExp returns kFixedExpSaturation (e to the 10.25) for every argument
// above kFixedExpLimit (10.25).
inline constexpr Fixed kFixedExpLimit = 0xA4000;
inline constexpr Fixed kFixedExpSaturation = 0x6E7A8ABB;

// ---- 32-bit wrapping helpers -------------------------------------------

inline constexpr int32_t WrapAdd(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
inline constexpr int32_t WrapSub(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
inline constexpr int32_t WrapMul(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
inline constexpr int32_t WrapShl(int32_t a, int bits) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) << bits);
}
inline constexpr int32_t WrapNeg(int32_t a) {
  return static_cast<int32_t>(0u - static_cast<uint32_t>(a));
}

// Float to integer as the module's processor converts: truncation toward
// zero, and the "integer indefinite" value INT32_MIN for NaN and for values
// outside the 32-bit range.
inline int32_t TruncToInt(double v) {
  if (!(v > -2147483649.0 && v < 2147483648.0)) return INT32_MIN;
  return static_cast<int32_t>(v);
}

// ---- arithmetic ---------------------------------------------------------

// a x b. Written out, the product is a x bh + bl x ah + ((bl x al) >> 16)
// with h the arithmetic high half and l the low half of each factor; that
// is exactly the floor of the 64-bit product shifted right by 16, kept to
// 32 bits, which is how it is computed here.
inline constexpr Fixed FixedMul(Fixed a, Fixed b) {
  const int64_t product = static_cast<int64_t>(a) * static_cast<int64_t>(b);
  return static_cast<Fixed>(static_cast<uint32_t>(static_cast<uint64_t>(product >> 16)));
}

// a / b through a coarse reciprocal: FixedMul(a, 0x40000000 / (b >> 2)).
// The two low bits of b are given away for range. The divisor b >> 2 must
// not be 0; if it is, it is taken as -1, the divisor FixedRecip uses for 0.
inline constexpr Fixed FixedDivRaw(Fixed a, Fixed b) {
  int32_t divisor = b >> 2;
  if (divisor == 0) divisor = -1;
  return FixedMul(a, 0x40000000 / divisor);
}

// 1 / b. The nine values -4..4 would overflow or divide by zero, so they
// divide by -4 (b <= 0) or 4 (b > 0): zero counts as the smallest negative
// divisor.
inline constexpr Fixed FixedRecip(Fixed b) {
  if (b >= 5 || b < -4) return FixedDivRaw(kFixedOne, b);
  return FixedDivRaw(kFixedOne, b <= 0 ? -4 : 4);
}

// a / b as FixedMul(a, FixedRecip(b)).
inline constexpr Fixed FixedDiv(Fixed a, Fixed b) { return FixedMul(a, FixedRecip(b)); }

// a modulo m with the sign of m. Moduli with |m| <= 4 skip the division
// (the remainder is a itself). A remainder of a value whose sign differs
// from m's is moved by m, even when it is 0: FixedMod(-10, 5) is 5.
inline constexpr int32_t FixedMod(int32_t a, int32_t m) {
  int32_t r = a;
  if (m > 4 || m < -4) r = a % m;
  if ((a < 0 && m > 0) || (a > 0 && m < 0)) r = WrapAdd(r, m);
  return r;
}

// e to the x, a product of one table entry per set bit of x. Saturates at
// kFixedExpSaturation above 10.25; a negative x gives the reciprocal of the
// positive one, so a large negative argument gives 2.
Fixed FixedExp(Fixed x);

// a to the integer part of n. Only the six lowest bits of the integer part
// count: exponents of 64 and above wrap. A negative n gives the reciprocal.
Fixed FixedPowInt(Fixed a, Fixed n);

// Integer square root of v, rounded down. Negative v gives 0; every v from
// 0x40000000 up gives 32768.
int32_t FixedSqrtInt(int32_t v);

// Square root of a Fixed: FixedSqrtInt(v) << 8, so 8 fraction bits are exact.
inline Fixed FixedSqrt(Fixed v) { return WrapShl(FixedSqrtInt(v), 8); }

// Rotates the vector (x, y) by angle (radians with 28 fraction bits) with
// CORDIC: a first step by atan 2 and 29 iterations. The vector grows by a
// gain of about 3.682; callers scale it back.
void FixedRotate(int32_t& x, int32_t& y, int32_t angle);

// Sine and cosine of an angle in radians as Fixed.
Fixed FixedSin(Fixed angle);
Fixed FixedCos(Fixed angle);

// ---- bilinear byte samplers ---------------------------------------------
//
// One byte from four neighbours: p00 at the start, p10 one step s1 along
// the first axis, p01 one step s2 along the second, p11 at s1 + s2. f1 and
// f2 are Fixed fractions along the two axes. The steps are byte offsets and
// may be negative (rows that run bottom up).

inline uint8_t FixedBilinear1(const uint8_t* p, int32_t s1, int32_t s2, Fixed f1, Fixed f2) {
  const int32_t p00 = p[0];
  const int32_t p10 = p[s1];
  const int32_t p01 = p[s2];
  const int32_t p11 = p[s1 + s2];
  const int32_t a = WrapAdd(FixedMul(f1, (p10 - p00) * 0x10000), p00 << 16);
  const int32_t b = WrapAdd(FixedMul(f1, (p11 - p01) * 0x10000), p01 << 16);
  const int32_t v = WrapAdd(WrapAdd(FixedMul(f2, WrapSub(b, a)), a), 32768);
  return static_cast<uint8_t>(v >> 16);
}

// Three adjacent channels, the bytes at offsets 0, 1, 2.
inline void FixedBilinear3(const uint8_t* p, int32_t s1, int32_t s2, Fixed f1, Fixed f2,
                           uint8_t* out0, uint8_t* out1, uint8_t* out2) {
  *out0 = FixedBilinear1(p, s1, s2, f1, f2);
  *out1 = FixedBilinear1(p + 1, s1, s2, f1, f2);
  *out2 = FixedBilinear1(p + 2, s1, s2, f1, f2);
}

// Four adjacent channels, the bytes at offsets 0, 1, 2, 3.
inline void FixedBilinear4(const uint8_t* p, int32_t s1, int32_t s2, Fixed f1, Fixed f2,
                           uint8_t* out0, uint8_t* out1, uint8_t* out2, uint8_t* out3) {
  *out0 = FixedBilinear1(p, s1, s2, f1, f2);
  *out1 = FixedBilinear1(p + 1, s1, s2, f1, f2);
  *out2 = FixedBilinear1(p + 2, s1, s2, f1, f2);
  *out3 = FixedBilinear1(p + 3, s1, s2, f1, f2);
}

// By the tile's pixel type, into four output places that are filled from
// the last: type 1 (grey) writes out3 only; types 3 and 10 (three colour
// bytes; for 10 the caller points past the skipped first byte) write out1,
// out2, out3; type 4 writes all four. Other types write nothing. Places that
// a type does not write may be null.
inline void FixedBilinearByType(const uint8_t* p, int32_t type, int32_t s1, int32_t s2, Fixed f1,
                                Fixed f2, uint8_t* out0, uint8_t* out1, uint8_t* out2,
                                uint8_t* out3) {
  switch (type) {
    case 1:
      *out3 = FixedBilinear1(p, s1, s2, f1, f2);
      break;
    case 3:
    case 10:
      FixedBilinear3(p, s1, s2, f1, f2, out1, out2, out3);
      break;
    case 4:
      FixedBilinear4(p, s1, s2, f1, f2, out0, out1, out2, out3);
      break;
    default:
      break;
  }
}

}  // namespace fancy
