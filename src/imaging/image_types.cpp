#include "imaging/image_types.h"

namespace fancy {

int32_t ImageTypeBits(int32_t type) {
  switch (type) {
    case kImageBGR24: return 24;
    case kImageCMYK32: return 32;
    case kImageGrey8: return 8;
    case kImageBilevel: return 1;
    case kImageNewIndexed8: return 0;
    case kImageNewIndexed4: return 0;
    case kImageIndexed: return 0;
    case kImageLab24: return 24;
    case kImageRGB48: return 48;
    case kImageRaw48: return 48;
    case kImageGrey16: return 16;
    case kImageMask: return 8;
    default: return -1;
  }
}

bool ImageTypeIsValid(int32_t type) {
  return ImageTypeBits(type) >= 0 && type != kImageNewIndexed8 && type != kImageNewIndexed4;
}

int64_t ImagePixelBytesFor(int32_t bitsPerPixel, int64_t width) {
  return (int64_t{bitsPerPixel} * width + 7) / 8;
}

int32_t ImageRowBytesFor(int32_t bitsPerPixel, int32_t width) {
  if (width <= 0 || bitsPerPixel <= 0) return -1;
  int64_t bytes = (ImagePixelBytesFor(bitsPerPixel, width) + 3) & ~int64_t{3};
  if (bytes > INT32_MAX) return -1;
  return static_cast<int32_t>(bytes);
}

uint16_t ImageTypeModel(int32_t type) {
  switch (type) {
    case kImageBGR24: return 5;
    case kImageCMYK32: return 3;
    case kImageGrey8: return 9;
    case kImageBilevel: return 8;
    case kImageIndexed: return 13;
    case kImageLab24: return 18;
    case kImageRGB48: return 23;
    case kImageGrey16: return 24;
    case kImageMask: return 9;
    default: return 0;
  }
}

TileShape ImageTileShape(int32_t type, int32_t bits) {
  TileShape shape;
  switch (type) {
    case kImageBGR24:
    case kImageLab24: shape = {144, 151, 0}; break;
    case kImageGrey8:
    case kImageIndexed:
    case kImageMask: shape = {256, 256, 0}; break;
    case kImageBilevel: shape = {768, 682, 0}; break;
    case kImageRGB48:
    case kImageRaw48: shape = {104, 105, 0}; break;
    case kImageGrey16: shape = {180, 182, 0}; break;
    default: shape = {128, 128, 0}; break;
  }
  if (bits <= 0) bits = ImageTypeBits(type) > 0 ? ImageTypeBits(type) : 8;
  shape.rowBytes = ImageRowBytesFor(bits, shape.width);
  return shape;
}

}  // namespace fancy
