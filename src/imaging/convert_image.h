// Whole-image conversion: a rectangle of one image written into another of
// another type, dithered when the target has few colours (1 bit or a
// palette) by the DrawContext's ditherMode.
#pragma once

#include <cstdint>

#include "imaging/draw_context.h"
#include "imaging/image.h"

namespace fancy {

// Where a type stands in the conversion tables: 1 -> 0, 3 -> 1, 5 and 99 ->
// 2, 6 -> 3, 8-bit 10 -> 4, 11 -> 5, other 10 -> 6, 12 -> 7, 13 -> 8,
// 14 -> 9; -1 for others.
int32_t ConvertIndexOf(const Image* image);

// True for the pairs that convert without dithering, by CompositeImage with
// the destination's masks ignored.
bool ConvertNeedsNoDither(int32_t sourceIndex, int32_t destIndex);
// True for the pairs that have a whole-image error diffusion.
bool ConvertHasDiffusion(int32_t sourceIndex, int32_t destIndex);

// Converts width x height pixels from (srcX, srcY) of src to (x, y) of dst,
// clipped to both. The context's opacity is 255 for the time of the work
// (null means a context of defaults). Pairs that need no dithering merge by
// CompositeImage; ditherMode 2 diffuses errors over the whole rectangle
// where the pair has a diffusion, and otherwise the destination's cells are
// converted one by one (diffusion restarting in each): 1-bit and palette
// targets by ditherMode (2 diffusion, 3 the ordered matrix, 4 to 6 the
// fixed matrices; other modes fail), other targets by their row converter.
// Answers 1, or 0 for an unknown type, a dither mode with no function, a
// cell that can't be locked, memory, or progress asking to stop.
int ConvertImage(DrawContext* context, Image* dst, int32_t x, int32_t y, Image* src, int32_t srcX,
                 int32_t srcY, int32_t width, int32_t height);

}  // namespace fancy
