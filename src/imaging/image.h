// Image: the typed raster that every dialog and engine passes by pointer. A
// plain record with an ImageType, a grid of cells that holds the pixels, and
// up to two masks. Every operation is a free function that answers 1 for
// success and 0 for failure (or a pointer, null for failure); a null image
// makes them answer 0 without touching anything.
#pragma once

#include <cstdint>

#include "colour/clr_color.h"
#include "imaging/image_types.h"
#include "imaging/palette.h"
#include "imaging/rect.h"
#include "imaging/run_mask.h"
#include "imaging/tile_cache.h"

namespace fancy {

// One cell of the grid: a tile of the TileCache, or a plain block.
struct TileCell {
  Tile* tile;        // null for a plain block
  uint8_t* pixels;   // of a tile: valid between lock and unlock only
  int32_t left;      // the part of the image the cell holds, inclusive
  int32_t bottom;
  int32_t right;
  int32_t top;
  int32_t lockCount;
  int32_t rowBytes;
  int32_t cellType;  // ImageType of the pixels
};

#if UINTPTR_MAX == 0xFFFFFFFFu
static_assert(sizeof(TileCell) == 36, "TileCell is nine 32-bit fields");
#endif

enum : uint32_t {
  kImagePaletteBorrowed = 1,  // `palette` is not freed with the image
};

struct Image {
  int32_t type;          // ImageType
  int32_t reserved1;     // 1 at creation; a view copies it
  int32_t width;
  int32_t height;
  int32_t planes;        // 1 for images made here
  int32_t bitsPerPixel;  // 1, 4, 8, 16, 24, 32 or 48
  int32_t rowBytes;      // a multiple of four
  int32_t imageBytes;    // rowBytes x planes x height
  int32_t reserved2;     // 0 at creation; a view copies it
  int32_t xResolution;   // thousandths of a dot an inch; 0 unknown
  int32_t yResolution;
  Palette* palette;      // type 10 only
  int32_t tileColumns;
  int32_t tileRows;
  int32_t tileWidth;     // for one cell: width
  int32_t tileHeight;    // for one cell: height
  TileCell** tiles;      // tileRows arrays of tileColumns cells
  void* externalBlock;   // an outside party's block, freed (std::free) instead
                         // of the cell's block
  Rect validRect;        // the part of the image that exists
  Image* maskImage;      // limits writes to this image; as a rule type 99
  Rect maskRect;         // the part of this image that maskImage covers
  RunMask* runMask;
  Rect runMaskRect;
  uint32_t flags;        // kImagePaletteBorrowed
  RunMask* alphaRuns;    // type 99: run summary of the pixels, or null
  int32_t storageKind;   // ImageStorageKind
};

#if UINTPTR_MAX == 0xFFFFFFFFu
static_assert(sizeof(Image) == 140, "Image is 35 32-bit fields");
#endif

enum : int32_t {
  kStorageOptionTiled = 1,    // a grid when big and a TileCache exists
  kStorageOptionOneCell = 2,  // always one cell
};

// Flags of ImageWritePixels beyond the merge mode in the low 16 bits.
enum : uint32_t {
  kWriteIgnoreRunMask = 0x40000,
  kWriteIgnoreMaskImage = 0x80000,
};

// --- creation and destruction -------------------------------------------------

// An image of storage kind 3 on the caller's pixels (rowBytes as computed for
// the type; change it with ImageSetRowBytes). With null pixels the image has
// no cells. Types 8 and 9 make type 10 with a palette of its own; type 10
// itself is refused, as are unknown types and sizes that are not positive or
// too big.
Image* ImageCreateOnBuffer(int32_t type, int32_t width, int32_t height, int32_t xResolution,
                           int32_t yResolution, uint8_t* pixels);

// A type 10 image of storage kind 3 on the caller's pixels with a borrowed
// palette. planes must be 1; bits 1 with 1 or 2 entries, 4 with 1 to 16, 8
// with 1 to 256.
Image* ImageCreatePalettedOnBuffer(Palette* palette, int32_t width, int32_t height,
                                   int32_t bits, int32_t planes, int32_t xResolution,
                                   int32_t yResolution, uint8_t* pixels);

// An image with pixels, zeroed or filled with `fill` (a colour of the type's
// model; see ImageFill). Option 1 makes a grid when a TileCache exists and the
// image is big, option 2 always one cell. `fill` and `backing` together are
// refused; `backing` needs option 1 and a TileCache.
Image* ImageCreate(int32_t type, int32_t width, int32_t height, int32_t xResolution,
                   int32_t yResolution, int32_t storageOption, const CLRColor* fill,
                   const TileBacking* backing);

// As ImageCreate for type 10 with a borrowed palette; a fill colour allows
// only option 1.
Image* ImageCreatePaletted(Palette* palette, int32_t width, int32_t height, int32_t bits,
                           int32_t planes, int32_t xResolution, int32_t yResolution,
                           int32_t storageOption, const CLRColor* fill,
                           const TileBacking* backing);

// Frees an owned palette, the mask image (and its masks), the run mask, the
// alpha runs, the storage and the record. Null gives 0.
int ImageDestroy(Image* image);

// A deep copy: pixels, an owned palette copied, mask image and run mask
// copied. Alpha runs are not copied (they point into the original's cells).
Image* ImageDuplicate(const Image* image);

// A record that shares the pixels of `image` (storage kind 4 or 5). It
// borrows the palette and has no masks; it must die before `image`.
Image* ImageMakeView(const Image* image);

// A new zeroed image with the type, depth, palette (borrowed) and resolution
// of `image`.
Image* ImageSameFormat(const Image* image, int32_t width, int32_t height);

// --- masks --------------------------------------------------------------------

// Hangs `mask` on the image (null removes it) and hands back the previous mask
// and its rectangle through the optional outputs; the caller owns the old mask.
// With a null rect the mask lies at (0, 0) and covers the smaller of both
// sizes; a given rect is kept, but its right and bottom are cut to the mask.
int ImageSetMask(Image* image, Image* mask, const Rect* rect, Image** oldMask, Rect* oldRect);

// Hangs a run mask on the image, covering (0, 0) to the smaller of both sizes,
// and answers the previous one, which the caller owns.
RunMask* ImageSetRunMask(Image* image, RunMask* mask);

Image* ImageGetMask(const Image* image);
RunMask* ImageGetRunMask(const Image* image);

// Builds alphaRuns of a type 99 image from its pixels (0 clear, 255 full, the
// rest partial runs that point into the cells). Answers 1, or 0 when the image
// is not type 99 or memory runs out.
int ImageBuildAlphaRuns(Image* image);

// --- fields ---------------------------------------------------------------------

int32_t ImageGetType(const Image* image);
int32_t ImageGetWidth(const Image* image);
int32_t ImageGetHeight(const Image* image);
int32_t ImageGetBitsPerPixel(const Image* image);
int32_t ImageGetRowBytes(const Image* image);
int32_t ImageGetStorageKind(const Image* image);
Palette* ImageGetPalette(const Image* image);
// The whole-image rectangle (0, 0, width-1, height-1); empty for null.
Rect ImageBounds(const Image* image);
// Resolution in thousandths of a dot an inch through optional outputs.
int ImageGetResolution(const Image* image, int32_t* x, int32_t* y);

// For storage kinds 2 and 3: sets the row step of the image and its cell and
// answers the old one. 0 for other kinds or a step too small for a row (or, on
// a block of our own, too big for the block).
int32_t ImageSetRowBytes(Image* image, int32_t rowBytes);

// The address of the byte that holds pixel (x, y), for storage kinds 2, 3 and
// 5; null for tiled kinds, images with no cells and pixels outside the image.
uint8_t* ImagePixelAddress(const Image* image, int32_t x, int32_t y);

// --- pixels ---------------------------------------------------------------------

// Writes width x height pixels from `pixels` (rows rowBytes apart, the first
// pixel at bit 0 of the first byte) to the image at (x, y). The rectangle is
// clipped to the image: a start outside moves the start in the buffer (bits
// for 1- and 4-bit pixels). Nothing left to write is success. With no mask
// applying and mode 0 in the low 16 bits of `flags` the bytes are copied;
// otherwise the buffer is merged by CompositeImage with `flags` as its mode.
// A mask applies when runMask has rows and kWriteIgnoreRunMask is off, or
// maskImage is set and kWriteIgnoreMaskImage is off; never on 8-bit type 10.
int ImageWritePixels(Image* image, int32_t x, int32_t y, int32_t width, int32_t height,
                     int32_t rowBytes, const uint8_t* pixels, uint32_t flags);

// The other direction: copies the image's pixels into the buffer, clipped the
// same way. 0 for types that hold no pixels to copy.
int ImageReadPixels(const Image* image, int32_t x, int32_t y, int32_t width, int32_t height,
                    int32_t rowBytes, uint8_t* pixels);

// Sets every pixel to `colour`, whose value bytes are taken as a pixel of the
// image's type (callers convert a colour of another model first): RGB blue,
// green, red at value8; CMYK at value8; grey at value8[0]; 1-bit non-zero
// value8; palette index at value8[0]; Lab at value8; RGB 48 and grey 16 as
// their little-endian words from value6. A tiled cell becomes a solid cell.
// Type 13 writes nothing. The alpha runs of a type 99 image are rebuilt.
int ImageFill(Image* image, const CLRColor& colour);

// Fills with a colour of the image's model made from one byte: the value in
// every byte for RGB, CMYK, grey and Lab; value != 0 for 1-bit; the value
// doubled into 16 bits for types 12 and 14; the index for type 10.
int ImageFillWithByte(Image* image, uint8_t value);

// The colour `value` of ImageFillWithByte, in the image type's model.
CLRColor ImageColorFromByte(int32_t type, uint8_t value);

// The bytes of one pixel of the type (and depth, for type 10) for `colour`,
// as ImageFill reads it; 1- and 4-bit pixels come as the value in the low
// bits. Answers the byte count (1 for sub-byte pixels), 0 for type 13 and
// unknown types.
int32_t ImagePixelFromColor(int32_t type, int32_t bits, const CLRColor& colour, uint8_t out[8]);

}  // namespace fancy
