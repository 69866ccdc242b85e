// Bringing a loaded source picture to the host's type, and copying the part
// the cell is cut from into a buffer the tile builders can read.
#pragma once

#include <cstdint>

#include "imaging/image.h"

namespace fancy {

// image itself when it already has wantType; otherwise a new picture of
// wantType with image's size and resolution, converted by the compositor
// (the caller frees both). Null when the new picture cannot be made or
// filled.
Image* ConvertSourceImage(Image* image, int32_t wantType);

// The TilePixelType of an ImageType as the tile works on it: 1 (RGB) gives
// 3, 3 (CMYK) 4, 5 and 99 (one channel) 1; 0 for any other.
int32_t TilePixelTypeOfImage(int32_t imageType);

// Copies rows [row, row + height) and columns [x, x + width) of image into
// out at (1, 1): out is (width + 2) x (height + 2) pixels of bytesPerPixel,
// rows outRowBytes apart, its one-pixel border left as it is. False, with
// nothing copied, when the part is not wholly inside the picture or its
// pixels cannot be addressed.
bool CopyImagePartBordered(const Image* image, int32_t x, int32_t row, int32_t width,
                           int32_t height, int32_t bytesPerPixel, uint8_t* out,
                           int32_t outRowBytes);

}  // namespace fancy
