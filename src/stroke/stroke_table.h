// The strokes of a run: one StrokeEntry per stroke in the StrokeTable, and a
// StrokeScan for each stroke while it crosses the row being painted.
#pragma once

#include <cstdint>

namespace fancy {

struct StrokeScan;

// One stroke of the StrokeTable. Coordinates are relative to the filter
// rectangle.
struct StrokeEntry {
  int16_t x;          // anchor column
  int16_t y;          // anchor row
  uint8_t colour[3];  // final colour, channels 0, 1, 2
  uint8_t opacity;    // 255 opaque
  uint8_t size;       // size / 255 of the brush's own size
  uint8_t angle;      // 256 steps round the circle
  int16_t left;       // truncated least x of the stroke's rotated box
  int16_t top;        // truncated least y of that box
  StrokeScan* scan;   // while active, else null
  uint8_t skip;       // set when the stroke cannot touch the picture
};

// A stroke being painted: the brush raster, rotated and scaled, walked as a
// convex quadrilateral one row at a time. Two walkers follow the left and
// right edges down from the highest corner; brush coordinates step in 16.16.
struct StrokeScan {
  float leftSlope, rightSlope;  // x per row of the edges being walked
  int32_t u, v;                 // brush coordinates at column 0 of the current row
  int32_t dudx, dudy;           // per image column, per image row
  int32_t dvdx, dvdy;
  float leftX, leftPrev;        // left edge's x at the next row and at this row
  float rightX, rightPrev;
  float cornerX[4];
  float cornerY[4];
  uint8_t bottomCorner;  // index of the lowest corner
  uint8_t rightCorner;   // the walkers' corners
  uint8_t leftCorner;
  // Rows are kept in 32 bits, so that stepping a stroke that begins far
  // above the picture can never wrap.
  int32_t row;      // the stroke's current row
  int32_t lastRow;  // its last row, at most the picture's last
};

}  // namespace fancy
