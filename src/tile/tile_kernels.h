// The kernels of the merge modes, one per mode and opacity form (internal
// to the tile effect; tile_merge.h hands them out by mode).
#pragma once

#include <cstdint>

#include "tile/tile_merge.h"

namespace fancy::tile_kernels {

// True when the walk's arguments can be run: a tile with pixels, a start
// column inside it, non-negative counts and steps, a fraction below one.
bool WalkArgumentsValid(const uint8_t* tileData, int32_t tileWidth, int32_t tileRowBytes,
                        int32_t column, int32_t row, int32_t pixelCount, const uint8_t* outRow,
                        const uint8_t* imageRow, int32_t stepFraction, int32_t stepWhole);

// Normal, Darken, Lighten, Multiply and Screen.
TileRowKernel SmallKernel(int32_t mode, bool fullOpacity);
// Hue, Saturation, Color and Luminosity.
TileRowKernel ColourKernel(int32_t mode, bool fullOpacity);

}  // namespace fancy::tile_kernels
