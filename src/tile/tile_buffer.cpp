#include "tile/tile_buffer.h"

#include "tile/tile_pixel.h"

namespace fancy {
namespace {

int32_t NonNegativeMod(int64_t a, int64_t m) {
  int64_t r = a % m;
  if (r < 0) r += m;
  return static_cast<int32_t>(r);
}

}  // namespace

int32_t TileRowBytes(int32_t pixelType, int32_t width) {
  const int32_t bytes = TileBytesPerPixel(pixelType);
  if (bytes == 0 || width < 0) return 0;
  const int64_t rowBytes = (int64_t{8} * bytes * width + 31) / 32 * 4;
  return rowBytes > INT32_MAX ? 0 : static_cast<int32_t>(rowBytes);
}

uint8_t TileOpacityAlpha(int32_t opacity) {
  if (opacity < 0) opacity = 0;
  if (opacity > 100) opacity = 100;
  return static_cast<uint8_t>((100 - opacity) * 255 / 100);
}

void TileRowOrigin(const TileBuffer& tile, int32_t x, int32_t y, int32_t* outColumn,
                   int32_t* outRow) {
  *outColumn = 0;
  *outRow = 0;
  if (tile.width <= 0 || tile.height <= 0) return;
  const int64_t d = int64_t{y} - tile.offsetY;
  *outRow = NonNegativeMod(d, tile.height);
  if (tile.rowShift == 0) {
    *outColumn = NonNegativeMod(int64_t{x} - tile.offsetX, tile.width);
    return;
  }
  // Floor division; for a negative d the truncating form (d + 1) / h - 1.
  const int64_t band = d >= 0 ? d / tile.height : (d + 1) / tile.height - 1;
  *outColumn = NonNegativeMod(-(int64_t{tile.offsetX} + band * tile.rowShift), tile.width);
}

}  // namespace fancy
