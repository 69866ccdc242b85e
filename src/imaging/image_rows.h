// Reading one row of pixels out of an Image whatever its grid: straight from
// a plain cell when one holds the whole stretch, else gathered cell by cell
// (solid cells written out as their colour) into the caller's buffer.
#pragma once

#include <cstdint>

#include "imaging/image.h"

namespace fancy {

// The pixels x0 .. x0 + count - 1 of row y, which must lie in the image.
// Answers a pointer into the image when one cell without a tile holds the
// whole stretch (*bit is then the bit of the first pixel in its byte, for
// pixels under 8 bits), else copies into `buffer` (which holds count pixels,
// the first at bit 0) and answers it with *bit = 0. Null when a tile cannot
// be locked or the image has no cells.
const uint8_t* ImageRowPixels(Image* image, int32_t y, int32_t x0, int32_t count,
                              uint8_t* buffer, int32_t* bit);

// The bytes one pixel of the image takes in a row: 0 for pixels under 8 bits.
int32_t ImagePixelBytes(const Image* image);
// The same for a type at a depth.
int32_t PixelBytesOf(int32_t type, int32_t bits);

// Writes `count` pixels of `size` bytes (1 to 8) from `pixel` to p.
void RepeatPixelBytes(uint8_t* p, int64_t count, const uint8_t* pixel, int32_t size);

}  // namespace fancy
