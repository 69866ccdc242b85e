#include "bmp_file.h"

#include <algorithm>

#include "imaging/bmp_header.h"
#include "platform/byte_order.h"

namespace fancy {

namespace {

enum : uint32_t { kCompressionNone = 0, kCompressionRle8 = 1, kCompressionRle4 = 2 };

bool Fail(std::string* error, const std::string& text) {
  *error = text;
  return false;
}

}  // namespace

bool LooksLikeBmp(const uint8_t* data, size_t size) {
  return size >= 2 && data[0] == 'B' && data[1] == 'M';
}

bool DecodeBmp(const uint8_t* data, size_t size, FilePicture* picture, std::string* error) {
  if (!LooksLikeBmp(data, size)) return Fail(error, "not a BMP file");
  if (size < kBmpFileHeaderBytes + 4) return Fail(error, "the BMP file is truncated in its header");
  uint32_t fileSize = LoadLE32(data + 2);
  uint32_t pixelOffset = LoadLE32(data + 10);
  if (fileSize != 0 && fileSize > size)
    return Fail(error, "the BMP file is truncated: its header gives " + std::to_string(fileSize) +
                           " bytes, the file has " + std::to_string(size));

  const uint8_t* dib = data + kBmpFileHeaderBytes;
  uint32_t headerSize = LoadLE32(dib);
  if (headerSize != kBmpCoreHeaderBytes && headerSize < kBmpInfoHeaderBytes)
    return Fail(error, "the BMP header has an unknown size (" + std::to_string(headerSize) + ")");
  if (headerSize > size - kBmpFileHeaderBytes)
    return Fail(error, "the BMP file is truncated in its header");

  int64_t width, height;
  uint32_t bits, compression = kCompressionNone, coloursUsed = 0;
  uint32_t paletteEntryBytes;
  if (headerSize == kBmpCoreHeaderBytes) {
    width = LoadLE16(dib + 4);
    height = LoadLE16(dib + 6);
    bits = LoadLE16(dib + 10);
    paletteEntryBytes = 3;
  } else {
    width = int32_t(LoadLE32(dib + 4));
    height = int32_t(LoadLE32(dib + 8));
    bits = LoadLE16(dib + 14);
    compression = LoadLE32(dib + 16);
    coloursUsed = LoadLE32(dib + 32);
    paletteEntryBytes = 4;
  }
  if (LoadLE16(dib + (headerSize == kBmpCoreHeaderBytes ? 8 : 12)) != 1)
    return Fail(error, "the BMP header is damaged (planes is not 1)");
  if (compression == kCompressionRle8 || compression == kCompressionRle4)
    return Fail(error, "run-length compressed BMP files are not supported; save it uncompressed");
  if (compression != kCompressionNone)
    return Fail(error, "BMP compression " + std::to_string(compression) + " is not supported");
  if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32)
    return Fail(error, "BMP files of " + std::to_string(bits) + " bits a pixel are not supported");

  bool topDown = height < 0;
  if (topDown) height = -height;
  if (!CheckPictureSize(width, height, error)) return false;

  // The palette sits between the headers and the pixels. Without a count
  // it is as long as the depth allows, or as the room before the pixels
  // (writers of the core form often shorten it).
  uint64_t paletteStart = kBmpFileHeaderBytes + uint64_t(headerSize);
  uint32_t paletteCount = 0;
  if (bits <= 8) {
    uint32_t most = 1u << bits;
    paletteCount = coloursUsed;
    if (coloursUsed == 0) {
      uint64_t room = pixelOffset > paletteStart ? (pixelOffset - paletteStart) / paletteEntryBytes : 0;
      paletteCount = uint32_t(std::min<uint64_t>(most, room));
    }
    if (paletteCount > most)
      return Fail(error, "the BMP header is damaged: it gives " + std::to_string(coloursUsed) +
                             " palette colours for " + std::to_string(bits) + " bits a pixel");
    if (paletteCount == 0) return Fail(error, "the BMP file has no palette");
  }
  uint64_t paletteEnd = paletteStart + uint64_t(paletteCount) * paletteEntryBytes;
  if (paletteEnd > size) return Fail(error, "the BMP file is truncated in its palette");
  if (pixelOffset < paletteEnd)
    return Fail(error, "the BMP header is damaged: the pixels would start inside the palette");

  uint64_t stride = uint64_t(BmpRowBytes(int32_t(bits), width));
  uint64_t pixelBytes = stride * uint64_t(height);
  if (pixelOffset > size || pixelBytes > size - pixelOffset)
    return Fail(error, "the BMP file is truncated: its pixels need " + std::to_string(pixelBytes) +
                           " bytes from offset " + std::to_string(pixelOffset) + ", the file has " +
                           std::to_string(size));

