#include "tile/source_convert.h"

#include "imaging/composite.h"
#include "imaging/merge.h"
#include "tile/tile_pixel.h"

namespace fancy {

Image* ConvertSourceImage(Image* image, int32_t wantType) {
  if (!image) return nullptr;
  if (image->type == wantType) return image;
  Image* converted = ImageCreate(wantType, image->width, image->height, image->xResolution,
                                 image->yResolution, kStorageOptionOneCell, nullptr, nullptr);
  if (!converted) return nullptr;
  // A plain copy of every pixel: the compositor converts through its working
  // types (grey by its weights, CMYK through the colour layer).
  if (!CompositeImage(nullptr, converted, 0, 0, image->width, image->height, nullptr, image, 0,
                      0, image->width, image->height, nullptr, kMergeNormal)) {
    ImageDestroy(converted);
    return nullptr;
  }
  return converted;
}

int32_t TilePixelTypeOfImage(int32_t imageType) {
  switch (imageType) {
    case kImageBGR24: return kTilePixelRgb;
    case kImageCMYK32: return kTilePixelCmyk;
    case kImageGrey8:
    case kImageMask: return kTilePixelGray;
    default: return 0;
  }
}

}  // namespace fancy
