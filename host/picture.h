// Pictures as fancyhost holds them.
//
// A FilePicture is what a file reader gives and a writer takes: grey, RGB in
// red-green-blue order, or CMYK as ink amounts (0 is no ink), interleaved
// without padding. A HostImage is the same picture in the host's own pixel
// order, the order it hands to the module: grey is one plane; RGB is three
// planes blue, green, red (plane 0 is blue); CMYK is four planes stored
// inverted (255 is no ink).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fancy {

enum class PixelMode { kGrey, kRGB, kCMYK };

// Largest side a picture may have: the filter record's coordinates are
// signed 16-bit.
constexpr int32_t kMaxPictureSide = 32767;
// Largest number of pixels fancyhost takes in, so that a header cannot make
// it allocate without bound.
constexpr int64_t kMaxPicturePixels = int64_t(1) << 28;

int PlanesOf(PixelMode mode);
const char* ModeName(PixelMode mode);
// "grey"/"gray", "rgb", "cmyk"; false for anything else.
bool ParseMode(const std::string& text, PixelMode* mode);

// Checks the sides against the limits above; fills error when they fail.
bool CheckPictureSize(int64_t width, int64_t height, std::string* error);

struct FilePicture {
  int32_t width = 0;
  int32_t height = 0;
  PixelMode mode = PixelMode::kRGB;
  std::vector<uint8_t> pixels;  // width * height * PlanesOf(mode)
};

struct HostImage {
  int32_t width = 0;
  int32_t height = 0;
  PixelMode mode = PixelMode::kRGB;
  int32_t planes = 3;
  std::vector<uint8_t> pixels;  // width * height * planes, rows top to bottom

  uint8_t* Pixel(int32_t x, int32_t y) {
    return pixels.data() + (size_t(y) * size_t(width) + size_t(x)) * size_t(planes);
  }
  const uint8_t* Pixel(int32_t x, int32_t y) const {
    return pixels.data() + (size_t(y) * size_t(width) + size_t(x)) * size_t(planes);
  }
};

// The grey of an RGB colour: the usual luma weights, rounded.
uint8_t GreyOf(uint8_t red, uint8_t green, uint8_t blue);

// File pixels to host pixels in the given mode, converting where the modes
// differ; and back, to a file picture of the mode the writer takes.
HostImage ToHostImage(const FilePicture& picture, PixelMode mode);
FilePicture ToFilePicture(const HostImage& image, PixelMode mode);

}  // namespace fancy
