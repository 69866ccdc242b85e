#include "relief/relief_params.h"

#include <algorithm>

#include "frame/result_codes.h"

namespace fancy {

namespace {

constexpr Fixed kPi = 205887;
constexpr Fixed kHundredth = 655;    // 0.01, the brightness step
constexpr Fixed kSlopeStep = 13107;  // 0.2
constexpr Fixed kNinetyEight = 64225;  // 0.98

int16_t Held(int32_t value, int32_t low, int32_t high) {
  return static_cast<int16_t>(std::clamp(value, low, high));
}

Fixed Radians(int32_t degrees) { return static_cast<Fixed>(int64_t{degrees} * kPi / 180); }

}  // namespace

ReliefParams ReliefParamsInRange(const ReliefParams& p, int32_t filterId) {
  ReliefParams q = p;
  q.effectId = filterId;
  q.brightness = Held(p.brightness, 0, 100);
  q.sharpness = Held(p.sharpness, 0, 100);
  q.direction = Held(p.direction, 0, 360);
  q.angle = Held(p.angle, 0, 90);
  q.smoothness = Held(p.smoothness, 0, 10);
  q.bevelWidth = Held(p.bevelWidth, 3, 100);
  q.height = filterId == kFilterKnurl ? Held(p.height, 3, 200) : 0;
  q.refraction = Held(p.refraction, 0, 100);
  q.opacity = Held(p.opacity, 0, 100);
  q.colour = Held(p.colour, 0, 2);
  return q;
}

void LightVector(int32_t a, int32_t b, Fixed light[3]) {
  const Fixed ra = Radians(a);
  const Fixed rb = Radians(b);
  const Fixed cosA = FixedCos(ra);
  light[0] = FixedMul(cosA, FixedCos(rb));
  light[1] = WrapNeg(FixedMul(cosA, FixedSin(rb)));
  light[2] = FixedSin(ra);
}

ReliefNumbers DeriveReliefNumbers(const ReliefParams& p) {
  ReliefNumbers n{};
  n.bright = kHundredth * p.brightness;
  n.exponent = p.sharpness * FixedDiv(60, 100) + (2 << 16);
  LightVector(p.angle, -p.direction, n.light);
  n.slope = kSlopeStep * p.bevelWidth;
  // The hundredths are exact divisions, so that no refraction gives eta
  // 1.0 and no opacity gives n 1.0: nothing bends, nothing is tinted.
  n.eta = ((100 << 16) - kNinetyEight * p.refraction) / 100;
  const Fixed index = kFixedOne + (p.opacity << 16) / 100;
  n.absorb = WrapNeg((FixedMul(index, index) - kFixedOne) / 2);
  return n;
}

}  // namespace fancy
