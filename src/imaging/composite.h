// CompositeImage: the one operation by which pixels move from an Image to an
// Image. It clips, takes fast paths where it can, picks merge kernels by the
// types and the mode, converts between types through a working type, scales
// when the rectangles differ in size, honours masks and opacity, and reports
// progress.
#pragma once

#include <cstdint>

#include "colour/clr_color.h"
#include "imaging/draw_context.h"
#include "imaging/image.h"
#include "imaging/rect.h"

namespace fancy {

// The mode argument: a MergeMode in the low 16 bits (32 or more merges
// nothing) and these flags.
constexpr uint32_t kCompositeModeBits = 0xFFFF;
constexpr uint32_t kCompositeSourceRunMask = 0x10000;    // also apply the source's runMask
constexpr uint32_t kCompositeSourceMaskImage = 0x20000;  // also apply the source's maskImage
constexpr uint32_t kCompositeIgnoreDestRunMask = 0x40000;
constexpr uint32_t kCompositeIgnoreDestMaskImage = 0x80000;
// Smooth scaling weighs colours by the source's mask (and applies it).
constexpr uint32_t kCompositeWeightBySourceMask = 0x100000;
constexpr uint32_t kCompositeDestChannelShift = 24;    // ChannelSelector: destination channel + 1
constexpr uint32_t kCompositeSourceChannelShift = 28;  // ChannelSelector: source channel + 1

// The ChannelSelector bits that merge source channel `source` into
// destination channel `dest` (channels counted from 0; 16-bit types count
// bytes two at a time).
constexpr uint32_t CompositeChannels(int32_t dest, int32_t source) {
  return (static_cast<uint32_t>(dest + 1) & 15u) << kCompositeDestChannelShift |
         (static_cast<uint32_t>(source + 1) & 15u) << kCompositeSourceChannelShift;
}

// Merges the source rectangle of `src` into the destination rectangle of
// `dst`. The rectangles are the Rects when both are given, else the x, y,
// width, height numbers. A Rect given the wrong way round (right < left - 1
// or bottom < top - 1) mirrors: it covers right + 1 .. left - 1, from
// left - 1 down. With no source, the destination is its own source with the
// same rectangle. The merge mode, opacity (the context's; 255 without one),
// filter for scaling and progress come from the context, which may be null.
//
// Answers 1 when done, also when nothing had to be done (nothing to merge,
// opacity 0, a mode of 32 or more, a kind of merge the types can't run), and
// 0 when the work stopped part way: memory, a tile that can't be locked,
// progress asking to stop, a mask that doesn't reach over the area.
int CompositeImage(DrawContext* context, Image* dst, int32_t dstX, int32_t dstY, int32_t dstWidth,
                   int32_t dstHeight, const Rect* dstRect, Image* src, int32_t srcX, int32_t srcY,
                   int32_t srcWidth, int32_t srcHeight, const Rect* srcRect, uint32_t mode);

// Merges one colour into the rectangle of the image by the mode argument's
// merge mode (a mode the type can't merge a colour by fills as Normal),
// under the context's opacity and the image's masks. The colour is converted
// to the image's model (for a palette image, to its nearest entry).
int FillWithColor(DrawContext* context, Image* image, const Rect& rect, const CLRColor& colour,
                  uint32_t mode);

// The colour of one pixel of the image, in the model of its type (RGB for a
// palette image). Black for pixels outside the image or that can't be read.
CLRColor ImagePixelColor(Image* image, int32_t x, int32_t y);

}  // namespace fancy
