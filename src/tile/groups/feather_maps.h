// The cell outlines and band maps of the groups feathered by band mask:
// P1, Cm, Cmm, P4g, P3, P31m and P6.
//
// A band map is one of the group's own symmetries: it carries a cell pixel
// to the place where the copy of the cell across an edge or a corner shows
// that same pixel. Mixing a pixel with the picture at its images, weighted
// by the band mask, cross-fades the cell into what the tile will show just
// across its border. The derivations are at the tables in feather_maps.cpp.
#pragma once

#include <cstdint>

#include "frame/fixed.h"
#include "tile/band_mask.h"
#include "tile/symmetry.h"

namespace fancy {

// (x, y) goes to (floor(a X + b Y + e), floor(c X + d Y + f)) with (X, Y) =
// (x + 0.5, y + 0.5) the pixel's centre, all in 16.16.
struct FeatherMap {
  Fixed a, b, c, d, e, f;
};

inline void ApplyFeatherMap(const FeatherMap& m, int32_t x, int32_t y, int32_t* outX,
                            int32_t* outY) {
  const Fixed cx = WrapAdd(WrapShl(x, 16), 0x8000), cy = WrapAdd(WrapShl(y, 16), 0x8000);
  *outX = WrapAdd(WrapAdd(FixedMul(m.a, cx), FixedMul(m.b, cy)), m.e) >> 16;
  *outY = WrapAdd(WrapAdd(FixedMul(m.c, cx), FixedMul(m.d, cy)), m.f) >> 16;
}

inline constexpr int kMaxFeatherMaps = 15;

struct FeatherGeometry {
  MaskPolygon outline;  // the cell in its box's coordinates
  FeatherMap maps[kMaxFeatherMaps];
  int32_t mapCount;
};

// The outline and maps for the symmetry's cell as it stands (size, width,
// height, shear). False for a group feathered by bands or not at all.
bool GetFeatherGeometry(const Symmetry& symmetry, FeatherGeometry* geometry);

}  // namespace fancy
