// Row converters: one row of pixels of one ImageType turned into another.
// They serve the compositor's working types (readSource, readDest,
// writeDest) and the whole-image conversion.
//
// Grey from colour is y = 3R + 6G + B, grey = (y x 3277) >> 15 (a division
// by 10 with a bias); a 1-bit pixel is set when 3R + 6G + B > 1274 or the
// grey is above 127, and a set bit reads back as 255 in every channel.
#pragma once

#include <cstdint>

#include "colour/clr_pixels.h"
#include "imaging/palette.h"

namespace fancy {

struct RowConvertContext {
  const Palette* sourcePalette;  // type 10 sources
  Palette* destPalette;          // type 10 targets: the nearest index is searched
  int32_t sourceBit;             // 1-bit (and sub-byte index) rows: bit of the first pixel
  int32_t destBit;
  int32_t sourceDepth;           // type 10 sources: 1, 4 or 8 bits (0 counts as 8)
  uint8_t* scratch;              // count x 4 bytes, for conversions in two steps
  uint8_t* pairScratch;          // count x 4 bytes more, for RowViaBGR
  CLRScratchRow* labScratch;     // Lab rows; null lets each call make its own
  int32_t sourceType;            // RowViaBGR only
  int32_t destType;
};

// Converts `count` pixels of src into dst. Rows must not overlap. Answers 1,
// or 0 when a colour conversion failed.
using RowConverter = int (*)(const RowConvertContext* context, int32_t count, uint8_t* dst,
                             const uint8_t* src);

// Colour rows are three bytes blue, green, red (type 1).
int RowBGRToGrey(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowGreyToBGR(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowCMYKToGrey(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowGreyToCMYK(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowBGRToCMYK(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowCMYKToBGR(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowBGRToLab(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowLabToBGR(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowBGRToBits(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowGreyToBits(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowBitsToBGR(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowBitsToGrey(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowBGRToIndex(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowIndexToBGR(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowIndexToGrey(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowIndexToBits(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowBGRToRGB48(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowRGB48ToBGR(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowBGRToGrey16(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
int RowGrey16ToBGR(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
// Type 13 rows are never converted: nothing is written.
int RowLeaveAlone(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);
// The context's sourceType to BGR in pairScratch, then on to its destType.
int RowViaBGR(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*);

// The converter of a type's row to BGR, to grey and from BGR; null where the
// row already is in that form or no converter exists (see ToGrey: types 1,
// 3, 6 and 10 only).
RowConverter RowConverterToBGR(int32_t type);
RowConverter RowConverterToGrey(int32_t type);
RowConverter RowConverterFromBGR(int32_t type);

// The direct converter from one type to another, null for the same type
// (5 and 99 count as one). Pairs without a one-step converter get RowViaBGR,
// which needs sourceType and destType in the context.
RowConverter RowConverterFor(int32_t sourceType, int32_t destType);

// Grey of one BGR pixel by the row rule.
inline uint8_t GreyOfBGR(uint32_t blue, uint32_t green, uint32_t red) {
  return static_cast<uint8_t>(((3 * red + 6 * green + blue) * 3277) >> 15);
}

}  // namespace fancy
