#include "relief/emboss.h"

#include <algorithm>
#include <cstring>

#include "frame/host_record.h"
#include "frame/result_codes.h"

namespace fancy {

namespace {

constexpr Fixed kNearlyFlat = 6554;   // 0.1: below it the light fades out
constexpr Fixed kTopChannel = 65280;  // 255 << 8
constexpr Fixed kNeutral = 32768;     // 0.5

// Height difference across two pixels along one axis of the field, at
// position i of count; at either end the one-sided difference doubled, and
// 2 for a field one sample across.
inline Fixed Difference(Fixed before, Fixed here, Fixed after, int32_t i, int32_t count) {
  if (count == 1) return 2;
  if (i == 0) return 2 * (after - here);
  if (i == count - 1) return 2 * (here - before);
  return after - before;
}

}  // namespace

void ShadePixel(int32_t planes, int16_t imageMode, const Fixed* channels, Fixed dx, Fixed dy,
                Fixed exponent, Fixed bright, const Fixed light[3], Fixed* out) {
  const Fixed q = std::max<Fixed>(FixedSqrt(FixedMul(dx, dx) + FixedMul(dy, dy) + kFixedOne), 4);
  // The normal is (-dx, -dy, 1) / q.
  const Fixed d = FixedDiv(light[2] - FixedMul(light[0], dx) - FixedMul(light[1], dy), q);
  Fixed lit[4] = {0, 0, 0, 0};
  Fixed spec = 0;
  if (d >= 0) {
    for (int32_t i = 0; i < planes; ++i) lit[i] = FixedMul(d, channels[i]);
    const Fixed r = FixedDiv(2 * d, q) - light[2];
    if (r > 0) spec = r > kFixedOne ? bright : FixedMul(bright, FixedPowInt(r, exponent));
  }

  if (imageMode == kModeCMYK && planes == 4) {
    // The highlight goes into black; what black cannot take whitens the
    // inks, no further than the lightest of them can go.
    const Fixed black = lit[3] + spec;
    if (black <= kFixedOne) {
      out[0] = lit[0], out[1] = lit[1], out[2] = lit[2], out[3] = black;
    } else {
      const Fixed room = kFixedOne - std::max({lit[0], lit[1], lit[2]});
      const Fixed excess = std::max(0, std::min(black - kFixedOne, room));
      out[0] = lit[0] + excess, out[1] = lit[1] + excess, out[2] = lit[2] + excess;
      out[3] = kFixedOne;
    }
    return;
  }
  for (int32_t i = 0; i < planes; ++i) out[i] = lit[i] + spec;
  if (imageMode == kModeLab && planes >= 3) {
    out[1] = kNeutral;
    out[2] = kNeutral;
  }
}

int16_t EmbossBand(const HeightMap* field, const ReliefBand& band, const ReliefNumbers& numbers,
                   ReliefProgress* progress) {
  const int32_t width = field->width;
  const int32_t height = field->height;
  const int32_t planes = band.planes;
  const int32_t columns = std::min(band.columns, width);
  Fixed channels[4];
  Fixed lit[4];
  for (int32_t r = 0; r < band.rows; ++r) {
    const int32_t y = band.fieldTop + r;
    const Fixed* here = field->rows[y];
    // Rows run down the picture and the light's y up it: the row above is
    // "after".
    const Fixed* above = field->rows[std::max(y - 1, 0)];
    const Fixed* below = field->rows[std::min(y + 1, height - 1)];
    const uint8_t* src = band.source + static_cast<intptr_t>(r) * band.sourceRowBytes;
    uint8_t* dst = band.target + static_cast<intptr_t>(r) * band.targetRowBytes;
    for (int32_t x = 0; x < columns; ++x, src += planes, dst += planes) {
      const Fixed dx = Difference(x > 0 ? here[x - 1] : 0, here[x],
                                  x + 1 < width ? here[x + 1] : 0, x, width);
      const Fixed dy = Difference(below[x], here[x], above[x], height - 1 - y, height);
      if (dx == 0 && dy == 0) {
        std::memcpy(dst, src, static_cast<size_t>(planes));
        continue;
      }
      for (int32_t i = 0; i < planes; ++i) channels[i] = src[i] << 8;
      ShadePixel(planes, band.imageMode, channels, dx, dy, numbers.exponent, numbers.bright,
                 numbers.light, lit);
      const Fixed m = FixedMul(dx, dx) + FixedMul(dy, dy);
      if (m >= kNearlyFlat) {
        for (int32_t i = 0; i < planes; ++i)
          dst[i] = static_cast<uint8_t>(std::clamp(lit[i], 0, kTopChannel) >> 8);
      } else {
        const Fixed t = (m << 16) / kNearlyFlat;
        for (int32_t i = 0; i < planes; ++i) {
          const Fixed mixed = FixedMul(channels[i], kFixedOne - t) + FixedMul(lit[i], t);
          dst[i] = static_cast<uint8_t>(std::clamp(mixed, 0, kTopChannel) >> 8);
        }
      }
    }
    if (ReliefTick(progress)) return kErrUserCancelled;
  }
  return kNoError;
}

}  // namespace fancy
