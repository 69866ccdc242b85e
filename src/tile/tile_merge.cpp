#include "tile/tile_merge.h"

#include "tile/tile_kernels.h"
#include "tile/tile_pixel.h"

namespace fancy {

TileRowKernel GetTileKernel(int32_t mode, bool fullOpacity) {
  if (TileRowKernel kernel = tile_kernels::SmallKernel(mode, fullOpacity)) return kernel;
  return tile_kernels::ColourKernel(mode, fullOpacity);
}

bool MergeRow(const TileBuffer& tile, const uint8_t* imageRow, uint8_t* outRow, int32_t column,
              int32_t row, int32_t width, int32_t type, int32_t stepFraction, int32_t stepWhole) {
  const uint8_t alpha = TileOpacityAlpha(tile.opacity);
  const TileRowKernel kernel = GetTileKernel(tile.mode, alpha == 0);
  if (!kernel || row < 0 || row >= tile.height || !TilePixelTypesMatch(type, tile.pixelType) ||
      tile.bytesPerPixel != TileBytesPerPixel(tile.pixelType) ||
      int64_t{tile.width} * tile.bytesPerPixel > tile.rowBytes ||
      !tile_kernels::WalkArgumentsValid(tile.data, tile.width, tile.rowBytes, column, row, width,
                                        outRow, imageRow, stepFraction, stepWhole)) {
    return false;
  }
  kernel(tile.data, tile.width, tile.rowBytes, column, row, type, width, tile.pixelType, outRow,
         imageRow, alpha, stepFraction, stepWhole, tile.bytesPerPixel);
  return true;
}

}  // namespace fancy
