#include "picture.h"

#include <algorithm>

namespace fancy {

namespace {

// One pixel in every form a conversion needs: RGB and CMYK ink.
struct Colour {
  uint8_t r, g, b;
};

Colour FromInk(uint8_t c, uint8_t m, uint8_t y, uint8_t k) {
  // Under-colour removal model: each ink takes light away on its own, so a
  // grey is black ink alone and RGB -> CMYK -> RGB is exact.
  auto light = [k](uint8_t ink) { return uint8_t(std::max(0, 255 - int(ink) - int(k))); };
  return {light(c), light(m), light(y)};
}

void ToInk(Colour colour, uint8_t ink[4]) {
  uint8_t top = std::max({colour.r, colour.g, colour.b});
  ink[0] = uint8_t(top - colour.r);
  ink[1] = uint8_t(top - colour.g);
  ink[2] = uint8_t(top - colour.b);
  ink[3] = uint8_t(255 - top);
}

Colour ReadFilePixel(const uint8_t* p, PixelMode mode) {
  switch (mode) {
    case PixelMode::kGrey: return {p[0], p[0], p[0]};
    case PixelMode::kRGB: return {p[0], p[1], p[2]};
    case PixelMode::kCMYK: return FromInk(p[0], p[1], p[2], p[3]);
  }
  return {0, 0, 0};
}

Colour ReadHostPixel(const uint8_t* p, PixelMode mode) {
  switch (mode) {
    case PixelMode::kGrey: return {p[0], p[0], p[0]};
    case PixelMode::kRGB: return {p[2], p[1], p[0]};
    case PixelMode::kCMYK:
      return FromInk(uint8_t(255 - p[0]), uint8_t(255 - p[1]), uint8_t(255 - p[2]),
                     uint8_t(255 - p[3]));
  }
  return {0, 0, 0};
}

// One pixel between a file picture and a host image of the same mode: only
// the byte order changes (RGB against blue first, CMYK ink against the
// host's inverted bytes), nothing is lost. The change is its own inverse,
// so it serves both ways.
void CopySameMode(const uint8_t* in, PixelMode mode, uint8_t* out) {
  switch (mode) {
    case PixelMode::kGrey: out[0] = in[0]; break;
    case PixelMode::kRGB: out[0] = in[2]; out[1] = in[1]; out[2] = in[0]; break;
    case PixelMode::kCMYK:
      for (int p = 0; p < 4; ++p) out[p] = uint8_t(255 - in[p]);
      break;
  }
}

}  // namespace

int PlanesOf(PixelMode mode) {
  switch (mode) {
    case PixelMode::kGrey: return 1;
    case PixelMode::kRGB: return 3;
    case PixelMode::kCMYK: return 4;
  }
  return 0;
}

const char* ModeName(PixelMode mode) {
  switch (mode) {
    case PixelMode::kGrey: return "grey";
    case PixelMode::kRGB: return "rgb";
    case PixelMode::kCMYK: return "cmyk";
  }
  return "?";
}

bool ParseMode(const std::string& text, PixelMode* mode) {
  if (text == "grey" || text == "gray") *mode = PixelMode::kGrey;
  else if (text == "rgb") *mode = PixelMode::kRGB;
  else if (text == "cmyk") *mode = PixelMode::kCMYK;
  else return false;
  return true;
}

bool CheckPictureSize(int64_t width, int64_t height, std::string* error) {
  if (width <= 0 || height <= 0) {
    *error = "the picture has no pixels (" + std::to_string(width) + " x " +
             std::to_string(height) + ")";
    return false;
  }
  if (width > kMaxPictureSide || height > kMaxPictureSide || width * height > kMaxPicturePixels) {
    *error = "the picture is too large (" + std::to_string(width) + " x " +
             std::to_string(height) + "); the largest side is " +
             std::to_string(kMaxPictureSide) + " pixels";
    return false;
  }
  return true;
}

uint8_t GreyOf(uint8_t red, uint8_t green, uint8_t blue) {
  return uint8_t((299 * red + 587 * green + 114 * blue + 500) / 1000);
}

HostImage ToHostImage(const FilePicture& picture, PixelMode mode) {
  HostImage image;
  image.width = picture.width;
  image.height = picture.height;
  image.mode = mode;
  image.planes = PlanesOf(mode);
  size_t count = size_t(picture.width) * size_t(picture.height);
  image.pixels.resize(count * size_t(image.planes));
  const int inPlanes = PlanesOf(picture.mode);
  const uint8_t* in = picture.pixels.data();
  uint8_t* out = image.pixels.data();
  for (size_t i = 0; i < count; ++i, in += inPlanes, out += image.planes) {
    if (picture.mode == mode) {
      CopySameMode(in, mode, out);
      continue;
    }
    Colour colour = ReadFilePixel(in, picture.mode);
    switch (mode) {
      case PixelMode::kGrey: out[0] = GreyOf(colour.r, colour.g, colour.b); break;
      case PixelMode::kRGB: out[0] = colour.b; out[1] = colour.g; out[2] = colour.r; break;
      case PixelMode::kCMYK: {
        uint8_t ink[4];
        ToInk(colour, ink);
        for (int p = 0; p < 4; ++p) out[p] = uint8_t(255 - ink[p]);
        break;
      }
    }
  }
  return image;
}

FilePicture ToFilePicture(const HostImage& image, PixelMode mode) {
  FilePicture picture;
  picture.width = image.width;
  picture.height = image.height;
  picture.mode = mode;
  const int outPlanes = PlanesOf(mode);
  size_t count = size_t(image.width) * size_t(image.height);
  picture.pixels.resize(count * size_t(outPlanes));
  const uint8_t* in = image.pixels.data();
  uint8_t* out = picture.pixels.data();
  for (size_t i = 0; i < count; ++i, in += image.planes, out += outPlanes) {
    if (image.mode == mode) {
      CopySameMode(in, mode, out);
      continue;
    }
    Colour colour = ReadHostPixel(in, image.mode);
    switch (mode) {
      case PixelMode::kGrey: out[0] = GreyOf(colour.r, colour.g, colour.b); break;
      case PixelMode::kRGB: out[0] = colour.r; out[1] = colour.g; out[2] = colour.b; break;
      case PixelMode::kCMYK: ToInk(colour, out); break;
    }
  }
  return picture;
}

}  // namespace fancy
