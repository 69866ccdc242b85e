#include "imaging/draw_context.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "imaging/coord_math.h"

namespace fancy {

namespace {

CLRColor RgbColour(uint8_t blue, uint8_t green, uint8_t red) {
  CLRColor c{};
  c.model = kCLRRGB255;
  c.palette = kCLRPalUser;
  c.value8[0] = blue;
  c.value8[1] = green;
  c.value8[2] = red;
  return c;
}

const CLRColor kDefaultForeground = RgbColour(200, 0, 0);
const CLRColor kDefaultBackground = RgbColour(0, 255, 255);

// The source offset of target offset d on an axis of the kind.
int64_t MapOffset(int32_t kind, int64_t d, double inverse) {
  switch (kind) {
    case kMapIdentity: return d;
    case kMapMirror: return -d;
    case kMapScale: return static_cast<int64_t>(std::floor((d + 0.5) * inverse));
    case kMapScaleTargetFlip: return static_cast<int64_t>(std::floor((-d + 0.5) * inverse));
    case kMapScaleSourceFlip: return -static_cast<int64_t>(std::floor((d + 0.5) * inverse));
    case kMapScaleBothFlip: return -static_cast<int64_t>(std::floor((-d + 0.5) * inverse));
    default: return 0;
  }
}

// Target pixels [first, last] (in the target's own direction, counted from
// its origin) whose area meets the source pixels [j0, j1] counted the same
// way: source pixel j spans [j, j + 1) x |num| / |den| of the target.
void ReverseAxis(int64_t j0, int64_t j1, int64_t num, int64_t den, int64_t* first,
                 int64_t* last) {
  int64_t n = num < 0 ? -num : num, d = den < 0 ? -den : den;
  *first = FloorDiv(j0 * n, d);
  *last = FloorDiv((j1 + 1) * n + d - 1, d) - 1;
}

// One axis of the reverse map: the target range, ordered, of source range
// [a, b] (ordered, physical).
void ReverseMapAxis(int32_t kind, int32_t num, int32_t den, int32_t targetOrigin,
                    int32_t sourceOrigin, int32_t a, int32_t b, int32_t* lo, int32_t* hi) {
  if (kind == kMapNone) {
    *lo = *hi = targetOrigin;
    return;
  }
  int64_t sdir = den < 0 ? -1 : 1, tdir = num < 0 ? -1 : 1;
  int64_t ja = (int64_t{a} - sourceOrigin) * sdir, jb = (int64_t{b} - sourceOrigin) * sdir;
  if (ja > jb) std::swap(ja, jb);
  int64_t f, l;
  ReverseAxis(ja, jb, num, den, &f, &l);
  int64_t p = targetOrigin + f * tdir, q = targetOrigin + l * tdir;
  if (p > q) std::swap(p, q);
  *lo = ClampToInt32(p);
  *hi = ClampToInt32(q);
}

}  // namespace

void DrawContextSetDefaults(DrawContext* c) {
  if (!c) return;
  *c = DrawContext{};
  c->foreground = kDefaultForeground;
  c->background = kDefaultBackground;
  c->ditherMode = kDitherOrdered;
  c->filterMode = kFilterNearest;
  c->mergeMode = 0;
  c->antialias = 0;
  c->opacity = 255;
  c->maskReadMode = 1;
  DrawContextSetScale(c, 1, 1, 1, 1);
}

DrawContext* DrawContextCreate() {
  auto* c = static_cast<DrawContext*>(std::calloc(1, sizeof(DrawContext)));
  if (c) DrawContextSetDefaults(c);
  return c;
}

void DrawContextFree(DrawContext* c) {
  if (!c) return;
  if (c->nib) NibFree(c->nib);
  if (c->texture) TextureFree(c->texture);
  if (c->paint) PaintSpecFree(c->paint);
  std::free(c);
}

uint8_t DrawContextGetOpacity(const DrawContext* c) { return c ? c->opacity : 255; }
int32_t DrawContextGetMergeMode(const DrawContext* c) { return c ? c->mergeMode : 32; }
int32_t DrawContextGetFilterMode(const DrawContext* c) { return c ? c->filterMode : kFilterNearest; }
int32_t DrawContextGetDitherMode(const DrawContext* c) { return c ? c->ditherMode : kDitherOrdered; }
int32_t DrawContextGetAntialias(const DrawContext* c) { return c ? c->antialias : 0; }
int32_t DrawContextGetMaskReadMode(const DrawContext* c) { return c ? c->maskReadMode : 1; }
CLRColor DrawContextGetForeground(const DrawContext* c) {
  return c ? c->foreground : kDefaultForeground;
}
CLRColor DrawContextGetBackground(const DrawContext* c) {
  return c ? c->background : kDefaultBackground;
}

int DrawContextSetOpacity(DrawContext* c, uint8_t opacity) {
  if (!c) return 0;
  c->opacity = opacity;
  return 1;
}
int DrawContextSetMergeMode(DrawContext* c, int32_t mode) {
  if (!c) return 0;
  c->mergeMode = mode;
  return 1;
}
int DrawContextSetFilterMode(DrawContext* c, int32_t mode) {
  if (!c) return 0;
  c->filterMode = mode;
  return 1;
}
int DrawContextSetDitherMode(DrawContext* c, int32_t mode) {
  if (!c) return 0;
  c->ditherMode = mode;
  return 1;
}
int DrawContextSetForeground(DrawContext* c, const CLRColor& colour) {
  if (!c) return 0;
  c->foreground = colour;
  return 1;
}
int DrawContextSetBackground(DrawContext* c, const CLRColor& colour) {
  if (!c) return 0;
  c->background = colour;
  return 1;
}
int DrawContextSetProgress(DrawContext* c, ProgressFn progress, void* data) {
  if (!c) return 0;
  c->progress = progress;
  c->progressData = data;
  return 1;
}

int32_t MapKindOf(int32_t num, int32_t den) {
  if (num == 0 || den == 0) return kMapNone;
  if (num == den) return kMapIdentity;
  if (int64_t{num} == -int64_t{den}) return kMapMirror;
  if (num > 0) return den > 0 ? kMapScale : kMapScaleSourceFlip;
  return den > 0 ? kMapScaleTargetFlip : kMapScaleBothFlip;
}

int DrawContextSetScale(DrawContext* c, int32_t xNum, int32_t xDen, int32_t yNum, int32_t yDen) {
  if (!c) return 0;
  c->scaleXNum = xNum;
  c->scaleXDen = xDen;
  c->scaleYNum = yNum;
  c->scaleYDen = yDen;
  c->mapXKind = MapKindOf(xNum, xDen);
  c->mapYKind = MapKindOf(yNum, yDen);
  auto ratios = [](int32_t num, int32_t den, double* ratio, double* inverse) {
    if (num == 0 || den == 0) {
      *ratio = *inverse = 1.0;
      return;
    }
    *ratio = std::fabs(static_cast<double>(num) / den);
    *inverse = std::fabs(static_cast<double>(den) / num);
  };
  ratios(xNum, xDen, &c->ratioX, &c->inverseX);
  ratios(yNum, yDen, &c->ratioY, &c->inverseY);
  return c->mapXKind != kMapNone && c->mapYKind != kMapNone ? 1 : 0;
}

int DrawContextSetOrigins(DrawContext* c, Point32 target, Point32 source) {
  if (!c) return 0;
  c->targetOrigin = target;
  c->sourceOrigin = source;
  return 1;
}

Point32 DrawContextMapPoint(const DrawContext* c, Point32 p) {
  if (!c) return p;
  int64_t x = MapOffset(c->mapXKind, int64_t{p.x} - c->targetOrigin.x, c->inverseX);
  int64_t y = MapOffset(c->mapYKind, int64_t{p.y} - c->targetOrigin.y, c->inverseY);
  return Point32{ClampToInt32(x + c->sourceOrigin.x), ClampToInt32(y + c->sourceOrigin.y)};
}

Rect DrawContextMapRect(const DrawContext* c, const Rect& r) {
  Point32 a = DrawContextMapPoint(c, Point32{r.left, r.top});
  Point32 b = DrawContextMapPoint(c, Point32{r.right, r.bottom});
  return Rect{std::min(a.x, b.x), std::max(a.y, b.y), std::max(a.x, b.x), std::min(a.y, b.y)};
}

Rect DrawContextReverseMapRect(const DrawContext* c, const Rect& r) {
  if (!c) return r;
  Rect out;
  ReverseMapAxis(c->mapXKind, c->scaleXNum, c->scaleXDen, c->targetOrigin.x, c->sourceOrigin.x,
                 std::min(r.left, r.right), std::max(r.left, r.right), &out.left, &out.right);
  ReverseMapAxis(c->mapYKind, c->scaleYNum, c->scaleYDen, c->targetOrigin.y, c->sourceOrigin.y,
                 std::min(r.top, r.bottom), std::max(r.top, r.bottom), &out.top, &out.bottom);
  return out;
}

}  // namespace fancy
