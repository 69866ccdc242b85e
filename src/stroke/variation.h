// The variation functions: what makes one stroke differ from the next. Size,
// transparency and angle are each a function of where the stroke stands or
// of the colour it takes, and its colour is moved at random. All of it is
// worked in doubles once a stroke, in the first pass, and kept as bytes.
//
// Every random number comes from the C runtime's generator (CrtRand), and
// the number and order of the draws are fixed: size (one for "Randomly",
// one for a spread), transparency (the same, but no spread draw for the
// colour modes), angle ("Randomly", then the jitter always), colour (three
// always). So a style and a seed give the same picture everywhere.
#pragma once

#include <cstdint>

#include "stroke/style_model.h"

namespace fancy {

// 1 / 32767: a draw as a uniform number in 0..1.
constexpr double kUniformScale = 3.051850947599719e-05;
// 1 / 255.
constexpr double kByteScale = 0.00392156862745098;
// The degree used to rotate vectors: 1 / 57.296, not pi / 180.
constexpr double kRotationDegree = 0.017453225356045796;

// One draw of the generator as a number in 0..1.
double UniformDraw();

// (b - a) x t + a; t is not clamped.
inline double Lerp(double t, double a, double b) { return (b - a) * t + a; }

// What the functions know of a stroke.
struct StrokeInputs {
  double x;        // anchor column / width of the filter rectangle
  double y;        // anchor row / height; y grows downward
  double centreX;  // the style's centre
  double centreY;
  uint8_t hue;     // of the sampled colour, only when a colour mode is in use
  uint8_t saturation;
  uint8_t brightness;
};

// The size byte: size / 255 of the brush's own size.
uint8_t EvaluateSize(const VariationWork& size, const StrokeInputs& in);

// The opacity byte, 255 opaque. Negative results are not clipped: they wrap
// into the high values, so a faint style with a large spread lays a nearly
// opaque stroke now and then.
uint8_t EvaluateOpacity(const VariationWork& transparency, const StrokeInputs& in);

// The angle byte: 256 steps round the circle, from the vector's angle in
// -pi..pi shifted by pi.
uint8_t EvaluateAngle(const VariationWork& angle, const StrokeInputs& in);

// Moves colour (channels 0, 1, 2; the sample, or the solid colour when the
// style has one) by the style's hue, saturation and brightness variation,
// through HSV and back. The round trip is made even with no variation, so
// its rounding is part of every stroke's colour.
void EvaluateColour(const StrokeWorking& working, uint8_t colour[3]);

// HSV of r, g, b in 0..1, each result in 0..1.
void HsvFromRgb(double r, double g, double b, double* h, double* s, double* v);
// The reverse; a hue of 1 counts as 0.
void RgbFromHsv(double h, double s, double v, double* r, double* g, double* b);

// The sampled colour's H, S, V as bytes for the colour modes (channel 0 is
// taken as red).
void HsvBytes(const uint8_t colour[3], uint8_t* h, uint8_t* s, uint8_t* v);

// A double converted to an integer as the engine's runtime converts: a
// truncation to 64 bits of which the low 32 are kept (0 for NaN and values
// beyond 64 bits). Brush coordinates and bytes that wrap rely on it.
inline int32_t TruncLow32(double value) {
  if (!(value > -9.2e18 && value < 9.2e18)) return 0;
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(static_cast<int64_t>(value))));
}

}  // namespace fancy
