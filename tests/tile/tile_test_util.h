// Helpers of the tile tests: pixel buffers of exact size (so that the
// address sanitizer sees any read or write past them) and groups set up as
// the tile maker sets them up.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "tile/groups/groups.h"
#include "tile/tile_pixel.h"

namespace fancy::testing {

struct Pixels {
  int32_t width = 0;
  int32_t height = 0;
  int32_t type = 0;
  int32_t bytes = 0;
  int32_t stride = 0;
  std::vector<uint8_t> data;

  Pixels() = default;
  Pixels(int32_t w, int32_t h, int32_t pixelType, uint8_t fill = 0)
      : width(w),
        height(h),
        type(pixelType),
        bytes(TileBytesPerPixel(pixelType)),
        stride(w * bytes),
        data(static_cast<size_t>(w) * h * bytes, fill) {}

  uint8_t* Row(int32_t r) { return data.data() + static_cast<size_t>(r) * stride; }
  const uint8_t* Row(int32_t r) const { return data.data() + static_cast<size_t>(r) * stride; }
  uint8_t* At(int32_t r, int32_t c) { return Row(r) + static_cast<size_t>(c) * bytes; }
  const uint8_t* At(int32_t r, int32_t c) const { return Row(r) + static_cast<size_t>(c) * bytes; }
};

// A small generator of test bytes.
struct Lcg {
  uint32_t state;
  uint8_t Next() {
    state = state * 1664525u + 1013904223u;
    return static_cast<uint8_t>(state >> 24);
  }
};

// A group with its cell set (size for the square, triangle and hexagonal
// cells; width and height, and shear for P1), then tile size, extent, row
// shift and margins as the tile maker computes them, with feather f.
inline std::unique_ptr<Symmetry> MakeGroup(int32_t id, int32_t sizeOrWidth, int32_t height = 0,
                                           int32_t shear = 0, int32_t feather = 0) {
  std::unique_ptr<Symmetry> s = CreateSymmetry(id);
  if (auto* r = dynamic_cast<RectSymm*>(s.get())) {
    r->width = sizeOrWidth;
    r->height = height;
  } else if (auto* p = dynamic_cast<ParallelogramSymm*>(s.get())) {
    p->width = sizeOrWidth;
    p->height = height;
    p->shear = shear;
  } else {
    dynamic_cast<SizedSymm*>(s.get())->size = sizeOrWidth;
  }
  s->ComputeTileSize();
  s->ComputeCellExtent();
  s->ComputeRowShift();
  s->feather = feather;
  s->PrepareMargins();
  return s;
}

// The tile of a group built from a cell buffer; tile bytes start at fill.
inline Pixels BuildTileOf(Symmetry& s, const Pixels& cell, int32_t tileType, uint8_t fill = 0,
                          int16_t* result = nullptr, TileBuildHooks* hooks = nullptr,
                          int32_t progressMode = 0) {
  Pixels tile(s.tileWidth, s.tileHeight, tileType, fill);
  const int16_t r = s.BuildTile(cell.data.data(), cell.stride, cell.type, progressMode,
                                tile.data.data(), tile.stride, tile.type, hooks);
  if (result) *result = r;
  return tile;
}

}  // namespace fancy::testing
