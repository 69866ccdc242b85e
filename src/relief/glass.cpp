#include "relief/glass.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/result_codes.h"

namespace fancy {

namespace {

constexpr Fixed kShineEdge = 983;     // 0.015: a flat top and the flat outside give no shine
constexpr Fixed kTopChannel = 65280;  // 255 << 8
constexpr int32_t kRayScale = 10;     // gradients and height count ten times along the ray

// The part of the offset o (16.16) that a ray from pos may travel before it
// crosses 0 or limit, as 16.16; -1 when it moves along neither.
inline int32_t BorderRatio(int32_t pos, int32_t o, int32_t limit) {
  if (o == 0) return -1;
  const int64_t room = o < 0 ? -int64_t{pos} : int64_t{limit} - pos;
  return static_cast<int32_t>(std::clamp<int64_t>((room << 16) / o, 0, INT32_MAX));
}

// The shine at a point of height h whose surface slopes by gx, gy: a
// specular highlight, faded out where the surface is flat on top or outside.
inline int32_t Highlight(const ReliefNumbers& n, Fixed l0, Fixed l1, Fixed h, Fixed gx, Fixed gy) {
  const Fixed d = n.light[2] - FixedMul(l0, gx) - FixedMul(l1, gy);
  if (d < 0) return 0;
  const Fixed gg = FixedMul(gx, gx) + FixedMul(gy, gy);
  const Fixed reflected = FixedDiv(2 * d, gg + kFixedOne) - n.light[2];
  if (reflected <= 0) return 0;
  Fixed p = reflected > kFixedOne ? kFixedOne : FixedPowInt(reflected, n.exponent);
  Fixed edge = h;
  if (kFixedOne - edge < kShineEdge) edge = kFixedOne - edge;
  if (edge < kShineEdge) p = static_cast<Fixed>(int64_t{p} * edge / kShineEdge);
  return std::clamp(FixedMul(n.bright, p), 0, kTopChannel) >> 8;
}

// How much of the light gets through a ray that crosses (ox, oy, z) of
// glass, 0..255.
inline int32_t Transmission(const ReliefNumbers& n, Fixed ox, Fixed oy, Fixed z) {
  if (ox == 0 && oy == 0 && z == 0) return 255;
  const Fixed length = FixedSqrt(FixedMul(ox, ox) + FixedMul(oy, oy) + FixedMul(z, z));
  const Fixed through = FixedExp(FixedDiv(FixedMul(n.absorb, length), n.slope));
  return std::clamp(through, 0, kTopChannel) >> 8;
}

// The sample tinted by the glass, with the shine on top.
inline uint8_t Tinted(int32_t sample, uint8_t tint, int32_t transmission, int32_t highlight) {
  int32_t value = sample + highlight;
  if (transmission < 255) {
    const int32_t filter = ((tint * (255 - transmission)) >> 8) + transmission;
    value = ((filter * sample) >> 8) + highlight;
  }
  return static_cast<uint8_t>(std::min(value, 255));
}

}  // namespace

int32_t GlassReach(const ReliefNumbers& numbers, Fixed top) {
  // |offset| = |eta - 1| z g / (eta g^2 + 1) for a gradient g, at most
  // |eta - 1| z / (2 sqrt(eta)); z is ten times the height.
  const double eta = numbers.eta / 65536.0;
  if (eta <= 0.0) return INT32_MAX / 2;
  const double z = kRayScale * std::max(top, 0) / 65536.0;
  const double reach = std::fabs(eta - 1.0) * z / (2.0 * std::sqrt(eta));
  return static_cast<int32_t>(std::ceil(reach)) + 2;
}

int32_t GlassBand(const HeightMap* field, const ReliefBand& band, const GlassWindow& window,
                  const GlassLook& look, ReliefProgress* progress) {
  const int32_t width = field->width;
  const int32_t height = field->height;
  if (width < 2 || height < 2 || window.rows < 2 || band.columns < 2)
    return kErrImageTooSmallRelief;
  const int32_t planes = band.planes;
  const ReliefNumbers& n = look.numbers;
  const Fixed s = n.slope;
  // Rows run down the picture and the light's y up it.
  const Fixed l0 = n.light[0];
  const Fixed l1 = WrapNeg(n.light[1]);
  // The last level height met, with its shine and transmission.
  Fixed flatHeight = 0;
  int32_t flatShine = 0, flatThrough = 255;
  const int32_t columns = std::min(band.columns, width);
  const int32_t right = columns << 16;
  const int32_t bottom = window.rows << 16;

  for (int32_t r = 0; r < band.rows; ++r) {
    const int32_t y = band.fieldTop + r;
    const int32_t wy = y - window.fieldTop;
    const Fixed* here = field->rows[y];
    const Fixed* up = field->rows[std::max(y - 1, 0)];
    const Fixed* down = field->rows[std::min(y + 1, height - 1)];
    uint8_t* dst = band.target + static_cast<intptr_t>(r) * band.targetRowBytes;
    for (int32_t x = 0; x < columns; ++x, dst += planes) {
      const Fixed h = here[x];
      const Fixed dx = x == 0             ? here[1] - here[0]
                       : x == columns - 1 ? here[x] - here[x - 1]
                                          : here[x + 1] - here[x - 1];
      const Fixed dy = down[x] - up[x];
      const uint8_t* here0 = window.row[wy] + x * planes;
      if (dx == 0 && dy == 0) {
        if (h == 0) {
          // Outside the glass: no bend, no tint, no shine.
          std::memcpy(dst, here0, static_cast<size_t>(planes));
          continue;
        }
        // A level spot bends nothing, and its shine and tint depend on its
        // height alone: a flat top is worked out once.
        if (h != flatHeight) {
          flatHeight = h;
          flatShine = Highlight(n, l0, l1, h, 0, 0);
          flatThrough = Transmission(n, 0, 0, kRayScale * h);
        }
        for (int32_t c = 0; c < planes; ++c)
          dst[c] = Tinted(here0[c], look.tint[c], flatThrough, flatShine);
        continue;
      }
      const Fixed gx = FixedMul(s, dx);
      const Fixed gy = FixedMul(s, dy);
      const int32_t highlight = Highlight(n, l0, l1, h, gx, gy);

      // The ray through the surface.
      const Fixed gx10 = kRayScale * gx;
      const Fixed gy10 = kRayScale * gy;
      const Fixed z = kRayScale * h;
      const Fixed t = FixedDiv(FixedMul(n.eta - kFixedOne, z),
                               FixedMul(n.eta, FixedMul(gx10, gx10) + FixedMul(gy10, gy10)) +
                                   kFixedOne);
      Fixed ox = WrapNeg(FixedMul(t, gx10));
      Fixed oy = WrapNeg(FixedMul(t, gy10));
      int32_t px = WrapAdd(x << 16, ox);
      int32_t py = WrapAdd(wy << 16, oy);
      if (px < 0 || px > right || py < 0 || py > bottom) {
        // Cut at the border that the ray meets first.
        const int32_t kx = BorderRatio(x << 16, ox, right);
        const int32_t ky = BorderRatio(wy << 16, oy, bottom);
        const int32_t k = kx < 0 ? std::max(ky, 0) : ky < 0 ? kx : std::min(kx, ky);
        ox = FixedMul(ox, k);
        oy = FixedMul(oy, k);
        px = std::clamp(WrapAdd(x << 16, ox), 0, right);
        py = std::clamp(WrapAdd(wy << 16, oy), 0, bottom);
      }
      const int32_t ix = std::min(px >> 16, columns - 1);
      const int32_t iy = std::min(py >> 16, window.rows - 1);
      const int32_t fx = (px & 0xFFFF) >> 10;  // six bits of fraction
      const int32_t fy = (py & 0xFFFF) >> 10;
      const uint8_t* p00 = window.row[iy] + ix * planes;
      // At the right and bottom edge the neighbour is the pixel itself; the
      // window's rows all lie in one buffer.
      const intptr_t stepX = ix + 1 < columns ? planes : 0;
      const intptr_t stepY =
          (iy + 1 < window.rows ? window.row[iy + 1] : window.row[iy]) - window.row[iy];
      const int32_t transmission = Transmission(n, ox, oy, z);

      for (int32_t c = 0; c < planes; ++c) {
        const uint8_t* p = p00 + c;
        int32_t sample;
        if (fx == 0 && fy == 0) {
          sample = p[0];
        } else if (fy == 0) {
          sample = ((64 - fx) * p[0] + fx * p[stepX]) >> 6;
        } else if (fx == 0) {
          sample = ((64 - fy) * p[0] + fy * p[stepY]) >> 6;
        } else {
          sample = ((64 - fx) * (64 - fy) * p[0] + fx * (64 - fy) * p[stepX] +
                    (64 - fx) * fy * p[stepY] + fx * fy * p[stepX + stepY]) >> 12;
        }
        dst[c] = Tinted(sample, look.tint[c], transmission, highlight);
      }
    }
    if (ReliefTick(progress)) return kErrUserCancelled;
  }
  return kNoError;
}

}  // namespace fancy
