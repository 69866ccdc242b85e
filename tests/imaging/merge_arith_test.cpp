// The arithmetic under the merge kernels: the DivTable and its companions,
// the wide division, hue/saturation/value, and the processor flags.
#include <gtest/gtest.h>

#include <cmath>

#include "imaging/merge.h"

namespace fancy {
namespace {

class MergeArithmetic : public ::testing::Test {
 protected:
  void SetUp() override { ImagingInit(); }
  void TearDown() override { ImagingShutdown(); }
};

TEST_F(MergeArithmetic, DivTableIdentitiesHoldForEveryIndex) {
  const uint8_t* T = DivTable();
  EXPECT_EQ(T[254], 0);
  EXPECT_EQ(T[255], 1);
  EXPECT_EQ(T[509], 2);
  EXPECT_EQ(T[32512], 127);
  EXPECT_EQ(T[32513], 128);
  EXPECT_EQ(T[65025], 255);
  int differFromRounding = 0;
  for (uint32_t x = 0; x <= 65025; ++x) {
    ASSERT_EQ(T[x] + T[65025 - x], 255) << x;
    ASSERT_EQ(DivByRule(x), T[x]) << x;  // the kernels' computed form
    if (x > 0) {
      ASSERT_GE(T[x], T[x - 1]) << x;
    }
    ASSERT_LT(std::fabs(T[x] - x / 255.0), 1.0) << x;
    if (T[x] != static_cast<int>(std::lround(x / 255.0))) {
      ++differFromRounding;
    }
  }
  for (uint32_t k = 0; k <= 255; ++k) ASSERT_EQ(T[255 * k], k);  // lerp ends exactly
  for (uint32_t x = 65026; x < 65536; ++x) ASSERT_EQ(T[x], 0) << x;  // the guard's zeros
  // It is its own rule, not rounding to nearest.
  EXPECT_GT(differFromRounding, 10000);
  EXPECT_LT(differFromRounding, 20000);
}

TEST_F(MergeArithmetic, SquareAndRootTables) {
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(SquareTable()[i], DivTable()[i * i]);
    int q = SqrtTable()[i];
    // q is sqrt(i / 255) x 255 cut down: q^2 <= 255 i < (q + 1)^2, give or
    // take the double's last bit on exact squares.
    EXPECT_LE(q * q, 255 * i) << i;
    EXPECT_GT((q + 1) * (q + 1), 255 * i - 1) << i;
  }
  EXPECT_EQ(SqrtTable()[0], 0);
  EXPECT_EQ(SqrtTable()[255], 255);
}

TEST_F(MergeArithmetic, WideDivisionBlendsSixteenBitValues) {
  for (uint32_t a = 0; a <= 65535; ++a) ASSERT_EQ(WideDivide(a * 255), a) << a;
  const uint32_t values[] = {0, 1, 2, 127, 128, 255, 256, 32767, 32768, 65280, 65534, 65535};
  for (uint32_t a : values) {
    for (uint32_t b : values) {
      for (uint32_t m = 0; m <= 255; ++m) {
        uint32_t w = a * m + b * (255 - m);
        uint32_t r = WideDivide(w);
        ASSERT_GE(r, std::min(a, b));
        ASSERT_LE(r, std::max(a, b));
        ASSERT_LE(std::fabs(r - w / 255.0), 1.0) << a << " " << b << " " << m;
      }
    }
  }
}

TEST_F(MergeArithmetic, HueSaturationValue) {
  struct Case {
    uint32_t r, g, b;
    int hue, saturation, value;
  } cases[] = {
      {255, 0, 0, 0, 255, 255},     {255, 255, 0, 60, 255, 255},  {0, 255, 0, 120, 255, 255},
      {0, 255, 255, 180, 255, 255}, {0, 0, 255, 240, 255, 255},   {0, 0, 0, 0, 0, 0},
      {77, 77, 77, 0, 0, 77},       {128, 0, 0, 0, 255, 128},
  };
  for (const Case& c : cases) {
    HsvColor hsv = RgbToHsv(c.r, c.g, c.b);
    EXPECT_EQ(hsv.hue, c.hue) << c.r << "," << c.g << "," << c.b;
    EXPECT_EQ(hsv.saturation, c.saturation);
    EXPECT_EQ(hsv.value, c.value);
    uint8_t bgr[3];
    HsvToBgr(hsv.hue, hsv.saturation, hsv.value, bgr);
    EXPECT_EQ(bgr[0], c.b);
    EXPECT_EQ(bgr[1], c.g);
    EXPECT_EQ(bgr[2], c.r);
  }
  // Magenta takes the red branch with a negative h: the half-step bias goes
  // in before the truncation toward zero, so it lands on 301, and back to
  // blue 251.
  EXPECT_EQ(RgbToHsv(255, 0, 255).hue, 301);
  uint8_t magenta[3];
  HsvToBgr(301, 255, 255, magenta);
  EXPECT_EQ(magenta[0], 251);
  EXPECT_EQ(magenta[2], 255);

  // Every colour: hue in range, value exact, and the way back lands close.
  int worst = 0;
  for (uint32_t r = 0; r < 256; r += 3) {
    for (uint32_t g = 0; g < 256; g += 5) {
      for (uint32_t b = 0; b < 256; b += 7) {
        HsvColor hsv = RgbToHsv(r, g, b);
        ASSERT_GE(hsv.hue, 0);
        ASSERT_LT(hsv.hue, 360);
        ASSERT_EQ(hsv.value, static_cast<int>(std::max({r, g, b})));
        uint8_t bgr[3];
        HsvToBgr(hsv.hue, hsv.saturation, hsv.value, bgr);
        worst = std::max({worst, std::abs(bgr[0] - static_cast<int>(b)),
                          std::abs(bgr[1] - static_cast<int>(g)),
                          std::abs(bgr[2] - static_cast<int>(r))});
      }
    }
  }
  // Hue is kept in whole degrees and may be 1.5 off; a degree moves a channel
  // by up to 255 x 6 / 360.
  EXPECT_LE(worst, 7);
}

TEST_F(MergeArithmetic, ProcessorClassAndFeatures) {
  int32_t cls = 0;
  uint32_t features = 0;
  ClassifyProcessor(true, "GenuineIntel", 6, 0xFFFFFFFFu, &cls, &features);
  EXPECT_EQ(cls, 686);
  EXPECT_EQ(features, 0x8081F9u);
  ClassifyProcessor(true, "GenuineIntel", 5, 0x00800001u, &cls, &features);
  EXPECT_EQ(cls, 586);
  EXPECT_EQ(features, 0x00800001u);
  ClassifyProcessor(true, "GenuineIntel", 15, 0, &cls, &features);
  EXPECT_EQ(cls, 486);
  EXPECT_EQ(features, 0x80000000u);  // no feature kept
  ClassifyProcessor(true, "AuthenticAMD", 6, 0xFFFFFFFFu, &cls, &features);
  EXPECT_EQ(cls, 686);
  EXPECT_EQ(features, 0x800000u);  // only the multimedia bit
  ClassifyProcessor(true, "CyrixInstead", 6, 0xFFFFFFFFu, &cls, &features);
  EXPECT_EQ(cls, 586);
  EXPECT_EQ(features, 0x80000000u);
  ClassifyProcessor(false, nullptr, 0, 0, &cls, &features);
  EXPECT_EQ(cls, 486);
  EXPECT_EQ(features, 0x80000000u);

  // This machine: some class, and a word that is never 0.
  EXPECT_TRUE(CpuClass() == 486 || CpuClass() == 586 || CpuClass() == 686);
  EXPECT_NE(CpuFeatures(), 0u);
}

}  // namespace
}  // namespace fancy
