// Hue, Saturation, Color and Luminosity, each with opacity and at full
// opacity. They work on three colour channels: RGB pixels, and the first
// three bytes of a CMYK pixel, whose fourth byte is never written. A gray
// row has no colour and is left as it is.
//
// Per pixel, with lum(R, G, B) = (77 R + 151 G + 28 B) >> 8:
//  1. A target colour and a luminosity L. Color: the tile's colour, L of
//     the image. Luminosity: the image's colour, L of the tile. Hue: the
//     tile's channels keep their order, but are spread to the image's
//     chroma c = max - min: the top channel stays, the bottom becomes
//     top - c, the middle bottom + ((c k + 128) >> 8) with k = (mid - min)
//     x 256 / (max - min) of the tile. Saturation: the same with the roles
//     changed (the image's channels spread to the tile's chroma). L of the
//     image in both. A gray source of the order has no hue to keep: the
//     target is then that gray.
//  2. d = L - (lum(target) & 255) is added to each channel.
//  3. If a channel left 0..255 the colour is solved again with one end
//     pinned, keeping its luminosity in the weights 0.30, 0.59, 0.11
//     (19661, 38666, 7209 in 16 bits) and the ratio k = (mid - min) x 256
//     / (max - min) of the shifted channels. For the order R < G < B:
//       R < 0:    R' = 0, B' = (L << 16) / (151 k + 7209), G' = B' k >> 8
//       B >= 256: B' = 255, R' = ((L << 16) - 38505 k - 1838295)
//                 / (58327 - 151 k), G' = R' + ((255 - R') k >> 8)
//     and the other five orders by permuting channels and weights: 151 is
//     the 8-bit weight of the middle channel (77, 151 or 28), 7209 the
//     16-bit weight of the top one, 38505 and 1838295 the same times 255,
//     58327 = 65536 - 7209. Every divisor is positive: k lies in 0..256.
//     A top end out of range with two channels equal makes the pixel
//     black; a bottom end out of range with two channels equal is solved
//     with k = 0 or 256.
//  4. With opacity: C + ((I - C) alpha >> 8) per channel, C the colour.
#include "tile/tile_kernels.h"
#include "tile/tile_row_walk.h"

