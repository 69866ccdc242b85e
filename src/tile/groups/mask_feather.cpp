// Feathering by band mask, for the groups whose cell edges are not all
// axes: P1, Cm, Cmm, P4g, P3, P31m and P6.
//
// The mask (tile/band_mask.h) covers the cell grown by outerMargin. Its
// pixels fall in three regions: deep inside (level 2F + 1) and beyond the
// ramp (level 0) pixels are copied; in the band between, each pixel is
// the average of the picture at the pixel and at its images under the
// group's band maps (feather_maps.h), each weighted by the mask's level
// there, channel by channel, with integer division (0 if no weight).
// Images outside the mask or the picture's margins weigh nothing.
#include <cstddef>

#include "frame/result_codes.h"
#include "tile/band_mask.h"
#include "tile/groups/feather_maps.h"
#include "tile/groups/groups.h"
#include "tile/groups/tile_build.h"

namespace fancy {
namespace {

using tile_build::WithLayouts;

struct Picture {
  const uint8_t* corner;
  int32_t stride;
  int32_t bytes;
  int32_t top, left, bottom, right;  // readable rows and columns, inclusive

  bool Readable(int32_t x, int32_t y) const {
    return y >= top && y <= bottom && x >= left && x <= right;
  }
  const uint8_t* At(int32_t x, int32_t y) const {
    return corner + static_cast<ptrdiff_t>(y) * stride + static_cast<ptrdiff_t>(x) * bytes;
  }
};

template <class Px>
void FeatherCell(const FeatherGeometry& geometry, const BandMask& mask, int32_t deep,
                 const Picture& picture, int32_t width, int32_t height, uint8_t* cell,
                 int32_t cellStride) {
  for (int32_t y = 0; y < height; ++y) {
    uint8_t* out = cell + static_cast<ptrdiff_t>(y) * cellStride;
    for (int32_t x = 0; x < width; ++x, out += Px::kDstBytes) {
      const uint8_t* in = picture.At(x, y);
      const int32_t level = mask.At(x, y);
      if (level == 0 || level >= deep) {
        Px::Copy(out, in);
        continue;
      }
      int32_t sum[4] = {};
      int32_t weight = level;
      for (int ch = 0; ch < Px::kChannels; ++ch) sum[ch] = level * Px::Get(in, ch);
      for (int32_t k = 0; k < geometry.mapCount; ++k) {
        int32_t px, py;
        ApplyFeatherMap(geometry.maps[k], x, y, &px, &py);
        const int32_t w = mask.At(px, py);
        if (w == 0 || !picture.Readable(px, py)) continue;
        const uint8_t* partner = picture.At(px, py);
        for (int ch = 0; ch < Px::kChannels; ++ch) sum[ch] += w * Px::Get(partner, ch);
        weight += w;
      }
      for (int ch = 0; ch < Px::kChannels; ++ch) {
        Px::Put(out, ch, static_cast<uint8_t>(weight > 0 ? sum[ch] / weight : 0));
      }
    }
  }
}

int16_t FeatherByMask(Symmetry& symmetry, const uint8_t* source, int32_t sourceStride,
                      int32_t sourceType, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  FeatherGeometry geometry;
  const int32_t f = symmetry.feather;
  const int32_t width = symmetry.extentWidth, height = symmetry.extentHeight;
  const int32_t sourceBytes = TileBytesPerPixel(sourceType);
  const int32_t cellBytes = TileBytesPerPixel(cellType);
  if (!GetFeatherGeometry(symmetry, &geometry) || !source || !cell || sourceBytes == 0 ||
      cellBytes == 0 || f < 0 || f > 127 || width <= 0 || height <= 0 ||
      sourceStride < int64_t{width} * sourceBytes || cellStride < int64_t{width} * cellBytes) {
    return kErrFilterFailure;
  }
  symmetry.SetOuterMargin();
  symmetry.SetOuterBounds();
  const int16_t* outer = symmetry.outerMargin;
  BandMask mask;
  const int16_t built = BuildBandMask(geometry.outline, f, -outer[kSideLeft], -outer[kSideTop],
                                      width + outer[kSideLeft] + outer[kSideRight],
                                      height + outer[kSideTop] + outer[kSideBottom], &mask);
  if (built != kNoError) return built;
  const int16_t* margin = symmetry.featherMargin;
  const Picture picture = {source,
                           sourceStride,
                           sourceBytes,
                           -margin[kSideTop],
                           -margin[kSideLeft],
                           height - 1 + margin[kSideBottom],
                           width - 1 + margin[kSideRight]};
  return WithLayouts(sourceType, cellType, [&](auto px) -> int16_t {
    FeatherCell<decltype(px)>(geometry, mask, 2 * f + 1, picture, width, height, cell, cellStride);
    return kNoError;
  });
}

}  // namespace

int16_t P1::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                               int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByMask(*this, source, sourceStride, sourceType, cell, cellStride, cellType);
}

int16_t Cm::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                               int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByMask(*this, source, sourceStride, sourceType, cell, cellStride, cellType);
}

int16_t Cmm::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                                int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByMask(*this, source, sourceStride, sourceType, cell, cellStride, cellType);
}

int16_t P4g::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                                int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByMask(*this, source, sourceStride, sourceType, cell, cellStride, cellType);
}

int16_t P3::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                               int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByMask(*this, source, sourceStride, sourceType, cell, cellStride, cellType);
}

int16_t P31m::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                                 int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByMask(*this, source, sourceStride, sourceType, cell, cellStride, cellType);
}

int16_t P6::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                               int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByMask(*this, source, sourceStride, sourceType, cell, cellStride, cellType);
}

}  // namespace fancy
