// The paths of a composite that need no kernel: the block copy (with tile
// sharing), the in-place invert and the scale copy; and the colour fill that
// serves the overflow guard.
#include <algorithm>
#include <cstring>

#include "colour/clr_convert.h"
#include "imaging/composite.h"
#include "imaging/composite_state.h"
#include "imaging/image_rows.h"
#include "imaging/palette_lookup.h"
#include "imaging/progress.h"
#include "imaging/tile_walk.h"

namespace fancy {

namespace {

bool NoMasks(const CompositeState* s) { return !s->dstRuns && !s->dstMask && !s->srcRuns && !s->srcMask; }

Rect CellRect(const TileCell& c) { return Rect{c.left, c.bottom, c.right, c.top}; }

bool WholeImage(const Rect& r, const Image* image) { return RectEqual(r, ImageBounds(image)); }

bool PlainOneCell(const Image* image) {
  return image->tiles && image->tileRows == 1 && image->tileColumns == 1 &&
         !image->tiles[0][0].tile && image->tiles[0][0].pixels;
}

// Both images whole, on the same grid: the storage is duplicated at once.
bool CopyWhole(CompositeState* s) {
  Image* d = s->dst;
  Image* c = s->src;
  if (!WholeImage(s->dstClip, d) || !WholeImage(s->srcClip, c) || d->width != c->width ||
      d->height != c->height)
    return false;
  if (PlainOneCell(d) && PlainOneCell(c)) {
    TileCell& to = d->tiles[0][0];
    const TileCell& from = c->tiles[0][0];
    size_t bytes = static_cast<size_t>(ImagePixelBytesFor(d->bitsPerPixel, d->width));
    if (to.rowBytes == from.rowBytes) {
      std::memmove(to.pixels, from.pixels, static_cast<size_t>(to.rowBytes) * (d->height - 1) + bytes);
    } else {
      for (int32_t y = 0; y < d->height; ++y)
        std::memmove(to.pixels + int64_t{y} * to.rowBytes, from.pixels + int64_t{y} * from.rowBytes,
                     bytes);
    }
    return true;
  }
  return false;
}

// Complements the pixel bytes of a solid colour.
CLRColor Complement(const CLRColor& colour, int32_t type) {
  CLRColor c = colour;
  for (uint8_t& v : c.value8) v = static_cast<uint8_t>(~v);
  if (type == kImageRGB48)
    for (uint8_t& v : c.value6) v = static_cast<uint8_t>(~v);
  return c;
}

void InvertRows(TileCell* cell, const Rect& part, int32_t bytesPerPixel) {
  size_t bytes = static_cast<size_t>(part.right - part.left + 1) * bytesPerPixel;
  bool wholeRows = part.left == cell->left && part.right == cell->right;
  uint8_t* p = CellPixelAddress(cell, part.left, part.top, bytesPerPixel * 8);
  int32_t rows = part.bottom - part.top + 1;
  if (wholeRows) {
    // Rows that span the cell are complemented as one run of words.
    size_t total = static_cast<size_t>(cell->rowBytes) * (rows - 1) + bytes;
    size_t words = total / 8;
    for (size_t i = 0; i < words; ++i) {
      uint64_t w;
      std::memcpy(&w, p + 8 * i, 8);
      w = ~w;
      std::memcpy(p + 8 * i, &w, 8);
    }
    for (size_t i = words * 8; i < total; ++i) p[i] = static_cast<uint8_t>(~p[i]);
    return;
  }
  for (int32_t r = 0; r < rows; ++r, p += cell->rowBytes)
    for (size_t i = 0; i < bytes; ++i) p[i] = static_cast<uint8_t>(~p[i]);
}

// ---- colour fill --------------------------------------------------------------------

struct FillState {
  Image* image;
  const ColorMergeRow* row;
  ColorMergeKernel kernels[3];
  ColorFillContext fill;
};

int FillSpan(void* user, int32_t x, int32_t y, int32_t count, const Coverage* cov) {
  auto* f = static_cast<FillState*>(user);
  Image* image = f->image;
  ColorMergeKernel kernel = !cov->mask1 ? f->kernels[0] : cov->mask2 ? f->kernels[2] : f->kernels[1];
  const int32_t bits = image->bitsPerPixel;
  int32_t done = 0;
  while (done < count) {
    int32_t at = x + done;
    TileCell* cell = &image->tiles[y / image->tileHeight][at / image->tileWidth];
    int32_t n = std::min(count - done, cell->right - at + 1);
    if (!CellLockWrite(cell)) return 0;
    ColorFillContext c = f->fill;
    c.destBit = CellBitOffset(cell, at, bits);
    Coverage part{cov->mask1 ? cov->mask1 + done : nullptr, cov->mask2 ? cov->mask2 + done : nullptr,
                  cov->opacity};
    kernel(&c, n, CellPixelAddress(cell, at, y, bits), &part);
    CellUnlock(cell);
    done += n;
  }
  return 1;
}

int NextRow(void*) { return 1; }

}  // namespace

bool MakeCellSolid(TileCell* cell, const CLRColor& colour) {
  Tile* tile = cell->tile;
  if (tile->refCount > 1) {
    Tile* solid = TileCreate(tile->cache, tile->type, tile->rowBytes, tile->height, &colour);
    if (!solid) return false;
    TileRelease(tile);
    cell->tile = solid;
  } else {
    TileMakeSolid(tile, colour);
  }
  return true;
}

int32_t PixelOfColour(Image* image, const CLRColor& colour, uint8_t out[8]) {
  std::memset(out, 0, 8);
  if (image->type == kImageRaw48) return 0;
  CLRColor c = colour;
  if (image->type == kImageIndexed) {
    if (c.model != kCLRRGB255) CLRConvert(&c, kCLRRGB255, &colour);
    if (c.model != kCLRRGB255) CLRSetBlack(&c);
    out[0] = static_cast<uint8_t>(
        PaletteNearestIndex(image->palette, c.value8[2], c.value8[1], c.value8[0]));
    return 1;
  }
  uint16_t model = ImageTypeModel(image->type);
  if (c.model != model) {
    CLRConvert(&c, model, &colour);
    if (c.model != model) {
      CLRColor black{};
      CLRSetBlack(&black);
      CLRConvert(&c, model, &black);
    }
  }
  return ImagePixelFromColor(image->type, image->bitsPerPixel, c, out);
}

CLRColor ImagePixelColor(Image* image, int32_t x, int32_t y) {
  CLRColor c{};
  CLRSetBlack(&c);
  if (!image || !RectContains(ImageBounds(image), x, y)) return c;
  uint8_t buffer[8] = {};
  int32_t bit = 0;
  const uint8_t* p = ImageRowPixels(image, y, x, 1, buffer, &bit);
  if (!p) return c;
  c.model = ImageTypeModel(image->type);
  std::memset(c.value6, 0, sizeof c.value6);
  std::memset(c.value8, 0, sizeof c.value8);
  switch (image->type) {
    case kImageBGR24:
    case kImageLab24: std::memcpy(c.value8, p, 3); break;
    case kImageCMYK32: std::memcpy(c.value8, p, 4); break;
    case kImageGrey8:
    case kImageMask: c.value8[0] = p[0]; break;
    case kImageBilevel: CLRSetI32(&c, 8, (p[0] >> (7 - bit)) & 1); break;
    case kImageIndexed: {
      int32_t index = p[0];
      const Palette* palette = image->palette;
      c.model = kCLRRGB255;
      if (palette && index < palette->count) {
        const PaletteEntry& e = PaletteEntries(palette)[index];
        c.value8[0] = e.blue;
        c.value8[1] = e.green;
        c.value8[2] = e.red;
      }
      break;
    }
    case kImageRGB48:
      std::memcpy(c.value6, p, 2);
      std::memcpy(c.value8, p + 2, 4);
      break;
    case kImageGrey16: std::memcpy(c.value8, p, 2); break;
    default: CLRSetBlack(&c); break;
  }
  return c;
}

int FillWithColor(DrawContext* context, Image* image, const Rect& rect, const CLRColor& colour,
                  uint32_t modeArg) {
  if (!image || !image->tiles || !ImageTypeIsValid(image->type)) return 0;
  const uint8_t opacity = DrawContextGetOpacity(context);
  int32_t mode = static_cast<int32_t>(modeArg & kCompositeModeBits);
  if (opacity == 0 || mode >= kMergeModeCount) return 1;
  bool runs = image->runMask && image->runMask->rows && image->runMask->height > 0 &&
              !(modeArg & kCompositeIgnoreDestRunMask);
  bool mask = image->maskImage && !(modeArg & kCompositeIgnoreDestMaskImage);
  Rect r = rect;
  if (!RectIntersect(r, image->validRect, &r) || !RectIntersect(r, ImageBounds(image), &r)) return 1;
  if (runs && !RectIntersect(r, image->runMaskRect, &r)) return 1;
  if (mask && !RectIntersect(r, image->maskRect, &r)) return 1;
  FillState f{};
  f.image = image;
  if (!PixelOfColour(image, colour, f.fill.pixel)) return 1;
  f.row = FindColorMergeRow(image->type, image->bitsPerPixel, mode);
  if (!f.row || !f.row->kernels[kColumnPlain])
    f.row = FindColorMergeRow(image->type, image->bitsPerPixel, kMergeNormal);
  if (!f.row) return 1;
  bool full = opacity == 255;
  f.kernels[0] = f.row->kernels[full ? kColumnPlain : kColumnOpacity];
  f.kernels[1] = f.row->kernels[full ? kColumnMask : kColumnMaskOpacity];
  f.kernels[2] = f.row->kernels[full ? kColumnTwoMasks : kColumnTwoMasksOpacity];
  if (!f.kernels[0] || !f.kernels[1] || !f.kernels[2]) return 1;
  CoverageSource sources[2];
  int32_t count = 0;
  int32_t readMode = DrawContextGetMaskReadMode(context);
  if (runs) sources[count++] = CoverageSource{kCoverageRuns, image->runMask, nullptr, image->runMaskRect, readMode};
  if (mask) sources[count++] = CoverageSource{kCoverageImage, nullptr, image->maskImage, image->maskRect, readMode};
  SpanTable table{&f, nullptr, &NextRow, &FillSpan, nullptr};
  return RegionWalk(context, &table, r, sources, count);
}

// ---- block copy and invert -----------------------------------------------------------

bool BlockCopyApplies(const CompositeState* s) {
  return !s->scaling && SameTypeFamily(s->src->type, s->dst->type) && ImagePixelBytes(s->src) > 0 &&
         ImagePixelBytes(s->dst) > 0 && s->src->palette == s->dst->palette && NoMasks(s) &&
         s->opacity == 255 && s->mode == kMergeNormal && !s->sameImage && !s->selector;
}

int BlockCopy(CompositeState* s) {
  if (CopyWhole(s)) return 1;
  s->convert = false;
  s->workingType = s->src->type;
  s->workingBits = s->src->bitsPerPixel;
  s->workingBytes = ImagePixelBytes(s->src);
  s->srcBytes = ImagePixelBytes(s->src);
  s->dstBytes = ImagePixelBytes(s->dst);
  return WalkTiles(s);
}

bool InvertApplies(const CompositeState* s) {
  bool self = s->sameImage && s->offsetX == 0 && s->offsetY == 0;
  return !s->scaling && (s->mode == kMergeInvertDest || (s->mode == kMergeInvertSource && self)) &&
         ImagePixelBytes(s->dst) > 0 && s->dst->type != kImageIndexed && NoMasks(s) &&
         s->opacity == 255 && !s->selector;
}

int InvertInPlace(CompositeState* s) {
  Image* dst = s->dst;
  if (!dst->tiles) return 0;
  const Rect& clip = s->dstClip;
  const int32_t bytes = ImagePixelBytes(dst);
  const int32_t c0 = clip.left / dst->tileWidth, c1 = clip.right / dst->tileWidth;
  const int32_t r0 = clip.top / dst->tileHeight, r1 = clip.bottom / dst->tileHeight;
  const int32_t total = (c1 - c0 + 1) * (r1 - r0 + 1);
  int32_t done = 0;
  for (int32_t r = r0; r <= r1; ++r) {
    for (int32_t c = c0; c <= c1; ++c) {
      TileCell* cell = &dst->tiles[r][c];
      Rect part;
      if (!RectIntersect(clip, CellRect(*cell), &part)) continue;
      const CLRColor* solid = CellSolidColor(cell);
      if (solid && RectEqual(part, CellRect(*cell)) && cell->lockCount == 0) {
        if (!MakeCellSolid(cell, Complement(*solid, dst->type))) return 0;
      } else {
        if (!CellLockWrite(cell)) return 0;
        InvertRows(cell, part, bytes);
        CellUnlock(cell);
      }
      ++done;
      if (s->context && s->context->progress &&
          !s->context->progress(done, total, s->context->progressData))
        return 0;
    }
  }
  return 1;
}

// ---- scale copy ------------------------------------------------------------------------

bool ScaleCopyApplies(const CompositeState* s) {
  return s->scaling && SameTypeFamily(s->src->type, s->dst->type) && ImagePixelBytes(s->src) > 0 &&
         ImagePixelBytes(s->dst) > 0 && NoMasks(s) && !s->selector && s->opacity == 255 &&
         s->mode == kMergeNormal && PaletteSame(s->src->palette, s->dst->palette) && !s->sameImage;
}

int ScaleCopy(CompositeState* s) {
  Image* dst = s->dst;
  s->convert = false;
  s->workingType = s->src->type;
  s->workingBits = s->src->bitsPerPixel;
  s->workingBytes = ImagePixelBytes(s->src);
  s->srcBytes = s->workingBytes;
  s->dstBytes = ImagePixelBytes(dst);
  if (!dst->tiles || !s->src->tiles || !PrepareBuffers(s)) return 0;
  const Rect& clip = s->dstClip;
  const int32_t bpp = s->dstBytes;
  const int32_t c0 = clip.left / dst->tileWidth, c1 = clip.right / dst->tileWidth;
  const int32_t r0 = clip.top / dst->tileHeight, r1 = clip.bottom / dst->tileHeight;
  ScratchArray<TileCell*> band;
  if (!band.Allocate(static_cast<size_t>(c1 - c0 + 1))) return 0;
  ProgressTicker ticker;
  ProgressTickerStart(&ticker, s->context, int64_t{clip.bottom} - clip.top + 1);
  int result = 1;
  for (int32_t r = r0; r <= r1 && result; ++r) {
    // The cells of one band of rows are held while its rows are drawn.
    int32_t held = 0;
    for (int32_t c = c0; c <= c1; ++c) {
      TileCell* cell = &dst->tiles[r][c];
      Rect part;
      RectIntersect(clip, CellRect(*cell), &part);
      CellLockFn lock = RectEqual(part, CellRect(*cell)) ? CellLockWriteDiscard : CellLockWrite;
      if (!lock(cell)) {
        result = 0;
        break;
      }
      band[held++] = cell;
    }
    const TileCell& first = dst->tiles[r][c0];
    int32_t top = std::max(clip.top, first.top), bottom = std::min(clip.bottom, first.bottom);
    for (int32_t y = top; y <= bottom && result; ++y) {
      // One cell holding the whole row takes it straight from the resampler.
      if (held == 1 && band[0]->left <= clip.left && band[0]->right >= clip.right) {
        if (!ResamplerRowInto(&s->resampler, y, CellPixelAddress(band[0], clip.left, y, dst->bitsPerPixel)))
          result = 0;
        else if (!ProgressTickerAdvance(&ticker, int64_t{y} - clip.top + 1))
          result = 0;
        continue;
      }
      const uint8_t* row = ResamplerRow(&s->resampler, y);
      if (!row) {
        result = 0;
        break;
      }
      for (int32_t k = 0; k < held; ++k) {
        TileCell* cell = band[k];
        int32_t left = std::max(clip.left, cell->left), right = std::min(clip.right, cell->right);
        std::memcpy(CellPixelAddress(cell, left, y, dst->bitsPerPixel),
                    row + int64_t{left - clip.left} * bpp, static_cast<size_t>(right - left + 1) * bpp);
      }
      if (!ProgressTickerAdvance(&ticker, int64_t{y} - clip.top + 1)) result = 0;
    }
    for (int32_t k = 0; k < held; ++k) CellUnlock(band[k]);
  }
  return result;
}

}  // namespace fancy
