// The light: its vector, the numbers a run derives, and one pixel lit in
// each image mode.
#include <gtest/gtest.h>

#include <cmath>

#include "frame/host_record.h"
#include "frame/result_codes.h"
#include "relief/emboss.h"
#include "relief/relief_params.h"

namespace fancy {
namespace {

constexpr Fixed kOne = 65536;

TEST(LightTest, VectorPointsAtTheLightAndZerosLeaveThePictureAlone) {
  const double pi = std::acos(-1.0);
  for (int32_t a = 0; a <= 90; a += 15)
    for (int32_t b = -360; b <= 360; b += 45) {
      Fixed l[3];
      LightVector(a, b, l);
      const double ra = a * pi / 180, rb = b * pi / 180;
      EXPECT_NEAR(l[0] / 65536.0, std::cos(ra) * std::cos(rb), 0.002) << a << " " << b;
      EXPECT_NEAR(l[1] / 65536.0, -std::cos(ra) * std::sin(rb), 0.002) << a << " " << b;
      EXPECT_NEAR(l[2] / 65536.0, std::sin(ra), 0.002) << a << " " << b;
    }
  // Bearing 135 as a run takes it: up and to the left.
  ReliefParams p{};
  p.direction = 135;
  p.angle = 45;
  ReliefNumbers n = DeriveReliefNumbers(p);
  EXPECT_LT(n.light[0], 0);
  EXPECT_GT(n.light[1], 0);
  // No refraction: equal indices; no opacity: nothing absorbed.
  EXPECT_EQ(n.eta, kOne);
  EXPECT_EQ(n.absorb, 0);
  p.refraction = 100, p.opacity = 100;
  n = DeriveReliefNumbers(p);
  EXPECT_NEAR(n.eta / 65536.0, 0.02, 0.0001);
  EXPECT_NEAR(n.absorb / 65536.0, -1.5, 0.0001);
}

struct Lit {
  Fixed out[4];
};

Lit Shade(int32_t planes, int16_t mode, const Fixed* in, Fixed dx, Fixed dy, int32_t angle,
          int32_t direction, int32_t brightness = 60, int32_t sharpness = 30) {
  ReliefParams p{};
  p.angle = static_cast<int16_t>(angle);
  p.direction = static_cast<int16_t>(direction);
  p.brightness = static_cast<int16_t>(brightness);
  p.sharpness = static_cast<int16_t>(sharpness);
  const ReliefNumbers n = DeriveReliefNumbers(p);
  Lit lit{};
  ShadePixel(planes, mode, in, dx, dy, n.exponent, n.bright, n.light, lit.out);
  return lit;
}

TEST(ShadeTest, SlopesFacingTheLightAreBrighterAndTurnedAwayOnesBlack) {
  const Fixed grey[3] = {128 << 8, 128 << 8, 128 << 8};
  // Light from the right, low: a slope rising to the left faces it.
  EXPECT_GT(Shade(3, kModeRGB, grey, -kOne / 2, 0, 20, 0).out[0],
            Shade(3, kModeRGB, grey, kOne / 2, 0, 20, 0).out[0]);
  for (Fixed v : Shade(3, kModeRGB, grey, 8 * kOne, 0, 10, 0).out) EXPECT_EQ(v, 0);
  // Flat under a light straight above: the whole highlight on full light.
  const Lit flat = Shade(3, kModeRGB, grey, 0, 0, 90, 0, 50, 70);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(flat.out[i], grey[i] + kOne / 2, 700);
  // The highlight narrows as the sharpness grows.
  EXPECT_GT(Shade(3, kModeRGB, grey, -kOne / 4, 0, 60, 180, 60, 0).out[0],
            Shade(3, kModeRGB, grey, -kOne / 4, 0, 60, 180, 60, 100).out[0]);
}

TEST(ShadeTest, CmykTakesTheHighlightInBlackAndLabInLightness) {
  const Fixed in[4] = {100 << 8, 150 << 8, 200 << 8, 60 << 8};
  const Lit plain = Shade(4, kModeMultichannel, in, kOne / 8, kOne / 8, 60, 225);
  const Lit cmyk = Shade(4, kModeCMYK, in, kOne / 8, kOne / 8, 60, 225);
  EXPECT_EQ(cmyk.out[3], plain.out[3]) << "black takes the same highlight";
  const Fixed highlight = plain.out[0] - cmyk.out[0];
  EXPECT_GT(highlight, 0) << "the inks get none of it";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(plain.out[i] - cmyk.out[i], highlight);

  // Black that would pass 1.0 stays there; the rest whitens the inks
  // together, as far as the lightest of them can go.
  const Fixed pale[4] = {40 << 8, 240 << 8, 90 << 8, 250 << 8};
  const Lit unlit = Shade(4, kModeMultichannel, pale, 0, 0, 90, 0, 0, 0);
  const Lit full = Shade(4, kModeCMYK, pale, 0, 0, 90, 0, 100, 0);
  EXPECT_EQ(full.out[3], kOne);
  EXPECT_EQ(full.out[1], kOne);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(full.out[i] - unlit.out[i], kOne - unlit.out[1]) << i;

  const Lit lab = Shade(3, kModeLab, in, kOne / 8, kOne / 8, 60, 225);
  EXPECT_EQ(lab.out[0], plain.out[0]);
  EXPECT_EQ(lab.out[1], kOne / 2);
  EXPECT_EQ(lab.out[2], kOne / 2);
}

}  // namespace
}  // namespace fancy
