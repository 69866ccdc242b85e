// TileCache: the store behind tiled images. A Tile is a block of pixels of
// about 64 KB, shared copy-on-write by reference count, that may hold a solid
// colour instead of pixels or be produced on first use by a callback.
//
// This store keeps every tile in memory and never pages one out. The module
// runs with no cache at all (gTileCache stays null, so every image is one
// cell); the grid code above works the same with a cache attached.
#pragma once

#include <cstdint>

#include "colour/clr_color.h"

namespace fancy {

enum : uint32_t {
  kTileListed = 1,        // on the recently used list
  kTileDirty = 2,         // written since it was produced
  kTileFromCallback = 4,  // contents still to be produced by the backing
  kTileSolid = 8,         // no pixels: every pixel is `solid`
};

// Where the pixels of a backed image come from: `read` fills one tile whose
// top-left pixel is (left, top) of the image with width x height pixels, rows
// rowBytes apart, and returns 1, or 0 on failure.
struct TileBacking {
  int (*read)(void* user, int32_t left, int32_t top, int32_t width, int32_t height,
              uint8_t* pixels, int32_t rowBytes);
  void* user;
};

struct TileCache;

struct Tile {
  int32_t refCount;   // owners; more than one means copy before writing
  int32_t lockCount;  // outstanding locks
  uint32_t flags;
  int32_t type;       // ImageType of the pixels
  int32_t rowBytes;
  int32_t height;
  uint8_t* pixels;    // rowBytes x height, or null while solid or unproduced
  CLRColor solid;     // the colour of a solid tile (flag 8)
  const TileBacking* backing;  // flag 4: where the pixels come from
  int32_t backLeft, backTop, backWidth, backHeight;  // the cell's part of the image
  TileCache* cache;
  Tile* prev;         // recently used list
  Tile* next;
};

struct TileCache {
  int64_t byteBudget;  // images above a quarter of it get a grid
  int64_t bytesHeld;   // pixel bytes of all tiles
  int32_t tileCount;
  Tile* first;         // most recently used
  Tile* last;
};

// The module's cache; null in this module.
extern TileCache* gTileCache;

TileCache* TileCacheCreate(int64_t byteBudget);
// Frees the cache; every tile must have been released.
void TileCacheDestroy(TileCache* cache);

// A new tile with one reference: blank (zeroed) or, with `solid`, a solid tile
// of that colour.
Tile* TileCreate(TileCache* cache, int32_t type, int32_t rowBytes, int32_t height,
                 const CLRColor* solid);
// A new tile produced by `backing` on first lock, for the width x height
// pixels of the image whose top-left pixel is (left, top).
Tile* TileCreateBacked(TileCache* cache, int32_t type, int32_t rowBytes, int32_t tileHeight,
                       const TileBacking* backing, int32_t left, int32_t top, int32_t width,
                       int32_t height);
// A private copy with the same contents (pixels, solid colour or backing).
Tile* TileCopy(const Tile* tile);
// A second reference to the same tile.
Tile* TileShare(Tile* tile);
// Drops one reference; the last frees the tile.
void TileRelease(Tile* tile);

// Makes the tile solid: its pixels are freed and every pixel is `colour`.
void TileMakeSolid(Tile* tile, const CLRColor& colour);

enum TileLockMode : int32_t {
  kTileLockRead = 1,          // pixels produced, a solid tile expanded
  kTileLockReadSolid = 2,     // pixels produced, a solid tile left solid
  kTileLockWriteKeep = 3,     // as read, and marked dirty
  kTileLockWriteDiscard = 4,  // old contents dropped: pixels are undefined
};

// Locks the tile and answers its pixels (null for a solid tile under
// kTileLockReadSolid). Null with no lock taken when pixels can't be made.
uint8_t* TileLock(Tile* tile, TileLockMode mode, bool* ok);
void TileUnlock(Tile* tile);

}  // namespace fancy
