// The BMP reader of the tile source: headers, palette and pixel rows, read
// field by field and in chunks of at most 65000 bytes.
#include <algorithm>
#include <cstring>
#include <memory>

#include "frame/host_record.h"
#include "platform/byte_order.h"
#include "platform/file.h"
#include "tile/source_convert.h"
#include "tile/source_file.h"
#include "tile/tile_work.h"

namespace fancy {

namespace {

constexpr int32_t kChunkBytes = 65000;
// Pictures beyond these are refused as memory the effect cannot have.
constexpr int64_t kMaxSide = 32767;
constexpr int64_t kMaxPixelBytes = int64_t{1} << 30;

struct ImageCloser {
  void operator()(Image* image) const { ImageDestroy(image); }
};
using OwnedImage = std::unique_ptr<Image, ImageCloser>;

bool ReadBytes(std::FILE* file, uint8_t* out, size_t count) {
  return std::fread(out, 1, count, file) == count;
}

bool ReadU16(std::FILE* file, uint16_t* value) {
  uint8_t b[2];
  if (!ReadBytes(file, b, 2)) return false;
  *value = LoadLE16(b);
  return true;
}

bool ReadU32(std::FILE* file, uint32_t* value) {
  uint8_t b[4];
  if (!ReadBytes(file, b, 4)) return false;
  *value = LoadLE32(b);
  return true;
}

bool ReadI32(std::FILE* file, int32_t* value) {
  uint32_t raw;
  if (!ReadU32(file, &raw)) return false;
  *value = static_cast<int32_t>(raw);
  return true;
}

bool ReadI16AsI32(std::FILE* file, int32_t* value) {
  uint16_t raw;
  if (!ReadU16(file, &raw)) return false;
  *value = static_cast<int16_t>(raw);
  return true;
}

// Resolution in thousandths of a dot, from pixels per metre, held in range.
int32_t ResolutionOf(int32_t pelsPerMeter) {
  const int64_t value = int64_t{pelsPerMeter} * 1000;
  return static_cast<int32_t>(std::clamp<int64_t>(value, 0, INT32_MAX));
}

// One file row into a row of the RGB picture (blue, green, red).
void ExpandRow(const uint8_t* in, int32_t bitCount, int32_t width, const BmpColour* palette,
               uint8_t* out) {
  switch (bitCount) {
    case 24:
      std::memcpy(out, in, static_cast<size_t>(width) * 3);
      return;
    case 8:
      for (int32_t x = 0; x < width; ++x, out += 3) {
        const BmpColour& c = palette[in[x]];
        out[0] = c.blue, out[1] = c.green, out[2] = c.red;
      }
      return;
    case 4:
      for (int32_t x = 0; x < width; ++x, out += 3) {
        const uint8_t byte = in[x / 2];
        const BmpColour& c = palette[(x & 1) ? (byte & 0x0F) : (byte >> 4)];
        out[0] = c.blue, out[1] = c.green, out[2] = c.red;
      }
      return;
    case 1:
      // The palette's class is worked out but not applied: a set bit is white.
      for (int32_t x = 0; x < width; ++x, out += 3) {
        const uint8_t v = (in[x / 8] >> (7 - (x & 7))) & 1 ? 255 : 0;
        out[0] = out[1] = out[2] = v;
      }
      return;
    default:
      return;
  }
}

}  // namespace

int16_t ReadBmpHeader(std::FILE* file, BmpHeader* header) {
  BmpHeader h{};
  bool ok = ReadU16(file, &h.type) && ReadU32(file, &h.fileSize) && ReadU16(file, &h.reserved1) &&
            ReadU16(file, &h.reserved2) && ReadU32(file, &h.offBits) &&
            ReadU32(file, &h.headerSize);
  if (!ok) return kSourceFileReadError;
  if (h.headerSize == kBmpCoreHeaderBytes) {
    ok = ReadI16AsI32(file, &h.width) && ReadI16AsI32(file, &h.height) &&
         ReadU16(file, &h.planes) && ReadU16(file, &h.bitCount);
  } else {
    ok = ReadI32(file, &h.width) && ReadI32(file, &h.height) && ReadU16(file, &h.planes) &&
         ReadU16(file, &h.bitCount) && ReadU32(file, &h.compression) &&
         ReadU32(file, &h.imageSize) && ReadI32(file, &h.xPelsPerMeter) &&
         ReadI32(file, &h.yPelsPerMeter) && ReadU32(file, &h.colorsUsed) &&
         ReadU32(file, &h.colorsImportant);
  }
  if (!ok) return kSourceFileReadError;
  *header = h;
  return kSourceFileOk;
}

int32_t ReadBmpPalette(const BmpHeader& header, std::FILE* file, BmpColour palette[256],
                       int32_t* colours) {
  std::fill(palette, palette + 256, BmpColour{0, 0, 0});
  *colours = 0;
  const long paletteAt = static_cast<long>(header.headerSize) + kBmpFileHeaderBytes;
  if (header.bitCount == 1) {
    // Only the first entry is looked at, and the file position is kept.
    const long here = std::ftell(file);
    uint8_t entry[3];
    if (here < 0 || std::fseek(file, paletteAt, SEEK_SET) != 0 || !ReadBytes(file, entry, 3))
      return kBmpPaletteShort;
    if (std::fseek(file, here, SEEK_SET) != 0) return kBmpPaletteShort;
    *colours = 2;
    return entry[2] < 255 ? kBmpPaletteDarkFirst : kBmpPaletteOrdinary;
  }
  if (header.bitCount == 24) return kBmpPaletteOrdinary;
  // The headers end where the palette starts; a long header of more than 40
  // bytes is passed over.
  if (std::fseek(file, paletteAt, SEEK_SET) != 0) return kBmpPaletteShort;
  const int32_t most = header.bitCount <= 8 ? 1 << header.bitCount : 256;
  int64_t count = header.colorsUsed ? int64_t{header.colorsUsed} : most;
  count = std::min<int64_t>(count, most);
  const int32_t entryBytes = header.headerSize == kBmpCoreHeaderBytes ? 3 : 4;
  for (int64_t i = 0; i < count; ++i) {
    uint8_t entry[4];
    if (!ReadBytes(file, entry, static_cast<size_t>(entryBytes))) return kBmpPaletteShort;
    palette[i] = BmpColour{entry[0], entry[1], entry[2]};
  }
  *colours = static_cast<int32_t>(count);
  return kBmpPaletteOrdinary;
}

int16_t LoadSourceBmp(const char* path, Image** outImage, int16_t hostMode) {
  if (!path || !outImage) return kSourceFileOpenError;
  FilePtr file(std::fopen(path, "rb"));
  if (!file) return kSourceFileOpenError;

  BmpHeader header;
  if (ReadBmpHeader(file.get(), &header) != kSourceFileOk || header.type != kBmpType ||
      header.compression != 0)
    return kSourceFileNotBmp;
  // What the reader knows how to take: one plane of 1, 4, 8 or 24 bits, a
  // picture stored bottom row first.
  const int32_t bits = header.bitCount;
  if (header.planes != 1 || (bits != 1 && bits != 4 && bits != 8 && bits != 24) ||
      header.width <= 0 || header.height <= 0)
    return kSourceFileNotBmp;
  if (header.width > kMaxSide || header.height > kMaxSide ||
      int64_t{header.width} * header.height * 3 > kMaxPixelBytes)
    return kSourceFileNoMemory;

  BmpColour palette[256];
  int32_t colours = 0;
  if (ReadBmpPalette(header, file.get(), palette, &colours) == kBmpPaletteShort)
    return kSourceFileReadError;

  const int32_t width = header.width, height = header.height;
  OwnedImage image(ImageCreate(kImageBGR24, width, height, ResolutionOf(header.xPelsPerMeter),
                               ResolutionOf(header.yPelsPerMeter), kStorageOptionOneCell,
                               nullptr, nullptr));
  if (!image || !ImagePixelAddress(image.get(), 0, 0)) return kSourceFileNoMemory;
  if (std::fseek(file.get(), static_cast<long>(header.offBits), SEEK_SET) != 0)
    return kSourceFileReadError;

  // Reads go in chunks of whole rows, at most 65000 bytes each. A row longer
  // than a chunk gives no rows a chunk, and nothing is read: the picture
  // stays black.
  const int64_t rowBytes = BmpRowBytes(bits, width);
  const int64_t rowsPerChunk = kChunkBytes / rowBytes;
  if (rowsPerChunk > 0) {
    std::unique_ptr<uint8_t[]> chunk = AllocateTileWork(kChunkBytes);
    if (!chunk) return kSourceFileNoMemory;
    for (int32_t row = 0; row < height;) {
      const int32_t rows = static_cast<int32_t>(std::min<int64_t>(rowsPerChunk, height - row));
      if (!ReadBytes(file.get(), chunk.get(), static_cast<size_t>(rows * rowBytes)))
        return kSourceFileReadError;
      for (int32_t r = 0; r < rows; ++r)
        ExpandRow(chunk.get() + r * rowBytes, bits, width, palette,
                  ImagePixelAddress(image.get(), 0, row + r));
      row += rows;
    }
  }

  Image* converted = ConvertSourceImage(image.get(), SourceTypeForMode(hostMode));
  if (!converted) return kSourceFileNoMemory;
  if (converted == image.get()) image.release();
  *outImage = converted;
  return kSourceFileOk;
}

int32_t SourceTypeForMode(int16_t hostMode) {
  switch (hostMode) {
    case kModeGray: return kImageGrey8;
    case kModeRGB: return kImageBGR24;
    case kModeCMYK: return kImageCMYK32;
    default: return kImageBGR24;
  }
}

}  // namespace fancy
