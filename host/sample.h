// The sample picture: a landscape drawn from procedural noise (sky with
// clouds, a low sun, hazy mountains, hills, a lake that mirrors them, grain),
// so that every effect has something photograph-like to work on.
#pragma once

#include <cstdint>

#include "picture.h"

namespace fancy {

// An RGB picture; the same size always gives the same pixels.
HostImage DrawSample(int32_t width, int32_t height);

// A grey selection for the sample: a soft-edged disc and a ring around it,
// the kind of shape the relief effects raise.
HostImage DrawSampleMask(int32_t width, int32_t height);

}  // namespace fancy
