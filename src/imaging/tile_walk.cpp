#include "imaging/tile_walk.h"

namespace fancy {

namespace {

// Gives the cell a tile of its own when others share it; `keep` copies the
// contents, else the new tile starts blank.
bool MakePrivate(TileCell* cell, bool keep) {
  Tile* tile = cell->tile;
  if (tile->refCount <= 1) return true;
  Tile* own = keep ? TileCopy(tile)
                   : TileCreate(tile->cache, tile->type, tile->rowBytes, tile->height, nullptr);
  if (!own) return false;
  TileRelease(tile);
  cell->tile = own;
  return true;
}

int LockWith(TileCell* cell, TileLockMode mode) {
  if (!cell) return 0;
  if (!cell->tile) return 1;
  if ((mode == kTileLockWriteKeep || mode == kTileLockWriteDiscard) &&
      !MakePrivate(cell, mode == kTileLockWriteKeep))
    return 0;
  bool ok = false;
  uint8_t* pixels = TileLock(cell->tile, mode, &ok);
  if (!ok) return 0;
  cell->pixels = pixels;
  ++cell->lockCount;
  return 1;
}

Rect CellRect(const TileCell* cell) { return Rect{cell->left, cell->bottom, cell->right, cell->top}; }

bool Covers(const Rect& rect, const TileCell* cell) {
  return rect.left <= cell->left && rect.right >= cell->right && rect.top <= cell->top &&
         rect.bottom >= cell->bottom;
}

TileCell* LockCurrent(TileWalk* walk, Rect* part) {
  TileCell* cell = &walk->image->tiles[walk->row][walk->column];
  CellLockFn lock = walk->lock;
  if (lock == CellLockWriteDiscard && !Covers(walk->rect, cell)) lock = CellLockWrite;
  if (!lock(cell)) {
    walk->failed = true;
    return nullptr;
  }
  walk->held = cell;
  if (part) RectIntersect(walk->rect, CellRect(cell), part);
  return cell;
}

TileCell* Open(TileWalk* walk, Image* image, const Rect& rect, CellLockFn lock, Rect* part,
               bool bottomUp) {
  *walk = TileWalk{};
  walk->image = image;
  walk->lock = lock;
  walk->rowStep = bottomUp ? -1 : 1;
  walk->finished = true;
  if (!image || !lock) {
    walk->failed = true;
    return nullptr;
  }
  if (!RectIntersect(rect, image->validRect, &walk->rect) ||
      !RectIntersect(walk->rect, ImageBounds(image), &walk->rect))
    return nullptr;
  if (!image->tiles || image->tileWidth <= 0 || image->tileHeight <= 0) {
    walk->failed = true;  // pixels asked of an image that has none
    return nullptr;
  }
  walk->firstColumn = walk->rect.left / image->tileWidth;
  walk->lastColumn = walk->rect.right / image->tileWidth;
  walk->firstRow = walk->rect.top / image->tileHeight;
  walk->lastRow = walk->rect.bottom / image->tileHeight;
  walk->column = walk->firstColumn;
  walk->row = bottomUp ? walk->lastRow : walk->firstRow;
  walk->finished = false;
  return LockCurrent(walk, part);
}

}  // namespace

int CellLockWrite(TileCell* cell) { return LockWith(cell, kTileLockWriteKeep); }
int CellLockRead(TileCell* cell) { return LockWith(cell, kTileLockRead); }
int CellLockReadSolid(TileCell* cell) { return LockWith(cell, kTileLockReadSolid); }
int CellLockWriteDiscard(TileCell* cell) { return LockWith(cell, kTileLockWriteDiscard); }

void CellUnlock(TileCell* cell) {
  if (!cell || !cell->tile) return;
  TileUnlock(cell->tile);
  if (cell->lockCount > 0) --cell->lockCount;
}

const CLRColor* CellSolidColor(const TileCell* cell) {
  if (!cell || !cell->tile || !(cell->tile->flags & kTileSolid)) return nullptr;
  return &cell->tile->solid;
}

uint8_t* CellPixelAddress(const TileCell* cell, int32_t x, int32_t y, int32_t bitsPerPixel) {
  return cell->pixels + int64_t{y - cell->top} * cell->rowBytes +
         (int64_t{bitsPerPixel} * (x - cell->left)) / 8;
}

int32_t CellBitOffset(const TileCell* cell, int32_t x, int32_t bitsPerPixel) {
  return static_cast<int32_t>((int64_t{bitsPerPixel} * (x - cell->left)) & 7);
}

TileCell* TileWalkOpen(TileWalk* walk, Image* image, const Rect& rect, CellLockFn lock,
                       Rect* part) {
  return Open(walk, image, rect, lock, part, false);
}

TileCell* TileWalkOpenBottomUp(TileWalk* walk, Image* image, const Rect& rect, CellLockFn lock,
                               Rect* part) {
  return Open(walk, image, rect, lock, part, true);
}

TileCell* TileWalkNext(TileWalk* walk, Rect* part) {
  if (walk->held) {
    CellUnlock(walk->held);
    walk->held = nullptr;
  } else {
    return nullptr;  // ended, failed, or never opened
  }
  if (walk->column < walk->lastColumn) {
    ++walk->column;
  } else {
    int32_t endRow = walk->rowStep > 0 ? walk->lastRow : walk->firstRow;
    if (walk->row == endRow) {
      walk->finished = true;
      return nullptr;
    }
    walk->row += walk->rowStep;
    walk->column = walk->firstColumn;
  }
  return LockCurrent(walk, part);
}

int TileWalkClose(TileWalk* walk) {
  if (walk->held) {
    int32_t endRow = walk->rowStep > 0 ? walk->lastRow : walk->firstRow;
    if (walk->column == walk->lastColumn && walk->row == endRow) walk->finished = true;
    CellUnlock(walk->held);
    walk->held = nullptr;
  }
  return walk->finished && !walk->failed ? 1 : 0;
}

}  // namespace fancy
