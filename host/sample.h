// The sample picture: a landscape drawn from procedural noise (sky with
// clouds, a low sun, hazy mountains, hills, a lake that mirrors them, grain),
// so that every effect has something photograph-like to work on.
#pragma once

#include <cstdint>

#include "picture.h"

namespace fancy {

// An RGB picture; the same size always gives the same pixels.
HostImage DrawSample(int32_t width, int32_t height);

// A grey selection for the sample: a disc and a ring around it, the kind of
// shape the relief effects raise. With feather 0 the edges are hard (a ramp
// of a few pixels just inside them, against jagged steps). With a feather of
// F pixels every edge falls from 255 to 0 over F pixels, half in, half out,
// so 128 lies on the same lines: the relief effects raise the same shape,
// and their slopes outside it are partly kept where the host blends the
// result through the selection.
HostImage DrawSampleMask(int32_t width, int32_t height, int32_t feather = 0);

}  // namespace fancy
