// The preview's merge of the tile into the dialog's result picture, and the
// tile written to a file by Save Tile.
#include <cmath>
#include <cstring>

#include "frame/result_codes.h"
#include "tile/source_convert.h"
#include "tile/source_file.h"
#include "tile/tile_merge.h"
#include "tile/tile_pixel.h"
#include "tile/tile_run.h"
#include "tile/tile_state.h"

namespace fancy {

namespace {

void Invert(uint8_t* bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(255 - bytes[i]);
}

bool Addressable(const Image* image) {
  return image && image->width > 0 && image->height > 0 && ImagePixelAddress(image, 0, 0) &&
         ImagePixelAddress(image, 0, image->height - 1);
}

int32_t ImageTypeOfTile(int32_t pixelType) {
  switch (pixelType) {
    case kTilePixelRgb: return kImageBGR24;
    case kTilePixelCmyk: return kImageCMYK32;
    case kTilePixelGray: return kImageGrey8;
    default: return 0;
  }
}

}  // namespace

int16_t TilePreviewRender(Image* result, const Image* source, double scale) {
  TileEngineState& s = gTileState;
  TileBuffer& tile = s.tileBuffer;
  if (tile.opacity < 1) return kNoError;
  if (!TileHasTile() || !Addressable(result) || !Addressable(source) ||
      result->type != source->type || result->width != source->width ||
      result->height != source->height || TilePixelTypeOfImage(result->type) != tile.pixelType ||
      !std::isfinite(scale) || scale <= 0.0 || scale > 1.0)
    return kErrFilterFailure;

  // The tile's origin with the current pan.
  tile.offsetX = tile.panX + s.baseX;
  tile.offsetY = tile.panY + s.baseY;
  // The merge kernels work in the host's sense, where CMYK is stored
  // inverted (255 no ink); the dialog's pictures and a preview's tile hold
  // inks. For CMYK the tile and each source row are inverted for the merge,
  // and the merged row is turned back to inks.
  const bool cmyk = result->type == kImageCMYK32;
  const size_t tileBytes = static_cast<size_t>(tile.rowBytes) * tile.height;
  if (cmyk) Invert(tile.data, tileBytes);
  // A preview pixel steps 1/s tile pixels: a whole part, and a fraction in
  // hundred-thousandths.
  const double step = 1.0 / scale;
  const int32_t whole = static_cast<int32_t>(std::trunc(step));
  const int32_t stepWhole = whole - 1;
  const int32_t stepFraction = static_cast<int32_t>(std::trunc((step - whole) * 100000.0));
  const size_t rowBytes = static_cast<size_t>(result->width) * (result->bitsPerPixel / 8);
  bool merged = true;
  for (int32_t y = result->height - 1; y >= 0 && merged; --y) {
    int32_t column, row;
    TileRowOrigin(tile, 0, static_cast<int32_t>(std::trunc(y / scale)), &column, &row);
    uint8_t* out = ImagePixelAddress(result, 0, y);
    std::memmove(out, ImagePixelAddress(source, 0, y), rowBytes);
    if (cmyk) Invert(out, rowBytes);
    merged = MergeRow(tile, out, out, column, row, result->width, tile.pixelType, stepFraction,
                      stepWhole);
    if (cmyk) Invert(out, rowBytes);
  }
  if (cmyk) Invert(tile.data, tileBytes);
  return merged ? kNoError : kErrFilterFailure;
}

int16_t SaveTileBmp(const char* path) {
  const TileBuffer& tile = gTileState.tileBuffer;
  const int32_t type = ImageTypeOfTile(tile.pixelType);
  if (!TileHasTile() || type == 0) return kErrFilterFailure;
  // A BMP holds its bottom row first; the tile is held top row first.
  Image* image = ImageCreate(type, tile.width, tile.height, 0, 0, kStorageOptionOneCell, nullptr,
                             nullptr);
  if (!image) return kSourceFileNoMemory;
  int16_t saved = kSourceFileReadError;
  if (image->rowBytes == tile.rowBytes && ImagePixelAddress(image, 0, 0)) {
    for (int32_t y = 0; y < tile.height; ++y)
      std::memcpy(ImagePixelAddress(image, 0, tile.height - 1 - y),
                  tile.data + static_cast<ptrdiff_t>(y) * tile.rowBytes,
                  static_cast<size_t>(tile.rowBytes));
    saved = SaveImageBmp(image, path);
  }
  ImageDestroy(image);
  return saved;
}

}  // namespace fancy
