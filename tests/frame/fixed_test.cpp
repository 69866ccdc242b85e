#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/fixed.h"

namespace fancy {
namespace {

double ToDouble(Fixed v) { return v / 65536.0; }

// The product in its four-part form: a x bh + bl x ah + ((bl x al) >> 16),
// with h the arithmetic high half and l the low half, wrapping at 32 bits.
Fixed SplitProduct(Fixed a, Fixed b) {
  const uint32_t bl = static_cast<uint32_t>(b) & 0xFFFFu;
  const uint32_t al = static_cast<uint32_t>(a) & 0xFFFFu;
  const uint32_t bh = static_cast<uint32_t>(b >> 16);
  const uint32_t ah = static_cast<uint32_t>(a >> 16);
  return static_cast<Fixed>(static_cast<uint32_t>(a) * bh + bl * ah + ((bl * al) >> 16));
}

TEST(FixedArithmetic, MulIsTheWrappingSplitProduct) {
  EXPECT_EQ(FixedMul(0x10000, 0x10000), 0x10000);
  EXPECT_EQ(FixedMul(-0x10000, 0x10000), -0x10000);
  EXPECT_EQ(FixedMul(0x18000, 0x18000), 0x24000);  // 1.5 x 1.5
  EXPECT_EQ(FixedMul(-1, 1), -1);                  // floors, does not round to 0
  EXPECT_EQ(FixedMul(0x7FFFFFFF, 0x20000), -2);    // wraps, does not saturate

  uint32_t state = 12345;
  for (int i = 0; i < 200000; ++i) {
    state = state * 1664525u + 1013904223u;
    const Fixed a = static_cast<Fixed>(state);
    const Fixed b = static_cast<Fixed>(state * 2654435761u) >> (i % 17);
    ASSERT_EQ(FixedMul(a, b), SplitProduct(a, b)) << a << " " << b;
  }
  ASSERT_EQ(FixedMul(INT32_MIN, INT32_MIN), SplitProduct(INT32_MIN, INT32_MIN));
}

TEST(FixedArithmetic, ReciprocalGuardsAndAccuracy) {
  // The nine small divisors divide by -4 or 4; zero counts as negative.
  for (Fixed b = -4; b <= 0; ++b) EXPECT_EQ(FixedRecip(b), FixedRecip(-4)) << b;
  for (Fixed b = 1; b <= 4; ++b) EXPECT_EQ(FixedRecip(b), FixedRecip(4)) << b;
  EXPECT_EQ(FixedRecip(4), 0x40000000);
  EXPECT_EQ(FixedRecip(-4), -0x40000000);
  EXPECT_EQ(FixedRecip(5), FixedRecip(4));  // 5 and 4 share the coarse divisor 1
  EXPECT_EQ(FixedRecip(-0x20000), -0x8000);

  // The coarse divisor drops two bits of b. For |b| >= 1.0 the result is
  // within 4 units of 2^32 / b (measured: 3.59).
  for (int64_t b = 0x10000; b <= INT32_MAX; b += (b >> 8) + 1) {
    const double expected = 4294967296.0 / static_cast<double>(b);
    ASSERT_NEAR(FixedRecip(static_cast<Fixed>(b)), expected, 4.0) << b;
    ASSERT_NEAR(FixedRecip(static_cast<Fixed>(-b)), -expected, 4.0) << b;
  }
  // The raw division never divides by zero, even for divisors under 4.
  EXPECT_EQ(FixedDivRaw(0x10000, 3), FixedRecip(-4));
  EXPECT_EQ(FixedDiv(0x30000, 0x20000), 0x18000);
}

TEST(FixedArithmetic, ModulusTakesTheSignOfTheModulus) {
  EXPECT_EQ(FixedMod(-7, 5), 3);
  EXPECT_EQ(FixedMod(7, -5), -3);
  EXPECT_EQ(FixedMod(-7, -5), -2);
  EXPECT_EQ(FixedMod(10, 5), 0);
  // A negative multiple of m gives m, not 0; so does a positive multiple
  // of a negative m.
  EXPECT_EQ(FixedMod(-10, 5), 5);
  EXPECT_EQ(FixedMod(10, -5), -5);
  EXPECT_EQ(FixedMod(-411775, 411775), 411775);
  // Moduli of 4 and less skip the division.
  EXPECT_EQ(FixedMod(7, 3), 7);
  EXPECT_EQ(FixedMod(-7, 3), -4);
  EXPECT_EQ(FixedMod(7, -4), 3);
}

TEST(FixedExp, AgreesWithExpAndSaturatesAtTenAndAQuarter) {
  EXPECT_EQ(FixedExp(0), 0x10000);
  EXPECT_EQ(FixedExp(0x10000), 0x2B7E1);  // one table entry: e

  // Measured: relative error 7.9e-5 on 0..10.25; absolute 5.8 units below 0.
  for (Fixed x = 0; x <= kFixedExpLimit; x += 7) {
    const double expected = std::exp(ToDouble(x)) * 65536.0;
    ASSERT_NEAR(FixedExp(x), expected, expected * 1e-4) << x;
  }
  for (Fixed x = -kFixedExpLimit; x <= 0; x += 7) {
    ASSERT_NEAR(FixedExp(x), std::exp(ToDouble(x)) * 65536.0, 6.0) << x;
  }

  // 10.25 itself is computed; one unit more saturates.
  EXPECT_NE(FixedExp(kFixedExpLimit), kFixedExpSaturation);
  EXPECT_NEAR(FixedExp(kFixedExpLimit), kFixedExpSaturation, kFixedExpSaturation * 1e-4);
  EXPECT_EQ(FixedExp(kFixedExpLimit + 1), kFixedExpSaturation);
  // A large negative argument gives the reciprocal of the saturation, 2.
  EXPECT_EQ(FixedExp(-kFixedExpLimit - 1), 2);
  EXPECT_EQ(FixedExp(INT32_MIN), 2);
}

TEST(FixedPowInt, IntegerPartOfSixBits) {
  const Fixed threeHalves = 0x18000;
  EXPECT_EQ(FixedPowInt(threeHalves, 0), 0x10000);
  EXPECT_EQ(FixedPowInt(threeHalves, 0x20000), 0x24000);
  EXPECT_EQ(FixedPowInt(0x8000, 0x30000), 0x2000);
  // The fraction of the exponent is dropped, toward zero for negatives.
  EXPECT_EQ(FixedPowInt(threeHalves, 0x2FFFF), 0x24000);
  EXPECT_EQ(FixedPowInt(0x20000, -0x1FFFF), 0x8000);
  EXPECT_EQ(FixedPowInt(0x20000, -0x20000), 0x4000);
  // Only six bits of the exponent count: 64 is 0, 65 is 1, 70 is 6.
  EXPECT_EQ(FixedPowInt(threeHalves, 64 << 16), 0x10000);
  EXPECT_EQ(FixedPowInt(threeHalves, 65 << 16), threeHalves);
  EXPECT_EQ(FixedPowInt(0x11000, 70 << 16), FixedPowInt(0x11000, 6 << 16));
}

TEST(FixedSqrt, IntegerRootRoundsDownAndStopsAtTheTopQuarter) {
  EXPECT_EQ(FixedSqrtInt(-1), 0);
  EXPECT_EQ(FixedSqrtInt(INT32_MIN), 0);
  // From 0x40000000 up the answer is 32768, though the true root of
  // INT32_MAX is 46340.
  EXPECT_EQ(FixedSqrtInt(0x40000000), 32768);
  EXPECT_EQ(FixedSqrtInt(INT32_MAX), 32768);
  EXPECT_EQ(FixedSqrtInt(0x3FFFFFFF), 32767);

  for (int32_t v = 0; v < (1 << 20); ++v) {
    const int32_t r = FixedSqrtInt(v);
    ASSERT_TRUE(int64_t{r} * r <= v && int64_t{r + 1} * (r + 1) > v) << v;
  }
  for (int64_t k = 1; k < 32768; ++k) {
    ASSERT_EQ(FixedSqrtInt(static_cast<int32_t>(k * k)), k);
    ASSERT_EQ(FixedSqrtInt(static_cast<int32_t>(k * k - 1)), k - 1);
  }

  // Fixed root: 8 exact fraction bits, so at most 256 units under sqrt.
  EXPECT_EQ(FixedSqrt(0x40000), 0x20000);
  for (int32_t v = 0; v < 0x40000000; v += 997) {
    const double expected = std::sqrt(ToDouble(v)) * 65536.0;
    const double got = FixedSqrt(v);
    ASSERT_LE(got, expected + 1e-6) << v;
    ASSERT_GT(got, expected - 256.0) << v;
  }
}

TEST(FixedTrigonometry, SineAndCosineOverAFullTurn) {
  // Measured against libm over three turns: sine within 4.0 units of
  // 1/65536, cosine within 4.2.
  for (Fixed a = -kFixedFullTurn; a <= 2 * kFixedFullTurn; ++a) {
    const double r = ToDouble(a);
    ASSERT_NEAR(FixedSin(a), std::sin(r) * 65536.0, 4.5) << a;
    ASSERT_NEAR(FixedCos(a), std::cos(r) * 65536.0, 4.5) << a;
  }
  // Periodic to the unit once the angle is past zero.
  for (Fixed a = 1; a < kFixedFullTurn; a += 101) {
    ASSERT_EQ(FixedSin(a + kFixedFullTurn), FixedSin(a)) << a;
  }
  // The cosine's quarter turn is 102943, one less than the fold's test.
  EXPECT_EQ(FixedCos(0), FixedSin(102943));
  EXPECT_EQ(FixedCos(-102943), FixedSin(0));
}

TEST(FixedTrigonometry, RotationGainAndAngle) {
  // Across the fold's range the angle is right within 2e-8 radians
  // (measured 1.9e-8) and the gain is 3.682268 throughout.
  for (int32_t c = -102943; c <= 102943; c += 13) {
    int32_t x = 0x10000000;
    int32_t y = 0;
    FixedRotate(x, y, c << 12);
    ASSERT_NEAR(std::atan2(y, x), ToDouble(c), 2e-8) << c;
    ASSERT_NEAR(std::hypot(x, y) / 0x10000000, 3.682268, 1e-6) << c;
  }
}

TEST(FixedBilinear, CornersMidpointsAndChannelForms) {
  // Two rows of four-byte pixels, 8 bytes apart; steps: 4 across, 8 down.
  const uint8_t px[16] = {10, 200, 0, 255, 30, 100, 255, 0,
                          50, 0,   7, 128, 90, 60, 9,   1};
  const uint8_t* p = px;
  EXPECT_EQ(FixedBilinear1(p, 4, 8, 0x10000, 0x10000), 90);
  EXPECT_EQ(FixedBilinear1(p, 4, 8, 0x8000, 0x8000), 45);  // (10+30+50+90)/4

  // Against real bilinear interpolation: within one step of rounding.
  for (int c = 0; c < 4; ++c) {
    for (Fixed f1 = 0; f1 < 0x10000; f1 += 0x0F3) {
      for (Fixed f2 = 0; f2 < 0x10000; f2 += 0x1F7) {
        const double u = ToDouble(f1);
        const double v = ToDouble(f2);
        const double top = px[c] + (px[c + 4] - px[c]) * u;
        const double bottom = px[c + 8] + (px[c + 12] - px[c + 8]) * u;
        const double expected = top + (bottom - top) * v;
        ASSERT_NEAR(FixedBilinear1(p + c, 4, 8, f1, f2), expected, 1.0) << c << " " << f1;
      }
    }
  }

  // Rows that run bottom up: a negative step reads the row above.
  EXPECT_EQ(FixedBilinear1(p + 8, 4, -8, 0, 0x10000), 10);

  const Fixed f1 = 0x5432;
  const Fixed f2 = 0xB00B;
  uint8_t o[4];
  FixedBilinear4(p, 4, 8, f1, f2, &o[0], &o[1], &o[2], &o[3]);
  for (int c = 0; c < 4; ++c) EXPECT_EQ(o[c], FixedBilinear1(p + c, 4, 8, f1, f2));

  // By type the outputs fill from the last place; other places stay.
  auto byType = [&](int32_t type, uint8_t out[4]) {
    for (int i = 0; i < 4; ++i) out[i] = 0xEE;
    FixedBilinearByType(p, type, 4, 8, f1, f2, &out[0], &out[1], &out[2], &out[3]);
  };
  const uint8_t untouched[4] = {0xEE, 0xEE, 0xEE, 0xEE};
  const uint8_t grey[4] = {0xEE, 0xEE, 0xEE, o[0]};
  const uint8_t colour[4] = {0xEE, o[0], o[1], o[2]};
  uint8_t b[4];
  for (int32_t type : {1, 3, 10, 4, 0, 2, 5, 99}) {
    byType(type, b);
    const uint8_t* expected = type == 1 ? grey : type == 3 || type == 10 ? colour
                              : type == 4 ? o : untouched;
    EXPECT_EQ(0, std::memcmp(b, expected, 4)) << type;
  }
}

TEST(FixedArithmetic, TruncationTowardZeroAndIndefinite) {
  EXPECT_EQ(TruncToInt(-2.999), -2);
  EXPECT_EQ(TruncToInt(2147483647.9), INT32_MAX);
  EXPECT_EQ(TruncToInt(2147483648.0), INT32_MIN);
  EXPECT_EQ(TruncToInt(std::nan("")), INT32_MIN);
}

}  // namespace
}  // namespace fancy
