// The blur of the height field: a normalised Gaussian, run along rows and
// then along columns.
#pragma once

#include <cstdint>

#include "frame/fixed.h"
#include "relief/relief_maps.h"
#include "relief/relief_progress.h"

namespace fancy {

// Writes the kernel's taps from the centre out: K[0] = 1.0, K[i] =
// exp(-(c i)^2) with c = 2 / sigma (sigma in pixels, as Fixed), until the
// previous tap is under 1/300 or limit taps are made; then every tap is
// scaled so that K[0] + 2 (K[1] + ... ) is 1. out has room for limit taps
// (limit >= 1). Returns the number of taps k: the kernel reaches k - 1
// samples to each side.
int32_t MakeGaussianKernel(Fixed* out, Fixed sigma, int32_t limit);

// Blurs the field in place with the kernel for sigma. Samples beyond the
// field's edges count as 0, so the height falls off at the edge of the image.
// Returns 0, -108 when the kernel or the line buffers cannot be had, or -128
// when the abort callback (asked every second row, then every second column)
// says stop.
int16_t SmoothField(HeightMap* field, Fixed sigma, ReliefProgress* progress);

}  // namespace fancy
