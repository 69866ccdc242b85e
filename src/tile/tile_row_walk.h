// The row walker shared by the merge kernels (internal to the tile
// effect). A kernel is a per-pixel operation; the walker moves through the
// image row and the tile row and hands the operation the three pixels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tile/tile_pixel.h"

namespace fancy::tile_walk {

// A pixel layout known at compile time: bytes per pixel, first used byte,
// used channels.
template <int B, int O, int C>
struct Layout {
  static constexpr int kBytes = B;
  static constexpr int kOffset = O;
  static constexpr int kChannels = C;
};
using Gray = Layout<1, 0, 1>;
using Rgb3 = Layout<3, 0, 3>;
using Rgb4 = Layout<4, 1, 3>;
using Cmyk = Layout<4, 0, 4>;

// Calls fn(ImageLayout{}, TileLayout{}) for an image and a tile type with
// the same channels. False, without a call, for any other pair or for a
// tile step that does not match the tile's type.
template <class Fn>
bool WithRowLayouts(int32_t imageType, int32_t tileType, int32_t tileBytesPerPixel, Fn&& fn) {
  if (tileBytesPerPixel != TileBytesPerPixel(tileType)) return false;
  auto withTile = [&](auto image) {
    switch (tileType) {
      case kTilePixelRgb:
        fn(image, Rgb3{});
        return true;
      case kTilePixelRgb4:
        fn(image, Rgb4{});
        return true;
      default:
        return false;
    }
  };
  switch (imageType) {
    case kTilePixelGray:
      if (tileType != kTilePixelGray) return false;
      fn(Gray{}, Gray{});
      return true;
    case kTilePixelCmyk:
      if (tileType != kTilePixelCmyk) return false;
      fn(Cmyk{}, Cmyk{});
      return true;
    case kTilePixelRgb:
      return withTile(Rgb3{});
    case kTilePixelRgb4:
      return withTile(Rgb4{});
    default:
      return false;
  }
}

inline constexpr int32_t kStepUnit = 100000;

// Walks pixelCount pixels: op(out, image, tile) gets pointers to the first
// used byte of each. The tile position starts at column and wraps at
// tileWidth (see tile_merge.h for the stepping).
template <class Image, class Tile, class Op>
void WalkRow(const uint8_t* tileRow, int32_t tileWidth, int32_t column, int32_t pixelCount,
             uint8_t* out, const uint8_t* image, int32_t stepFraction, int32_t stepWhole,
             const Op& op) {
  out += Image::kOffset;
  image += Image::kOffset;
  tileRow += Tile::kOffset;
  int64_t position = column;
  if (stepWhole == 0 && stepFraction == 0) {
    // One tile pixel per output pixel: runs up to the tile's end, each a
    // plain loop the compiler can widen.
    int32_t done = 0;
    while (done < pixelCount) {
      int32_t run = tileWidth - static_cast<int32_t>(position);
      if (run > pixelCount - done) run = pixelCount - done;
      const uint8_t* t = tileRow + position * Tile::kBytes;
      for (int32_t i = 0; i < run; ++i) {
        op(out + static_cast<ptrdiff_t>(i) * Image::kBytes,
           image + static_cast<ptrdiff_t>(i) * Image::kBytes,
           t + static_cast<ptrdiff_t>(i) * Tile::kBytes);
      }
      out += static_cast<ptrdiff_t>(run) * Image::kBytes;
      image += static_cast<ptrdiff_t>(run) * Image::kBytes;
      done += run;
      position = 0;
    }
    return;
  }
  const int64_t whole = int64_t{stepWhole} + 1;
  int32_t accumulator = -kStepUnit;
  for (int32_t i = 0; i < pixelCount; ++i) {
    op(out, image, tileRow + position * Tile::kBytes);
    out += Image::kBytes;
    image += Image::kBytes;
    position += whole;
    accumulator += stepFraction;
    if (accumulator >= 0) {
      ++position;
      accumulator -= kStepUnit;
    }
    if (position >= tileWidth) position %= tileWidth;
  }
}

}  // namespace fancy::tile_walk
