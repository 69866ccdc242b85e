// The mother cell as the tile effect keeps it between runs.
//
// The effect's parameters hold one of these; Symmetry::LoadParams reads it
// and StoreParams writes it back. A group uses either size (square,
// triangle, rhombus and kite cells) or height and width (rectangles), with
// shear for the parallelogram; the other fields are left as they were.
#pragma once

#include <cstdint>

namespace fancy {

struct SymmetryParams {
  int32_t groupId;         // 1..17, the order of the chooser's buttons
  int32_t imageWidth;      // picture the cell was placed in
  int32_t imageHeight;
  int32_t cellX;           // left and top of the cell in that picture
  int32_t cellY;
  int32_t size;
  int32_t height;
  int32_t width;
  int32_t shear;
  int32_t feather;         // pixels
  int32_t featherPercent;  // 0..100 of the largest feather the cell allows
  int32_t reserved;        // carried through, never read
};

}  // namespace fancy
