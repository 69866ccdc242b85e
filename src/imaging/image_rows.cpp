#include "imaging/image_rows.h"

#include <algorithm>
#include <cstring>

#include "imaging/bit_copy.h"
#include "imaging/tile_walk.h"

namespace fancy {

int32_t PixelBytesOf(int32_t type, int32_t bits) {
  if (type == kImageIndexed) return bits == 8 ? 1 : 0;
  int32_t b = ImageTypeBits(type);
  return b >= 8 ? b / 8 : 0;
}

int32_t ImagePixelBytes(const Image* image) {
  return image ? PixelBytesOf(image->type, image->bitsPerPixel) : 0;
}

void RepeatPixelBytes(uint8_t* p, int64_t count, const uint8_t* pixel, int32_t size) {
  if (count <= 0) return;
  if (size == 1) {
    std::memset(p, pixel[0], static_cast<size_t>(count));
    return;
  }
  std::memcpy(p, pixel, static_cast<size_t>(size));
  // Doubling copies: each round copies what is already written.
  int64_t done = 1;
  while (done < count) {
    int64_t n = std::min(done, count - done);
    std::memcpy(p + done * size, p, static_cast<size_t>(n * size));
    done += n;
  }
}

namespace {

// Writes `count` pixels of a solid cell's colour at bit `bit` of dst.
void WriteSolid(const Image* image, const CLRColor& colour, uint8_t* dst, int64_t bit,
                int32_t count) {
  uint8_t pixel[8] = {};
  int32_t size = ImagePixelFromColor(image->type, image->bitsPerPixel, colour, pixel);
  int32_t bits = image->bitsPerPixel;
  if (bits >= 8) {
    if (size > 0) RepeatPixelBytes(dst + bit / 8, count, pixel, size);
    return;
  }
  uint8_t fill = bits == 1 ? (pixel[0] ? 0xFF : 0x00) : static_cast<uint8_t>((pixel[0] & 15) * 0x11);
  uint8_t source[64];
  std::memset(source, fill, sizeof source);
  int64_t total = int64_t{count} * bits;
  for (int64_t done = 0; done < total; done += 512)
    CopyBits(dst, bit + done, source, 0, std::min<int64_t>(512, total - done));
}

}  // namespace

const uint8_t* ImageRowPixels(Image* image, int32_t y, int32_t x0, int32_t count,
                              uint8_t* buffer, int32_t* bit) {
  *bit = 0;
  if (!image || !image->tiles || count <= 0) return nullptr;
  int32_t bits = image->bitsPerPixel;
  if (image->tileRows == 1 && image->tileColumns == 1 && !image->tiles[0][0].tile) {
    TileCell* cell = &image->tiles[0][0];
    if (!cell->pixels) return nullptr;
    *bit = CellBitOffset(cell, x0, bits);
    return CellPixelAddress(cell, x0, y, bits);
  }
  Rect rect = MakeRect(x0, y, count, 1);
  TileWalk walk;
  Rect part;
  for (TileCell* cell = TileWalkOpen(&walk, image, rect, CellLockReadSolid, &part); cell;
       cell = TileWalkNext(&walk, &part)) {
    int64_t at = int64_t{part.left - x0} * bits;
    int32_t n = part.right - part.left + 1;
    if (const CLRColor* solid = CellSolidColor(cell)) {
      WriteSolid(image, *solid, buffer, at, n);
    } else if (bits >= 8) {
      std::memcpy(buffer + at / 8, CellPixelAddress(cell, part.left, y, bits),
                  static_cast<size_t>(n) * (bits / 8));
    } else {
      CopyBits(buffer, at, CellPixelAddress(cell, part.left, y, bits),
               CellBitOffset(cell, part.left, bits), int64_t{n} * bits);
    }
  }
  return TileWalkClose(&walk) ? buffer : nullptr;
}

}  // namespace fancy
