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
  const Fixed l2 = n.light[2];
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
      if (h == 0 && dx == 0 && dy == 0) {
        // Outside the glass: no bend, no tint, no shine.
        std::memcpy(dst, window.row[wy] + x * planes, static_cast<size_t>(planes));
        continue;
      }
      const Fixed gx = FixedMul(s, dx);
      const Fixed gy = FixedMul(s, dy);
      const Fixed gg = FixedMul(gx, gx) + FixedMul(gy, gy);

      int32_t highlight = 0;
      const Fixed d = l2 - FixedMul(l0, gx) - FixedMul(l1, gy);
      if (d >= 0) {
        const Fixed reflected = FixedDiv(2 * d, gg + kFixedOne) - l2;
        if (reflected > 0) {
          Fixed p = reflected > kFixedOne ? kFixedOne : FixedPowInt(reflected, n.exponent);
          Fixed edge = h;
          if (kFixedOne - edge < kShineEdge) edge = kFixedOne - edge;
          if (edge < kShineEdge) p = static_cast<Fixed>(int64_t{p} * edge / kShineEdge);
          highlight = std::clamp(FixedMul(n.bright, p), 0, kTopChannel) >> 8;
        }
      }

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
      // At the right and bottom edge the neighbour is the pixel itself.
      const intptr_t stepX = ix + 1 < columns ? planes : 0;
      const intptr_t stepY = (iy + 1 < window.rows ? window.row[iy + 1] : window.row[iy]) - window.row[iy];

      int32_t transmission = 255;
      if (ox != 0 || oy != 0 || z != 0) {
        const Fixed length = FixedSqrt(FixedMul(ox, ox) + FixedMul(oy, oy) + FixedMul(z, z));
        const Fixed through = FixedExp(FixedDiv(FixedMul(n.absorb, length), s));
        transmission = std::clamp(through, 0, kTopChannel) >> 8;
      }

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
        int32_t value;
        if (transmission < 255) {
          const int32_t filter = ((look.tint[c] * (255 - transmission)) >> 8) + transmission;
          value = ((filter * sample) >> 8) + highlight;
        } else {
          value = sample + highlight;
        }
        dst[c] = static_cast<uint8_t>(std::min(value, 255));
      }
    }
    if (ReliefTick(progress)) return kErrUserCancelled;
  }
  return kNoError;
}

}  // namespace fancy
