#include "stroke/span_paint.h"

namespace fancy {

namespace {

// The brush value under (u, v), or 0 outside the brush. Negative
// coordinates, seen unsigned, lie above every limit; a coordinate equal to
// its limit reads one column or row past the raster, into its spare bytes.
inline int32_t BrushValue(const Span& s, uint32_t u, uint32_t v) {
  if (u > static_cast<uint32_t>(s.uLimit) || v > static_cast<uint32_t>(s.vLimit)) return 0;
  return s.raster[(static_cast<int32_t>(v) >> 16) * s.stride + (static_cast<int32_t>(u) >> 16)];
}

// c + (((target - c) x weight + 128) >> 8), kept to a byte.
inline uint8_t Blend(int32_t c, int32_t target, int32_t weight) {
  return static_cast<uint8_t>(c + (((target - c) * weight + 128) >> 8));
}

}  // namespace

void PaintSpanNormal(const Span& s, uint8_t* px, int32_t count) {
  uint32_t u = static_cast<uint32_t>(s.u), v = static_cast<uint32_t>(s.v);
  const uint32_t du = static_cast<uint32_t>(s.dudx), dv = static_cast<uint32_t>(s.dvdx);
  const int32_t o = s.opacity;
  const int32_t c0 = s.colour[0], c1 = s.colour[1], c2 = s.colour[2];
  for (int32_t i = 0; i < count; ++i, px += 3, u += du, v += dv) {
    const int32_t m = BrushValue(s, u, v);
    if (m == 0) continue;
    const int32_t a = (m * o + 128) >> 8;
    px[0] = Blend(px[0], c0, a);
    px[1] = Blend(px[1], c1, a);
    px[2] = Blend(px[2], c2, a);
    // The coverage would move toward the opacity here; nothing reads it
    // under this rule, and the row's final copy overwrites it, so it is
    // not written.
  }
}

void PaintSpanPaint(const Span& s, uint8_t* px, uint8_t* coverage, int32_t count) {
  uint32_t u = static_cast<uint32_t>(s.u), v = static_cast<uint32_t>(s.v);
  const uint32_t du = static_cast<uint32_t>(s.dudx), dv = static_cast<uint32_t>(s.dvdx);
  const int32_t o = s.opacity;
  for (int32_t i = 0; i < count; ++i, px += 3, coverage += 3, u += du, v += dv) {
    const int32_t m = BrushValue(s, u, v);
    if (m <= *coverage) continue;
    for (int ch = 0; ch < 3; ++ch) {
      const int32_t shaded = (s.colour[ch] * m + 128) >> 8;  // darker toward the edge
      const uint8_t laid = Blend(px[ch], shaded, o);
      px[ch] = Blend(px[ch], laid, m);
    }
    *coverage = static_cast<uint8_t>(m);
  }
}

}  // namespace fancy
