// CompositeImage: arguments, clipping, the overflow guard, the choice of
// path, and the masks that a source brings along.
#include "imaging/composite.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "imaging/composite_state.h"
#include "imaging/coord_math.h"
#include "imaging/image_rows.h"
#include "imaging/tile_walk.h"

namespace fancy {

CompositeState::~CompositeState() {
  ImageDestroy(tempMask);
  ImageDestroy(tempRuns);
  ImageDestroy(sourceCopy);
  CLRScratchRelease(&lab);
}

namespace {

constexpr int64_t kScaleLimit = 0x40000000;

// An axis from a Rect's two edges; false for an empty one.
bool AxisFromEdges(int32_t a, int32_t b, CompositeAxis* axis) {
  int64_t size = int64_t{b} - a + 1;
  if (size == 0 || size > INT32_MAX || size < -int64_t{INT32_MAX}) return false;
  if (size > 0) *axis = CompositeAxis{a, 1, static_cast<int32_t>(size)};
  else *axis = CompositeAxis{a - 1, -1, static_cast<int32_t>(-size)};
  return true;
}

Rect Shifted(const Rect& r, int64_t dx, int64_t dy) {
  return Rect{ClampToInt32(r.left + dx), ClampToInt32(r.bottom + dy), ClampToInt32(r.right + dx),
              ClampToInt32(r.top + dy)};
}

// The pixels an axis covers, ordered.
void AxisRange(const CompositeAxis& a, int32_t* lo, int32_t* hi) {
  int64_t far = a.dir > 0 ? int64_t{a.first} + a.count - 1 : int64_t{a.first} - a.count + 1;
  *lo = ClampToInt32(std::min<int64_t>(a.first, far));
  *hi = ClampToInt32(std::max<int64_t>(a.first, far));
}

Rect BoxOf(const CompositeAxis& x, const CompositeAxis& y) {
  Rect r;
  AxisRange(x, &r.left, &r.right);
  AxisRange(y, &r.top, &r.bottom);
  return r;
}

// The Rect (edges) of an axis pair moved by (-ox, -oy): a mirrored axis
// gives a Rect the wrong way round again.
Rect EdgesOf(const CompositeAxis& x, const CompositeAxis& y, int32_t ox, int32_t oy) {
  auto edges = [](const CompositeAxis& a, int32_t o, int32_t* lo, int32_t* hi) {
    if (a.dir > 0) {
      *lo = ClampToInt32(int64_t{a.first} - o);
      *hi = ClampToInt32(int64_t{a.first} - o + a.count - 1);
    } else {
      *lo = ClampToInt32(int64_t{a.first} - o + 1);
      *hi = ClampToInt32(int64_t{a.first} - o + 1 - a.count - 1);
    }
  };
  Rect r;
  edges(x, ox, &r.left, &r.right);
  edges(y, oy, &r.top, &r.bottom);
  return r;
}

bool Overflows(int64_t src, int64_t dst) { return kScaleLimit / dst <= src || kScaleLimit / src <= dst; }

bool IndexedNotByte(const Image* image) {
  return image->type == kImageIndexed && image->bitsPerPixel != 8;
}

Point32 CentreOf(const Rect& r, const Image* image) {
  Point32 c{static_cast<int32_t>((int64_t{r.left} + r.right) / 2),
            static_cast<int32_t>((int64_t{r.top} + r.bottom) / 2)};
  if (!RectContains(ImageBounds(image), c.x, c.y)) c = Point32{image->width / 2, image->height / 2};
  return c;
}

// Sizes too far apart for the scaled arithmetic: fill the target with the
// source's colour at its centre when the source is the smaller, else set the
// target's centre pixel to black.
int OverflowFallback(DrawContext* context, Image* dst, const CompositeAxis& dx,
                     const CompositeAxis& dy, Image* src, const CompositeAxis& sx,
                     const CompositeAxis& sy, uint32_t modeArg) {
  Rect target = BoxOf(dx, dy);
  if (sx.count < dx.count || sy.count < dy.count) {
    Point32 c = CentreOf(BoxOf(sx, sy), src);
    return FillWithColor(context, dst, target, ImagePixelColor(src, c.x, c.y), modeArg);
  }
  Point32 c = CentreOf(target, dst);
  CLRColor black{};
  CLRSetBlack(&black);
  return FillWithColor(context, dst, MakeRect(c.x, c.y, 1, 1), black, modeArg);
}

// ---- masks from the source ------------------------------------------------------

// The coverage bytes of `count` pixels of a run row from pixel x0.
bool RunRowBytes(const RunRow& row, int32_t x0, int32_t count, uint8_t* out) {
  std::memset(out, 0, static_cast<size_t>(count));
  int64_t at = 0;
  for (int32_t i = 0; i < row.runCount && row.runs; ++i) {
    const Run& run = row.runs[i];
    int64_t a = std::max<int64_t>(at, x0), b = std::min<int64_t>(at + run.length, int64_t{x0} + count);
    if (a < b) {
      uint8_t* o = out + (a - x0);
      size_t n = static_cast<size_t>(b - a);
      if (run.kind == kRunFull) {
        std::memset(o, 255, n);
      } else if (run.kind == kRunPartial) {
        if (!run.cell) {
          std::memset(o, static_cast<uint8_t>(run.offset), n);
        } else {
          if (run.cell->tile && !CellLockRead(run.cell)) return false;
          if (run.cell->pixels) std::memcpy(o, run.cell->pixels + run.offset + (a - at), n);
          if (run.cell->tile) CellUnlock(run.cell);
        }
      }
    }
    at += run.length;
  }
  return true;
}

// The source's run mask sampled at the target's pixels (each target pixel
// takes the source pixel its centre maps to), as a type 99 image whose alpha
// runs are the coverage.
bool SourceRunsAtTarget(CompositeState* s) {
  const Rect& c = s->dstClip;
  int32_t w = c.right - c.left + 1, h = c.bottom - c.top + 1;
  Image* m = ImageCreate(kImageMask, w, h, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  if (!m) return false;
  s->tempRuns = m;
  const RunMask* runs = s->srcGiven->runMask;
  const Rect& rr = s->srcGiven->runMaskRect;
  ScratchArray<int32_t> columns;
  ScratchArray<uint8_t> row;
  if (!columns.Allocate(static_cast<size_t>(w)) || !row.Allocate(static_cast<size_t>(runs->width)))
    return false;
  for (int32_t i = 0; i < w; ++i) {
    Point32 p = DrawContextMapPoint(&s->scale, Point32{c.left + i, c.top});
    columns[i] = p.x - rr.left;
  }
  int32_t lastRow = INT32_MIN;
  for (int32_t j = 0; j < h; ++j) {
    int32_t sy = DrawContextMapPoint(&s->scale, Point32{c.left, c.top + j}).y - rr.top;
    uint8_t* out = ImagePixelAddress(m, 0, j);
    if (sy < 0 || sy >= runs->height || sy > rr.bottom - rr.top) continue;
    if (sy != lastRow) {
      if (!RunRowBytes(runs->rows[sy], 0, runs->width, row.data())) return false;
      lastRow = sy;
    }
    for (int32_t i = 0; i < w; ++i) {
      int32_t sx = columns[i];
      out[i] = sx >= 0 && sx < runs->width && sx <= rr.right - rr.left ? row[sx] : 0;
    }
  }
  return ImageBuildAlphaRuns(m) != 0;
}

// The source's mask image scaled into a type 99 image of the target clip by
// a composite of its own.
bool SourceMaskAtTarget(CompositeState* s) {
  const Rect& c = s->dstClip;
  int32_t w = c.right - c.left + 1, h = c.bottom - c.top + 1;
  Image* m = ImageCreate(kImageMask, w, h, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  if (!m) return false;
  s->tempMask = m;
  DrawContext own;
  DrawContextSetDefaults(&own);
  own.filterMode = s->filter;
  const Rect& mr = s->srcGiven->maskRect;
  Rect target = EdgesOf(s->dx, s->dy, c.left, c.top);
  Rect source = EdgesOf(s->sx, s->sy, mr.left, mr.top);
  return CompositeImage(&own, m, 0, 0, 0, 0, &target, s->srcGiven->maskImage, 0, 0, 0, 0, &source,
                        kCompositeIgnoreDestRunMask |
                            kCompositeIgnoreDestMaskImage) != 0;
}

// The coverage sources of the walk: the destination's masks as they stand,
// the source's brought to target coordinates.
bool GatherCoverage(CompositeState* s) {
  int32_t readMode = DrawContextGetMaskReadMode(s->context);
  auto add = [&](int32_t kind, const RunMask* runs, Image* image, const Rect& rect) {
    s->sources[s->sourceCount++] = CoverageSource{kind, runs, image, rect, readMode};
  };
  if (s->dstRuns) add(kCoverageRuns, s->dst->runMask, nullptr, s->dst->runMaskRect);
  if (s->dstMask) add(kCoverageImage, nullptr, s->dst->maskImage, s->dst->maskRect);
  if (s->srcRuns) {
    if (!SourceRunsAtTarget(s)) return false;
    add(kCoverageRuns, s->tempRuns->alphaRuns, nullptr, s->dstClip);
  }
  if (s->srcMask) {
    if (!SourceMaskAtTarget(s)) return false;
    add(kCoverageImage, nullptr, s->tempMask, s->dstClip);
  }
  return true;
}

// A source that is the destination and is read elsewhere than it is written
// (moved or scaled) is read from a copy of its clipped part.
bool CopyOverlappingSource(CompositeState* s) {
  Rect overlap;
  if (!s->sameImage || (!s->scaling && s->offsetX == 0 && s->offsetY == 0) ||
      !RectIntersect(s->srcClip, s->dstClip, &overlap))
    return true;
  const Rect& c = s->srcClip;
  int32_t w = c.right - c.left + 1, h = c.bottom - c.top + 1;
  Image* copy = ImageSameFormat(s->src, w, h);
  if (!copy) return false;
  s->sourceCopy = copy;
  if (!CompositeImage(nullptr, copy, 0, 0, w, h, nullptr, s->src, c.left, c.top, w, h, nullptr,
                      kCompositeIgnoreDestRunMask | kCompositeIgnoreDestMaskImage))
    return false;
  s->src = copy;
  s->sourceShiftX = c.left;
  s->sourceShiftY = c.top;
  s->sx.first -= c.left;
  s->sy.first -= c.top;
  s->offsetX -= c.left;
  s->offsetY -= c.top;
  s->srcClip = Rect{0, h - 1, w - 1, 0};
  DrawContextSetOrigins(&s->scale, Point32{s->dx.first, s->dy.first},
                        Point32{s->sx.first, s->sy.first});
  return true;
}

// Cuts the rectangle by the image's valid part and the masks that apply.
bool ClipTo(const Image* image, bool runs, bool mask, Rect* r) {
  if (!RectIntersect(*r, image->validRect, r) || !RectIntersect(*r, ImageBounds(image), r))
    return false;
  if (runs && !RectIntersect(*r, image->runMaskRect, r)) return false;
  if (mask && !RectIntersect(*r, image->maskRect, r)) return false;
  return true;
}

bool HasRuns(const Image* image) {
  return image->runMask && image->runMask->rows && image->runMask->height > 0;
}

int RunComposite(CompositeState* s) {
  const uint32_t m = s->modeArg;
  Image* dst = s->dst;
  Image* src = s->src;
  s->dstRuns = HasRuns(dst) && !(m & kCompositeIgnoreDestRunMask);
  s->dstMask = dst->maskImage && !(m & kCompositeIgnoreDestMaskImage);
  s->srcRuns = (m & kCompositeSourceRunMask) && HasRuns(src);
  s->srcMask = (m & (kCompositeSourceMaskImage | kCompositeWeightBySourceMask)) && src->maskImage;
  s->sameImage = src == dst;
  s->selector = (m >> kCompositeDestChannelShift) != 0;
  s->scaling = s->sx.count != s->dx.count || s->sy.count != s->dy.count || s->sx.dir != s->dx.dir ||
               s->sy.dir != s->dy.dir;
  s->anyCoverage = s->opacity != 255 || s->dstRuns || s->dstMask || s->srcRuns || s->srcMask;

  DrawContextSetDefaults(&s->scale);
  DrawContextSetScale(&s->scale, s->dx.dir * s->dx.count, s->sx.dir * s->sx.count,
                      s->dy.dir * s->dy.count, s->sy.dir * s->sy.count);
  DrawContextSetOrigins(&s->scale, Point32{s->dx.first, s->dy.first},
                        Point32{s->sx.first, s->sy.first});

  // Clipping: each side on its own, then the source mapped into the target.
  Rect d = BoxOf(s->dx, s->dy), c = BoxOf(s->sx, s->sy);
  if (!ClipTo(dst, s->dstRuns, s->dstMask, &d) || !ClipTo(src, s->srcRuns, s->srcMask, &c))
    return 1;
  if (!s->scaling) {
    // Clipped rectangles lie in their images: an offset past 32 bits can
    // bring nothing of the source over the target.
    int64_t ox = int64_t{s->sx.first} - s->dx.first, oy = int64_t{s->sy.first} - s->dy.first;
    if (ox != ClampToInt32(ox) || oy != ClampToInt32(oy)) return 1;
    s->offsetX = static_cast<int32_t>(ox);
    s->offsetY = static_cast<int32_t>(oy);
    if (!RectIntersect(d, Shifted(c, -ox, -oy), &d)) return 1;
    c = Shifted(d, ox, oy);
  } else if (!RectIntersect(d, DrawContextReverseMapRect(&s->scale, c), &d)) {
    return 1;
  }
  s->dstClip = d;
  s->srcClip = c;

  if (!s->scaling) {
    // A pixel merged with itself by Normal stays as it is.
    if (s->sameImage && s->offsetX == 0 && s->offsetY == 0 && s->mode == kMergeNormal &&
        !s->selector)
      return 1;
    if (BlockCopyApplies(s)) return BlockCopy(s);
    if (InvertApplies(s)) return InvertInPlace(s);
  } else {
    s->filter = DrawContextGetFilterMode(s->context) == kFilterSmooth ? kFilterSmooth : kFilterNearest;
    s->maskWeighted = s->filter == kFilterSmooth &&
                      (m & (kCompositeSourceMaskImage | kCompositeWeightBySourceMask)) &&
                      src->maskImage;
    if (ScaleCopyApplies(s)) return ScaleCopy(s);
  }

  if (!ChooseKernels(s)) return 1;
  const MergeRow* row = s->row;
  if (!s->anyCoverage) {
    if (row->kernels[kColumnPlain] == &NoOpMergeKernel) return 1;
  } else {
    bool all = true;
    for (int k = 0; k < kMergeColumnCount; ++k) all = all && row->kernels[k] == &NoOpMergeKernel;
    if (all) return 1;
  }
  if (s->opacity == 255) {
    s->kernels[0] = row->kernels[kColumnPlain];
    s->kernels[1] = row->kernels[kColumnMask];
    s->kernels[2] = row->kernels[kColumnTwoMasks];
  } else {
    s->kernels[0] = row->kernels[kColumnOpacity];
    s->kernels[1] = row->kernels[kColumnMaskOpacity];
    s->kernels[2] = row->kernels[kColumnTwoMasksOpacity];
  }
  // The source's masks are taken where the caller's source lies, before a
  // copy of it moves the source's coordinates.
  if (!GatherCoverage(s) || !CopyOverlappingSource(s)) return 0;
  return WalkTiles(s);
}

}  // namespace

int CompositeImage(DrawContext* context, Image* dst, int32_t dstX, int32_t dstY, int32_t dstWidth,
                   int32_t dstHeight, const Rect* dstRect, Image* src, int32_t srcX, int32_t srcY,
                   int32_t srcWidth, int32_t srcHeight, const Rect* srcRect, uint32_t modeArg) {
  const uint8_t opacity = DrawContextGetOpacity(context);
  const int32_t mode = static_cast<int32_t>(modeArg & kCompositeModeBits);
  const bool rects = dstRect && srcRect;
  if (opacity == 0 || mode >= kMergeModeCount) return 1;
  if (!rects && (dstWidth < 1 || dstHeight < 1)) return 1;
  if (!rects && src && (srcWidth < 1 || srcHeight < 1)) return 1;
  if (!dst) return 1;
  if (!src) {
    src = dst;
    srcX = dstX;
    srcY = dstY;
    srcWidth = dstWidth;
    srcHeight = dstHeight;
  }
  if (IndexedNotByte(src) || IndexedNotByte(dst)) return 1;
  if (!ImageTypeIsValid(src->type) || !ImageTypeIsValid(dst->type)) return 1;

  CompositeAxis dx, dy, sx, sy;
  if (rects) {
    if (!AxisFromEdges(dstRect->left, dstRect->right, &dx) ||
        !AxisFromEdges(dstRect->top, dstRect->bottom, &dy) ||
        !AxisFromEdges(srcRect->left, srcRect->right, &sx) ||
        !AxisFromEdges(srcRect->top, srcRect->bottom, &sy))
      return 1;
  } else {
    dx = CompositeAxis{dstX, 1, dstWidth};
    dy = CompositeAxis{dstY, 1, dstHeight};
    sx = CompositeAxis{srcX, 1, srcWidth};
    sy = CompositeAxis{srcY, 1, srcHeight};
  }
  if (Overflows(sx.count, dx.count) || Overflows(sy.count, dy.count))
    return OverflowFallback(context, dst, dx, dy, src, sx, sy, modeArg);

  CompositeState s{};
  s.context = context;
  s.dst = dst;
  s.src = src;
  s.srcGiven = src;
  s.modeArg = modeArg;
  s.mode = mode;
  s.opacity = opacity;
  s.dx = dx;
  s.dy = dy;
  s.sx = sx;
  s.sy = sy;
  s.resampledRow = INT32_MIN;
  return RunComposite(&s);
}

}  // namespace fancy
