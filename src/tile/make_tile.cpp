// MakeTile: the source pixels, the feathered cell, the tile built by the
// group, and where the tile's origin lies in the image.
//
// The builders read the cell's region (its bounding box over the cell's
// extent, grown by the feather's margins) from a copy of its own: from the
// host's rows, the loaded picture or the preview's picture, with pixels past
// the picture's edge repeating the edge. The final path builds with
// flipRows set, so its copy lies bottom row first, as a loaded picture holds
// the rows of its file; its tile comes out bottom row first and is turned to
// the image's order once. A preview's copy lies top row first and builds
// plainly. Either way the tile is the cell's wallpaper the right way up, its
// origin at the cell's corner, so that with no pan the mother cell shows
// where it was cut.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/host_bridge.h"
#include "frame/result_codes.h"
#include "tile/source_convert.h"
#include "tile/symmetry.h"
#include "tile/tile_pixel.h"
#include "tile/tile_run.h"
#include "tile/tile_state.h"
#include "tile/tile_work.h"

namespace fancy {

namespace {

constexpr int16_t kErrHandedOn = -34;

// The source rectangle's pixels as the builders read them: the first byte
// of its first row in memory, rows stride apart.
struct SourceView {
  uint8_t* base = nullptr;
  int32_t stride = 0;
  int32_t rows = 0;
  int32_t cols = 0;
  bool bottomUp = false;  // memory row 0 is the rectangle's bottom row
};

void ReverseRows(uint8_t* base, int32_t stride, int32_t rows, int32_t rowBytes) {
  for (int32_t top = 0, bottom = rows - 1; top < bottom; ++top, --bottom) {
    uint8_t* a = base + static_cast<ptrdiff_t>(top) * stride;
    std::swap_ranges(a, a + rowBytes, base + static_cast<ptrdiff_t>(bottom) * stride);
  }
}

// Pixels of a picture in source coordinates: (originX, originY) is the
// picture's first pixel; rows lie bottom row first when bottomUp.
struct PixelSource {
  const uint8_t* base = nullptr;
  int32_t stride = 0;
  int32_t rows = 0;
  int32_t cols = 0;
  int32_t originX = 0;
  int32_t originY = 0;
  bool bottomUp = false;

