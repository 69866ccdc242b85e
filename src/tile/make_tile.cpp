// MakeTile: the source rows, the feathered cell, the tile built by the
// group, and where the tile's origin lies in the image.
//
// Row order. The final path builds with flipRows set: its source rows lie
// bottom row first, as a loaded picture holds the rows of its file. The
// host's rows come top row first, so the part of them the cell is cut from
// is turned over for the build and put back afterwards; the tile then comes
// out bottom row first and is turned to the image's order once. A preview
// reads its picture top row first and builds plainly. Either way the tile
// is the cell's wallpaper the right way up, its origin at the cell's corner,
// so that with no pan the mother cell shows where it was cut.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/host_bridge.h"
#include "frame/result_codes.h"
#include "tile/source_convert.h"
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

// The source rectangle of the loaded picture (bottom row first) or of the
// preview's picture (top row first), copied at (1, 1) of the bordered
// auxiliary buffer.
int16_t CopyToAux(const Image* image, const Rect16& source, int32_t left, int32_t top,
                  bool bottomUp, int32_t bytesPerPixel, SourceView* view) {
  TileWorkBuffer& aux = gTileState.auxBuffer;
  const int32_t width = source.right - source.left, height = source.bottom - source.top;
  aux = TileWorkBuffer{};
  aux.width = width + 2;
  aux.height = height + 2;
  aux.rowBytes = aux.width * bytesPerPixel;
  aux.handle = AllocateTileWork(static_cast<size_t>(aux.rowBytes) * aux.height);
  if (!aux.handle) return kErrOutOfMemory;
  aux.data = aux.handle.get();
  aux.state = 0;
  aux.pixelType = gTileState.pixelType;
  const int32_t x = source.left + left;
  // Rows of a bottom-up picture count from its bottom.
  const int32_t row = bottomUp ? image->height - (source.bottom + top) : source.top + top;
  if (!CopyImagePartBordered(image, x, row, width, height, bytesPerPixel, aux.data, aux.rowBytes))
    return kErrFilterFailure;
  view->base = aux.data + aux.rowBytes + bytesPerPixel;
  view->stride = aux.rowBytes;
  view->rows = height;
  view->cols = width;
  view->bottomUp = bottomUp;
  return kNoError;
}

// The host's delivered rows must be exactly the source rectangle asked for.
int16_t HostView(const FilterRecord* host, int32_t bytesPerPixel, SourceView* view) {
  const Rect16& want = gTileState.sourceRequest;
  const Rect16& got = host->inRect;
  if (!host->inData || got.top != want.top || got.left != want.left ||
      got.bottom != want.bottom || got.right != want.right ||
      host->inHiPlane - host->inLoPlane + 1 != bytesPerPixel)
    return kErrFilterFailure;
  view->cols = want.right - want.left;
  view->rows = want.bottom - want.top;
  if (host->inRowBytes < int64_t{view->cols} * bytesPerPixel) return kErrFilterFailure;
  view->base = static_cast<uint8_t*>(host->inData);
  view->stride = host->inRowBytes;
  view->bottomUp = false;
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

// turned: the host's rows turned over for the build, to be put back.
int16_t MakeTileSteps(int32_t isPreview, FilterRecord* host, TileRecord* params,
                      const Image* previewSource, SourceView* turned) {
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

  // 3, 4. The source rectangle's pixels.
  Rect16 source;
  symmetry.GetSourceRect(&source);
  SourceView view;
  int16_t got;
  if (s.sourceKind == kTileSourceFile) {
    const Image* loaded = s.loadedSource.get();
    if (!loaded || TilePixelTypeOfImage(loaded->type) != pixelType) return kErrFilterFailure;
    got = CopyToAux(loaded, source, s.cropLeft, s.cropTop, true, bytesPerPixel, &view);
  } else if (isPreview) {
    if (!previewSource || TilePixelTypeOfImage(previewSource->type) != pixelType)
      return kErrFilterFailure;
    got = CopyToAux(previewSource, source, 0, 0, false, bytesPerPixel, &view);
  } else {
    got = HostView(host, bytesPerPixel, &view);
  }
  if (got != kNoError) return got;
  // The view's rows in the order of the path: bottom row first when flipped.
  // The host's rows are turned back by RestoreHostRows.
  if (view.bottomUp != (symmetry.flipRows != 0)) {
    ReverseRows(view.base, view.stride, view.rows, view.cols * bytesPerPixel);
    view.bottomUp = !view.bottomUp;
  }
  if (!isPreview && s.sourceKind == kTileSourceImage) *turned = view;

  // The cell's bounding box: its lowest row in memory, and its first column.
  const int32_t lowMargin =
      view.bottomUp ? symmetry.featherMargin[kSideBottom] : symmetry.featherMargin[kSideTop];
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
  SourceView turned;
  const int16_t result = MakeTileSteps(isPreview, host, params, previewSource, &turned);
  if (turned.base)
    ReverseRows(turned.base, turned.stride, turned.rows,
                turned.cols * TileBytesPerPixel(s.pixelType));
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
