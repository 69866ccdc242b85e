// The bilinear sampler of the tile effect: one pixel from its 2 by 2
// neighbourhood, for the hexagonal groups that map tile pixels back into
// the cell at fractional positions.
#pragma once

#include <cstdint>

#include "frame/fixed.h"
#include "tile/tile_pixel.h"

namespace fancy {

// For each channel, with a the pixel, b its right neighbour, c the pixel
// in the next row in memory and d the one right of c: top = (a << 16) +
// FixedMul(fx, (b - a) << 16), bottom the same of c and d, result = (top +
// FixedMul(fy, bottom - top) + 32768) >> 16. "The next row in memory" is
// stride bytes on, whatever order the rows are in: where a cell's rows lie
// bottom up, fy blends towards the row above. That asymmetry is part of
// the tiles' look.
//
// pixel points at the pixel's first byte (for type 10, at the skipped
// byte); the used channels go to outC0, outC1, ... in order: gray writes
// outC0, RGB outC0..outC2, CMYK all four. bytesPerPixel is the step to
// the right neighbour. Unused outputs may be null.
inline void SampleBilinear(const uint8_t* pixel, int32_t type, int32_t bytesPerPixel,
                           int32_t stride, uint8_t* outC0, uint8_t* outC1, uint8_t* outC2,
                           uint8_t* outC3, Fixed fx, Fixed fy) {
  switch (type) {
    case kTilePixelGray:
      *outC0 = FixedBilinear1(pixel, bytesPerPixel, stride, fx, fy);
      break;
    case kTilePixelRgb:
      FixedBilinear3(pixel, bytesPerPixel, stride, fx, fy, outC0, outC1, outC2);
      break;
    case kTilePixelRgb4:
      FixedBilinear3(pixel + 1, bytesPerPixel, stride, fx, fy, outC0, outC1, outC2);
      break;
    case kTilePixelCmyk:
      FixedBilinear4(pixel, bytesPerPixel, stride, fx, fy, outC0, outC1, outC2, outC3);
      break;
    default:
      break;
  }
}

}  // namespace fancy
