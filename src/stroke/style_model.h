// The style as the engine works with it: the record's integers and colours
// turned once, at the start of a run, into the numbers that the variation
// functions and the painter use. Percentages become fractions here and only
// here (x 0.01 in doubles, never reduced in integers).
#pragma once

#include <cstdint>

#include "frame/effect_record.h"

namespace fancy {

// Control ids of the three layering radios, stored as the record's Layering.
constexpr int32_t kLayeringRandom = 345;
constexpr int32_t kLayeringOrdered = 346;
constexpr int32_t kLayeringPaint = 347;

// The variation choices, stored as string ids in VariationControl::mode.
constexpr int32_t kChoiceNoVariation = 1142;
constexpr int32_t kChoiceRandomly = 1143;
constexpr int32_t kChoiceRadial = 1144;
constexpr int32_t kChoiceVertical = 1145;
constexpr int32_t kChoiceHorizontal = 1146;
constexpr int32_t kChoiceHue = 1147;
constexpr int32_t kChoiceSaturation = 1148;
constexpr int32_t kChoiceBrightness = 1149;

// The engine's numbering of the choices. 5 has no choice: the engine's
// switches keep an empty arm for it. A stored mode outside 1142..1149 gives
// kModeNone, which every function treats as "any other mode".
enum VariationMode : int32_t {
  kModeNone = -1,
  kModeFixed = 0,
  kModeRandom = 1,
  kModeRadial = 2,
  kModeVertical = 3,
  kModeHorizontal = 4,
  kModeHue = 6,
  kModeSaturation = 7,
  kModeBrightness = 8,
};

int32_t VariationModeOf(int32_t choice);

// One group's numbers: for size fractions of the brush, for transparency
// opacities (1 - percent), for the angle degrees with 180 added.
struct VariationWork {
  int32_t mode;
  double first;
  double second;
  double spread;
};

// Everything a run takes from the style.
struct StrokeWorking {
  int32_t seed;
  bool paintRule;  // Layering 347
  double centreX;  // XDistVal, YDistVal
  double centreY;
  VariationWork transparency;
  double jitterX;  // HorizontalVariation x 0.01
  double jitterY;
  bool brushFromImage;
  uint8_t brushColour[3];  // channels 0, 1, 2 of the solid brush colour
  double hueVariation;
  double saturationVariation;
  double brightnessVariation;
  VariationWork size;
  VariationWork angle;
  bool backgroundFromImage;
  uint8_t backgroundColour[3];
};

// Fills working from the style. Solid colours in use are converted in place
// to RGB (model 5) in the record, so a solid colour of another model comes
// back from a run as RGB. *order is the layering order, 0 random and 1 ordered: it is
// changed only by Layering 345, 346 or 347, so a style without a layering
// keeps the order of the run before.
void StrokeMakeWorking(StrokeRecord* style, StrokeWorking* working, int32_t* order);

}  // namespace fancy
