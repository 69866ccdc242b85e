// Merging the tile into a row of the image: the row walker and the
// kernels of the nine modes.
//
// A kernel walks one tile row while it produces pixelCount output pixels.
// After each output pixel the tile position moves stepWhole + 1 pixels,
// and a fraction stepFraction / 100000 of a pixel more accumulates: the
// accumulator starts at -100000, and whenever it reaches 0 the position
// moves one pixel more and the accumulator drops by 100000. A position
// past the row's end goes back by the tile's width, so a tile narrower
// than the image repeats along the row. On the final path both steps are
// 0; a preview at scale s has stepWhole = trunc(1/s) - 1 and stepFraction
// = trunc((1/s - trunc(1/s)) x 100000).
//
// Image rows and the tile have TilePixelType layouts with the same
// channels (gray, RGB in three or four bytes, CMYK). Bytes a layout does
// not use are never written. Kernels hold no state and allocate nothing.
#pragma once

#include <cstdint>

#include "tile/tile_buffer.h"

namespace fancy {

// tileData is row 0 of the tile; (column, row) the tile pixel that the
// first output pixel takes. blend is the image's weight alpha (the full
// opacity kernels ignore it). bytesPerPixel is the tile's and must agree
// with tileType. Rows are read from imageRow and written to outRow, which
// may be the same.
using TileRowKernel = void (*)(const uint8_t* tileData, int32_t tileWidth, int32_t tileRowBytes,
                               int32_t column, int32_t row, int32_t imageType, int32_t pixelCount,
                               int32_t tileType, uint8_t* outRow, const uint8_t* imageRow,
                               int32_t blend, int32_t stepFraction, int32_t stepWhole,
                               int32_t bytesPerPixel);

// The kernel of a mode, with opacity (fullOpacity false) or without.
// Null for a mode outside 1..9.
TileRowKernel GetTileKernel(int32_t mode, bool fullOpacity);

// Merges width pixels of the tile, from tile pixel (column, row) on, with
// the image row of pixel type `type` into outRow, by the tile's mode and
// opacity: an alpha of 0 (opacity 100) takes the full-opacity kernel. A
// gray row in one of the four colour modes is left as it is. False, with
// nothing written, when the tile or the arguments do not fit together.
bool MergeRow(const TileBuffer& tile, const uint8_t* imageRow, uint8_t* outRow, int32_t column,
              int32_t row, int32_t width, int32_t type, int32_t stepFraction, int32_t stepWhole);

}  // namespace fancy
