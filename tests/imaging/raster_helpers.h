// Small helpers for the compositor, resampling and conversion tests: images
// made from and read back into plain byte vectors.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "imaging/image.h"
#include "imaging/image_rows.h"

namespace fancy::testing {

struct ImageDeleter {
  void operator()(Image* image) const { ImageDestroy(image); }
};
using ImagePtr = std::unique_ptr<Image, ImageDeleter>;

// A one-cell image of the type whose rows are `pixels` packed without
// padding (bytes for whole-byte types, bits most significant first for 1-bit
// rows, rounded up to whole bytes a row).
inline ImagePtr MakeImage(int32_t type, int32_t width, int32_t height,
                          const std::vector<uint8_t>& pixels = {}) {
  ImagePtr image(ImageCreate(type, width, height, 0, 0, kStorageOptionOneCell, nullptr, nullptr));
  if (image && !pixels.empty()) {
    int32_t rowBytes = static_cast<int32_t>(ImagePixelBytesFor(image->bitsPerPixel, width));
    ImageWritePixels(image.get(), 0, 0, width, height, rowBytes, pixels.data(), 0);
  }
  return image;
}

// The image's pixels packed the same way.
inline std::vector<uint8_t> Pixels(const Image* image) {
  int32_t rowBytes = static_cast<int32_t>(ImagePixelBytesFor(image->bitsPerPixel, image->width));
  std::vector<uint8_t> out(static_cast<size_t>(rowBytes) * image->height);
  ImageReadPixels(image, 0, 0, image->width, image->height, rowBytes, out.data());
  return out;
}

// One byte of pixel (x, y), channel c; the value of a pixel under 8 bits.
inline uint8_t At(const Image* image, int32_t x, int32_t y, int32_t c = 0) {
  uint8_t pixel[8] = {};
  ImageReadPixels(image, x, y, 1, 1, 8, pixel);
  if (image->bitsPerPixel < 8) return static_cast<uint8_t>(pixel[0] >> (8 - image->bitsPerPixel));
  return pixel[c];
}

// Pixels from a generator g(x, y, channel).
template <class G>
std::vector<uint8_t> Generate(int32_t width, int32_t height, int32_t channels, G g) {
  std::vector<uint8_t> out(static_cast<size_t>(width) * height * channels);
  size_t k = 0;
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x)
      for (int32_t c = 0; c < channels; ++c) out[k++] = static_cast<uint8_t>(g(x, y, c));
  return out;
}

}  // namespace fancy::testing
