// The BMP writer of Save Tile: headers written field by field, then the rows
// as the picture holds them. The file is replaced whole or not at all.
#include <vector>

#include "platform/file.h"
#include "tile/source_file.h"

namespace fancy {

namespace {

void PutU16(std::vector<uint8_t>& out, uint32_t v) {
  out.push_back(static_cast<uint8_t>(v));
  out.push_back(static_cast<uint8_t>(v >> 8));
}

void PutU32(std::vector<uint8_t>& out, uint32_t v) {
  PutU16(out, v & 0xFFFF);
  PutU16(out, v >> 16);
}

}  // namespace

int16_t SaveImageBmp(const Image* image, const char* path) {
  if (!image || !path || image->width <= 0 || image->height <= 0) return kSourceFileReadError;
  int32_t bitCount = 0, colours = 0;
  switch (image->type) {
    case kImageBGR24: bitCount = 24; break;
    case kImageCMYK32: bitCount = 32; break;
    case kImageGrey8:
    case kImageMask: bitCount = 8, colours = 256; break;
    default: return kSourceFileReadError;
  }
  const int64_t rowBytes = image->rowBytes;
  const int64_t imageBytes = rowBytes * image->height;
  if (rowBytes < (int64_t{image->width} * bitCount + 7) / 8 || imageBytes > (int64_t{1} << 30) ||
      !ImagePixelAddress(image, 0, 0) || !ImagePixelAddress(image, 0, image->height - 1))
    return kSourceFileReadError;

  const uint32_t offBits = static_cast<uint32_t>(colours * 4 + 54);
  std::vector<uint8_t> out;
  out.reserve(offBits + static_cast<size_t>(imageBytes));
  PutU16(out, 19778);  // "BM"
  PutU32(out, static_cast<uint32_t>(imageBytes) + offBits);
  PutU16(out, 0);
  PutU16(out, 0);
  PutU32(out, offBits);
  PutU32(out, 40);
  PutU32(out, static_cast<uint32_t>(image->width));
  PutU32(out, static_cast<uint32_t>(image->height));
  PutU16(out, 1);  // planes
  PutU16(out, static_cast<uint32_t>(bitCount));
  PutU32(out, 0);  // no compression
  PutU32(out, static_cast<uint32_t>(imageBytes));
  PutU32(out, 0);  // pixels per metre
  PutU32(out, 0);
  PutU32(out, static_cast<uint32_t>(colours));
  PutU32(out, static_cast<uint32_t>(colours));
  for (int32_t i = 0; i < colours; ++i) {
    const uint8_t grey = static_cast<uint8_t>(i);
    out.insert(out.end(), {grey, grey, grey, 0});
  }
  for (int32_t y = 0; y < image->height; ++y) {
    const uint8_t* row = ImagePixelAddress(image, 0, y);
    out.insert(out.end(), row, row + rowBytes);
  }
  return WriteFileAtomic(path, out.data(), out.size()) ? kSourceFileOk : kSourceFileReadError;
}

}  // namespace fancy
