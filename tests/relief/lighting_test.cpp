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

double Real(Fixed v) { return v / 65536.0; }

TEST(LightTest, VectorIsAUnitVectorTowardsTheLight) {
  for (int32_t a = 0; a <= 90; a += 15)
    for (int32_t b = -360; b <= 360; b += 45) {
      Fixed l[3];
      LightVector(a, b, l);
      const double pi = std::acos(-1.0);
      const double ra = a * pi / 180, rb = b * pi / 180;
      EXPECT_NEAR(Real(l[0]), std::cos(ra) * std::cos(rb), 0.002) << a << " " << b;
      EXPECT_NEAR(Real(l[1]), -std::cos(ra) * std::sin(rb), 0.002) << a << " " << b;
      EXPECT_NEAR(Real(l[2]), std::sin(ra), 0.002) << a << " " << b;
    }
  // Bearing 135, elevation 45, as a run takes them: up and to the left.
  ReliefParams p{};
  p.direction = 135;
  p.angle = 45;
  const ReliefNumbers n = DeriveReliefNumbers(p);
  EXPECT_LT(n.light[0], 0) << "left";
  EXPECT_GT(n.light[1], 0) << "up";
  EXPECT_NEAR(Real(n.light[2]), std::sqrt(0.5), 0.002);
}

TEST(LightTest, DerivedNumbersLeaveThePictureAloneAtTheirZeros) {
  ReliefParams p{};
  p.bevelWidth = 20;
  ReliefNumbers n = DeriveReliefNumbers(p);
  EXPECT_EQ(n.eta, kOne) << "no refraction: the indices are equal";
  EXPECT_EQ(n.absorb, 0) << "no opacity: nothing is absorbed";
  EXPECT_EQ(n.bright, 0);
  EXPECT_EQ(n.exponent, 2 * kOne);
  p.refraction = 100, p.opacity = 100, p.brightness = 100, p.sharpness = 100;
  n = DeriveReliefNumbers(p);
  EXPECT_NEAR(Real(n.eta), 0.02, 0.0001);
  EXPECT_NEAR(Real(n.absorb), -1.5, 0.0001);
  EXPECT_NEAR(Real(n.bright), 1.0, 0.001);
  EXPECT_NEAR(Real(n.exponent), 62.0, 0.001);

  // Out-of-range settings are held to their ranges; Glass has no height.
  ReliefParams wild{};
  wild.bevelWidth = -5, wild.smoothness = 99, wild.height = 900, wild.direction = -1;
  wild.angle = 200, wild.colour = 9;
  ReliefParams held = ReliefParamsInRange(wild, kFilterKnurl);
  EXPECT_EQ(held.bevelWidth, 3);
  EXPECT_EQ(held.smoothness, 10);
  EXPECT_EQ(held.height, 200);
  EXPECT_EQ(held.direction, 0);
  EXPECT_EQ(held.angle, 90);
  EXPECT_EQ(held.colour, 2);
  EXPECT_EQ(ReliefParamsInRange(wild, kFilterGlass).height, 0);
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
  const Lit facing = Shade(3, kModeRGB, grey, -kOne / 2, 0, 20, 0);
  const Lit away = Shade(3, kModeRGB, grey, kOne / 2, 0, 20, 0);
  EXPECT_GT(facing.out[0], away.out[0]);
  const Lit steepAway = Shade(3, kModeRGB, grey, 8 * kOne, 0, 10, 0);
  for (Fixed v : steepAway.out) EXPECT_EQ(v, 0);
  // Flat under a light straight above: full diffuse light plus the whole
  // highlight, whatever the sharpness.
  const Lit flat = Shade(3, kModeRGB, grey, 0, 0, 90, 0, 50, 70);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(flat.out[i], grey[i] + kOne / 2, 700);
  // The highlight narrows as the sharpness grows.
  const Lit dull = Shade(3, kModeRGB, grey, -kOne / 4, 0, 60, 180, 60, 0);
  const Lit sharp = Shade(3, kModeRGB, grey, -kOne / 4, 0, 60, 180, 60, 100);
  EXPECT_GT(dull.out[0], sharp.out[0]);
}

TEST(ShadeTest, CmykTakesTheHighlightInBlackAndLabInLightness) {
  const Fixed in[4] = {100 << 8, 150 << 8, 200 << 8, 60 << 8};
  const Lit rgb = Shade(4, kModeMultichannel, in, kOne / 8, kOne / 8, 60, 225);
  const Lit cmyk = Shade(4, kModeCMYK, in, kOne / 8, kOne / 8, 60, 225);
  EXPECT_EQ(cmyk.out[3], rgb.out[3]) << "black takes the same highlight";
  const Fixed highlight = rgb.out[0] - cmyk.out[0];
  EXPECT_GT(highlight, 0) << "the inks get none of it";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(rgb.out[i] - cmyk.out[i], highlight);

  // Black that would pass 1.0 stays at 1.0; the rest whitens the inks
  // together, no further than the lightest of them allows.
  const Fixed pale[4] = {40 << 8, 240 << 8, 90 << 8, 250 << 8};
  const Lit unlit = Shade(4, kModeMultichannel, pale, 0, 0, 90, 0, 0, 0);
  const Lit full = Shade(4, kModeCMYK, pale, 0, 0, 90, 0, 100, 0);
  EXPECT_EQ(full.out[3], kOne);
  EXPECT_EQ(full.out[1], kOne) << "the lightest ink reaches 1.0";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(full.out[i] - unlit.out[i], kOne - unlit.out[1]) << i;

  const Lit lab = Shade(3, kModeLab, in, kOne / 8, kOne / 8, 60, 225);
  EXPECT_EQ(lab.out[0], rgb.out[0]);
  EXPECT_EQ(lab.out[1], kOne / 2);
  EXPECT_EQ(lab.out[2], kOne / 2);
}

}  // namespace
}  // namespace fancy
