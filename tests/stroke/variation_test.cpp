// The variation functions: the number of draws each one makes (which fixes
// every later stroke of a seed), the opacity's wrap, the angle's round trip
// through its byte, and the colour's trip through HSV.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/crt_random.h"
#include "stroke/placement.h"
#include "stroke/style_model.h"
#include "stroke/variation.h"

namespace fancy {
namespace {

// How many draws fn makes: the generator's next value after it is the
// value at that position of a fresh sequence of the same seed.
template <class Fn>
int DrawsOf(Fn fn) {
  CrtSrand(99);
  std::vector<int> sequence;
  for (int i = 0; i < 32; ++i) sequence.push_back(CrtRand());
  CrtSrand(99);
  fn();
  const int next = CrtRand();
  for (int i = 0; i < 32; ++i)
    if (sequence[i] == next) return i;
  return -1;
}

StrokeInputs Inputs(double x = 0.3, double y = 0.6) {
  StrokeInputs in{};
  in.x = x;
  in.y = y;
  in.centreX = in.centreY = 0.5;
  return in;
}

TEST(Variation, DrawsAreFixedByModeNotByValues) {
  const StrokeInputs in = Inputs();
  struct Case {
    int32_t mode;
    double spread;
    int size, opacity, angle;
  };
  const Case cases[] = {
      {kModeFixed, 0.0, 0, 0, 1},      {kModeFixed, 0.1, 1, 1, 1},
      {kModeRandom, 0.0, 1, 1, 2},     {kModeRandom, 0.5, 2, 2, 2},
      {kModeRadial, 0.2, 1, 1, 1},     {kModeHue, 0.2, 1, 0, 1},
      {kModeBrightness, 0.0, 0, 0, 1}, {kModeNone, 0.3, 1, 1, 1},
  };
  for (const Case& c : cases) {
    // "Randomly" draws even when both ends are the same.
    const VariationWork w{c.mode, 0.4, 0.4, c.spread};
    EXPECT_EQ(DrawsOf([&] { EvaluateSize(w, in); }), c.size) << c.mode << " " << c.spread;
    EXPECT_EQ(DrawsOf([&] { EvaluateOpacity(w, in); }), c.opacity) << c.mode << " " << c.spread;
    EXPECT_EQ(DrawsOf([&] { EvaluateAngle(w, in); }), c.angle) << c.mode << " " << c.spread;
  }
  StrokeWorking working{};
  working.brushFromImage = true;
  uint8_t colour[3] = {1, 2, 3};
  EXPECT_EQ(DrawsOf([&] { EvaluateColour(working, colour); }), 3);
  // Placing draws twice a stroke whatever the variation.
  std::vector<StrokeEntry> table(6);
  const StrokeGrid grid{3, 2, 6};
  EXPECT_EQ(DrawsOf([&] { PlaceStrokes(table.data(), grid, 30, 20, 0.0, 0.0); }), 12);
  CrtSrand(5);
  PlaceStrokes(table.data(), grid, 30, 20, 0.0, 0.0);
  const int afterPlain = CrtRand();
  CrtSrand(5);
  PlaceStrokes(table.data(), grid, 30, 20, 1.0, 1.0);
  EXPECT_EQ(CrtRand(), afterPlain);
}

TEST(Variation, SizeIsClippedAndFollowsItsTerm) {
  EXPECT_EQ(EvaluateSize({kModeFixed, 0.5, 0.0, 0.0}, Inputs()), 127);
  EXPECT_EQ(EvaluateSize({kModeFixed, 3.0, 0.0, 0.0}, Inputs()), 255);
  EXPECT_EQ(EvaluateSize({kModeFixed, -1.0, 0.0, 0.0}, Inputs()), 0);
  // Horizontal: from a at the left to b at the right.
  EXPECT_EQ(EvaluateSize({kModeHorizontal, 0.0, 1.0, 0.0}, Inputs(0.0)), 0);
  EXPECT_EQ(EvaluateSize({kModeHorizontal, 0.0, 1.0, 0.0}, Inputs(1.0)), 255);
  // Radial, at the centre: t is 0 and the size is a. The centre's y is
  // mirrored: (0.5, 0.2) is measured from the point (0.5, 0.8).
  StrokeInputs centre = Inputs(0.5, 0.8);
  centre.centreY = 0.2;
  EXPECT_EQ(EvaluateSize({kModeRadial, 0.2, 1.0, 0.0}, centre), 51);
  // By hue on a grey picture: H is 0, so the size is a whatever b is.
  EXPECT_EQ(EvaluateSize({kModeHue, 0.2, 0.9, 0.0}, Inputs()), 51);
  // No choice at all gives 0.
  EXPECT_EQ(EvaluateSize({kModeNone, 0.7, 0.7, 0.0}, Inputs()), 0);
}

TEST(Variation, OpacityBelowZeroWrapsToNearlyOpaque) {
  // Transparency 100 (opacity 0) with a spread of 10: the half of the
  // strokes that go below zero wrap to 230..255.
  CrtSrand(3);
  int wrapped = 0, clear = 0;
  for (int i = 0; i < 2000; ++i) {
    const uint8_t o = EvaluateOpacity({kModeFixed, 0.0, 0.0, 0.1}, Inputs());
    if (o >= 229) ++wrapped;
    else if (o <= 26) ++clear;
    else ADD_FAILURE() << int(o);
  }
  EXPECT_NEAR(wrapped, 1000, 100);
  EXPECT_EQ(wrapped + clear, 2000);
  // Above 255 clips, except for the colour modes, which have no clip.
  EXPECT_EQ(EvaluateOpacity({kModeFixed, 1.5, 0.0, 0.0}, Inputs()), 255);
  StrokeInputs bright = Inputs();
  bright.brightness = 255;
  EXPECT_EQ(EvaluateOpacity({kModeBrightness, 0.0, 1.5, 0.0}, bright), static_cast<uint8_t>(382));
}

TEST(Variation, AngleByteComesBackToTheSlidersAngle) {
  for (int degrees = -180; degrees <= 180; degrees += 15) {
    const VariationWork w{kModeFixed, degrees + 180.0, 0.0, 0.0};
    const uint8_t byte = EvaluateAngle(w, Inputs());
    // The renderer turns a byte back into a whole turn's fraction.
    double turned = byte / 255.0 * 360.0;
    double expected = std::fmod(degrees + 360.0, 360.0);
    double difference = std::fabs(turned - expected);
    difference = std::fmin(difference, 360.0 - difference);
    EXPECT_LT(difference, 2.9) << degrees << " came back as " << turned;
  }
  // The radial mode at its centre has no direction: atan2(0, 0) is 0, which
  // is the middle byte.
  StrokeInputs centre = Inputs(0.5, 0.5);
  EXPECT_EQ(EvaluateAngle({kModeRadial, 180.0, 180.0, 40.0}, centre), 127);
}

TEST(Variation, HsvRoundTripAndTheColourItLeaves) {
  for (int r = 0; r < 256; r += 15)
    for (int g = 0; g < 256; g += 17)
      for (int b = 0; b < 256; b += 51) {
        double h, s, v, r2, g2, b2;
        HsvFromRgb(r / 255.0, g / 255.0, b / 255.0, &h, &s, &v);
        ASSERT_TRUE(h >= 0 && h <= 1 && s >= 0 && s <= 1 && v >= 0 && v <= 1);
        RgbFromHsv(h, s, v, &r2, &g2, &b2);
        ASSERT_NEAR(r2, r / 255.0, 1e-9);
        ASSERT_NEAR(g2, g / 255.0, 1e-9);
        ASSERT_NEAR(b2, b / 255.0, 1e-9);
      }
  // With no variation the round trip's truncation may take one off a
  // channel, never more, and never adds.
  StrokeWorking w{};
  w.brushFromImage = true;
  int lowered = 0;
  for (int c = 0; c < 256; ++c) {
    uint8_t colour[3] = {static_cast<uint8_t>(c), static_cast<uint8_t>(255 - c),
                         static_cast<uint8_t>(c / 2)};
    const uint8_t before[3] = {colour[0], colour[1], colour[2]};
    EvaluateColour(w, colour);
    for (int i = 0; i < 3; ++i) {
      ASSERT_LE(colour[i], before[i]);
      ASSERT_GE(colour[i] + 1, before[i]);
      lowered += colour[i] != before[i];
    }
  }
  EXPECT_GT(lowered, 0);
  // A solid colour replaces the sample.
  w.brushFromImage = false;
  w.brushColour[0] = 0, w.brushColour[1] = 0, w.brushColour[2] = 255;
  uint8_t colour[3] = {9, 9, 9};
  EvaluateColour(w, colour);
  EXPECT_EQ(colour[2], 255);
  EXPECT_EQ(colour[0], 0);
  // Hue moves round the circle: a full turn's variation keeps saturation
  // and brightness.
  w.brushFromImage = true;
  w.hueVariation = 1.0;
  uint8_t hsv[3];
  for (int i = 0; i < 50; ++i) {
    uint8_t moved[3] = {200, 50, 50};
    EvaluateColour(w, moved);
    HsvBytes(moved, &hsv[0], &hsv[1], &hsv[2]);
    EXPECT_NEAR(hsv[2], 200, 1);
    EXPECT_NEAR(hsv[1], 191, 2);
  }
  const uint8_t grey[3] = {90, 90, 90};
  HsvBytes(grey, &hsv[0], &hsv[1], &hsv[2]);
  EXPECT_EQ(hsv[0], 0);
  EXPECT_EQ(hsv[1], 0);
  EXPECT_NEAR(hsv[2], 90, 1) << "the truncation may take one off";
}

TEST(Variation, WorkingNumbersOfAStyle) {
  StrokeRecord style{};
  style.layering = kLayeringPaint;
  style.transparency = {kChoiceVertical, 20, 70, 10};
  style.angle = {kChoiceNoVariation, -90, 45, 30};
  style.brushColorMode = 1;
  style.brushColor.model = kCLRCMYK255;  // full cyan
  style.brushColor.value8[0] = 255;
  StrokeWorking w;
  int32_t order = 0;
  StrokeMakeWorking(&style, &w, &order);
  EXPECT_EQ(order, 1);
  EXPECT_TRUE(w.paintRule);
  EXPECT_EQ(w.transparency.mode, kModeVertical);
  EXPECT_DOUBLE_EQ(w.transparency.first, 0.8);
  EXPECT_DOUBLE_EQ(w.transparency.second, 0.3);
  EXPECT_EQ(w.angle.first, 90.0);
  EXPECT_EQ(w.angle.second, 225.0);
  EXPECT_EQ(w.angle.spread, 30.0);
  EXPECT_FALSE(w.brushFromImage);
  EXPECT_EQ(style.brushColor.model, kCLRRGB255) << "a solid colour comes back as RGB";
  EXPECT_EQ(w.brushColour[2], style.brushColor.value8[2]);
  EXPECT_LT(w.brushColour[2], 64) << "cyan has little red";
  EXPECT_GT(w.brushColour[0], 192);

  // A style without a layering keeps the order of the run before.
  style.layering = 0;
  order = 0;
  StrokeMakeWorking(&style, &w, &order);
  EXPECT_EQ(order, 0);
  EXPECT_FALSE(w.paintRule);
  order = 1;
  StrokeMakeWorking(&style, &w, &order);
  EXPECT_EQ(order, 1);
  EXPECT_EQ(VariationModeOf(1141), kModeNone);
  EXPECT_EQ(VariationModeOf(1147), kModeHue);
}

}  // namespace
}  // namespace fancy
