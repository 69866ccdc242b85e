// The outline of a mother cell as the tile dialog shows it over the
// source picture, with the vertices the user can drag.
#pragma once

#include <cstdint>

namespace fancy {

struct PolygonPoint {
  int32_t x;
  int32_t y;
};

// Rows and columns of the picture: right and bottom lie one past it.
struct PolygonClip {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};

inline constexpr int kPolygonMaxPoints = 5;   // four corners and the closing point
inline constexpr int kPolygonMaxHandles = 2;

struct CellPolygon {
  PolygonPoint points[kPolygonMaxPoints];
  int32_t pointCount;                      // the first point is repeated at the end
  int32_t handles[kPolygonMaxHandles + 1]; // indices of draggable vertices, then -1
};

// Builds the cell of group groupId in the box at (left, top), width by
// height (shear: the parallelogram's, the top edge's offset from the bottom
// edge). Sides under 10 are raised to 10; the box is clipped to the picture,
// and w, h are the clipped width and height less one. A shape whose size
// follows its width (every group but the rectangles and P1) and that would
// pass the picture's last row is shrunk in both directions to the rows
// left, keeping its proportions. Returns false, with no points and no
// handles, for an unknown group or a box outside the picture.
bool BuildPolygon(int32_t groupId, int32_t left, int32_t top, int32_t width, int32_t height,
                  int32_t shear, const PolygonClip& clip, CellPolygon* polygon);

}  // namespace fancy
