// Dither objects: what reducing colour to a few levels needs for one mode,
// one palette and one output form. Modes: 1 none, 2 error diffusion, 3 the
// 8 x 8 ordered matrix through tables, 4 to 6 fixed threshold matrices.
#pragma once

#include <cstdint>

#include "imaging/palette.h"

namespace fancy {

// A fixed threshold matrix: `size` columns, count / size rows, thresholds
// out of `levels`.
struct DitherMatrix {
  int32_t size;
  int32_t levels;
  const uint8_t* bytes;
  int32_t count;
};

// The matrix of mode 4, 5 or 6; null for other modes.
const DitherMatrix* DitherFixedMatrix(int32_t mode);

inline uint8_t DitherMatrixAt(const DitherMatrix* m, int32_t x, int32_t y) {
  int32_t rows = m->count / m->size;
  uint32_t column = static_cast<uint32_t>(x) % static_cast<uint32_t>(m->size);
  uint32_t row = static_cast<uint32_t>(y) % static_cast<uint32_t>(rows);
  return m->bytes[row * m->size + column];
}

enum DitherForm : int32_t {
  kDitherFormBits = 0,     // a 1-bit output
  kDitherFormPalette = 1,  // 4 or 8 bits through a palette
  kDitherFormTrue = 2,     // 15 bits or more a pixel
};

struct Dither {
  int32_t mode;
  int32_t form;
  const Palette* palette;
  uint8_t* table;  // owned; null when the mode and form keep none
  int32_t tableBytes;
  const DitherMatrix* matrix;
};

// The object for (mode, palette, form), with the table the pair calls for:
//   modes 1, 2 with a cube palette (kind 5): 1,024 bytes, cube level v / 43
//     times 36, 6 and 1 for each channel value, then for each grey the
//     nearest grey entry;
//   mode 3 with a cube palette: [row 8][column 8][value 256] cube levels by
//     the ordered matrix; with another palette: each entry's nearest other
//     entry; in the true-colour form: [8][8][256] values to multiples of 8;
//   modes 4 to 6: the fixed matrix (mode 6 in the true-colour form is mode 1).
// Null for a mode outside 1 to 6 or when memory fails.
Dither* DitherCreate(int32_t mode, const Palette* palette, int32_t form);
void DitherFree(Dither* dither);

// One row of greys to bits by a threshold matrix aligned on the image's
// (x, y): a bit is set at 255 and where v x levels > threshold x 255.
// `bit` is the bit of out's first byte where the row starts; other bits keep
// their values.
void DitherRowToBits(const DitherMatrix* matrix, const uint8_t* grey, int32_t count, int32_t x,
                     int32_t y, uint8_t* out, int32_t bit);

// One row of BGR pixels to palette indices by the dither's ordered rule: a
// cube palette picks each channel's level up or down by the matrix; another
// palette chooses, by the matrix, between the nearest entry and that entry's
// nearest other entry in proportion to their distances. Answers 0 for a
// dither without an ordered rule.
int DitherRowToIndices(const Dither* dither, Palette* palette, const uint8_t* bgr, int32_t count,
                       int32_t x, int32_t y, uint8_t* out);

}  // namespace fancy
