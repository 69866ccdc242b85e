#include "imaging/error_diffusion.h"

#include <algorithm>
#include <cstring>

#include "imaging/palette_lookup.h"

namespace fancy {

int DiffusionStart(Diffusion* d, int32_t width, int32_t channels) {
  d->width = width;
  d->channels = channels;
  return d->errors.Allocate(static_cast<size_t>(width + 4) * channels) ? 1 : 0;
}

namespace {

// The diffused value of level p with the error e carried along the row and
// the three errors above, truncated toward zero.
inline int32_t Diffused(int32_t p, int32_t e, const int16_t* above, int32_t stride) {
  return (p * 16 + above[0] + above[stride] * 5 + e * 7 + above[2 * stride] * 3) / 16;
}

}  // namespace

void DiffuseRowToBits(Diffusion* d, const uint8_t* src, int32_t count, uint8_t* out, int32_t bit) {
  int16_t* slots = d->errors.data();
  int32_t e = 0;
  for (int32_t x = 0; x < count; ++x) {
    int32_t p = d->channels == 1 ? src[x]
                                 : (3 * src[3 * x + 2] + src[3 * x] + 6 * src[3 * x + 1]) / 10;
    int32_t v = Diffused(p, e, slots + x, 1);
    slots[x] = static_cast<int16_t>(e);
    int64_t at = int64_t{bit} + x;
    uint8_t mask = static_cast<uint8_t>(0x80 >> (at & 7));
    if (v < 128) {
      e = v;
      out[at >> 3] &= static_cast<uint8_t>(~mask);
    } else {
      e = v - 255;
      out[at >> 3] |= mask;
    }
  }
  slots[count] = static_cast<int16_t>(e);
}

void DiffuseRowToIndices(Diffusion* d, const uint8_t* src, int32_t count, Palette* palette,
                         uint8_t* out) {
  int16_t* slots = d->errors.data();
  const PaletteEntry* entries = PaletteEntries(palette);
  if (d->channels == 1) {
    int32_t e = 0;
    for (int32_t x = 0; x < count; ++x) {
      int32_t v = std::clamp(Diffused(src[x], e, slots + x, 1), 0, 255);
      slots[x] = static_cast<int16_t>(e);
      int32_t index = PaletteNearestIndex(palette, v, v, v);
      const PaletteEntry& p = entries[index];
      e = v - (3 * p.red + p.blue + 6 * p.green) / 10;
      out[x] = static_cast<uint8_t>(index);
    }
    slots[count] = static_cast<int16_t>(e);
    return;
  }
  int32_t e[3] = {0, 0, 0};
  for (int32_t x = 0; x < count; ++x) {
    int32_t v[3];
    for (int k = 0; k < 3; ++k) {
      v[k] = std::clamp(Diffused(src[3 * x + k], e[k], slots + 3 * x + k, 3), 0, 255);
      slots[3 * x + k] = static_cast<int16_t>(e[k]);
    }
    int32_t index = PaletteNearestIndex(palette, v[2], v[1], v[0]);
    const PaletteEntry& p = entries[index];
    e[0] = v[0] - p.blue;
    e[1] = v[1] - p.green;
    e[2] = v[2] - p.red;
    out[x] = static_cast<uint8_t>(index);
  }
  for (int k = 0; k < 3; ++k) slots[3 * count + k] = static_cast<int16_t>(e[k]);
}

}  // namespace fancy
