#include "tile/source_convert.h"

#include "tile/tile_pixel.h"

namespace fancy {

struct DrawContext;

// The compositor's one entry: merges (here: converts) the source rectangle of
// one picture into the destination rectangle of another. 1 for done.
int CompositeImage(DrawContext* context, Image* destination, int32_t x, int32_t y, int32_t width,
                   int32_t height, const Rect* destinationRect, Image* source, int32_t sourceX,
                   int32_t sourceY, int32_t sourceWidth, int32_t sourceHeight,
                   const Rect* sourceRect, uint32_t mode);

Image* ConvertSourceImage(Image* image, int32_t wantType) {
  if (!image) return nullptr;
  if (image->type == wantType) return image;
  Image* converted = ImageCreate(wantType, image->width, image->height, image->xResolution,
                                 image->yResolution, kStorageOptionOneCell, nullptr, nullptr);
  if (!converted) return nullptr;
  if (!CompositeImage(nullptr, converted, 0, 0, image->width, image->height, nullptr, image, 0,
                      0, image->width, image->height, nullptr, 0)) {
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
