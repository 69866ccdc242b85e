// Pixels in and out of an Image: writing and reading rectangles, and fills.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "imaging/bit_copy.h"
#include "imaging/composite.h"
#include "imaging/image.h"
#include "imaging/tile_walk.h"

namespace fancy {

namespace {

// Writes `count` pixels of `size` bytes each (size 1 to 6) from `pixel`.
void RepeatPixel(uint8_t* p, int64_t count, const uint8_t* pixel, int32_t size) {
  switch (size) {
    case 1:
      std::memset(p, pixel[0], static_cast<size_t>(count));
      return;
    case 3: {
      // Three words that repeat every twelve bytes: four pixels a round.
      uint8_t pattern[12];
      for (int k = 0; k < 12; ++k) pattern[k] = pixel[k % 3];
      int64_t i = 0;
      for (; i + 4 <= count; i += 4, p += 12) std::memcpy(p, pattern, 12);
      for (; i < count; ++i, p += 3) std::memcpy(p, pixel, 3);
      return;
    }
    default:
      for (int64_t i = 0; i < count; ++i, p += size) std::memcpy(p, pixel, static_cast<size_t>(size));
      return;
  }
}

// The byte that a 1- or 4-bit fill repeats, or the pixel itself for whole
// bytes; `size` is the pixel's byte count (1 for sub-byte pixels).
int32_t FillBytes(const Image* image, const CLRColor& colour, uint8_t pixel[8]) {
  int32_t size = ImagePixelFromColor(image->type, image->bitsPerPixel, colour, pixel);
  if (size == 0) return 0;
  if (image->bitsPerPixel == 1) pixel[0] = pixel[0] ? 0xFF : 0x00;
  if (image->bitsPerPixel == 4) pixel[0] = static_cast<uint8_t>((pixel[0] & 15) * 0x11);
  return size;
}

void FillCellRows(const Image* image, TileCell* cell, const Rect& part, const uint8_t* pixel,
                  int32_t size) {
  int32_t bits = image->bitsPerPixel;
  int64_t width = int64_t{part.right} - part.left + 1;
  for (int32_t y = part.top; y <= part.bottom; ++y) {
    uint8_t* row = CellPixelAddress(cell, part.left, y, bits);
    if (bits >= 8) {
      RepeatPixel(row, width, pixel, size);
    } else {
      // Sub-byte pixels: the run of bits from the cell's x, through CopyBits
      // from a repeated byte so that the neighbours keep their bits.
      int32_t bit = CellBitOffset(cell, part.left, bits);
      int64_t total = width * bits;
      uint8_t source[64];
      std::memset(source, pixel[0], sizeof source);
      for (int64_t done = 0; done < total; done += 512) {
        int64_t n = std::min<int64_t>(512, total - done);
        CopyBits(row, bit + done, source, 0, n);
      }
    }
  }
}

// Copies pixels between a cell and a caller's buffer. `bufferBit` is the bit
// of the buffer's row where the part's left pixel lies; `solid` is the colour
// of a solid cell (read direction only).
void CopyCellRows(const Image* image, TileCell* cell, const Rect& part, uint8_t* buffer,
                  int64_t bufferRowBytes, int64_t bufferBit, bool toImage, const CLRColor* solid) {
  int32_t bits = image->bitsPerPixel;
  int64_t width = int64_t{part.right} - part.left + 1;
  uint8_t pixel[8] = {};
  int32_t size = solid ? FillBytes(image, *solid, pixel) : 0;
  for (int32_t y = part.top; y <= part.bottom; ++y, buffer += bufferRowBytes) {
    uint8_t* cellRow = solid ? nullptr : CellPixelAddress(cell, part.left, y, bits);
    int32_t cellBit = CellBitOffset(cell, part.left, bits);
    if (bits >= 8) {
      uint8_t* at = buffer + bufferBit / 8;
      size_t bytes = static_cast<size_t>(width * (bits / 8));
      if (solid) RepeatPixel(at, width, pixel, size);
      else if (toImage) std::memcpy(cellRow, at, bytes);
      else std::memcpy(at, cellRow, bytes);
    } else if (solid) {
      uint8_t source[64];
      std::memset(source, pixel[0], sizeof source);
      for (int64_t done = 0; done < width * bits; done += 512)
        CopyBits(buffer, bufferBit + done, source, 0, std::min<int64_t>(512, width * bits - done));
    } else if (toImage) {
      CopyBits(cellRow, cellBit, buffer, bufferBit, width * bits);
    } else {
      CopyBits(buffer, bufferBit, cellRow, cellBit, width * bits);
    }
  }
}

// Moves a rectangle of pixels between the image and a buffer, clipped to the
// image; a start outside the image moves the start in the buffer.
int TransferPixels(Image* image, int32_t x, int32_t y, int32_t width, int32_t height,
                   int32_t rowBytes, uint8_t* buffer, bool toImage) {
  if (!image || !buffer || width <= 0 || height <= 0) return 0;
  if (!ImageTypeIsValid(image->type)) return 0;
  int32_t bits = image->bitsPerPixel;
  if (rowBytes < ImagePixelBytesFor(bits, width)) return 0;
  Rect rect = MakeRect(x, y, width, height);
  Rect clipped;
  if (!RectIntersect(rect, image->validRect, &clipped) ||
      !RectIntersect(clipped, ImageBounds(image), &clipped))
    return 1;
  TileWalk walk;
  Rect part;
  CellLockFn lock = toImage ? CellLockWriteDiscard : CellLockReadSolid;
  for (TileCell* cell = TileWalkOpen(&walk, image, clipped, lock, &part); cell;
       cell = TileWalkNext(&walk, &part)) {
    uint8_t* row = buffer + int64_t{part.top - y} * rowBytes;
    int64_t bit = (int64_t{part.left} - x) * bits;
    CopyCellRows(image, cell, part, row, rowBytes, bit, toImage,
                 toImage ? nullptr : CellSolidColor(cell));
  }
  return TileWalkClose(&walk);
}

bool MaskApplies(const Image* image, uint32_t flags) {
  if (image->type == kImageIndexed && image->bitsPerPixel == 8) return false;
  bool runs = image->runMask && image->runMask->rows && image->runMask->height > 0 &&
              !(flags & kWriteIgnoreRunMask);
  bool maskImage = image->maskImage && !(flags & kWriteIgnoreMaskImage);
  return runs || maskImage;
}

}  // namespace

int32_t ImagePixelFromColor(int32_t type, int32_t bits, const CLRColor& colour, uint8_t out[8]) {
  const uint8_t* v = colour.value8;
  switch (type) {
    case kImageBGR24:
    case kImageLab24: std::memcpy(out, v, 3); return 3;
    case kImageCMYK32: std::memcpy(out, v, 4); return 4;
    case kImageGrey8:
    case kImageMask: out[0] = v[0]; return 1;
    case kImageBilevel: out[0] = (v[0] | v[1] | v[2] | v[3]) ? 1 : 0; return 1;
    case kImageIndexed:
      out[0] = bits == 1 ? (v[0] & 1) : bits == 4 ? (v[0] & 15) : v[0];
      return 1;
    case kImageRGB48:
      std::memcpy(out, colour.value6, 2);
      std::memcpy(out + 2, v, 4);
      return 6;
    case kImageGrey16: std::memcpy(out, v, 2); return 2;
    default: return 0;
  }
}

CLRColor ImageColorFromByte(int32_t type, uint8_t value) {
  CLRColor colour{};
  colour.model = ImageTypeModel(type);
  colour.palette = 5;
  switch (type) {
    case kImageBGR24:
    case kImageLab24: std::memset(colour.value8, value, 3); break;
    case kImageCMYK32: std::memset(colour.value8, value, 4); break;
    case kImageBilevel: colour.value8[0] = value != 0; break;
    case kImageRGB48:
      std::memset(colour.value6, value, 2);
      std::memset(colour.value8, value, 4);
      break;
    case kImageGrey16: std::memset(colour.value8, value, 2); break;
    default: colour.value8[0] = value; break;
  }
  return colour;
}

int ImageFill(Image* image, const CLRColor& colour) {
  if (!image || !ImageTypeIsValid(image->type)) return 0;
  if (image->type == kImageRaw48) return 1;
  if (!image->tiles) return 0;
  uint8_t pixel[8] = {};
  int32_t size = FillBytes(image, colour, pixel);
  for (int32_t r = 0; r < image->tileRows; ++r) {
    for (int32_t c = 0; c < image->tileColumns; ++c) {
      TileCell* cell = &image->tiles[r][c];
      Rect whole{cell->left, cell->bottom, cell->right, cell->top};
      if (!cell->tile) {
        FillCellRows(image, cell, whole, pixel, size);
        continue;
      }
      if (cell->tile->lockCount > 0) {
        // Someone holds its pixels: write them rather than pull them away.
        if (!CellLockWrite(cell)) return 0;
        FillCellRows(image, cell, whole, pixel, size);
        CellUnlock(cell);
      } else if (cell->tile->refCount > 1) {
        Tile* solid = TileCreate(cell->tile->cache, cell->tile->type, cell->tile->rowBytes,
                                 cell->tile->height, &colour);
        if (!solid) return 0;
        TileRelease(cell->tile);
        cell->tile = solid;
      } else {
        TileMakeSolid(cell->tile, colour);
      }
    }
  }
  if (image->type == kImageMask && image->alphaRuns) RunMaskFill(image->alphaRuns, pixel[0]);
  return 1;
}

int ImageFillWithByte(Image* image, uint8_t value) {
  if (!image) return 0;
  return ImageFill(image, ImageColorFromByte(image->type, value));
}

int ImageWritePixels(Image* image, int32_t x, int32_t y, int32_t width, int32_t height,
                     int32_t rowBytes, const uint8_t* pixels, uint32_t flags) {
  if (!image || !pixels || width <= 0 || height <= 0) return 0;
  if (image->type == kImageMask && image->alphaRuns) {
    RunMaskFree(image->alphaRuns);  // it would no longer describe the pixels
    image->alphaRuns = nullptr;
  }
  if (!MaskApplies(image, flags) && (flags & 0xFFFF) == 0)
    return TransferPixels(image, x, y, width, height, rowBytes, const_cast<uint8_t*>(pixels),
                          true);
  // Masks or a merge mode: wrap the buffer in an image of the same format and
  // let the compositor merge it.
  Image* wrapper =
      image->type == kImageIndexed
          ? ImageCreatePalettedOnBuffer(image->palette, width, height, image->bitsPerPixel, 1,
                                        image->xResolution, image->yResolution,
                                        const_cast<uint8_t*>(pixels))
          : ImageCreateOnBuffer(image->type, width, height, image->xResolution,
                                image->yResolution, const_cast<uint8_t*>(pixels));
  if (!wrapper) return 0;
  int result = 0;
  if (ImageSetRowBytes(wrapper, rowBytes))
    result = CompositeImage(nullptr, image, x, y, width, height, nullptr, wrapper, 0, 0, width,
                            height, nullptr, flags);
  ImageDestroy(wrapper);
  return result;
}

int ImageReadPixels(const Image* image, int32_t x, int32_t y, int32_t width, int32_t height,
                    int32_t rowBytes, uint8_t* pixels) {
  return TransferPixels(const_cast<Image*>(image), x, y, width, height, rowBytes, pixels, false);
}

}  // namespace fancy
