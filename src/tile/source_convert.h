// Bringing a loaded source picture to the host's type.
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

}  // namespace fancy
