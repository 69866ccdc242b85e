// Pixel types of an Image and what follows from them: bits a pixel, row size
// and the colour model that a CLRColor for the type is held in.
#pragma once

#include <cstdint>

namespace fancy {

enum ImageType : int32_t {
  kImageBGR24 = 1,       // bytes blue, green, red
  kImageCMYK32 = 3,      // bytes cyan, magenta, yellow, black; 255 is full ink
  kImageGrey8 = 5,       // one grey byte
  kImageBilevel = 6,     // one bit, most significant first; a set bit is 1
  kImageNewIndexed8 = 8, // creation only: type 10, 8 bits, own 236-entry palette
  kImageNewIndexed4 = 9, // creation only: type 10, 4 bits, own 16-entry palette
  kImageIndexed = 10,    // palette indices of 1, 4 or 8 bits
  kImageLab24 = 11,      // bytes lightness, a, b; a and b centred on 128
  kImageRGB48 = 12,      // three little-endian 16-bit channels, blue first
  kImageRaw48 = 13,      // three 16-bit channels, copied but never merged
  kImageGrey16 = 14,     // one little-endian 16-bit grey value
  kImageMask = 99,       // coverage: 0 outside, 255 fully inside
};

enum ImageStorageKind : int32_t {
  kStorageTiled = 1,      // grid of tiles from the TileCache
  kStorageBlock = 2,      // one cell on a block allocated here
  kStorageBuffer = 3,     // one cell on the caller's pixels
  kStorageTiledView = 4,  // view of a kind 1 image
  kStorageBlockView = 5,  // view of a one-cell image
};

// Bits a pixel of a type that has a fixed depth; 0 for type 10, whose depth
// is chosen at creation, and for the creation-only codes; -1 for codes that
// name no type.
int32_t ImageTypeBits(int32_t type);

// True for the types an Image can have (1, 3, 5, 6, 10, 11, 12, 13, 14, 99).
bool ImageTypeIsValid(int32_t type);

// ((bits x width + 7) / 8 + 3) with the low two bits cleared: a row is always
// a multiple of four bytes. -1 when width is not positive or the row would not
// fit in 31 bits.
int32_t ImageRowBytesFor(int32_t bitsPerPixel, int32_t width);

// Bytes that hold `width` pixels, with no padding: (bits x width + 7) / 8.
int64_t ImagePixelBytesFor(int32_t bitsPerPixel, int64_t width);

// The CLRModel of colours for the type: 5 RGB, 3 CMYK, 9 grey, 8 1-bit,
// 13 palette index, 18 Lab, 23 RGB 48, 24 grey 16; 0 for type 13 and codes
// that name no type.
uint16_t ImageTypeModel(int32_t type);

// The cell size of a tiled image of the type: each tile holds about 64 KB.
// rowBytes is that of a row of `width` pixels at `bits` (the depth matters for
// type 10 only).
struct TileShape {
  int32_t width;
  int32_t height;
  int32_t rowBytes;
};
TileShape ImageTileShape(int32_t type, int32_t bits);

}  // namespace fancy