namespace fancy::tile_kernels {
namespace {

using tile_walk::WalkRow;
using tile_walk::WithRowLayouts;

constexpr int32_t kWeight16[3] = {19661, 38666, 7209};  // R, G, B in 16 bits
constexpr int32_t kWeight8[3] = {77, 151, 28};          // R, G, B in 8 bits

inline int32_t Lum(int32_t r, int32_t g, int32_t b) { return (77 * r + 151 * g + 28 * b) >> 8; }

// Indices of the lowest, middle and highest of three values; equal values
// keep their channel order.
inline void Order(const int32_t v[3], int* lo, int* mid, int* hi) {
  int a = 0, b = 1, c = 2;
  if (v[b] < v[a]) {
    const int t = a;
    a = b;
    b = t;
  }
  if (v[c] < v[b]) {
    const int t = b;
    b = c;
    c = t;
  }
  if (v[b] < v[a]) {
    const int t = a;
    a = b;
    b = t;
  }
  *lo = a;
  *mid = b;
  *hi = c;
}

// Spreads `order`'s channels to chroma c while keeping their order and
// top channel.
inline void Spread(const uint8_t order[3], int32_t chroma, int32_t target[3]) {
  const int32_t v[3] = {order[0], order[1], order[2]};
  int lo, mid, hi;
  Order(v, &lo, &mid, &hi);
  if (v[hi] == v[lo]) {
    for (int c = 0; c < 3; ++c) target[c] = v[c];
    return;
  }
  const int32_t k = (v[mid] - v[lo]) * 256 / (v[hi] - v[lo]);
  target[hi] = v[hi];
  target[lo] = v[hi] - chroma;
  target[mid] = target[lo] + ((chroma * k + 128) >> 8);
}

inline int32_t Chroma(const uint8_t v[3]) {
  int32_t lo = v[0], hi = v[0];
  for (int c = 1; c < 3; ++c) {
    if (v[c] < lo) lo = v[c];
    if (v[c] > hi) hi = v[c];
  }
  return hi - lo;
}

inline uint8_t ToByte(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

// Step 3: the shifted colour v, whose luminosity should be L, into bytes.
inline void ClipKeepingLuminosity(const int32_t v[3], int32_t lum, uint8_t out[3]) {
  if (v[0] >= 0 && v[0] <= 255 && v[1] >= 0 && v[1] <= 255 && v[2] >= 0 && v[2] <= 255) {
    for (int c = 0; c < 3; ++c) out[c] = static_cast<uint8_t>(v[c]);
    return;
  }
  int lo, mid, hi;
  Order(v, &lo, &mid, &hi);
  const int32_t range = v[hi] - v[lo];
  const int32_t target = lum << 16;
  if (v[lo] < 0 && range > 0) {
    const int32_t k = (v[mid] - v[lo]) * 256 / range;
    const int32_t top = target / (kWeight8[mid] * k + kWeight16[hi]);
    out[lo] = 0;
    out[hi] = ToByte(top);
    out[mid] = ToByte((top * k) >> 8);
    return;
  }
  if (v[hi] > 255 && v[lo] != v[mid] && v[mid] != v[hi]) {
    const int32_t k = (v[mid] - v[lo]) * 256 / range;
    const int32_t bottom = (target - 255 * kWeight8[mid] * k - 255 * kWeight16[hi]) /
                           (65536 - kWeight16[hi] - kWeight8[mid] * k);
    out[hi] = 255;
    out[lo] = ToByte(bottom);
    out[mid] = ToByte(bottom + (((255 - bottom) * k) >> 8));
    return;
  }
  out[0] = out[1] = out[2] = 0;
}

template <int Mode>
inline void TargetColour(const uint8_t* image, const uint8_t* tile, int32_t target[3],
                         int32_t* lum) {
  if constexpr (Mode == kTileModeColor) {
    for (int c = 0; c < 3; ++c) target[c] = tile[c];
    *lum = Lum(image[0], image[1], image[2]);
  } else if constexpr (Mode == kTileModeLuminosity) {
    for (int c = 0; c < 3; ++c) target[c] = image[c];
    *lum = Lum(tile[0], tile[1], tile[2]);
  } else if constexpr (Mode == kTileModeHue) {
    Spread(tile, Chroma(image), target);
    *lum = Lum(image[0], image[1], image[2]);
  } else {
    Spread(image, Chroma(tile), target);
    *lum = Lum(image[0], image[1], image[2]);
  }
}

template <int Mode, bool kOpacity>
struct ColourOp {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    int32_t target[3];
    int32_t lum;
    TargetColour<Mode>(i, t, target, &lum);
    const int32_t d = lum - (Lum(target[0], target[1], target[2]) & 255);
    int32_t shifted[3];
    for (int c = 0; c < 3; ++c) shifted[c] = static_cast<int16_t>(target[c] + d);
    uint8_t colour[3];
    ClipKeepingLuminosity(shifted, lum, colour);
    for (int c = 0; c < 3; ++c) {
      if constexpr (kOpacity) {
        o[c] = static_cast<uint8_t>(colour[c] + (((i[c] - colour[c]) * alpha) >> 8));
      } else {
        o[c] = colour[c];
      }
    }
  }
};

template <int Mode, bool kOpacity>
void Kernel(const uint8_t* tileData, int32_t tileWidth, int32_t tileRowBytes, int32_t column,
            int32_t row, int32_t imageType, int32_t pixelCount, int32_t tileType, uint8_t* outRow,
            const uint8_t* imageRow, int32_t blend, int32_t stepFraction, int32_t stepWhole,
            int32_t bytesPerPixel) {
  if (imageType == kTilePixelGray) return;
  if (!WalkArgumentsValid(tileData, tileWidth, tileRowBytes, column, row, pixelCount, outRow,
                          imageRow, stepFraction, stepWhole)) {
    return;
  }
  const uint8_t* tileRow = tileData + static_cast<ptrdiff_t>(row) * tileRowBytes;
  const ColourOp<Mode, kOpacity> op{blend & 255};
  WithRowLayouts(imageType, tileType, bytesPerPixel, [&](auto image, auto tile) {
    using Image = decltype(image);
    using Tile = decltype(tile);
    if constexpr (Image::kChannels >= 3) {
      WalkRow<Image, Tile>(tileRow, tileWidth, column, pixelCount, outRow, imageRow, stepFraction,
                           stepWhole, op);
    }
  });
}

}  // namespace

TileRowKernel ColourKernel(int32_t mode, bool fullOpacity) {
  switch (mode) {
    case kTileModeHue:
      return fullOpacity ? &Kernel<kTileModeHue, false> : &Kernel<kTileModeHue, true>;
    case kTileModeSaturation:
      return fullOpacity ? &Kernel<kTileModeSaturation, false> : &Kernel<kTileModeSaturation, true>;
    case kTileModeColor:
      return fullOpacity ? &Kernel<kTileModeColor, false> : &Kernel<kTileModeColor, true>;
    case kTileModeLuminosity:
      return fullOpacity ? &Kernel<kTileModeLuminosity, false> : &Kernel<kTileModeLuminosity, true>;
    default:
      return nullptr;
  }
}

}  // namespace fancy::tile_kernels
