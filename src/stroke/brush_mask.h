// BrushMask: a brush file's raster as the engine paints with it. A brush is
// an 8-bit grey BMP whose values are the stroke's coverage, 0 for nothing
// and 255 for full.
//
// The raster keeps the file's row order and its rows padded to four bytes,
// but the engine walks it with a stride of the width: a brush whose width is
// not a multiple of four comes out sheared, and brush files are made with
// widths that are. BMP rows run from the picture's bottom up, so a brush is
// painted upside down compared with its file (at angle 0).
#pragma once

#include <cstdint>

namespace fancy {

struct BrushMask {
  int16_t width;    // low halves of the file's fields
  int16_t height;
  uint8_t* raster;  // a block of rowBytes x height + spare bytes, zeroed past the data
  int16_t flag;     // always 1; nothing reads it
};

// Bytes kept zeroed after the raster, so that a sample one column past a
// row, or one row past the last, reads 0 instead of running off the block.
// At least 1024, and more than a row for brushes wider than that.
int32_t BrushMaskSpareBytes(int32_t width);

// Loads the brush file at path. Accepted: the signature "BM", an
// information header of 40 bytes or more (a 12-byte header has no grey
// table), 8 bits a pixel in one plane, no compression, a colour table at
// offset 54 of (colours used, or 256) entries that are all grey (blue, green
// and red equal), and the data straight after the table, complete. Returns 0
// and fills mask on success; -1 with mask empty (all zero) on any failure.
int32_t BrushMaskLoad(const char* path, BrushMask* mask);

// Frees the raster and empties the mask; an empty mask is harmless.
void BrushMaskFree(BrushMask* mask);

}  // namespace fancy
