#include "imaging/convert_image.h"

#include <algorithm>
#include <cstring>

#include "imaging/bit_copy.h"
#include "imaging/composite.h"
#include "imaging/dither.h"
#include "imaging/error_diffusion.h"
#include "imaging/image_rows.h"
#include "imaging/progress.h"
#include "imaging/row_convert.h"
#include "imaging/scratch.h"
#include "imaging/tile_walk.h"

namespace fancy {

namespace {

enum : int32_t {
  kIdxBGR = 0, kIdxCMYK = 1, kIdxGrey = 2, kIdxBits = 3, kIdxIndexed8 = 4,
  kIdxLab = 5, kIdxIndexedOther = 6, kIdxRGB48 = 7, kIdxRaw48 = 8, kIdxGrey16 = 9,
};

// (source, target) pairs that need no dithering.
constexpr int32_t kPlainPairs[][2] = {
    {kIdxBGR, kIdxBGR},   {kIdxBGR, kIdxGrey},       {kIdxCMYK, kIdxCMYK}, {kIdxGrey, kIdxBGR},
    {kIdxGrey, kIdxGrey}, {kIdxBits, kIdxBGR},       {kIdxBits, kIdxGrey}, {kIdxBits, kIdxBits},
    {kIdxBits, kIdxLab},  {kIdxIndexed8, kIdxLab},   {kIdxLab, kIdxLab},   {kIdxRGB48, kIdxRGB48},
    {kIdxRaw48, kIdxRaw48}, {kIdxGrey16, kIdxGrey16}};

bool DiffusionSource(int32_t s) {
  return s == kIdxBGR || s == kIdxCMYK || s == kIdxGrey || s == kIdxIndexed8 || s == kIdxLab ||
         s == kIdxRGB48 || s == kIdxGrey16;
}

bool Grey(const Image* image) { return image->type == kImageGrey8 || image->type == kImageMask; }

// Buffers and converters of one conversion.
struct Job {
  DrawContext* context;
  Image* dst;
  Image* src;
  Rect target;     // clipped, in dst
  int32_t dx, dy;  // source pixel = target pixel + (dx, dy)
  int32_t width;
  ScratchArray<uint8_t> gather;   // source pixels
  ScratchArray<uint8_t> colour;   // source as BGR or grey
  ScratchArray<uint8_t> scratch;
  ScratchArray<uint8_t> pairScratch;
  ScratchArray<uint8_t> indices;  // target indices or bits
  CLRScratchRow lab;
  RowConvertContext rc;
  ~Job() { CLRScratchRelease(&lab); }
};

bool PrepareJob(Job* j) {
  size_t w = static_cast<size_t>(j->width);
  if (!j->gather.Allocate(w * 8 + 8) || !j->colour.Allocate(w * 8) || !j->scratch.Allocate(w * 4) ||
      !j->pairScratch.Allocate(w * 4) || !j->indices.Allocate(w * 2 + 8))
    return false;
  if ((j->src->type == kImageLab24 || j->dst->type == kImageLab24) &&
      !CLRScratchReserve(&j->lab, j->width))
    return false;
  j->rc = RowConvertContext{};
  j->rc.sourcePalette = j->src->palette;
  j->rc.destPalette = j->dst->palette;
  j->rc.sourceDepth = j->src->type == kImageIndexed ? j->src->bitsPerPixel : 8;
  j->rc.scratch = j->scratch.data();
  j->rc.pairScratch = j->pairScratch.data();
  j->rc.labScratch = j->lab.values ? &j->lab : nullptr;
  j->rc.sourceType = j->src->type;
  j->rc.destType = j->dst->type;
  return true;
}

// The source pixels under target row y from target column x, `count` of
// them, as grey (one channel) for grey sources and BGR otherwise.
const uint8_t* SourceColours(Job* j, int32_t x, int32_t y, int32_t count, int32_t* channels) {
  int32_t bit = 0;
  const uint8_t* row = ImageRowPixels(j->src, y + j->dy, x + j->dx, count, j->gather.data(), &bit);
  if (!row) return nullptr;
  if (Grey(j->src)) {
    *channels = 1;
    return row;
  }
  *channels = 3;
  RowConverter toBGR = RowConverterToBGR(j->src->type);
  if (!toBGR) return row;
  RowConvertContext c = j->rc;
  c.sourceBit = bit;
  if (!toBGR(&c, count, j->colour.data(), row)) return nullptr;
  return j->colour.data();
}

// Greys for a 1-bit target: a BGR pixel's grey is (3R + B + 6G) / 10.
const uint8_t* SourceGreys(Job* j, int32_t x, int32_t y, int32_t count) {
  int32_t channels = 0;
  const uint8_t* p = SourceColours(j, x, y, count, &channels);
  if (!p || channels == 1) return p;
  uint8_t* out = j->pairScratch.data();
  for (int32_t i = 0; i < count; ++i, p += 3) out[i] = static_cast<uint8_t>((3 * p[2] + p[0] + 6 * p[1]) / 10);
  return out;
}

// Writes `count` indices of a palette image of 1, 4 or 8 bits at (x, y).
void PutIndices(uint8_t* row, int32_t bit, int32_t depth, const uint8_t* indices, int32_t count) {
  if (depth == 8) {
    std::memcpy(row, indices, static_cast<size_t>(count));
    return;
  }
  for (int32_t i = 0; i < count; ++i) {
    int64_t at = int64_t{bit} + int64_t{i} * depth;
    uint8_t v = static_cast<uint8_t>(indices[i] << (8 - depth));
    CopyBits(row, at, &v, 0, depth);
  }
}

// ---- the whole-rectangle diffusion --------------------------------------------------

int DiffuseWhole(Job* j) {
  const bool bits = j->dst->type == kImageBilevel;
  if (!bits && (!j->dst->palette || j->dst->palette->count == 0)) return 0;
  Diffusion d;
  if (!DiffusionStart(&d, j->width, bits || Grey(j->src) ? 1 : 3)) return 0;
  ProgressTicker ticker;
  int64_t rows = int64_t{j->target.bottom} - j->target.top + 1;
  ProgressTickerStart(&ticker, j->context, rows);
  uint8_t* out = j->indices.data();
  for (int32_t y = j->target.top; y <= j->target.bottom; ++y) {
    if (bits) {
      const uint8_t* g = SourceGreys(j, j->target.left, y, j->width);
      if (!g) return 0;
      DiffuseRowToBits(&d, g, j->width, out, 0);
    } else {
      int32_t channels = 0;
      const uint8_t* c = SourceColours(j, j->target.left, y, j->width, &channels);
      if (!c) return 0;
      DiffuseRowToIndices(&d, c, j->width, j->dst->palette, out);
    }
    int32_t rowBytes = bits ? (j->width + 7) / 8 : j->width;
    if (!ImageWritePixels(j->dst, j->target.left, y, j->width, 1, rowBytes, out,
                          kCompositeIgnoreDestRunMask | kCompositeIgnoreDestMaskImage))
      return 0;
    if (!ProgressTickerAdvance(&ticker, int64_t{y} - j->target.top + 1)) return 0;
  }
  return 1;
}

// ---- cell by cell -------------------------------------------------------------------

// Converts the part of one destination cell.
int ConvertCell(Job* j, TileCell* cell, const Rect& part, int32_t ditherMode) {
  Image* dst = j->dst;
  const int32_t bits = dst->bitsPerPixel;
  const int32_t count = part.right - part.left + 1;
  const bool toBits = dst->type == kImageBilevel;
  const bool toPalette = dst->type == kImageIndexed;
  Dither* dither = nullptr;
  Diffusion diffusion;
  if (toBits || toPalette) {
    if (toPalette && (!dst->palette || dst->palette->count == 0)) return 0;
    int32_t mode = toBits && ditherMode == kDitherOrdered ? kDitherMatrix6 : ditherMode;
    if (mode < kDitherDiffusion || mode > kDitherMatrix6) return 0;
    if (mode == kDitherDiffusion) {
      if (!DiffusionStart(&diffusion, count, toBits || Grey(j->src) ? 1 : 3)) return 0;
    } else {
      dither = DitherCreate(mode, dst->palette, toBits ? kDitherFormBits : kDitherFormPalette);
      if (!dither) return 0;
    }
  }
  int result = 1;
  RowConverter direct = (toBits || toPalette) ? nullptr : RowConverterFor(j->src->type, dst->type);
  for (int32_t y = part.top; y <= part.bottom && result; ++y) {
    uint8_t* row = CellPixelAddress(cell, part.left, y, bits);
    int32_t bit = CellBitOffset(cell, part.left, bits);
    if (toBits) {
      const uint8_t* g = SourceGreys(j, part.left, y, count);
      if (!g) {
        result = 0;
      } else if (dither) {
        DitherRowToBits(dither->matrix, g, count, part.left, y, row, bit);
      } else {
        DiffuseRowToBits(&diffusion, g, count, row, bit);
      }
    } else if (toPalette) {
      int32_t channels = 0;
      const uint8_t* c = SourceColours(j, part.left, y, count, &channels);
      uint8_t* indices = j->indices.data();
      if (!c) {
        result = 0;
      } else if (dither) {
        if (channels == 1) {
          RowGreyToBGR(nullptr, count, j->pairScratch.data(), c);
          c = j->pairScratch.data();
        }
        result = DitherRowToIndices(dither, dst->palette, c, count, part.left, y, indices);
      } else {
        DiffuseRowToIndices(&diffusion, c, count, dst->palette, indices);
      }
      if (result) PutIndices(row, bit, bits, indices, count);
    } else {
      int32_t sbit = 0;
      const uint8_t* s = ImageRowPixels(j->src, y + j->dy, part.left + j->dx, count,
                                        j->gather.data(), &sbit);
      if (!s) {
        result = 0;
      } else if (!direct) {
        std::memcpy(row, s, static_cast<size_t>(count) * ImagePixelBytes(dst));
      } else {
        RowConvertContext c = j->rc;
        c.sourceBit = sbit;
        c.destBit = bit;
        result = direct(&c, count, row, s);
      }
    }
  }
  DitherFree(dither);
  return result;
}

int ConvertCells(Job* j, int32_t ditherMode) {
  TileWalk walk;
  Rect part;
  int result = 1;
  ProgressScope scope;
  const Image* d = j->dst;
  const Rect& t = j->target;
  const int32_t cells = (t.right / d->tileWidth - t.left / d->tileWidth + 1) *
                        (t.bottom / d->tileHeight - t.top / d->tileHeight + 1);
  if (cells > 1) ProgressScopeOpen(&scope, j->context, 1, cells);
  int32_t done = 0;
  for (TileCell* cell = TileWalkOpen(&walk, j->dst, j->target, CellLockWrite, &part);
       cell && result; cell = TileWalkNext(&walk, &part)) {
    result = ConvertCell(j, cell, part, ditherMode);
    ++done;
    if (cells > 1) ProgressScopeNext(&scope, 1);
    if (result && j->context && j->context->progress && cells <= 1 &&
        !j->context->progress(done, 1, j->context->progressData))
      result = 0;
  }
  if (cells > 1) ProgressScopeClose(&scope);
  if (!TileWalkClose(&walk)) result = 0;
  return result;
}

}  // namespace

int32_t ConvertIndexOf(const Image* image) {
  if (!image) return -1;
  switch (image->type) {
    case kImageBGR24: return kIdxBGR;
    case kImageCMYK32: return kIdxCMYK;
    case kImageGrey8:
    case kImageMask: return kIdxGrey;
    case kImageBilevel: return kIdxBits;
    case kImageIndexed: return image->bitsPerPixel == 8 ? kIdxIndexed8 : kIdxIndexedOther;
    case kImageLab24: return kIdxLab;
    case kImageRGB48: return kIdxRGB48;
    case kImageRaw48: return kIdxRaw48;
    case kImageGrey16: return kIdxGrey16;
    default: return -1;
  }
}

bool ConvertNeedsNoDither(int32_t s, int32_t d) {
  for (const auto& pair : kPlainPairs)
    if (pair[0] == s && pair[1] == d) return true;
  return false;
}

bool ConvertHasDiffusion(int32_t s, int32_t d) {
  return DiffusionSource(s) && (d == kIdxBits || d == kIdxIndexed8);
}

int ConvertImage(DrawContext* context, Image* dst, int32_t x, int32_t y, Image* src, int32_t srcX,
                 int32_t srcY, int32_t width, int32_t height) {
  int32_t si = ConvertIndexOf(src), di = ConvertIndexOf(dst);
  if (si < 0 || di < 0) return 0;
  if (width <= 0 || height <= 0) return 1;
  DrawContext own;
  DrawContextSetDefaults(&own);
  DrawContext* c = context ? context : &own;
  const uint8_t savedOpacity = c->opacity;
  c->opacity = 255;
  int result = 0;
  if (ConvertNeedsNoDither(si, di)) {
    result = CompositeImage(c, dst, x, y, width, height, nullptr, src, srcX, srcY, width, height,
                            nullptr, kCompositeIgnoreDestRunMask | kCompositeIgnoreDestMaskImage);
  } else {
    Job j{};
    j.context = context;
    j.dst = dst;
    j.src = src;
    Rect target = MakeRect(x, y, width, height);
    Rect source = MakeRect(srcX, srcY, width, height);
    j.dx = srcX - x;
    j.dy = srcY - y;
    bool any = RectIntersect(target, dst->validRect, &target) &&
               RectIntersect(target, ImageBounds(dst), &target) &&
               RectIntersect(source, src->validRect, &source) &&
               RectIntersect(source, ImageBounds(src), &source);
    Rect back{source.left - j.dx, source.bottom - j.dy, source.right - j.dx, source.top - j.dy};
    if (!any || !RectIntersect(target, back, &target)) {
      result = 1;
    } else {
      j.target = target;
      j.width = target.right - target.left + 1;
      if (!dst->tiles || !src->tiles || !PrepareJob(&j)) {
        result = 0;
      } else if (c->ditherMode == kDitherDiffusion && ConvertHasDiffusion(si, di)) {
        result = DiffuseWhole(&j);
      } else {
        result = ConvertCells(&j, c->ditherMode);
      }
    }
  }
  c->opacity = savedOpacity;
  return result;
}

}  // namespace fancy
