#include "imaging/tile_cache.h"

#include <cstdlib>
#include <cstring>

#include "imaging/image_types.h"

namespace fancy {

TileCache* gTileCache = nullptr;

namespace {

int64_t TileBytes(const Tile* tile) { return int64_t{tile->rowBytes} * tile->height; }

void Link(TileCache* cache, Tile* tile) {
  tile->prev = nullptr;
  tile->next = cache->first;
  if (cache->first) cache->first->prev = tile;
  cache->first = tile;
  if (!cache->last) cache->last = tile;
  tile->flags |= kTileListed;
  ++cache->tileCount;
}

void Unlink(TileCache* cache, Tile* tile) {
  if (!(tile->flags & kTileListed)) return;
  if (tile->prev) tile->prev->next = tile->next; else cache->first = tile->next;
  if (tile->next) tile->next->prev = tile->prev; else cache->last = tile->prev;
  tile->prev = tile->next = nullptr;
  tile->flags &= ~kTileListed;
  --cache->tileCount;
}

void Touch(Tile* tile) {
  TileCache* cache = tile->cache;
  if (!cache || cache->first == tile) return;
  Unlink(cache, tile);
  Link(cache, tile);
}

Tile* NewTile(TileCache* cache, int32_t type, int32_t rowBytes, int32_t height) {
  if (!cache || rowBytes <= 0 || height <= 0) return nullptr;
  auto* tile = static_cast<Tile*>(std::calloc(1, sizeof(Tile)));
  if (!tile) return nullptr;
  tile->refCount = 1;
  tile->type = type;
  tile->rowBytes = rowBytes;
  tile->height = height;
  tile->cache = cache;
  Link(cache, tile);
  return tile;
}

bool AllocatePixels(Tile* tile, bool zeroed) {
  if (tile->pixels) return true;
  size_t bytes = static_cast<size_t>(TileBytes(tile));
  tile->pixels = static_cast<uint8_t*>(zeroed ? std::calloc(1, bytes) : std::malloc(bytes));
  if (!tile->pixels) return false;
  if (tile->cache) tile->cache->bytesHeld += TileBytes(tile);
  return true;
}

void FreePixels(Tile* tile) {
  if (!tile->pixels) return;
  std::free(tile->pixels);
  tile->pixels = nullptr;
  if (tile->cache) tile->cache->bytesHeld -= TileBytes(tile);
}

// Writes the solid colour into every pixel of the tile's rows.
void ExpandSolid(Tile* tile) {
  const uint8_t* v = tile->solid.value8;
  uint8_t pixel[6];
  int32_t size = 1;
  switch (tile->type) {
    case kImageBGR24:
    case kImageLab24: std::memcpy(pixel, v, 3); size = 3; break;
    case kImageCMYK32: std::memcpy(pixel, v, 4); size = 4; break;
    case kImageRGB48:
    case kImageRaw48: std::memcpy(pixel, tile->solid.value6, 6); size = 6; break;
    case kImageGrey16: std::memcpy(pixel, v, 2); size = 2; break;
    case kImageBilevel: pixel[0] = (v[0] | v[1] | v[2] | v[3]) ? 0xFF : 0; break;
    default: pixel[0] = v[0]; break;
  }
  uint8_t* p = tile->pixels;
  int64_t total = TileBytes(tile);
  if (size == 1) {
    std::memset(p, pixel[0], static_cast<size_t>(total));
    return;
  }
  int64_t i = 0;
  for (; i + size <= total; i += size) std::memcpy(p + i, pixel, size);
  for (int32_t k = 0; i < total; ++i, ++k) p[i] = pixel[k];
}

}  // namespace

TileCache* TileCacheCreate(int64_t byteBudget) {
  if (byteBudget <= 0) return nullptr;
  auto* cache = static_cast<TileCache*>(std::calloc(1, sizeof(TileCache)));
  if (cache) cache->byteBudget = byteBudget;
  return cache;
}

void TileCacheDestroy(TileCache* cache) { std::free(cache); }

Tile* TileCreate(TileCache* cache, int32_t type, int32_t rowBytes, int32_t height,
                 const CLRColor* solid) {
  Tile* tile = NewTile(cache, type, rowBytes, height);
  if (!tile) return nullptr;
  if (solid) {
    tile->solid = *solid;
    tile->flags |= kTileSolid;
  } else if (!AllocatePixels(tile, true)) {
    TileRelease(tile);
    return nullptr;
  }
  return tile;
}

Tile* TileCreateBacked(TileCache* cache, int32_t type, int32_t rowBytes, int32_t tileHeight,
                       const TileBacking* backing, int32_t left, int32_t top, int32_t width,
                       int32_t height) {
  if (!backing || !backing->read || height > tileHeight) return nullptr;
  Tile* tile = NewTile(cache, type, rowBytes, tileHeight);
  if (!tile) return nullptr;
  tile->flags |= kTileFromCallback;
  tile->backing = backing;
  tile->backLeft = left;
  tile->backTop = top;
  tile->backWidth = width;
  tile->backHeight = height;
  return tile;
}

Tile* TileCopy(const Tile* tile) {
  if (!tile) return nullptr;
  Tile* copy = NewTile(tile->cache, tile->type, tile->rowBytes, tile->height);
  if (!copy) return nullptr;
  copy->flags |= tile->flags & (kTileSolid | kTileFromCallback | kTileDirty);
  copy->solid = tile->solid;
  copy->backing = tile->backing;
  copy->backLeft = tile->backLeft;
  copy->backTop = tile->backTop;
  copy->backWidth = tile->backWidth;
  copy->backHeight = tile->backHeight;
  if (tile->pixels) {
    if (!AllocatePixels(copy, false)) {
      TileRelease(copy);
      return nullptr;
    }
    std::memcpy(copy->pixels, tile->pixels, static_cast<size_t>(TileBytes(tile)));
  }
  return copy;
}

Tile* TileShare(Tile* tile) {
  if (tile) ++tile->refCount;
  return tile;
}

void TileRelease(Tile* tile) {
  if (!tile || --tile->refCount > 0) return;
  FreePixels(tile);
  if (tile->cache) Unlink(tile->cache, tile);
  std::free(tile);
}

void TileMakeSolid(Tile* tile, const CLRColor& colour) {
  if (!tile) return;
  FreePixels(tile);
  tile->solid = colour;
  tile->flags = (tile->flags | kTileSolid) & ~(kTileFromCallback | kTileDirty);
}

uint8_t* TileLock(Tile* tile, TileLockMode mode, bool* ok) {
  *ok = false;
  if (!tile) return nullptr;
  if (mode == kTileLockWriteDiscard) {
    tile->flags &= ~(kTileSolid | kTileFromCallback);
    if (!AllocatePixels(tile, false)) return nullptr;
  } else if (tile->flags & kTileSolid) {
    if (mode != kTileLockReadSolid) {
      if (!AllocatePixels(tile, false)) return nullptr;
      ExpandSolid(tile);
      tile->flags &= ~kTileSolid;
    }
  } else if (tile->flags & kTileFromCallback) {
    if (!AllocatePixels(tile, true)) return nullptr;
    if (!tile->backing->read(tile->backing->user, tile->backLeft, tile->backTop,
                             tile->backWidth, tile->backHeight, tile->pixels, tile->rowBytes)) {
      FreePixels(tile);
      return nullptr;
    }
    tile->flags &= ~kTileFromCallback;
  } else if (!AllocatePixels(tile, true)) {
    return nullptr;
  }
  if (mode == kTileLockWriteKeep || mode == kTileLockWriteDiscard) tile->flags |= kTileDirty;
  ++tile->lockCount;
  Touch(tile);
  *ok = true;
  return tile->pixels;
}

void TileUnlock(Tile* tile) {
  if (tile && tile->lockCount > 0) --tile->lockCount;
}

}  // namespace fancy
