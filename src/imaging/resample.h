// Resampling: the rows of a source rebuilt at the size of a target, for
// composites whose rectangles differ in size.
//
// Nearest takes for each target pixel the source pixel whose area holds the
// target pixel's centre. Smooth is separable and exact in integers: on an
// axis that shrinks, each target pixel is the area average of the source
// pixels it covers (the total truncated once); on an axis that grows, a
// linear interpolation between the two source pixels whose centres enclose
// the target pixel's centre (the ends replicate). Vertical weights are
// scaled to sum to exactly 2^k, so that a flat image stays flat.
//
// An axis is described by its first pixel, its direction and its pixel
// count on each side: a direction of -1 (a rectangle given the wrong way
// round) mirrors. Reads outside the clipped source range are clamped to it.
#pragma once

#include <cstdint>

#include "imaging/scratch.h"

namespace fancy {

struct ResampleAxis {
  int32_t srcFirst;  // the source pixel of logical position 0
  int32_t srcDir;    // +1 or -1
  int32_t srcCount;  // pixels of the whole source rectangle
  int32_t dstFirst;
  int32_t dstDir;
  int32_t dstCount;
  int32_t srcLo;     // the clipped source range in logical positions
  int32_t srcHi;
};

// Physical row y, physical columns x0 .. x0 + count - 1 of the source, in
// the working form; for 1-bit rows *bit is the bit of the first pixel. Null
// on failure.
using ResampleRowReader = const uint8_t* (*)(void* user, int32_t y, int32_t x0, int32_t count,
                                             int32_t* bit);

struct ResampleSetup {
  int32_t filter;       // 1 nearest, 2 smooth (1-bit rows always nearest)
  int32_t workingType;  // the ImageType of the rows (10 counts as 5)
  ResampleAxis x;
  ResampleAxis y;
  int32_t dstLeft;      // the physical target columns that are built
  int32_t dstRight;
  ResampleRowReader read;
  void* readUser;
  // Mask-weighted smoothing: type 99 rows of the source's mask, 0 where the
  // mask doesn't reach. Null for none.
  ResampleRowReader readMask;
  void* maskUser;
};

// Row geometry of one kind of pixel.
struct ResamplePixel {
  int32_t channels;  // 1, 3 or 4; 0 for 1-bit rows
  int32_t wide;      // 16-bit channels
  int32_t bytes;     // a pixel
};
ResamplePixel ResamplePixelOf(int32_t workingType);

// Exact division of values below a known bound by a fixed divisor, by a
// multiplication where that is exact.
struct Divider {
  uint64_t divisor;
  uint64_t magic;  // 0: divide plainly
  uint64_t Divide(uint64_t n) const {
#if defined(__SIZEOF_INT128__)
    if (magic) return static_cast<uint64_t>((static_cast<unsigned __int128>(n) * magic) >> 64);
#endif
    return n / divisor;
  }
};
Divider MakeDivider(uint64_t divisor, uint64_t largestDividend);

struct Resampler {
  ResampleSetup setup;
  ResamplePixel pixel;
  int32_t filter;
  bool masked;
  int32_t width;         // target pixels a row
  int32_t logicalFirst;  // the logical target range of the built columns
  int32_t logicalLast;
  int32_t lastSourceRow;  // nearest: the source row of the row image
  bool rowValid;
  ScratchArray<uint8_t> rowImage;       // the built target row, physical order
  ScratchArray<int32_t> columnMap;      // nearest: source column of each target column
  int32_t sourceLeft, sourceCount;      // nearest: physical source columns read
  // smooth
  int32_t needFirst, needLast;          // logical source columns a row needs
  ScratchArray<uint8_t> logicalRow;     // source columns in logical order
  ScratchArray<uint8_t> logicalMask;
  ScratchArray<uint32_t> mulTable;      // p x dstW
  ScratchArray<int32_t> growIndex;      // growing: the left source pixel of each target pixel
  ScratchArray<uint32_t> growWeight;    // and the weight of the right one, of 2 x dstW
  ScratchArray<uint8_t> rowStore;       // two horizontally resampled rows
  ScratchArray<uint8_t> maskRowStore;
  int32_t cachedRows[2];
  int32_t cacheAge[2];
  int32_t age;
  ScratchArray<uint32_t> accumulator;
  ScratchArray<uint64_t> wideAccumulator;
  ScratchArray<uint64_t> maskSums;
  bool wideSums;
  Divider shrinkDivider;
  Divider growDivider;
};

// Prepares the resampler; 0 when memory fails or the setup is not usable.
int ResamplerOpen(Resampler* r, const ResampleSetup& setup);

// Builds target row y (physical) over dstLeft .. dstRight and answers it, in
// physical order; null when a source row can't be read. With mask weighting,
// pixels that no source pixel weighs keep what the previous row left there.
const uint8_t* ResamplerRow(Resampler* r, int32_t y);
// The same row built into `out` (width pixels), which is answered; a caller
// that draws straight into its target saves a copy. Not for mask weighting.
const uint8_t* ResamplerRowInto(Resampler* r, int32_t y, uint8_t* out);

}  // namespace fancy
