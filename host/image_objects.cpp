#include "image_objects.h"

#include <algorithm>

namespace fancy {

namespace {

// An Image on `pixels` with the host's row step: the host's rows are packed,
// with no padding to four bytes.
Image* OnHostRows(int32_t type, const HostImage& picture, uint8_t* pixels, Fixed xResolution,
                  Fixed yResolution) {
  if (picture.width <= 0 || picture.height <= 0) return nullptr;
  const int64_t rowBytes = int64_t(picture.width) * picture.planes;
  if (picture.pixels.size() < size_t(rowBytes) * size_t(picture.height)) return nullptr;
  Image* image =
      ImageCreateOnBuffer(type, picture.width, picture.height, ImageResolutionOf(xResolution),
                          ImageResolutionOf(yResolution), pixels);
  if (!image) return nullptr;
  if (ImageSetRowBytes(image, int32_t(rowBytes)) == 0) {
    ImageDestroy(image);
    return nullptr;
  }
  return image;
}

}  // namespace

int32_t ImageTypeOfMode(PixelMode mode) {
  switch (mode) {
    case PixelMode::kGrey: return kImageGrey8;
    case PixelMode::kRGB: return kImageBGR24;
    case PixelMode::kCMYK: return kImageCMYK32;
  }
  return 0;
}

int32_t ImageResolutionOf(Fixed dotsPerInch) {
  if (dotsPerInch <= 0) return 0;
  return int32_t((int64_t(dotsPerInch) * 1000 + 0x8000) >> 16);
}

Image* MakePictureImage(HostImage* picture, Fixed xResolution, Fixed yResolution) {
  if (!picture || picture->planes != PlanesOf(picture->mode)) return nullptr;
  return OnHostRows(ImageTypeOfMode(picture->mode), *picture, picture->pixels.data(),
                    xResolution, yResolution);
}

Image* MakeSelectionImage(const HostImage* mask, Fixed xResolution, Fixed yResolution) {
  if (!mask || mask->planes != 1) return nullptr;
  // The Image wants writable pixels; the module never writes the selection.
  return OnHostRows(kImageMask, *mask, const_cast<uint8_t*>(mask->pixels.data()), xResolution,
                    yResolution);
}

void FindSelectionBounds(const HostImage& mask, int16_t bounds[4]) {
  int32_t top = mask.height, left = mask.width, bottom = -1, right = -1;
  for (int32_t y = 0; y < mask.height; ++y) {
    const uint8_t* row = mask.Pixel(0, y);
    for (int32_t x = 0; x < mask.width; ++x) {
      if (!row[x]) continue;
      top = std::min(top, y);
      bottom = std::max(bottom, y);
      left = std::min(left, x);
      right = std::max(right, x);
    }
  }
  if (bottom < 0) top = left = 0;
  bounds[0] = int16_t(top);
  bounds[1] = int16_t(left);
  bounds[2] = int16_t(bottom);
  bounds[3] = int16_t(right);
}

}  // namespace fancy
