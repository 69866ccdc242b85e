// The one tile of the tile effect, where its rows start for a row of the
// image, and the effect's opacity rule.
#pragma once

#include <cstdint>

namespace fancy {

// The nine merge modes of the effect's Mode list, in the list's order.
// Their names are the string rows kTileModeFirstString + mode - 1.
enum : int16_t {
  kTileModeNormal = 1,
  kTileModeDarken = 2,
  kTileModeLighten = 3,
  kTileModeHue = 4,
  kTileModeSaturation = 5,
  kTileModeColor = 6,
  kTileModeLuminosity = 7,
  kTileModeMultiply = 8,
  kTileModeScreen = 9,
};
inline constexpr int16_t kTileModeFirst = kTileModeNormal;
inline constexpr int16_t kTileModeLast = kTileModeScreen;
inline constexpr uint32_t kTileModeFirstString = 1234;

// TileBuffer::state when nothing is allocated.
inline constexpr int32_t kTileBufferEmpty = 5;

struct TileBuffer {
  int32_t state;  // kTileBufferEmpty: nothing allocated
  void* handle;   // the host's buffer that holds the rows
  uint8_t* data;  // first byte of row 0 while locked
  int32_t rowBytes;
  int16_t pixelType;      // TilePixelType
  int16_t bytesPerPixel;  // 1, 3 or 4
  int32_t height;         // of the tile, in pixels
  int32_t width;
  int32_t imageHeight;  // of the filtered image
  int32_t imageWidth;
  int32_t offsetX;  // where the tile's origin lies for this pass
  int32_t offsetY;
  int32_t panX;  // the user's offset
  int32_t panY;
  uint8_t opacity;   // percent, 100 is all tile
  int16_t mode;      // kTileModeNormal .. kTileModeScreen
  int32_t rowShift;  // the group's: each next band of tiles moves by it
  uint8_t rowFlag;   // 1 on the final path; the kernels do not use it
};

// Row bytes of a tile row: whole 32-bit words, as device-independent
// bitmaps have them. 0 for an unknown type or a negative width.
int32_t TileRowBytes(int32_t pixelType, int32_t width);

// The weight of the image in a merge: (100 - opacity) x 255 / 100,
// truncated. Opacity 100 gives 0 (all tile), 1 gives 252, 0 gives 255.
// Opacities outside 0..100 count as the nearer end.
uint8_t TileOpacityAlpha(int32_t opacity);

// The tile pixel that image position (x, y) shows. Without a row shift it
// is ((x - offsetX) mod width, (y - offsetY) mod height). With one, each
// band of tile rows q = floor((y - offsetY) / height) is moved right by
// q x rowShift, and the column returned is the band's column for x = 0:
// the caller starts its row there whatever x is. Both results are made
// non-negative; a tile without pixels gives 0, 0.
void TileRowOrigin(const TileBuffer& tile, int32_t x, int32_t y, int32_t* outColumn,
                   int32_t* outRow);

}  // namespace fancy
