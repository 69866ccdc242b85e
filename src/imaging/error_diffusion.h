// Error diffusion, row by row: each pixel takes 7/16 of the error of the
// pixel before it and 1/16, 5/16 and 3/16 of the errors of the three pixels
// above it (left, straight, right), in signed 16-bit values.
#pragma once

#include <cstdint>

#include "imaging/palette.h"
#include "imaging/scratch.h"

namespace fancy {

struct Diffusion {
  int32_t width;
  int32_t channels;                // 1 for grey rows, 3 for BGR rows
  ScratchArray<int16_t> errors;    // (width + 4) slots a channel, interleaved
};

// Clears the error row for rows of `width` pixels of 1 or 3 channels.
int DiffusionStart(Diffusion* d, int32_t width, int32_t channels);

// One row to bits at bit `bit` of out (the other bits keep their values).
// The grey of a BGR pixel is (3R + B + 6G) / 10.
void DiffuseRowToBits(Diffusion* d, const uint8_t* src, int32_t count, uint8_t* out, int32_t bit);

// One row to indices of the palette: each channel diffused on its own, the
// sum held to 0 .. 255, the nearest entry taken, and the error measured from
// that entry. Grey rows diffuse one channel and measure from the entry's
// grey.
void DiffuseRowToIndices(Diffusion* d, const uint8_t* src, int32_t count, Palette* palette,
                         uint8_t* out);

}  // namespace fancy