  uint8_t palette[256][3] = {};  // red, green, blue
  bool greyPalette = true;
  for (uint32_t i = 0; i < paletteCount; ++i) {
    const uint8_t* entry = data + paletteStart + uint64_t(i) * paletteEntryBytes;
    palette[i][0] = entry[2];
    palette[i][1] = entry[1];
    palette[i][2] = entry[0];
    if (entry[0] != entry[1] || entry[1] != entry[2]) greyPalette = false;
  }

  picture->width = int32_t(width);
  picture->height = int32_t(height);
  picture->mode = (bits <= 8 && greyPalette) ? PixelMode::kGrey : PixelMode::kRGB;
  const int planes = PlanesOf(picture->mode);
  picture->pixels.assign(size_t(width) * size_t(height) * size_t(planes), 0);

  for (int64_t y = 0; y < height; ++y) {
    int64_t fileRow = topDown ? y : height - 1 - y;
    const uint8_t* row = data + pixelOffset + uint64_t(fileRow) * stride;
    uint8_t* out = picture->pixels.data() + size_t(y) * size_t(width) * size_t(planes);
    for (int64_t x = 0; x < width; ++x, out += planes) {
      if (bits >= 24) {
        const uint8_t* p = row + x * (bits / 8);
        out[0] = p[2];
        out[1] = p[1];
        out[2] = p[0];
        continue;
      }
      uint32_t index;
      if (bits == 8) index = row[x];
      else if (bits == 4) index = (row[x / 2] >> ((x & 1) ? 0 : 4)) & 0x0F;
      else index = (row[x / 8] >> (7 - (x & 7))) & 1;
      if (index >= paletteCount)
        return Fail(error, "the BMP file is damaged: a pixel names colour " + std::to_string(index) +
                               " of a palette of " + std::to_string(paletteCount));
      if (planes == 1) {
        out[0] = palette[index][0];
      } else {
        out[0] = palette[index][0];
        out[1] = palette[index][1];
        out[2] = palette[index][2];
      }
    }
  }
  return true;
}

std::vector<uint8_t> EncodeBmp(const FilePicture& picture) {
  std::vector<uint8_t> out;
  if (picture.mode == PixelMode::kCMYK || picture.width <= 0 || picture.height <= 0) return out;
  const bool grey = picture.mode == PixelMode::kGrey;
  const uint32_t bits = grey ? 8 : 24;
  const uint32_t paletteBytes = grey ? 256 * 4 : 0;
  const uint64_t stride = uint64_t(BmpRowBytes(int32_t(bits), picture.width));
  const uint64_t pixelOffset = kBmpFileHeaderBytes + kBmpInfoHeaderBytes + paletteBytes;
  const uint64_t total = pixelOffset + stride * uint64_t(picture.height);
  if (total > 0xFFFFFFFFu) return out;
  out.reserve(size_t(total));

  AppendBmpHeaders({.type = kBmpType,
                    .fileSize = uint32_t(total),
                    .offBits = uint32_t(pixelOffset),
                    .headerSize = kBmpInfoHeaderBytes,
                    .width = picture.width,
                    .height = picture.height,  // bottom-up
                    .planes = 1,
                    .bitCount = uint16_t(bits),
                    .compression = kCompressionNone,
                    .imageSize = uint32_t(stride * uint64_t(picture.height)),
                    .xPelsPerMeter = 2835,  // 72 dots an inch
                    .yPelsPerMeter = 2835,
                    .colorsUsed = grey ? 256u : 0u},
                   out);
  if (grey) {
    for (uint32_t i = 0; i < 256; ++i) {
      out.push_back(uint8_t(i));
      out.push_back(uint8_t(i));
      out.push_back(uint8_t(i));
      out.push_back(0);
    }
  }

  const int planes = PlanesOf(picture.mode);
  for (int32_t y = picture.height - 1; y >= 0; --y) {
    const uint8_t* in = picture.pixels.data() + size_t(y) * size_t(picture.width) * size_t(planes);
    size_t start = out.size();
    for (int32_t x = 0; x < picture.width; ++x, in += planes) {
      if (grey) {
        out.push_back(in[0]);
      } else {
        out.push_back(in[2]);
        out.push_back(in[1]);
        out.push_back(in[0]);
      }
    }
    while (out.size() - start < stride) out.push_back(0);
  }
  return out;
}

}  // namespace fancy
