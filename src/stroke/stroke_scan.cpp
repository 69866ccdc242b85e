#include "stroke/stroke_scan.h"

#include <cmath>

#include "stroke/span_paint.h"
#include "stroke/variation.h"

namespace fancy {

namespace {

// A full turn as the renderer turns a stroke's angle byte back into radians.
constexpr double kFullTurn = 6.28318;
// Edges flatter than this are taken as level.
constexpr double kLevel = 0.0001;

// Rows and columns of float coordinates, truncated toward zero.
inline int32_t Trunc(double value) { return TruncLow32(value); }

inline uint8_t Next(uint8_t corner, int32_t direction) {
  return static_cast<uint8_t>((corner + direction) & 3);
}

// One edge walker: the left walker goes round the corners backward, the
// right one forward.
struct Walker {
  float* x;
  float* prev;
  float* slope;
  uint8_t* corner;
  int32_t direction;
};

void StepWalker(StrokeScan* s, const Walker& w) {
  uint8_t k = *w.corner;
  if (s->row != Trunc(s->cornerY[k])) {  // on an edge
    *w.prev = *w.x;
    *w.x = static_cast<float>(static_cast<double>(*w.x) + *w.slope);
    return;
  }
  if (k == s->bottomCorner) {
    *w.x = s->cornerX[k];
    return;
  }
  // Corners that follow on the same row are passed over, up to the lowest.
  for (int i = 0; i < 3; ++i) {
    const uint8_t n = Next(k, w.direction);
    if (n == s->bottomCorner || Trunc(s->cornerY[n]) != Trunc(s->cornerY[k])) break;
    k = n;
  }
  const uint8_t k2 = Next(k, w.direction);
  const double dy = static_cast<double>(s->cornerY[k2]) - s->cornerY[k];
  if (std::fabs(dy) <= kLevel) {
    *w.x = *w.prev = s->cornerX[k];  // the slope stands
  } else {
    const double slope = (static_cast<double>(s->cornerX[k2]) - s->cornerX[k]) / dy;
    *w.slope = static_cast<float>(slope);
    const double y = s->cornerY[k];
    *w.x = static_cast<float>(s->cornerX[k] - (y - Trunc(y)) * slope + slope);
    *w.prev = s->cornerX[k];
  }
  *w.corner = k2;
}

}  // namespace

InstalledBrush InstallBrush(const BrushMask& mask) {
  InstalledBrush b{};
  b.raster = mask.raster;
  b.width = mask.width;
  b.height = mask.height;
  b.halfWidth = mask.width * 0.5;
  b.halfHeight = mask.height * 0.5;
  b.uLimit = mask.width << 16;
  b.vLimit = mask.height << 16;
  b.stride = mask.width;
  return b;
}

void StrokeCorners(const StrokeEntry& stroke, const InstalledBrush& brush, double scale,
                   double radians, double cornerX[4], double cornerY[4]) {
  const double c = std::cos(radians), n = std::sin(radians);
  const double hw = brush.halfWidth, hh = brush.halfHeight;
  const double right = brush.width - 1 - hw, bottom = brush.height - 1 - hh;
  const double p[4] = {-hw, right, right, -hw};
  const double q[4] = {-hh, -hh, bottom, bottom};
  for (int i = 0; i < 4; ++i) {
    cornerX[i] = stroke.x + scale * (p[i] * c - q[i] * n);
    cornerY[i] = stroke.y + scale * (p[i] * n + q[i] * c);
  }
}

void StrokeScanSetUp(StrokeScan* s, const StrokeEntry& stroke, const InstalledBrush& brush,
                     int32_t height) {
  const double scale = stroke.size * kByteScale;
  const double radians = stroke.angle * kByteScale * kFullTurn;
  double cx[4], cy[4];
  StrokeCorners(stroke, brush, scale, radians, cx, cy);
  for (int i = 0; i < 4; ++i) {
    s->cornerX[i] = static_cast<float>(cx[i]);
    s->cornerY[i] = static_cast<float>(cy[i]);
  }
  uint8_t top = 0, bottom = 0;  // the first corner wins ties
  for (uint8_t i = 1; i < 4; ++i) {
    if (s->cornerY[i] < s->cornerY[top]) top = i;
    if (s->cornerY[i] > s->cornerY[bottom]) bottom = i;
  }
  s->bottomCorner = bottom;
  const double leastY = s->cornerY[top], greatestY = s->cornerY[bottom];
  if (greatestY < 0.0) return;  // above the picture

  // Each walker starts at the last corner of the top row on its side.
  uint8_t right = top, left = top;
  for (int i = 0; i < 3; ++i) {
    const uint8_t n = Next(right, 1);
    if (n == bottom || Trunc(s->cornerY[n]) != Trunc(s->cornerY[right])) break;
    right = n;
  }
  for (int i = 0; i < 3; ++i) {
    const uint8_t n = Next(left, -1);
    if (n == bottom || Trunc(s->cornerY[n]) != Trunc(s->cornerY[left])) break;
    left = n;
  }
  s->rightCorner = right;
  s->leftCorner = left;

  // Brush coordinates at column 0 of the first row: far from the brush they
  // need more than 32 bits, and only their value modulo 2^32 matters, since
  // a span's start adds its column's steps with the same wrap.
  if (scale != 0.0) {
    const double c = std::cos(radians), n = std::sin(radians);
    const double t0 = Trunc(leastY);
    const double x = stroke.x, y = stroke.y;
    s->u = TruncLow32((((t0 - y) * n - x * c) / scale + brush.halfWidth) * 65536.0);
    s->dudx = TruncLow32(c / scale * 65536.0);
    s->dudy = TruncLow32(n / scale * 65536.0);
    s->v = TruncLow32((((t0 - y) * c + x * n) / scale + brush.halfHeight) * 65536.0);
    s->dvdx = TruncLow32(-n / scale * 65536.0);
    s->dvdy = TruncLow32(c / scale * 65536.0);
  }
  s->row = Trunc(leastY);
  const int32_t last = Trunc(greatestY);
  s->lastRow = last < height - 1 ? last : height - 1;
}

bool StrokeScanStep(StrokeScan* s, const StrokeEntry& stroke, const InstalledBrush& brush,
                    const SpanTarget* target) {
  StepWalker(s, {&s->leftX, &s->leftPrev, &s->leftSlope, &s->leftCorner, -1});
  StepWalker(s, {&s->rightX, &s->rightPrev, &s->rightSlope, &s->rightCorner, 1});

  if (target && s->row >= 0 && brush.raster) {
    // The widest extent the stroke has in this row: both ends of each edge.
    int32_t first = Trunc(std::fmin(s->leftPrev, s->leftX)) + 1;
    int32_t last = Trunc(std::fmax(s->rightPrev, s->rightX));
    if (first < 0) first = 0;
    if (last > target->width - 1) last = target->width - 1;
    if (first <= last) {
      Span span;
      span.raster = brush.raster;
      span.stride = brush.stride;
      span.uLimit = brush.uLimit;
      span.vLimit = brush.vLimit;
      span.dudx = s->dudx;
      span.dvdx = s->dvdx;
      span.u = static_cast<int32_t>(static_cast<uint32_t>(s->u) +
                                    static_cast<uint32_t>(first) * static_cast<uint32_t>(s->dudx));
      span.v = static_cast<int32_t>(static_cast<uint32_t>(s->v) +
                                    static_cast<uint32_t>(first) * static_cast<uint32_t>(s->dvdx));
      span.colour[0] = stroke.colour[0];
      span.colour[1] = stroke.colour[1];
      span.colour[2] = stroke.colour[2];
      span.opacity = stroke.opacity;
      uint8_t* canvas = target->canvas + static_cast<size_t>(first) * 3;
      const int32_t count = last - first + 1;
      if (target->paintRule)
        PaintSpanPaint(span, canvas, target->coverage + static_cast<size_t>(first) * 3, count);
      else
        PaintSpanNormal(span, canvas, count);
    }
  }

  s->u = static_cast<int32_t>(static_cast<uint32_t>(s->u) + static_cast<uint32_t>(s->dudy));
  s->v = static_cast<int32_t>(static_cast<uint32_t>(s->v) + static_cast<uint32_t>(s->dvdy));
  s->row += 1;
  return s->row > s->lastRow;
}

}  // namespace fancy
