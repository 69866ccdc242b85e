// The state of one CompositeImage call, shared by the files that carry out
// its steps: kernel choice, the span functions and tile walks, the fast
// paths and the scale copy.
#pragma once

#include <cstdint>

#include "colour/clr_pixels.h"
#include "imaging/conversion_table.h"
#include "imaging/draw_context.h"
#include "imaging/image.h"
#include "imaging/merge.h"
#include "imaging/region_walk.h"
#include "imaging/resample.h"
#include "imaging/scratch.h"

namespace fancy {

// One axis of a rectangle: its first pixel, direction and pixel count. A
// rectangle given the wrong way round runs with direction -1.
struct CompositeAxis {
  int32_t first;
  int32_t dir;
  int32_t count;
};

struct CompositeState {
  DrawContext* context;  // the caller's; null for defaults
  DrawContext scale;     // the call's own: the map from target to source
  Image* dst;
  Image* src;            // where source pixels are read from
  Image* srcGiven;       // the caller's source (its masks are the ones used)
  uint32_t modeArg;
  int32_t mode;
  uint8_t opacity;

  CompositeAxis dx, dy, sx, sy;
  Rect dstClip;     // the target pixels produced
  Rect srcClip;     // the source pixels that may be read
  int32_t offsetX;  // unscaled: source pixel = target pixel + offset
  int32_t offsetY;

  bool scaling;
  int32_t filter;
  bool maskWeighted;
  bool sameImage;    // the caller's source is the destination
  bool anyCoverage;  // a mask applies or opacity is below 255

  bool dstRuns, dstMask, srcRuns, srcMask;  // which masks apply
  CoverageSource sources[kRegionWalkSources];
  int32_t sourceCount;
  Image* tempMask;    // the source's mask image at target size
  Image* tempRuns;    // the source's run mask at target size (its alpha runs)
  Image* sourceCopy;  // a private copy of a source that overlaps the destination
  int32_t sourceShiftX;  // a pixel of `src` is the given source's pixel less the shift
  int32_t sourceShiftY;

  // kernels
  bool convert;
  const ConversionCell* conversion;
  int32_t workingType;
  int32_t workingBits;
  int32_t workingBytes;  // 0 for 1-bit
  const MergeRow* row;
  MergeKernel kernels[3];  // no mask, one mask, two masks
  bool selector;
  int32_t srcChannelOffset;
  int32_t dstChannelOffset;
  ChannelMergeContext channelContext;

  // the walk
  TileCell* dstCell;
  TileCell* srcCell;
  Rect part;              // the target rectangle of the current cell pair
  bool srcSolid;
  uint8_t solidPixel[8];  // the solid source cell's pixel, in the source type
  int32_t srcBytes;       // a source pixel (0 for 1-bit)
  int32_t dstBytes;

  // buffers, sized once for the call
  bool buffersReady;
  ScratchArray<uint8_t> solidRow;     // a row of the solid source colour
  ScratchArray<uint8_t> buffer1;      // the source in working form
  ScratchArray<uint8_t> buffer2;      // the destination in working form
  ScratchArray<uint8_t> scratch;      // conversions in two steps
  ScratchArray<uint8_t> pairScratch;
  ScratchArray<uint8_t> gather;       // source rows gathered across cells
  ScratchArray<uint8_t> readBuffer;   // source rows converted for scaling
  ScratchArray<uint8_t> maskGather;   // mask rows for mask-weighted smoothing
  CLRScratchRow lab;
  RowConvertContext sourceContext;
  RowConvertContext destContext;

  Resampler resampler;
  bool resamplerOpen;
  int32_t resampledRow;  // the target row held by scaledRow, or INT32_MIN
  const uint8_t* scaledRow;

  ~CompositeState();
};

// Kernel choice and the conversion table. Answers 0 when the merge can't run.
int ChooseKernels(CompositeState* s);

// Walks the destination's cells (and the source's under them) and merges.
int WalkTiles(CompositeState* s);

// Fast paths for equal sizes.
bool BlockCopyApplies(const CompositeState* s);
int BlockCopy(CompositeState* s);
bool InvertApplies(const CompositeState* s);
int InvertInPlace(CompositeState* s);

// Sizes differ, same type, mode 0 and nothing in the way: resampled rows
// straight into the destination's cells.
bool ScaleCopyApplies(const CompositeState* s);
int ScaleCopy(CompositeState* s);

// Opens the resampler over the target clip, reading the source in the
// working type (converted when readSource is set).
int OpenCompositeResampler(CompositeState* s);

// Buffers of the call, allocated once.
int PrepareBuffers(CompositeState* s);

// Types that merge as one: equal, or both one grey byte (5 and 99).
inline bool SameTypeFamily(int32_t a, int32_t b) {
  auto grey = [](int32_t t) { return t == kImageGrey8 || t == kImageMask; };
  return a == b || (grey(a) && grey(b));
}

// Makes a cell solid in the colour: its own tile when nobody shares it,
// else a new solid tile in its place. False when memory fails.
bool MakeCellSolid(TileCell* cell, const CLRColor& colour);

// The bytes of a colour as a pixel of the image's type (a palette image
// takes the nearest entry). Answers the byte count, 0 for none.
int32_t PixelOfColour(Image* image, const CLRColor& colour, uint8_t out[8]);

}  // namespace fancy
