// The relief effects' settings as the host keeps them, and the numbers a
// run derives from them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/effect_record.h"
#include "frame/fixed.h"

namespace fancy {

// Glass's tint colour.
enum : int16_t {
  kGlassTintPaint = 0,   // the host's foreground
  kGlassTintPaper = 1,   // the host's background
  kGlassTintLeaded = 2,  // 128 in every channel
};

struct ReliefParams {
  int32_t effectId;      // 202 Glass, 203 The Knurl
  char presetName[48];   // the style chosen in the list; not read by a run
  int16_t brightness;    // 0..100
  int16_t sharpness;     // 0..100
  int16_t direction;     // 0..360 degrees, counter-clockwise from the right
  int16_t angle;         // 0..90 degrees above the picture
  int16_t smoothness;    // 0..10 (the slider shows ten times this)
  int16_t bevelWidth;    // 3..100
  int16_t height;        // 3..200, The Knurl; Glass keeps 0
  int16_t refraction;    // 0..100, Glass
  int16_t dropOff;       // 0 Gaussian, 1 Flat, 2 Mesa, 3 rounded
  int16_t opacity;       // 0..100, Glass
  int16_t colour;        // Glass tint: paint, paper, leaded
  int32_t presetIndex;   // the list entry that was selected
};

// The EffectRecord of 202 and 203.
struct ReliefRecord {
  EffectHead head;
  ReliefParams params;
};
static_assert(offsetof(ReliefRecord, params) == 8);
static_assert(offsetof(ReliefParams, brightness) == 52);
static_assert(offsetof(ReliefParams, presetIndex) == 76);
static_assert(sizeof(ReliefRecord) == 88);

// The settings held to their ranges, as a run uses them: a record from a
// file or an old run may hold anything. Glass's height is 0 whatever the
// record says.
ReliefParams ReliefParamsInRange(const ReliefParams& params, int32_t filterId);

// The unit vector towards a light at elevation a and bearing b, both in
// degrees: (cos a cos b, -cos a sin b, sin a). x runs right and y up the
// picture.
void LightVector(int32_t a, int32_t b, Fixed light[3]);

// The derived numbers of a run, all 16.16.
struct ReliefNumbers {
  Fixed bright;    // size of the highlight: 0.01 brightness
  Fixed exponent;  // specular power: 0.6 sharpness + 2
  Fixed light[3];  // LightVector(angle, -direction)
  Fixed slope;     // Glass: 0.2 bevelWidth, the scale of height differences
  Fixed eta;       // Glass: 0.01 (100 - 0.98 refraction), ratio of indices
  Fixed absorb;    // Glass: -0.5 (n^2 - 1) with n = 1 + 0.01 opacity
};

// From settings that are in range.
ReliefNumbers DeriveReliefNumbers(const ReliefParams& params);

}  // namespace fancy
