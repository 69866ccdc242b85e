// The span functions of a composite and the walk over the destination's
// cells (and the source's under each) that drives them through RegionWalk.
#include <algorithm>
#include <climits>
#include <cstring>

#include "imaging/composite.h"
#include "imaging/composite_state.h"
#include "imaging/image_rows.h"
#include "imaging/progress.h"
#include "imaging/tile_walk.h"

namespace fancy {

namespace {

CompositeState* StateOf(void* user) { return static_cast<CompositeState*>(user); }

int32_t WidthOf(const Rect& r) { return r.right - r.left + 1; }

// ---- buffers and the resampler -------------------------------------------------

const uint8_t* ReadSourceRow(void* user, int32_t y, int32_t x0, int32_t count, int32_t* bit) {
  CompositeState* s = StateOf(user);
  const uint8_t* row = ImageRowPixels(s->src, y, x0, count, s->gather.data(), bit);
  if (!row) return nullptr;
  if (!s->convert || !s->conversion->readSource) return row;
  RowConvertContext c = s->sourceContext;
  c.sourceBit = *bit;
  if (!s->conversion->readSource(&c, count, s->readBuffer.data(), row)) return nullptr;
  *bit = 0;
  return s->readBuffer.data();
}

const uint8_t* ReadSourceMaskRow(void* user, int32_t y, int32_t x0, int32_t count, int32_t* bit) {
  CompositeState* s = StateOf(user);
  const Image* given = s->srcGiven;
  // A private copy of the source sits at (0, 0): its pixels are the given
  // source's from the copy's shift.
  int32_t gx = x0 + s->sourceShiftX - given->maskRect.left;
  int32_t gy = y + s->sourceShiftY - given->maskRect.top;
  return ImageRowPixels(given->maskImage, gy, gx, count, s->maskGather.data(), bit);
}

bool LogicalRange(const CompositeAxis& a, int32_t lo, int32_t hi, int32_t* from, int32_t* to) {
  int64_t f = a.dir > 0 ? int64_t{lo} - a.first : int64_t{a.first} - hi;
  int64_t t = a.dir > 0 ? int64_t{hi} - a.first : int64_t{a.first} - lo;
  if (f < 0 || t >= a.count || f > t) return false;
  *from = static_cast<int32_t>(f);
  *to = static_cast<int32_t>(t);
  return true;
}

// ---- span functions -------------------------------------------------------------

// The kernel for the coverage block: the first mask decides between the
// plain (or opacity) column and the masked ones.
MergeKernel KernelFor(const CompositeState* s, const Coverage* cov) {
  if (!cov->mask1) return s->kernels[0];
  return cov->mask2 ? s->kernels[2] : s->kernels[1];
}

// The solid colour of the current source cell as a row of pixels.
bool TakeSolidSource(CompositeState* s) {
  s->srcSolid = false;
  const CLRColor* solid = s->srcCell ? CellSolidColor(s->srcCell) : nullptr;
  if (!solid) return true;
  uint8_t pixel[8] = {};
  int32_t size = ImagePixelFromColor(s->src->type, s->src->bitsPerPixel, *solid, pixel);
  if (size == 0) return false;
  std::memcpy(s->solidPixel, pixel, sizeof pixel);
  int32_t width = WidthOf(s->dstClip);
  if (!s->solidRow.size()) {
    size_t bytes = s->srcBytes ? static_cast<size_t>(width) * s->srcBytes
                               : (static_cast<size_t>(width) + 7) / 8 + 1;
    if (!s->solidRow.Allocate(bytes)) return false;
  }
  if (s->srcBytes) {
    RepeatPixelBytes(s->solidRow.data(), width, pixel, s->srcBytes);
  } else {
    uint8_t fill = s->src->bitsPerPixel == 1 ? (pixel[0] ? 0xFF : 0x00)
                                              : static_cast<uint8_t>((pixel[0] & 15) * 0x11);
    std::memset(s->solidRow.data(), fill, s->solidRow.size());
  }
  s->srcSolid = true;
  return true;
}

// Where the source pixels of target (x, y) are, for an unscaled walk.
const uint8_t* SourceAt(const CompositeState* s, int32_t x, int32_t y, int32_t* bit) {
  *bit = 0;
  if (s->srcSolid) return s->solidRow.data();
  int32_t sx = x + s->offsetX, sy = y + s->offsetY;
  *bit = CellBitOffset(s->srcCell, sx, s->src->bitsPerPixel);
  return CellPixelAddress(s->srcCell, sx, sy, s->src->bitsPerPixel);
}

int SimpleBegin(void* user, const Rect& rect) {
  CompositeState* s = StateOf(user);
  s->part = rect;
  return TakeSolidSource(s) ? 1 : 0;
}

int FullBegin(void* user, const Rect& rect) {
  CompositeState* s = StateOf(user);
  s->part = rect;
  if (!s->buffersReady && !PrepareBuffers(s)) return 0;
  if (s->scaling) return 1;
  return TakeSolidSource(s) ? 1 : 0;
}

int AdvanceRows(void*) { return 1; }  // spans find their rows from y
int ReleaseBuffers(void*) { return 1; }  // the state owns them and frees them at the end

// Mode 0, no coverage: bytes copied for all rows of the cell pair.
int BlockSpan(void* user, int32_t x, int32_t y, int32_t count, const Coverage*) {
  CompositeState* s = StateOf(user);
  const int32_t bpp = s->dstBytes;
  const size_t bytes = static_cast<size_t>(count) * bpp;
  const int32_t rows = s->part.bottom - y + 1;
  uint8_t* d = CellPixelAddress(s->dstCell, x, y, s->dst->bitsPerPixel);
  if (s->srcSolid) {
    for (int32_t r = 0; r < rows; ++r, d += s->dstCell->rowBytes)
      RepeatPixelBytes(d, count, s->solidPixel, bpp);
    return 1;
  }
  int32_t bit;
  const uint8_t* p = SourceAt(s, x, y, &bit);
  if (count == s->dst->tileWidth && count == s->src->tileWidth &&
      s->dstCell->rowBytes == s->srcCell->rowBytes) {
    std::memmove(d, p, static_cast<size_t>(s->dstCell->rowBytes) * (rows - 1) + bytes);
    return 1;
  }
  for (int32_t r = 0; r < rows; ++r, d += s->dstCell->rowBytes, p += s->srcCell->rowBytes)
    std::memmove(d, p, bytes);
  return 1;
}

const void* KernelContext(const CompositeState* s) {
  return s->selector ? &s->channelContext : nullptr;
}

// No coverage, a mode other than plain copying: kernel column 0 a row, or
// one call over all rows when they lie end to end in both cells.
int RowSpan(void* user, int32_t x, int32_t y, int32_t count, const Coverage*) {
  CompositeState* s = StateOf(user);
  const int32_t rows = s->part.bottom - y + 1;
  MergeKernel kernel = s->kernels[0];
  const void* context = KernelContext(s);
  int32_t bit;
  const uint8_t* p = SourceAt(s, x, y, &bit) + s->srcChannelOffset;
  uint8_t* d = CellPixelAddress(s->dstCell, x, y, s->dst->bitsPerPixel) + s->dstChannelOffset;
  const int32_t dstStep = s->dstCell->rowBytes;
  const int32_t srcStep = s->srcSolid ? 0 : s->srcCell->rowBytes;
  const int32_t bpp = s->dstBytes;
  if (!s->srcSolid && rows >= 2 && count == s->dst->tileWidth && count == s->src->tileWidth &&
      dstStep == srcStep && s->srcBytes == bpp && dstStep % bpp == 0) {
    int64_t pixels = int64_t{dstStep / bpp} * (rows - 1) + count;
    if (pixels <= INT32_MAX) {
      kernel(context, static_cast<int32_t>(pixels), d, p, nullptr);
      return 1;
    }
  }
  for (int32_t r = 0; r < rows; ++r, d += dstStep, p += srcStep) kernel(context, count, d, p, nullptr);
  return 1;
}

// One row under coverage, types merged as they stand.
int CoveredSpan(void* user, int32_t x, int32_t y, int32_t count, const Coverage* cov) {
  CompositeState* s = StateOf(user);
  int32_t bit;
  const uint8_t* p = SourceAt(s, x, y, &bit) + s->srcChannelOffset;
  uint8_t* d = CellPixelAddress(s->dstCell, x, y, s->dst->bitsPerPixel) + s->dstChannelOffset;
  KernelFor(s, cov)(KernelContext(s), count, d, p, cov);
  return 1;
}

// Anything: scaled rows, conversion through the working type, 1-bit pixels.
int GeneralSpan(void* user, int32_t x, int32_t y, int32_t count, const Coverage* cov) {
  CompositeState* s = StateOf(user);
  const uint8_t* p;
  int32_t sbit = 0;
  if (s->scaling) {
    if (s->resampledRow != y) {
      s->scaledRow = ResamplerRow(&s->resampler, y);
      if (!s->scaledRow) return 0;
      s->resampledRow = y;
    }
    int64_t at = x - s->dstClip.left;
    if (s->workingBytes) {
      p = s->scaledRow + at * s->workingBytes;
    } else {
      p = s->scaledRow + (at >> 3);
      sbit = static_cast<int32_t>(at & 7);
    }
  } else {
    p = SourceAt(s, x, y, &sbit);
    if (s->convert && s->conversion->readSource) {
      RowConvertContext c = s->sourceContext;
      c.sourceBit = sbit;
      if (!s->conversion->readSource(&c, count, s->buffer1.data(), p)) return 0;
      p = s->buffer1.data();
      sbit = 0;
    }
  }
  uint8_t* d = CellPixelAddress(s->dstCell, x, y, s->dst->bitsPerPixel);
  int32_t dbit = CellBitOffset(s->dstCell, x, s->dst->bitsPerPixel);
  uint8_t* target = d;
  int32_t tbit = dbit;
  const bool viaBuffer = s->convert && s->conversion->readDest;
  if (viaBuffer) {
    RowConvertContext c = s->destContext;
    c.sourceBit = dbit;
    if (!s->conversion->readDest(&c, count, s->buffer2.data(), d)) return 0;
    target = s->buffer2.data();
    tbit = 0;
  }
  BitMergeContext bits{sbit, tbit};
  const void* context = s->selector ? static_cast<const void*>(&s->channelContext)
                                    : s->workingBytes == 0 ? &bits : nullptr;
  KernelFor(s, cov)(context, count, target + s->dstChannelOffset, p + s->srcChannelOffset, cov);
  if (viaBuffer && s->conversion->writeDest) {
    RowConvertContext c = s->destContext;
    c.destBit = dbit;
    if (!s->conversion->writeDest(&c, count, d, s->buffer2.data())) return 0;
  }
  return 1;
}

SpanTable ChooseSpans(CompositeState* s) {
  SpanTable t{s, nullptr, nullptr, nullptr, nullptr};
  if (s->scaling || s->convert || s->src->type == kImageBilevel || s->dst->type == kImageBilevel) {
    t.begin = &FullBegin;
    t.lineEnd = &AdvanceRows;
    t.span = &GeneralSpan;
    t.end = &ReleaseBuffers;
  } else if (s->anyCoverage) {
    t.begin = &SimpleBegin;
    t.lineEnd = &AdvanceRows;
    t.span = &CoveredSpan;
    t.end = &ReleaseBuffers;
  } else if (s->mode == kMergeNormal && !s->selector) {
    t.begin = &SimpleBegin;
    t.span = &BlockSpan;
  } else {
    t.begin = &SimpleBegin;
    t.span = &RowSpan;
  }
  return t;
}

// ---- whole-cell shortcuts -------------------------------------------------------

Rect CellRect(const TileCell& c) { return Rect{c.left, c.bottom, c.right, c.top}; }

bool Tiled(const Image* image) {
  return image->tiles && image->tileRows > 0 && image->tiles[0][0].tile != nullptr;
}

// The grids of source and destination line up cell for cell.
bool GridsAligned(const CompositeState* s) {
  const Image* a = s->dst;
  const Image* b = s->src;
  return !s->scaling && Tiled(a) && Tiled(b) && a->tileWidth == b->tileWidth &&
         a->tileHeight == b->tileHeight && s->offsetX % a->tileWidth == 0 &&
         s->offsetY % a->tileHeight == 0;
}

// The source cell that lies exactly under a whole destination cell, or null.
TileCell* MatchingSourceCell(const CompositeState* s, const TileCell& cell) {
  int32_t left = cell.left + s->offsetX, top = cell.top + s->offsetY;
  if (left < 0 || top < 0) return nullptr;
  int32_t column = left / s->src->tileWidth, row = top / s->src->tileHeight;
  if (column >= s->src->tileColumns || row >= s->src->tileRows) return nullptr;
  TileCell* c = &s->src->tiles[row][column];
  if (c->left != left || c->top != top || c->right - c->left != cell.right - cell.left ||
      c->bottom - c->top != cell.bottom - cell.top)
    return nullptr;
  return c;
}

// Modes that two solid mask cells can merge into a solid cell.
bool SolidPairMode(int32_t mode) {
  switch (mode) {
    case kMergeAnd:
    case kMergeXor:
    case kMergeInvertDest:
    case kMergeInvertSource:
    case kMergeAddClamp:
    case kMergeSubtractClamp: return true;
    default: return false;
  }
}

bool SolidPairsApply(const CompositeState* s) {
  int32_t t = s->src->type;
  return SolidPairMode(s->mode) && (t == kImageGrey8 || t == kImageMask || t == kImageBilevel) &&
         !s->dstRuns && !s->srcRuns && !s->convert && !s->anyCoverage && !s->selector &&
         !s->src->palette && GridsAligned(s);
}

// Both cells solid: the merge of the two colours, kept solid. Answers 1 when
// done, 0 when the pair must take the ordinary path, -1 on failure.
int SolidPair(const CompositeState* s, TileCell* cell) {
  TileCell* from = MatchingSourceCell(s, *cell);
  const CLRColor* a = CellSolidColor(cell);
  const CLRColor* b = from ? CellSolidColor(from) : nullptr;
  if (!a || !b || cell->lockCount > 0) return 0;
  uint8_t dp[8] = {}, sp[8] = {};
  if (!ImagePixelFromColor(s->dst->type, 8, *a, dp) || !ImagePixelFromColor(s->src->type, 8, *b, sp))
    return 0;
  if (s->src->type == kImageBilevel) {
    dp[0] = dp[0] ? 0x80 : 0;
    sp[0] = sp[0] ? 0x80 : 0;
  }
  BitMergeContext bits{0, 0};
  s->row->kernels[kColumnPlain](&bits, 1, dp, sp, nullptr);
  CLRColor result = *a;
  result.value8[0] = s->src->type == kImageBilevel ? ((dp[0] & 0x80) ? 1 : 0) : dp[0];
  result.value8[1] = result.value8[2] = result.value8[3] = 0;
  return MakeCellSolid(cell, result) ? 1 : -1;
}

// A whole destination cell that takes the whole source cell under it by
// reference. Answers 1 when shared.
int ShareCell(const CompositeState* s, TileCell* cell) {
  TileCell* from = MatchingSourceCell(s, *cell);
  if (!from || !from->tile || cell->lockCount > 0 || s->src->type != s->dst->type) return 0;
  if (from->tile != cell->tile) {
    Tile* shared = TileShare(from->tile);
    TileRelease(cell->tile);
    cell->tile = shared;
  }
  return 1;
}

// ---- the walk --------------------------------------------------------------------

int32_t CellsAcross(const Image* image, const Rect& r) {
  int64_t columns = r.right / image->tileWidth - r.left / image->tileWidth + 1;
  int64_t rows = r.bottom / image->tileHeight - r.top / image->tileHeight + 1;
  return static_cast<int32_t>(std::min<int64_t>(columns * rows, INT32_MAX));
}

// The source cells under the destination part `part`, each walked with the
// spans over its share of the part.
int WalkSourceCells(CompositeState* s, const SpanTable& table, const Rect& part) {
  Rect from{part.left + s->offsetX, part.bottom + s->offsetY, part.right + s->offsetX,
            part.top + s->offsetY};
  int32_t cells = CellsAcross(s->src, from);
  ProgressScope scope;
  if (cells > 1) ProgressScopeOpen(&scope, s->context, 1, cells);
  TileWalk walk;
  Rect piece;
  int result = 1;
  for (TileCell* cell = TileWalkOpen(&walk, s->src, from, CellLockReadSolid, &piece);
       cell && result; cell = TileWalkNext(&walk, &piece)) {
    s->srcCell = cell;
    Rect target{piece.left - s->offsetX, piece.bottom - s->offsetY, piece.right - s->offsetX,
                piece.top - s->offsetY};
    result = RegionWalk(s->context, &table, target, s->sources, s->sourceCount);
    if (cells > 1) ProgressScopeNext(&scope, 1);
  }
  if (cells > 1) ProgressScopeClose(&scope);
  if (!TileWalkClose(&walk)) result = 0;
  s->srcCell = nullptr;
  return result;
}

}  // namespace

int PrepareBuffers(CompositeState* s) {
  if (s->buffersReady) return 1;
  const size_t width = static_cast<size_t>(WidthOf(s->dstClip));
  const size_t srcWidth = static_cast<size_t>(WidthOf(s->srcClip));
  const size_t widest = std::max(width, srcWidth);
  const size_t working = static_cast<size_t>(std::max(s->workingBytes, 1));
  if (s->convert) {
    if (!s->buffer1.Allocate(width * working) || !s->buffer2.Allocate(width * working) ||
        !s->scratch.Allocate(widest * 4) || !s->pairScratch.Allocate(widest * 4))
      return 0;
    bool lab = s->src->type == kImageLab24 || s->dst->type == kImageLab24;
    if (lab && !CLRScratchReserve(&s->lab, static_cast<int32_t>(widest))) return 0;
  }
  RowConvertContext base{};
  base.scratch = s->scratch.data();
  base.pairScratch = s->pairScratch.data();
  base.labScratch = s->lab.values ? &s->lab : nullptr;
  base.destPalette = s->dst->palette;
  s->sourceContext = base;
  s->sourceContext.sourcePalette = s->src->palette;
  s->sourceContext.sourceDepth = s->src->type == kImageIndexed ? s->src->bitsPerPixel : 8;
  s->sourceContext.sourceType = s->src->type;
  s->sourceContext.destType = s->workingType;
  s->destContext = base;
  s->destContext.sourcePalette = s->dst->palette;
  s->destContext.sourceType = s->dst->type;
  s->destContext.destType = s->workingType;
  if (s->scaling) {
    size_t srcBytes = s->srcBytes ? srcWidth * s->srcBytes : srcWidth / 8 + 2;
    if (!s->gather.Allocate(srcBytes)) return 0;
    if (s->convert && !s->readBuffer.Allocate(srcWidth * working)) return 0;
    if (s->maskWeighted && !s->maskGather.Allocate(srcWidth)) return 0;
    if (!OpenCompositeResampler(s)) return 0;
  }
  s->buffersReady = true;
  return 1;
}

int OpenCompositeResampler(CompositeState* s) {
  ResampleSetup setup{};
  setup.filter = s->filter;
  setup.workingType = s->workingType;
  setup.x = ResampleAxis{s->sx.first, s->sx.dir, s->sx.count, s->dx.first, s->dx.dir, s->dx.count, 0, 0};
  setup.y = ResampleAxis{s->sy.first, s->sy.dir, s->sy.count, s->dy.first, s->dy.dir, s->dy.count, 0, 0};
  if (!LogicalRange(s->sx, s->srcClip.left, s->srcClip.right, &setup.x.srcLo, &setup.x.srcHi) ||
      !LogicalRange(s->sy, s->srcClip.top, s->srcClip.bottom, &setup.y.srcLo, &setup.y.srcHi))
    return 0;
  setup.dstLeft = s->dstClip.left;
  setup.dstRight = s->dstClip.right;
  setup.read = &ReadSourceRow;
  setup.readUser = s;
  if (s->maskWeighted) {
    setup.readMask = &ReadSourceMaskRow;
    setup.maskUser = s;
  }
  if (!ResamplerOpen(&s->resampler, setup)) return 0;
  s->resamplerOpen = true;
  s->resampledRow = INT32_MIN;
  return 1;
}

int WalkTiles(CompositeState* s) {
  SpanTable table = ChooseSpans(s);
  const bool block = table.span == &BlockSpan;
  const bool solidPairs = SolidPairsApply(s);
  const bool share = block && GridsAligned(s) && s->src->type == s->dst->type;
  Image* dst = s->dst;
  if (!dst->tiles || (!s->scaling && !s->src->tiles)) return 0;
  const Rect& clip = s->dstClip;
  const int32_t c0 = clip.left / dst->tileWidth, c1 = clip.right / dst->tileWidth;
  const int32_t r0 = clip.top / dst->tileHeight, r1 = clip.bottom / dst->tileHeight;
  const int32_t cells = CellsAcross(dst, clip);
  ProgressScope scope;
  if (cells > 1) ProgressScopeOpen(&scope, s->context, 1, cells);
  int result = 1;
  for (int32_t r = r0; r <= r1 && result; ++r) {
    for (int32_t c = c0; c <= c1 && result; ++c) {
      TileCell* cell = &dst->tiles[r][c];
      Rect part;
      if (!RectIntersect(clip, CellRect(*cell), &part)) continue;
      const bool whole = RectEqual(part, CellRect(*cell));
      int done = 0;
      if (whole && cell->tile) {
        if (solidPairs) done = SolidPair(s, cell);
        else if (share) done = ShareCell(s, cell);
      }
      if (done < 0) {
        result = 0;
      } else if (!done) {
        CellLockFn lock = whole && block ? CellLockWriteDiscard : CellLockWrite;
        if (!lock(cell)) {
          result = 0;
          break;
        }
        s->dstCell = cell;
        result = s->scaling ? RegionWalk(s->context, &table, part, s->sources, s->sourceCount)
                            : WalkSourceCells(s, table, part);
        CellUnlock(cell);
        s->dstCell = nullptr;
      }
      if (cells > 1) ProgressScopeNext(&scope, 1);
    }
  }
  if (cells > 1) ProgressScopeClose(&scope);
  return result;
}

}  // namespace fancy