  // Row y, held to the picture's rows.
  const uint8_t* Row(int32_t y) const {
    const int32_t r = std::clamp(y - originY, 0, rows - 1);
    return base + static_cast<ptrdiff_t>(bottomUp ? rows - 1 - r : r) * stride;
  }
};

// A one-cell Image as a pixel source; false when its rows are not one block.
bool ImageSource(const Image* image, int32_t originX, int32_t originY, bool bottomUp,
                 int32_t bytesPerPixel, PixelSource* source) {
  if (!image || image->bitsPerPixel != bytesPerPixel * 8 || image->width <= 0 ||
      image->height <= 0)
    return false;
  const uint8_t* first = ImagePixelAddress(image, 0, 0);
  const uint8_t* last = ImagePixelAddress(image, 0, image->height - 1);
  if (!first || last != first + static_cast<ptrdiff_t>(image->height - 1) * image->rowBytes)
    return false;
  *source = {first, image->rowBytes, image->height, image->width, originX, originY, bottomUp};
  return true;
}

// The host's delivered rows must be exactly the rows asked for.
bool HostSource(const FilterRecord* host, int32_t bytesPerPixel, PixelSource* source) {
  const Rect16& want = gTileState.sourceRequest;
  const Rect16& got = host->inRect;
  const int32_t cols = want.right - want.left, rows = want.bottom - want.top;
  if (!host->inData || got.top != want.top || got.left != want.left ||
      got.bottom != want.bottom || got.right != want.right || cols <= 0 || rows <= 0 ||
      host->inHiPlane - host->inLoPlane + 1 != bytesPerPixel ||
      host->inRowBytes < int64_t{cols} * bytesPerPixel)
    return false;
  *source = {static_cast<const uint8_t*>(host->inData),
             host->inRowBytes,
             rows,
             cols,
             want.left - gTileState.filterRect.left,
             want.top - gTileState.filterRect.top,
             false};
  return true;
}

// Copies region (source coordinates) from the picture into the auxiliary
// buffer, bottom row first when bottomUp; columns and rows past the picture
// repeat its edge.
int16_t CopyRegion(const PixelSource& from, const Rect16& region, bool bottomUp,
                   int32_t bytesPerPixel, SourceView* view) {
  TileWorkBuffer& aux = gTileState.auxBuffer;
  const int32_t width = region.right - region.left, height = region.bottom - region.top;
  aux = TileWorkBuffer{};
  aux.width = width;
  aux.height = height;
  aux.rowBytes = width * bytesPerPixel;
  aux.pixelType = gTileState.pixelType;
  aux.handle = AllocateTileWork(static_cast<size_t>(aux.rowBytes) * height);
  if (!aux.handle) return kErrOutOfMemory;
  aux.data = aux.handle.get();
  aux.state = 0;
  // The columns the picture has, and the edges repeated on either side.
  const int32_t x0 = std::clamp(from.originX, int32_t{region.left}, int32_t{region.right});
  const int32_t x1 =
      std::clamp(from.originX + from.cols, int32_t{region.left}, int32_t{region.right});
  const int32_t firstCol = std::clamp(region.left - from.originX, 0, from.cols - 1);
  const int32_t lastCol = std::clamp(region.right - 1 - from.originX, 0, from.cols - 1);
  for (int32_t r = 0; r < height; ++r) {
    const uint8_t* in = from.Row(region.top + r);
    uint8_t* out = aux.data + static_cast<ptrdiff_t>(bottomUp ? height - 1 - r : r) * aux.rowBytes;
    for (int32_t x = region.left; x < x0; ++x)
      std::memcpy(out + (x - region.left) * bytesPerPixel, in + firstCol * bytesPerPixel,
                  static_cast<size_t>(bytesPerPixel));
    if (x1 > x0)
      std::memcpy(out + (x0 - region.left) * bytesPerPixel,
                  in + (x0 - from.originX) * bytesPerPixel,
                  static_cast<size_t>(x1 - x0) * bytesPerPixel);
    for (int32_t x = std::max(x0, x1); x < region.right; ++x)
      std::memcpy(out + (x - region.left) * bytesPerPixel, in + lastCol * bytesPerPixel,
                  static_cast<size_t>(bytesPerPixel));
  }
  *view = {aux.data, aux.rowBytes, height, width, bottomUp};
  return kNoError;
}

struct HostHooks {
  static void Progress(void* context, int32_t done, int32_t total) {
    auto* host = static_cast<FilterRecord*>(context);
    if (host->progressProc) host->progressProc(done, total);
  }
  static bool Abort(void* context) {
    auto* host = static_cast<FilterRecord*>(context);
    return host->abortProc && (host->abortProc() & 0xFF) != 0;
  }
};

int32_t NonNegativeMod(int64_t value, int64_t modulus) {
  int64_t r = value % modulus;
  return static_cast<int32_t>(r < 0 ? r + modulus : r);
}

// The feathered cell into cellBuffer. The source rows are made top row
// first for the feather engine, and put back afterwards.
int16_t FeatherCell(Symmetry& symmetry, const SourceView& view, int32_t bytesPerPixel,
                    int32_t pixelType, int32_t isPreview) {
  TileWorkBuffer& cell = gTileState.cellBuffer;
  const int32_t width = symmetry.extentWidth, height = symmetry.extentHeight;
  cell = TileWorkBuffer{};
  cell.width = width;
  cell.height = height;
  cell.rowBytes = width * bytesPerPixel;
  cell.pixelType = pixelType;
  cell.handle = AllocateTileWork(static_cast<size_t>(cell.rowBytes) * height);
  if (!cell.handle) return kErrOutOfMemory;
  cell.data = cell.handle.get();
  cell.state = 0;

  // The feather engine reads rows top first: flipped rows are turned over
  // for it, and both they and the cell put back afterwards.
  const int32_t viewBytes = view.cols * bytesPerPixel;
  const bool flip = view.bottomUp;
  if (flip) ReverseRows(view.base, view.stride, view.rows, viewBytes);
  const int32_t top = symmetry.featherMargin[kSideTop];
  const int32_t left = symmetry.featherMargin[kSideLeft];
  // The plain copy under the feathered cell starts three bytes a margin
  // pixel in, whatever the pixel's size. It is seen only where the feather
  // engine leaves a pixel alone; it never reads past the source's last row.
  const int64_t viewEnd = int64_t{view.rows - 1} * view.stride + viewBytes;
  for (int32_t r = 0; r < height; ++r) {
    const int64_t from = int64_t{top + r} * view.stride + int64_t{3} * left;
    const int64_t count = std::min<int64_t>(cell.rowBytes, viewEnd - from);
    if (count > 0)
      std::memcpy(cell.data + static_cast<ptrdiff_t>(r) * cell.rowBytes, view.base + from,
                  static_cast<size_t>(count));
  }
  const uint8_t* corner =
      view.base + static_cast<ptrdiff_t>(top) * view.stride + static_cast<ptrdiff_t>(left) * bytesPerPixel;
  const int16_t built = symmetry.BuildFeatheredCell(corner, view.stride, pixelType,
                                                    isPreview ? 0 : 1, cell.data, cell.rowBytes,
                                                    pixelType);
  if (flip) {
    ReverseRows(view.base, view.stride, view.rows, viewBytes);
    ReverseRows(cell.data, cell.rowBytes, cell.height, cell.rowBytes);
  }
  return built;
}

// Where the tile's origin lies: the cell's corner, moved by the pan.
void PlaceTile(TileRecord* params, int32_t isPreview) {
  TileEngineState& s = gTileState;
  Symmetry& symmetry = *s.symmetry;
  TileBuffer& tile = s.tileBuffer;
  s.baseX = symmetry.cellX + s.sourceLeft - s.cropLeft;
  s.baseY = symmetry.cellY + s.sourceTop - s.cropTop;
  const int64_t panX = static_cast<int64_t>(std::trunc(tile.imageWidth * params->panFractionX));
  const int64_t panY = static_cast<int64_t>(std::trunc(tile.imageHeight * params->panFractionY));
  // The tile is the right way up whatever its source: the first run needs
  // no move of its own to bring the cell back in place.
  if (!isPreview) params->firstRun = 0;
  tile.panX = NonNegativeMod(panX, tile.width);
  tile.panY = NonNegativeMod(panY, tile.height);
  tile.offsetX = tile.panX + s.baseX;
  tile.offsetY = tile.panY + s.baseY;
}

void ReleaseTileBuffer() {
  TileEngineState& s = gTileState;
  s.tilePixels.reset();
  s.tileBuffer.handle = nullptr;
  s.tileBuffer.data = nullptr;
  s.tileBuffer.state = kTileBufferEmpty;
}

int16_t MakeTileSteps(int32_t isPreview, FilterRecord* host, TileRecord* params,
                      const Image* previewSource) {
  TileEngineState& s = gTileState;
  if (!s.symmetry) return kErrFilterFailure;
  Symmetry& symmetry = *s.symmetry;
  const int32_t pixelType = s.pixelType;
  const int32_t bytesPerPixel = TileBytesPerPixel(pixelType);
  if (bytesPerPixel == 0) return kErrFilterFailure;

  // 1. The row order of the path.
  symmetry.flipRows = isPreview ? 0 : 1;
  s.tileBuffer.rowFlag = isPreview ? 0 : 1;

  // 2. The groups with mirrors on every edge take no feather.
  if (TileGroupTakesNoFeather(symmetry.groupId) && symmetry.feather != 0) {
    symmetry.feather = 0;
    symmetry.PrepareMargins();
  }
  const bool feathered = symmetry.feather != 0;

  // 3, 4. The cell's region, copied in the path's row order.
  const bool flip = symmetry.flipRows != 0;
  Rect16 region;
  TileSourceRegion(symmetry, &region);
  PixelSource picture;
  bool readable;
  if (s.sourceKind == kTileSourceFile) {
    readable = ImageSource(s.loadedSource.get(), -s.cropLeft, -s.cropTop, true, bytesPerPixel,
                           &picture) &&
               TilePixelTypeOfImage(s.loadedSource->type) == pixelType;
  } else if (isPreview) {
    readable = ImageSource(previewSource, 0, 0, false, bytesPerPixel, &picture) &&
               TilePixelTypeOfImage(previewSource->type) == pixelType;
  } else {
    readable = HostSource(host, bytesPerPixel, &picture);
  }
  if (!readable) return kErrFilterFailure;
  SourceView view;
  const int16_t copied = CopyRegion(picture, region, flip, bytesPerPixel, &view);
  if (copied != kNoError) return copied;

  // The cell's bounding box: its lowest row in memory, and its first column.
  const int32_t lowMargin = symmetry.featherMargin[flip ? kSideBottom : kSideTop];
  const uint8_t* cellCorner = view.base + static_cast<ptrdiff_t>(lowMargin) * view.stride +
                              static_cast<ptrdiff_t>(symmetry.featherMargin[kSideLeft]) *
                                  bytesPerPixel;

  // 5. The feathered cell.
  if (feathered) {
    const int16_t built = FeatherCell(symmetry, view, bytesPerPixel, pixelType, isPreview);
    if (built != kNoError) return built;
  }

  // 6, 7. The tile's size and buffer.
  TileBuffer& tile = s.tileBuffer;
  tile.width = symmetry.tileWidth;
  tile.height = symmetry.tileHeight;
  tile.rowShift = symmetry.rowShift;
  tile.imageWidth = s.filterRect.right - s.filterRect.left;
  tile.imageHeight = s.filterRect.bottom - s.filterRect.top;
  tile.pixelType = static_cast<int16_t>(pixelType);
  tile.bytesPerPixel = static_cast<int16_t>(bytesPerPixel);
  tile.rowBytes = TileRowBytes(pixelType, tile.width);
  if (tile.rowBytes <= 0) return kErrOutOfMemory;
  s.tilePixels = AllocateTileWork(static_cast<size_t>(tile.rowBytes) * tile.height);
  if (!s.tilePixels) return kErrOutOfMemory;
  tile.handle = s.tilePixels.get();
  tile.state = 0;
  tile.data = s.tilePixels.get();
  if (!tile.data) return kTileErrorLockFailed;

  // 8. The tile.
  symmetry.targetWidth = tile.imageWidth;
  symmetry.targetHeight = tile.imageHeight;
  TileBuildHooks hooks{&HostHooks::Progress, &HostHooks::Abort, host, 0, 0};
  const uint8_t* from = feathered ? s.cellBuffer.data : cellCorner;
  const int32_t fromStride = feathered ? s.cellBuffer.rowBytes : view.stride;
  const int16_t built =
      symmetry.BuildTile(from, fromStride, pixelType, isPreview ? 0 : 1, tile.data,
                         tile.rowBytes, pixelType, isPreview || !host ? nullptr : &hooks);
  s.progressDone = hooks.done;
  s.progressTotal = hooks.total;
  s.cellBuffer = TileWorkBuffer{};
  s.auxBuffer = TileWorkBuffer{};
  if (built != kNoError) return built;

  // 9. Where the tile lies.
  PlaceTile(params, isPreview);

  // 10. A loaded CMYK picture holds ink amounts; the host stores them
  // inverted. The final path's tile is turned to the image's row order.
  const size_t tileBytes = static_cast<size_t>(tile.rowBytes) * tile.height;
  if (!isPreview && pixelType == kTilePixelCmyk && s.sourceKind == kTileSourceFile)
    for (size_t i = 0; i < tileBytes; ++i) tile.data[i] = static_cast<uint8_t>(255 - tile.data[i]);
  if (symmetry.flipRows) ReverseRows(tile.data, tile.rowBytes, tile.height, tile.rowBytes);
  return kNoError;
}

}  // namespace

int16_t MakeTile(int32_t isPreview, FilterRecord* host, TileRecord* params,
                 const Image* previewSource) {
  TileEngineState& s = gTileState;
  ReleaseTileBuffer();
  if (!isPreview && !host) return kErrFilterFailure;
  const int16_t result = MakeTileSteps(isPreview, host, params, previewSource);
  s.cellBuffer = TileWorkBuffer{};
  s.auxBuffer = TileWorkBuffer{};
  if (result == kNoError) {
    // 11. The first row of the image is asked for, in and out.
    if (!isPreview) {
      const int16_t top = s.filterRect.top;
      RequestRows(host, top, static_cast<int16_t>(top + 1), 0,
                  static_cast<int16_t>(s.planes - 1));
      s.nextRow = 0;
    }
    return kNoError;
  }
  if (result == kTileBuildCancelled) {
    // The tile stays, so that the finish can store the pan.
    s.errorCode = kTileErrorCancelled;
    s.userAborted = 1;
    if (host) ClearRowRequest(host);
    return kErrUserCancelled;
  }
  if (host) ClearRowRequest(host);
  ReleaseTileBuffer();
  s.errorCode = result;
  if (result == kErrHandedOn) return result;
  return kErrOutOfMemory;
}

}  // namespace fancy
