#include "stroke/style_model.h"

#include "colour/clr_convert.h"

namespace fancy {

namespace {

// The double nearest to 0.01: every percentage goes through it.
constexpr double kPercent = 0.01;

VariationWork Percentages(const VariationControl& control) {
  return {VariationModeOf(control.mode), control.first * kPercent, control.second * kPercent,
          control.spread * kPercent};
}

// Converts a solid colour in use to RGB in the record and takes its three value
// bytes in stored order (blue first), as the host's planes are.
void SolidColour(CLRColor* colour, uint8_t out[3]) {
  CLRConvert(colour, kCLRRGB255, colour);
  out[0] = colour->value8[0];
  out[1] = colour->value8[1];
  out[2] = colour->value8[2];
}

}  // namespace

int32_t VariationModeOf(int32_t choice) {
  switch (choice) {
    case kChoiceNoVariation: return kModeFixed;
    case kChoiceRandomly: return kModeRandom;
    case kChoiceRadial: return kModeRadial;
    case kChoiceVertical: return kModeVertical;
    case kChoiceHorizontal: return kModeHorizontal;
    case kChoiceHue: return kModeHue;
    case kChoiceSaturation: return kModeSaturation;
    case kChoiceBrightness: return kModeBrightness;
    default: return kModeNone;
  }
}

void StrokeMakeWorking(StrokeRecord* style, StrokeWorking* w, int32_t* order) {
  *w = StrokeWorking{};
  w->seed = style->seed;
  switch (style->layering) {
    case kLayeringRandom: *order = 0; break;
    case kLayeringOrdered: *order = 1; break;
    case kLayeringPaint:
      *order = 1;
      w->paintRule = true;
      break;
    default: break;  // no radio set: the order stands
  }
  w->centreX = style->xDistVal;
  w->centreY = style->yDistVal;

  const VariationControl& trans = style->transparency;
  w->transparency = {VariationModeOf(trans.mode), 1.0 - trans.first * kPercent,
                     1.0 - trans.second * kPercent, trans.spread * kPercent};

  w->jitterX = style->horizontalVariation * kPercent;
  w->jitterY = style->verticalVariation * kPercent;

  w->brushFromImage = style->brushColorMode == 0;
  if (!w->brushFromImage) SolidColour(&style->brushColor, w->brushColour);

  w->hueVariation = style->hueVariation * kPercent;
  w->saturationVariation = style->saturationVariation * kPercent;
  w->brightnessVariation = style->brightnessVariation * kPercent;

  w->size = Percentages(style->size);
  const VariationControl& angle = style->angle;
  // Degrees; the + 180 here and the + pi of the stored byte cancel round
  // the circle.
  w->angle = {VariationModeOf(angle.mode), angle.first + 180.0, angle.second + 180.0,
              static_cast<double>(angle.spread)};

  w->backgroundFromImage = style->backgroundMode == 0;
  if (!w->backgroundFromImage) SolidColour(&style->backgroundColor, w->backgroundColour);
}

}  // namespace fancy
