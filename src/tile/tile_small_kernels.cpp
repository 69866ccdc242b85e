// Normal, Darken, Lighten, Multiply and Screen, each with opacity and at
// full opacity, channel by channel (I image, T tile, alpha the image's
// weight, beta = 255 - alpha):
//
//   mode      with opacity                          full opacity
//   Normal    T + ((I - T) alpha >> 8)              T
//   Darken    I if I < T, else as Normal            min(I, T)
//   Lighten   I if I > T, else as Normal            max(I, T)
//   Multiply  ((I beta + (alpha << 8)) T) >> 16     (I T) >> 8
//   Screen    I + ((((255 - I) T >> 8) beta) >> 8)  I + ((255 - I) T >> 8)
//
// The shifts truncate; Normal's product may be negative and is shifted
// arithmetically. These are the effect's exact bytes. At alpha 0 Normal,
// Darken and Lighten give the same bytes in both forms; Multiply and
// Screen lose up to one level in the opacity form (beta is 255, not 256).
#include "tile/tile_kernels.h"
#include "tile/tile_row_walk.h"

namespace fancy::tile_kernels {
namespace {

using tile_walk::WalkRow;
using tile_walk::WithRowLayouts;

template <int C>
struct Normal {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    for (int c = 0; c < C; ++c) o[c] = static_cast<uint8_t>(t[c] + (((i[c] - t[c]) * alpha) >> 8));
  }
};
template <int C>
struct NormalFull {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t*, const uint8_t* t) const {
    for (int c = 0; c < C; ++c) o[c] = t[c];
  }
};

template <int C>
struct Darken {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    for (int c = 0; c < C; ++c) {
      const int32_t image = i[c], tile = t[c];
      o[c] = static_cast<uint8_t>(image < tile ? image : tile + (((image - tile) * alpha) >> 8));
    }
  }
};
template <int C>
struct DarkenFull {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    for (int c = 0; c < C; ++c) o[c] = i[c] < t[c] ? i[c] : t[c];
  }
};

template <int C>
struct Lighten {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    for (int c = 0; c < C; ++c) {
      const int32_t image = i[c], tile = t[c];
      o[c] = static_cast<uint8_t>(image > tile ? image : tile + (((image - tile) * alpha) >> 8));
    }
  }
};
template <int C>
struct LightenFull {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    for (int c = 0; c < C; ++c) o[c] = i[c] > t[c] ? i[c] : t[c];
  }
};

template <int C>
struct Multiply {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    const int32_t beta = 255 - alpha;
    for (int c = 0; c < C; ++c) {
      o[c] = static_cast<uint8_t>(((i[c] * beta + (alpha << 8)) * t[c]) >> 16);
    }
  }
};
template <int C>
struct MultiplyFull {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    for (int c = 0; c < C; ++c) o[c] = static_cast<uint8_t>((i[c] * t[c]) >> 8);
  }
};

template <int C>
struct Screen {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    const int32_t beta = 255 - alpha;
    for (int c = 0; c < C; ++c) {
      o[c] = static_cast<uint8_t>(i[c] + (((((255 - i[c]) * t[c]) >> 8) * beta) >> 8));
    }
  }
};
template <int C>
struct ScreenFull {
  int32_t alpha;
  void operator()(uint8_t* o, const uint8_t* i, const uint8_t* t) const {
    for (int c = 0; c < C; ++c) o[c] = static_cast<uint8_t>(i[c] + (((255 - i[c]) * t[c]) >> 8));
  }
};

template <template <int> class Op>
void Kernel(const uint8_t* tileData, int32_t tileWidth, int32_t tileRowBytes, int32_t column,
            int32_t row, int32_t imageType, int32_t pixelCount, int32_t tileType, uint8_t* outRow,
            const uint8_t* imageRow, int32_t blend, int32_t stepFraction, int32_t stepWhole,
            int32_t bytesPerPixel) {
  if (!WalkArgumentsValid(tileData, tileWidth, tileRowBytes, column, row, pixelCount, outRow,
                          imageRow, stepFraction, stepWhole)) {
    return;
  }
  const uint8_t* tileRow = tileData + static_cast<ptrdiff_t>(row) * tileRowBytes;
  const int32_t alpha = blend & 255;
  WithRowLayouts(imageType, tileType, bytesPerPixel, [&](auto image, auto tile) {
    using Image = decltype(image);
    using Tile = decltype(tile);
    const Op<Image::kChannels> op{alpha};
    WalkRow<Image, Tile>(tileRow, tileWidth, column, pixelCount, outRow, imageRow, stepFraction,
                         stepWhole, op);
  });
}

}  // namespace

bool WalkArgumentsValid(const uint8_t* tileData, int32_t tileWidth, int32_t tileRowBytes,
                        int32_t column, int32_t row, int32_t pixelCount, const uint8_t* outRow,
                        const uint8_t* imageRow, int32_t stepFraction, int32_t stepWhole) {
  return tileData && outRow && imageRow && tileWidth > 0 && tileRowBytes > 0 && column >= 0 &&
         column < tileWidth && row >= 0 && pixelCount >= 0 && stepWhole >= 0 && stepFraction >= 0 &&
         stepFraction < tile_walk::kStepUnit;
}

TileRowKernel SmallKernel(int32_t mode, bool fullOpacity) {
  switch (mode) {
    case kTileModeNormal:
      return fullOpacity ? &Kernel<NormalFull> : &Kernel<Normal>;
    case kTileModeDarken:
      return fullOpacity ? &Kernel<DarkenFull> : &Kernel<Darken>;
    case kTileModeLighten:
      return fullOpacity ? &Kernel<LightenFull> : &Kernel<Lighten>;
    case kTileModeMultiply:
      return fullOpacity ? &Kernel<MultiplyFull> : &Kernel<Multiply>;
    case kTileModeScreen:
      return fullOpacity ? &Kernel<ScreenFull> : &Kernel<Screen>;
    default:
      return nullptr;
  }
}

}  // namespace fancy::tile_kernels
