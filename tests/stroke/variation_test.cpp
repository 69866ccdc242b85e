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
      {kModeFixed, 0.0, 0, 0, 1},  {kModeFixed, 0.1, 1, 1, 1}, {kModeRandom, 0.0, 1, 1, 2},
      {kModeRandom, 0.5, 2, 2, 2}, {kModeHue, 0.2, 1, 0, 1},   {kModeNone, 0.3, 1, 1, 1},
  };
  for (const Case& c : cases) {
    // "Randomly" draws even when both ends are the same.
    const VariationWork w{c.mode, 0.4, 0.4, c.spread};
    EXPECT_EQ(DrawsOf([&] { EvaluateSize(w, in); }), c.size) << c.mode << " " << c.spread;
    EXPECT_EQ(DrawsOf([&] { EvaluateOpacity(w, in); }), c.opacity) << c.mode << " " << c.spread;
    EXPECT_EQ(DrawsOf([&] { EvaluateAngle(w, in); }), c.angle) << c.mode << " " << c.spread;
  }
  StrokeWorking working{};
  uint8_t colour[3] = {1, 2, 3};
  EXPECT_EQ(DrawsOf([&] { EvaluateColour(working, colour); }), 3);
  // Placing draws twice a stroke, whatever the variation.
  std::vector<StrokeEntry> table(6);
  EXPECT_EQ(DrawsOf([&] { PlaceStrokes(table.data(), {3, 2, 6}, 30, 20, 0.0, 0.0); }), 12);
}

TEST(Variation, SizeFollowsItsTermAndIsClipped) {
  EXPECT_EQ(EvaluateSize({kModeFixed, 3.0, 0.0, 0.0}, Inputs()), 255);
  EXPECT_EQ(EvaluateSize({kModeFixed, -1.0, 0.0, 0.0}, Inputs()), 0);
  EXPECT_EQ(EvaluateSize({kModeHorizontal, 0.0, 1.0, 0.0}, Inputs(1.0)), 255);
  // Radial, at the centre: t is 0 and the size is a. The centre's y is
  // mirrored: (0.5, 0.2) is measured from the point (0.5, 0.8).
  StrokeInputs centre = Inputs(0.5, 0.8);
  centre.centreY = 0.2;
  EXPECT_EQ(EvaluateSize({kModeRadial, 0.2, 1.0, 0.0}, centre), 51);
  // By hue on a grey picture: H is 0, so the size is a whatever b is.
  EXPECT_EQ(EvaluateSize({kModeHue, 0.2, 0.9, 0.0}, Inputs()), 51);
}

TEST(Variation, OpacityBelowZeroWrapsToNearlyOpaque) {
  // Transparency 100 (opacity 0) with a spread of 10: the strokes that go
  // below zero wrap to 230..255, the others stay faint.
  CrtSrand(3);
  int wrapped = 0;
  for (int i = 0; i < 2000; ++i) {
    const uint8_t o = EvaluateOpacity({kModeFixed, 0.0, 0.0, 0.1}, Inputs());
    ASSERT_TRUE(o >= 230 || o <= 25) << int(o);
    wrapped += o >= 230;
  }
  EXPECT_NEAR(wrapped, 1000, 100);
  // Above 255 clips, except for the colour modes, which have no clip.
  EXPECT_EQ(EvaluateOpacity({kModeFixed, 1.5, 0.0, 0.0}, Inputs()), 255);
  StrokeInputs bright = Inputs();
  bright.brightness = 255;
  EXPECT_EQ(EvaluateOpacity({kModeBrightness, 0.0, 1.5, 0.0}, bright), static_cast<uint8_t>(382));
}

TEST(Variation, AngleByteComesBackToTheSlidersAngle) {
  for (int degrees = -180; degrees <= 180; degrees += 15) {
    const uint8_t byte = EvaluateAngle({kModeFixed, degrees + 180.0, 0.0, 0.0}, Inputs());
    // The renderer turns the byte back into a fraction of a whole turn.
    const double turned = byte / 255.0 * 360.0;
    double difference = std::fabs(turned - std::fmod(degrees + 360.0, 360.0));
    difference = std::fmin(difference, 360.0 - difference);
    EXPECT_LT(difference, 2.9) << degrees << " came back as " << turned;
  }
  // The radial mode at its centre has no direction: atan2(0, 0) is 0, the
  // middle byte, whatever the jitter.
  EXPECT_EQ(EvaluateAngle({kModeRadial, 180.0, 180.0, 40.0}, Inputs(0.5, 0.5)), 127);
}

TEST(Variation, ColourGoesThroughHsvAndBack) {
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
  // Hue moves round the circle: a full turn's variation keeps saturation
  // and brightness (channel 0 is taken as red).
  w.hueVariation = 1.0;
  for (int i = 0; i < 50; ++i) {
    uint8_t moved[3] = {200, 50, 50}, h, s, v;
    EvaluateColour(w, moved);
    HsvBytes(moved, &h, &s, &v);
    EXPECT_NEAR(v, 200, 1);
    EXPECT_NEAR(s, 191, 2);
  }
}

TEST(Variation, SolidColourOfAnotherModelComesBackAsRgb) {
  StrokeRecord style{};
  style.brushColorMode = 1;
  style.brushColor.model = kCLRCMYK255;  // full cyan
  style.brushColor.value8[0] = 255;
  StrokeWorking w;
  int32_t order = 0;
  StrokeMakeWorking(&style, &w, &order);
  EXPECT_EQ(style.brushColor.model, kCLRRGB255);
  EXPECT_LT(w.brushColour[2], 64) << "cyan has little red";
  EXPECT_GT(w.brushColour[0], 192);
}

}  // namespace
}  // namespace fancy
