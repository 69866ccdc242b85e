// The BMP writer of Save Tile: headers written field by field, then the rows
// as the picture holds them. The file is replaced whole or not at all.
#include <vector>

#include "platform/file.h"
#include "tile/source_file.h"

namespace fancy {

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

  const uint32_t offBits =
      static_cast<uint32_t>(colours * 4) + kBmpFileHeaderBytes + kBmpInfoHeaderBytes;
  std::vector<uint8_t> out;
  out.reserve(offBits + static_cast<size_t>(imageBytes));
  // Uncompressed, no resolution given.
  AppendBmpHeaders({.type = kBmpType,
                    .fileSize = static_cast<uint32_t>(imageBytes) + offBits,
                    .offBits = offBits,
                    .headerSize = kBmpInfoHeaderBytes,
                    .width = image->width,
                    .height = image->height,
                    .planes = 1,
                    .bitCount = static_cast<uint16_t>(bitCount),
                    .imageSize = static_cast<uint32_t>(imageBytes),
                    .colorsUsed = static_cast<uint32_t>(colours),
                    .colorsImportant = static_cast<uint32_t>(colours)},
                   out);
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
