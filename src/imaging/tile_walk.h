// TileWalk: visits the cells of an image that a rectangle touches, each
// locked by a lock function for as long as the caller holds it, and gives the
// part of the rectangle inside each cell. Cells go left to right, rows top to
// bottom (or bottom to top with the second form).
//
// Lock functions add to the cell's lockCount and CellUnlock takes it back; a
// cell with no tile record is always ready, so they succeed at once on it.
#pragma once

#include <cstdint>

#include "imaging/image.h"

namespace fancy {

using CellLockFn = int (*)(TileCell* cell);

// Write, content kept: a shared tile is made private, a solid one expanded.
int CellLockWrite(TileCell* cell);
// Read: a solid tile is expanded.
int CellLockRead(TileCell* cell);
// Read, a solid cell left as it is (ask CellSolidColor before touching pixels).
int CellLockReadSolid(TileCell* cell);
// Write, old content thrown away. A walk uses plain write instead for a cell
// that its rectangle doesn't cover whole.
int CellLockWriteDiscard(TileCell* cell);
void CellUnlock(TileCell* cell);

// The solid colour of the cell, or null when it has pixels.
const CLRColor* CellSolidColor(const TileCell* cell);

// The address of the cell's pixel (x, y) in image coordinates, for a locked
// cell that is not solid.
uint8_t* CellPixelAddress(const TileCell* cell, int32_t x, int32_t y, int32_t bitsPerPixel);
// Bit offset in its byte of the cell's pixel x.
int32_t CellBitOffset(const TileCell* cell, int32_t x, int32_t bitsPerPixel);

struct TileWalk {
  Image* image;
  Rect rect;          // the asked rectangle clipped to the image
  CellLockFn lock;
  TileCell* held;     // the cell handed out last, still locked
  int32_t column;     // of the held cell
  int32_t row;
  int32_t firstColumn, lastColumn;
  int32_t firstRow, lastRow;
  int32_t rowStep;    // +1 top to bottom, -1 bottom to top
  bool finished;      // every cell has been handed out
  bool failed;        // a lock failed
};

// Opens the walk and answers the first cell, locked, with its part of the
// rectangle in *part; null when nothing is left to walk or the lock failed.
TileCell* TileWalkOpen(TileWalk* walk, Image* image, const Rect& rect, CellLockFn lock,
                       Rect* part);
TileCell* TileWalkOpenBottomUp(TileWalk* walk, Image* image, const Rect& rect, CellLockFn lock,
                               Rect* part);
// Unlocks the previous cell and answers the next, or null at the end or when a
// lock failed.
TileCell* TileWalkNext(TileWalk* walk, Rect* part);
// Unlocks what is held. Answers 0 if the walk stopped while a cell remained
// (a lock failed, or the caller stopped early), else 1.
int TileWalkClose(TileWalk* walk);

}  // namespace fancy
