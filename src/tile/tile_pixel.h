// The tile effect's own pixel codes and how each lays its channels out.
//
// These codes are not ImageType values: the tile, its source cell and the
// image rows it is merged into all use them. Type 10 is RGB in four bytes,
// a first byte that the effect never reads or writes, then three used ones.
#pragma once

#include <cstdint>

namespace fancy {

enum : int32_t {
  kTilePixelGray = 1,   // one byte
  kTilePixelRgb = 3,    // three bytes R, G, B
  kTilePixelCmyk = 4,   // four bytes
  kTilePixelRgb4 = 10,  // a skipped byte, then R, G, B
};

struct TilePixelLayout {
  int32_t bytes;     // bytes per pixel
  int32_t offset;    // first used byte
  int32_t channels;  // used bytes from offset on
};

// The layout of a pixel type; false for an unknown type.
inline bool GetTilePixelLayout(int32_t type, TilePixelLayout* layout) {
  switch (type) {
    case kTilePixelGray:
      *layout = {1, 0, 1};
      return true;
    case kTilePixelRgb:
      *layout = {3, 0, 3};
      return true;
    case kTilePixelCmyk:
      *layout = {4, 0, 4};
      return true;
    case kTilePixelRgb4:
      *layout = {4, 1, 3};
      return true;
    default:
      return false;
  }
}

// Bytes per pixel of a type, 0 for an unknown one.
inline int32_t TileBytesPerPixel(int32_t type) {
  TilePixelLayout layout;
  return GetTilePixelLayout(type, &layout) ? layout.bytes : 0;
}

// Pixels of the two types carry the same channels, so one can be copied
// into the other (RGB in three bytes and in four bytes mix freely).
inline bool TilePixelTypesMatch(int32_t a, int32_t b) {
  TilePixelLayout la, lb;
  return GetTilePixelLayout(a, &la) && GetTilePixelLayout(b, &lb) && la.channels == lb.channels;
}

}  // namespace fancy
