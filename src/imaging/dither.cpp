#include "imaging/dither.h"

#include <cmath>
#include <cstdlib>

#include "imaging/bit_copy.h"
#include "imaging/palette_lookup.h"

namespace fancy {

namespace {

constexpr uint8_t kMode4[16] = {15, 4, 8, 13, 15, 4, 8, 13, 10, 1, 2, 7, 10, 1, 2, 7};

constexpr uint8_t kMode5[64] = {
    63, 58, 50, 40, 41, 51, 59, 60, 63, 58, 50, 40, 41, 51, 59, 60,
    57, 33, 27, 18, 19, 28, 34, 52, 57, 33, 27, 18, 19, 28, 34, 52,
    49, 26, 13, 11, 12, 15, 29, 44, 49, 26, 13, 11, 12, 15, 29, 44,
    39, 17, 4,  3,  2,  9,  20, 42, 39, 17, 4,  3,  2,  9,  20, 42};

constexpr uint8_t kMode6[64] = {
    0,  32, 8,  40, 2,  34, 10, 42, 48, 16, 56, 24, 50, 18, 58, 26,
    12, 44, 4,  36, 14, 46, 6,  38, 60, 28, 52, 20, 62, 30, 54, 22,
    3,  35, 11, 43, 1,  33, 9,  41, 51, 19, 59, 27, 49, 17, 57, 25,
    15, 47, 7,  39, 13, 45, 5,  37, 63, 31, 55, 23, 61, 29, 53, 21};

const DitherMatrix kMatrix4{8, 16, kMode4, 16};
const DitherMatrix kMatrix5{16, 64, kMode5, 64};
const DitherMatrix kMatrix6{8, 63, kMode6, 64};

constexpr int32_t kStartBound = 0x30000;

int32_t Distance(const PaletteEntry& a, int32_t r, int32_t g, int32_t b) {
  int32_t dr = a.red - r, dg = a.green - g, db = a.blue - b;
  return dr * dr + dg * dg + db * db;
}

// The cube level of v (0 to 5) pushed up by the threshold m of a matrix of
// `levels`.
inline int32_t CubeLevel(int32_t v, int32_t m, int32_t levels) {
  int32_t level = v / 51;
  if (level < 5 && (v - level * 51) * levels > m * 51) ++level;
  return level;
}

void FillNoDitherCube(uint8_t* t, const Palette* palette) {
  for (int32_t v = 0; v < 256; ++v) {
    int32_t level = v / 43;
    t[v] = static_cast<uint8_t>(level * 36);
    t[256 + v] = static_cast<uint8_t>(level * 6);
    t[512 + v] = static_cast<uint8_t>(level);
    const PaletteEntry* e = PaletteEntries(palette);
    int32_t best = kStartBound, index = 0;
    for (int32_t i = 0; i < palette->count; ++i) {
      if (e[i].red != e[i].green || e[i].green != e[i].blue) continue;
      int32_t d = Distance(e[i], v, v, v);
      if (d < best) {
        best = d;
        index = i;
      }
    }
    t[768 + v] = static_cast<uint8_t>(index);
  }
}

void FillOrderedCube(uint8_t* t) {
  for (int32_t row = 0; row < 8; ++row)
    for (int32_t column = 0; column < 8; ++column)
      for (int32_t v = 0; v < 256; ++v)
        t[(row * 8 + column) * 256 + v] =
            static_cast<uint8_t>(CubeLevel(v, kMode6[row * 8 + column], 63));
}

void FillOrderedTrue(uint8_t* t) {
  for (int32_t row = 0; row < 8; ++row)
    for (int32_t column = 0; column < 8; ++column)
      for (int32_t v = 0; v < 256; ++v) {
        int32_t out = v & 248;
        if ((v & 7) * 63 > kMode6[row * 8 + column] * 8) out = out + 8 > 255 ? 255 : out + 8;
        t[(row * 8 + column) * 256 + v] = static_cast<uint8_t>(out);
      }
}

// For each entry the nearest other entry; an entry with no other keeps itself.
void FillNearestOther(uint8_t* t, const Palette* palette) {
  const PaletteEntry* e = PaletteEntries(palette);
  int32_t count = palette->count < 256 ? palette->count : 256;
  for (int32_t i = 0; i < count; ++i) {
    int32_t best = kStartBound, index = i;
    for (int32_t j = 0; j < count; ++j) {
      int32_t d = Distance(e[j], e[i].red, e[i].green, e[i].blue);
      if (d == 0) continue;
      if (d < best) {
        best = d;
        index = j;
      }
    }
    t[i] = static_cast<uint8_t>(index);
  }
}

}  // namespace

const DitherMatrix* DitherFixedMatrix(int32_t mode) {
  switch (mode) {
    case 4: return &kMatrix4;
    case 5: return &kMatrix5;
    case 6: return &kMatrix6;
    default: return nullptr;
  }
}

Dither* DitherCreate(int32_t mode, const Palette* palette, int32_t form) {
  if (mode < 1 || mode > 6) return nullptr;
  if (form == kDitherFormTrue && mode == 6) mode = 1;
  auto* d = static_cast<Dither*>(std::calloc(1, sizeof(Dither)));
  if (!d) return nullptr;
  d->mode = mode;
  d->form = form;
  d->palette = palette;
  d->matrix = DitherFixedMatrix(mode == 3 ? 6 : mode);
  bool cube = palette && palette->kind == kPaletteCube;
  int32_t bytes = 0;
  if ((mode == 1 || mode == 2) && form == kDitherFormPalette && cube) bytes = 1024;
  else if (mode == 3 && form == kDitherFormPalette) bytes = cube ? 16384 : palette ? 256 : 0;
  else if (mode == 3 && form == kDitherFormTrue) bytes = 16384;
  if (bytes) {
    d->table = static_cast<uint8_t*>(std::calloc(static_cast<size_t>(bytes), 1));
    if (!d->table) {
      std::free(d);
      return nullptr;
    }
    d->tableBytes = bytes;
    if (bytes == 1024) FillNoDitherCube(d->table, palette);
    else if (mode == 3 && form == kDitherFormTrue) FillOrderedTrue(d->table);
    else if (cube) FillOrderedCube(d->table);
    else FillNearestOther(d->table, palette);
  }
  return d;
}

void DitherFree(Dither* dither) {
  if (!dither) return;
  std::free(dither->table);
  std::free(dither);
}

void DitherRowToBits(const DitherMatrix* matrix, const uint8_t* grey, int32_t count, int32_t x,
                     int32_t y, uint8_t* out, int32_t bit) {
  for (int32_t i = 0; i < count; ++i) {
    int32_t v = grey[i];
    int32_t m = DitherMatrixAt(matrix, x + i, y);
    bool set = v == 255 || v * matrix->levels > m * 255;
    int64_t at = int64_t{bit} + i;
    uint8_t mask = static_cast<uint8_t>(0x80 >> (at & 7));
    if (set) out[at >> 3] |= mask;
    else out[at >> 3] &= static_cast<uint8_t>(~mask);
  }
}

int DitherRowToIndices(const Dither* dither, Palette* palette, const uint8_t* bgr, int32_t count,
                       int32_t x, int32_t y, uint8_t* out) {
  if (!dither || !palette || !dither->matrix) return 0;
  const DitherMatrix* matrix = dither->matrix;
  const bool cube = palette->kind == kPaletteCube && palette->count >= 216;
  if (cube) {
    const bool table = dither->mode == 3 && dither->table && dither->tableBytes == 16384;
    for (int32_t i = 0; i < count; ++i, bgr += 3) {
      int32_t levels[3];
      if (table) {
        const uint8_t* t = dither->table + ((y & 7) * 8 + ((x + i) & 7)) * 256;
        for (int k = 0; k < 3; ++k) levels[k] = t[bgr[k]];
      } else {
        int32_t m = DitherMatrixAt(matrix, x + i, y);
        for (int k = 0; k < 3; ++k) levels[k] = CubeLevel(bgr[k], m, matrix->levels);
      }
      out[i] = static_cast<uint8_t>(levels[2] * 36 + levels[1] * 6 + levels[0]);
    }
    return 1;
  }
  const PaletteEntry* e = PaletteEntries(palette);
  for (int32_t i = 0; i < count; ++i, bgr += 3) {
    int32_t r = bgr[2], g = bgr[1], b = bgr[0];
    int32_t near = PaletteNearestIndex(palette, r, g, b);
    int32_t other = dither->table && near < dither->tableBytes ? dither->table[near] : near;
    int32_t pick = near;
    if (other != near && other < palette->count) {
      // The share of the way from the nearest entry to the other one.
      double a = std::sqrt(static_cast<double>(Distance(e[near], r, g, b)));
      double c = std::sqrt(static_cast<double>(Distance(e[other], r, g, b)));
      double share = a + c > 0 ? a / (a + c) : 0.0;
      int32_t m = DitherMatrixAt(matrix, x + i, y);
      if (share * matrix->levels > m + 0.5) pick = other;
    }
    out[i] = static_cast<uint8_t>(pick);
  }
  return 1;
}

}  // namespace fancy
