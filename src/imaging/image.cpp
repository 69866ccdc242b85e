// Creation, copies, views, masks and fields of Image records.
#include "imaging/image.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "imaging/tile_walk.h"

namespace fancy {

namespace {

bool ValidPalettedDepth(const Palette* palette, int32_t bits, int32_t planes) {
  if (!palette || planes != 1) return false;
  int32_t count = palette->count;
  switch (bits) {
    case 1: return count >= 1 && count <= 2;
    case 4: return count >= 1 && count <= 16;
    case 8: return count >= 1 && count <= 256;
    default: return false;
  }
}

// A record with all pointers null and its fields set, or null for a size that
// is not positive or whose bytes don't fit in 31 bits.
Image* NewRecord(int32_t type, int32_t bits, int32_t width, int32_t height, int32_t xResolution,
                 int32_t yResolution) {
  if (width <= 0 || height <= 0 || bits <= 0) return nullptr;
  int32_t rowBytes = ImageRowBytesFor(bits, width);
  if (rowBytes < 0 || int64_t{rowBytes} * height > INT32_MAX) return nullptr;
  auto* image = static_cast<Image*>(std::calloc(1, sizeof(Image)));
  if (!image) return nullptr;
  image->type = type;
  image->reserved1 = 1;
  image->width = width;
  image->height = height;
  image->planes = 1;
  image->bitsPerPixel = bits;
  image->rowBytes = rowBytes;
  image->imageBytes = rowBytes * height;
  image->xResolution = xResolution;
  image->yResolution = yResolution;
  image->validRect = MakeRect(0, 0, width, height);
  image->maskRect = EmptyRect();
  image->runMaskRect = EmptyRect();
  return image;
}

// One cell over `pixels` covering the whole image.
bool BuildOneCell(Image* image, uint8_t* pixels) {
  auto** rows = static_cast<TileCell**>(std::calloc(1, sizeof(TileCell*)));
  auto* cell = static_cast<TileCell*>(std::calloc(1, sizeof(TileCell)));
  if (!rows || !cell) {
    std::free(rows);
    std::free(cell);
    return false;
  }
  cell->pixels = pixels;
  cell->left = 0;
  cell->top = 0;
  cell->right = image->width - 1;
  cell->bottom = image->height - 1;
  cell->rowBytes = image->rowBytes;
  cell->cellType = image->type;
  rows[0] = cell;
  image->tiles = rows;
  image->tileColumns = 1;
  image->tileRows = 1;
  image->tileWidth = image->width;
  image->tileHeight = image->height;
  return true;
}

void FreeGrid(TileCell** tiles, int32_t rows, int32_t columns, bool releaseTiles) {
  if (!tiles) return;
  for (int32_t r = 0; r < rows; ++r) {
    if (!tiles[r]) continue;
    if (releaseTiles)
      for (int32_t c = 0; c < columns; ++c) TileRelease(tiles[r][c].tile);
    std::free(tiles[r]);
  }
  std::free(tiles);
}

// The empty cell arrays of a grid of the image's tile shape, with each cell's
// rectangle, row step and type set. Null on no memory.
TileCell** NewGridCells(Image* image, const TileShape& shape) {
  int32_t columns = static_cast<int32_t>((int64_t{image->width} + shape.width - 1) / shape.width);
  int32_t rows = static_cast<int32_t>((int64_t{image->height} + shape.height - 1) / shape.height);
  auto** tiles = static_cast<TileCell**>(std::calloc(static_cast<size_t>(rows), sizeof(TileCell*)));
  if (!tiles) return nullptr;
  for (int32_t r = 0; r < rows; ++r) {
    tiles[r] = static_cast<TileCell*>(std::calloc(static_cast<size_t>(columns), sizeof(TileCell)));
    if (!tiles[r]) {
      FreeGrid(tiles, rows, columns, false);
      return nullptr;
    }
    for (int32_t c = 0; c < columns; ++c) {
      TileCell& cell = tiles[r][c];
      cell.left = c * shape.width;
      cell.top = r * shape.height;
      cell.right = std::min(image->width, cell.left + shape.width) - 1;
      cell.bottom = std::min(image->height, cell.top + shape.height) - 1;
      cell.rowBytes = shape.rowBytes;
      cell.cellType = image->type;
    }
  }
  image->tileColumns = columns;
  image->tileRows = rows;
  image->tileWidth = shape.width;
  image->tileHeight = shape.height;
  return tiles;
}

// A grid of tiles from the cache: blank, solid in `fill`, or produced by
// `backing`. Builds nothing on failure.
bool BuildGrid(Image* image, TileCache* cache, const CLRColor* fill, const TileBacking* backing) {
  TileShape shape = ImageTileShape(image->type, image->bitsPerPixel);
  TileCell** tiles = NewGridCells(image, shape);
  if (!tiles) return false;
  for (int32_t r = 0; r < image->tileRows; ++r) {
    for (int32_t c = 0; c < image->tileColumns; ++c) {
      TileCell& cell = tiles[r][c];
      cell.tile = backing ? TileCreateBacked(cache, image->type, shape.rowBytes, shape.height,
                                             backing, cell.left, cell.top,
                                             cell.right - cell.left + 1,
                                             cell.bottom - cell.top + 1)
                          : TileCreate(cache, image->type, shape.rowBytes, shape.height, fill);
      if (!cell.tile) {
        FreeGrid(tiles, image->tileRows, image->tileColumns, true);
        return false;
      }
    }
  }
  image->tiles = tiles;
  return true;
}

void FreeStorage(Image* image) {
  switch (image->storageKind) {
    case kStorageTiled:
      FreeGrid(image->tiles, image->tileRows, image->tileColumns, true);
      break;
    case kStorageBlock:
      if (image->tiles) {
        if (image->externalBlock) std::free(image->externalBlock);
        else std::free(image->tiles[0][0].pixels);
        std::free(image->tiles[0]);
        std::free(image->tiles);
      }
      break;
    case kStorageBuffer:
      if (image->tiles) {
        std::free(image->tiles[0]);
        std::free(image->tiles);
      }
      break;
    default:  // views share the tiles of the image they look at
      break;
  }
  image->tiles = nullptr;
}

// Gives the record its pixels by the storage option.
Image* FinishAllocated(Image* image, int32_t option, const CLRColor* fill,
                       const TileBacking* backing) {
  TileCache* cache = gTileCache;
  bool grid = option == kStorageOptionTiled && cache &&
              (backing || image->imageBytes > cache->byteBudget / 4);
  if (grid) {
    image->storageKind = kStorageTiled;
    if (!BuildGrid(image, cache, fill, backing)) {
      ImageDestroy(image);
      return nullptr;
    }
    return image;
  }
  image->storageKind = kStorageBlock;
  auto* block = static_cast<uint8_t*>(std::calloc(1, static_cast<size_t>(image->imageBytes)));
  if (!block || !BuildOneCell(image, block)) {
    std::free(block);
    ImageDestroy(image);
    return nullptr;
  }
  if (fill) ImageFill(image, *fill);
  return image;
}

bool ValidOption(int32_t option, const CLRColor* fill, const TileBacking* backing) {
  if (option != kStorageOptionTiled && option != kStorageOptionOneCell) return false;
  if (fill && backing) return false;
  if (backing && (option != kStorageOptionTiled || !gTileCache)) return false;
  return true;
}

// The record of a type-10 image made by the alias codes 8 and 9, which owns a
// fresh palette.
Image* NewAliasRecord(int32_t type, int32_t width, int32_t height, int32_t xResolution,
                      int32_t yResolution) {
  bool eight = type == kImageNewIndexed8;
  Palette* palette = PaletteCreate(eight ? kPaletteCube : kPaletteSixteen, 0);
  if (!palette) return nullptr;
  Image* image = NewRecord(kImageIndexed, eight ? 8 : 4, width, height, xResolution, yResolution);
  if (!image) {
    PaletteFree(palette);
    return nullptr;
  }
  image->palette = palette;
  return image;
}

// The record for a creator that takes a type code; null for refused codes.
Image* NewTypedRecord(int32_t type, int32_t width, int32_t height, int32_t xResolution,
                      int32_t yResolution) {
  if (type == kImageNewIndexed8 || type == kImageNewIndexed4)
    return NewAliasRecord(type, width, height, xResolution, yResolution);
  if (!ImageTypeIsValid(type) || type == kImageIndexed) return nullptr;
  return NewRecord(type, ImageTypeBits(type), width, height, xResolution, yResolution);
}

Image* NewPalettedRecord(Palette* palette, int32_t width, int32_t height, int32_t bits,
                         int32_t planes, int32_t xResolution, int32_t yResolution) {
  if (!ValidPalettedDepth(palette, bits, planes)) return nullptr;
  Image* image = NewRecord(kImageIndexed, bits, width, height, xResolution, yResolution);
  if (!image) return nullptr;
  image->palette = palette;
  image->flags |= kImagePaletteBorrowed;
  return image;
}

Image* OnBuffer(Image* image, uint8_t* pixels) {
  if (!image) return nullptr;
  image->storageKind = kStorageBuffer;
  if (pixels && !BuildOneCell(image, pixels)) {
    ImageDestroy(image);
    return nullptr;
  }
  return image;
}

Rect CoverRect(const Image* image, int32_t maskWidth, int32_t maskHeight) {
  return MakeRect(0, 0, std::min(image->width, maskWidth), std::min(image->height, maskHeight));
}

// Copies the storage of `from` into `to` (whose fields are already copied):
// tiles are shared copy-on-write, plain pixels copied into a block of our own.
bool CopyStorage(Image* to, const Image* from) {
  to->tiles = nullptr;
  if (!from->tiles) {
    to->storageKind = kStorageBuffer;
    return true;
  }
  if (from->storageKind == kStorageTiled || from->storageKind == kStorageTiledView) {
    to->storageKind = kStorageTiled;
    auto** tiles = static_cast<TileCell**>(
        std::calloc(static_cast<size_t>(from->tileRows), sizeof(TileCell*)));
    if (!tiles) return false;
    for (int32_t r = 0; r < from->tileRows; ++r) {
      tiles[r] = static_cast<TileCell*>(
          std::calloc(static_cast<size_t>(from->tileColumns), sizeof(TileCell)));
      if (!tiles[r]) {
        FreeGrid(tiles, from->tileRows, from->tileColumns, true);
        return false;
      }
      for (int32_t c = 0; c < from->tileColumns; ++c) {
        tiles[r][c] = from->tiles[r][c];
        tiles[r][c].lockCount = 0;
        tiles[r][c].tile = TileShare(from->tiles[r][c].tile);
      }
    }
    to->tiles = tiles;
    return true;
  }
  to->storageKind = kStorageBlock;
  to->rowBytes = ImageRowBytesFor(from->bitsPerPixel, from->width);
  to->imageBytes = to->rowBytes * from->height;
  auto* block = static_cast<uint8_t*>(std::calloc(1, static_cast<size_t>(to->imageBytes)));
  if (!block || !BuildOneCell(to, block)) {
    std::free(block);
    return false;
  }
  const TileCell& cell = from->tiles[0][0];
  size_t bytes = static_cast<size_t>(ImagePixelBytesFor(from->bitsPerPixel, from->width));
  for (int32_t y = 0; y < from->height; ++y)
    std::memcpy(block + int64_t{y} * to->rowBytes, cell.pixels + int64_t{y} * cell.rowBytes, bytes);
  return true;
}

}  // namespace

Image* ImageCreateOnBuffer(int32_t type, int32_t width, int32_t height, int32_t xResolution,
                           int32_t yResolution, uint8_t* pixels) {
  return OnBuffer(NewTypedRecord(type, width, height, xResolution, yResolution), pixels);
}

Image* ImageCreatePalettedOnBuffer(Palette* palette, int32_t width, int32_t height,
                                   int32_t bits, int32_t planes, int32_t xResolution,
                                   int32_t yResolution, uint8_t* pixels) {
  return OnBuffer(
      NewPalettedRecord(palette, width, height, bits, planes, xResolution, yResolution), pixels);
}

Image* ImageCreate(int32_t type, int32_t width, int32_t height, int32_t xResolution,
                   int32_t yResolution, int32_t storageOption, const CLRColor* fill,
                   const TileBacking* backing) {
  if (!ValidOption(storageOption, fill, backing)) return nullptr;
  Image* image = NewTypedRecord(type, width, height, xResolution, yResolution);
  if (!image) return nullptr;
  return FinishAllocated(image, storageOption, fill, backing);
}

Image* ImageCreatePaletted(Palette* palette, int32_t width, int32_t height, int32_t bits,
                           int32_t planes, int32_t xResolution, int32_t yResolution,
                           int32_t storageOption, const CLRColor* fill,
                           const TileBacking* backing) {
  if (!ValidOption(storageOption, fill, backing)) return nullptr;
  if (fill && storageOption != kStorageOptionTiled) return nullptr;
  Image* image =
      NewPalettedRecord(palette, width, height, bits, planes, xResolution, yResolution);
  if (!image) return nullptr;
  return FinishAllocated(image, storageOption, fill, backing);
}

int ImageDestroy(Image* image) {
  if (!image) return 0;
  if (image->palette && !(image->flags & kImagePaletteBorrowed)) PaletteFree(image->palette);
  ImageDestroy(image->maskImage);
  RunMaskFree(image->runMask);
  RunMaskFree(image->alphaRuns);
  FreeStorage(image);
  std::free(image);
  return 1;
}

Image* ImageDuplicate(const Image* image) {
  if (!image) return nullptr;
  auto* copy = static_cast<Image*>(std::calloc(1, sizeof(Image)));
  if (!copy) return nullptr;
  *copy = *image;
  copy->palette = nullptr;
  copy->tiles = nullptr;
  copy->externalBlock = nullptr;
  copy->maskImage = nullptr;
  copy->runMask = nullptr;
  copy->alphaRuns = nullptr;
  copy->storageKind = kStorageBuffer;  // nothing to free until storage is copied
  bool ok = true;
  if (image->palette) {
    if (image->flags & kImagePaletteBorrowed) {
      copy->palette = image->palette;
    } else {
      copy->palette = PaletteCopy(image->palette);
      ok = copy->palette != nullptr;
    }
  }
  ok = ok && CopyStorage(copy, image);
  if (ok && image->maskImage) {
    copy->maskImage = ImageDuplicate(image->maskImage);
    ok = copy->maskImage != nullptr;
  }
  if (ok && image->runMask) {
    copy->runMask = RunMaskCopy(image->runMask);
    ok = copy->runMask != nullptr;
  }
  if (!ok) {
    ImageDestroy(copy);
    return nullptr;
  }
  return copy;
}

Image* ImageMakeView(const Image* image) {
  if (!image) return nullptr;
  auto* view = static_cast<Image*>(std::calloc(1, sizeof(Image)));
  if (!view) return nullptr;
  *view = *image;
  bool tiled = image->storageKind == kStorageTiled || image->storageKind == kStorageTiledView;
  view->storageKind = tiled ? kStorageTiledView : kStorageBlockView;
  view->flags |= kImagePaletteBorrowed;
  view->externalBlock = nullptr;
  view->maskImage = nullptr;
  view->maskRect = EmptyRect();
  view->runMask = nullptr;
  view->runMaskRect = EmptyRect();
  view->alphaRuns = nullptr;
  return view;
}

Image* ImageSameFormat(const Image* image, int32_t width, int32_t height) {
  if (!image) return nullptr;
  if (image->type == kImageIndexed)
    return ImageCreatePaletted(image->palette, width, height, image->bitsPerPixel, 1,
                               image->xResolution, image->yResolution, kStorageOptionTiled,
                               nullptr, nullptr);
  return ImageCreate(image->type, width, height, image->xResolution, image->yResolution,
                     kStorageOptionTiled, nullptr, nullptr);
}

int ImageSetMask(Image* image, Image* mask, const Rect* rect, Image** oldMask, Rect* oldRect) {
  if (!image) return 0;
  if (oldMask) *oldMask = image->maskImage;
  if (oldRect) *oldRect = image->maskRect;
  image->maskImage = mask;
  if (!mask) {
    image->maskRect = EmptyRect();
  } else if (!rect) {
    image->maskRect = CoverRect(image, mask->width, mask->height);
  } else {
    Rect r = *rect;
    r.right = static_cast<int32_t>(std::min<int64_t>(r.right, int64_t{r.left} + mask->width - 1));
    r.bottom = static_cast<int32_t>(std::min<int64_t>(r.bottom, int64_t{r.top} + mask->height - 1));
    image->maskRect = r;
  }
  return 1;
}

RunMask* ImageSetRunMask(Image* image, RunMask* mask) {
  if (!image) return nullptr;
  RunMask* old = image->runMask;
  image->runMask = mask;
  image->runMaskRect = mask ? CoverRect(image, mask->width, mask->height) : EmptyRect();
  return old;
}

Image* ImageGetMask(const Image* image) { return image ? image->maskImage : nullptr; }
RunMask* ImageGetRunMask(const Image* image) { return image ? image->runMask : nullptr; }

int ImageBuildAlphaRuns(Image* image) {
  if (!image || image->type != kImageMask) return 0;
  RunMask* runs = RunMaskCreate(image->width, image->height);
  if (!runs) return 0;
  TileWalk walk;
  Rect part;
  bool ok = true;
  for (TileCell* cell = TileWalkOpen(&walk, image, ImageBounds(image), CellLockRead, &part);
       cell && ok; cell = TileWalkNext(&walk, &part)) {
    for (int32_t y = part.top; y <= part.bottom && ok; ++y) {
      const uint8_t* row = CellPixelAddress(cell, part.left, y, 8);
      int32_t offset = static_cast<int32_t>(row - cell->pixels);
      ok = RunRowAddBytes(&runs->rows[y], row, part.right - part.left + 1, -1, cell, offset,
                          part.left > 0) != 0;
    }
  }
  if (!TileWalkClose(&walk) || !ok) {
    RunMaskFree(runs);
    return 0;
  }
  RunMaskFree(image->alphaRuns);
  image->alphaRuns = runs;
  return 1;
}

int32_t ImageGetType(const Image* image) { return image ? image->type : 0; }
int32_t ImageGetWidth(const Image* image) { return image ? image->width : 0; }
int32_t ImageGetHeight(const Image* image) { return image ? image->height : 0; }
int32_t ImageGetBitsPerPixel(const Image* image) { return image ? image->bitsPerPixel : 0; }
int32_t ImageGetRowBytes(const Image* image) { return image ? image->rowBytes : 0; }
int32_t ImageGetStorageKind(const Image* image) { return image ? image->storageKind : 0; }
Palette* ImageGetPalette(const Image* image) { return image ? image->palette : nullptr; }

Rect ImageBounds(const Image* image) {
  return image ? MakeRect(0, 0, image->width, image->height) : EmptyRect();
}

int ImageGetResolution(const Image* image, int32_t* x, int32_t* y) {
  if (!image) return 0;
  if (x) *x = image->xResolution;
  if (y) *y = image->yResolution;
  return 1;
}

int32_t ImageSetRowBytes(Image* image, int32_t rowBytes) {
  if (!image) return 0;
  if (image->storageKind != kStorageBlock && image->storageKind != kStorageBuffer) return 0;
  int64_t rowPixels = ImagePixelBytesFor(image->bitsPerPixel, image->width);
  if (rowBytes < rowPixels) return 0;
  if (image->storageKind == kStorageBlock &&
      int64_t{rowBytes} * (image->height - 1) + rowPixels > image->imageBytes)
    return 0;
  int32_t old = image->rowBytes;
  image->rowBytes = rowBytes;
  if (image->tiles) image->tiles[0][0].rowBytes = rowBytes;
  return old;
}

uint8_t* ImagePixelAddress(const Image* image, int32_t x, int32_t y) {
  if (!image || !image->tiles) return nullptr;
  if (image->storageKind != kStorageBlock && image->storageKind != kStorageBuffer &&
      image->storageKind != kStorageBlockView)
    return nullptr;
  if (x < 0 || y < 0 || x >= image->width || y >= image->height) return nullptr;
  return CellPixelAddress(&image->tiles[0][0], x, y, image->bitsPerPixel);
}

}  // namespace fancy
