#include "imaging/row_convert.h"

#include <cstring>

#include "imaging/bit_copy.h"
#include "imaging/image_types.h"
#include "imaging/palette_lookup.h"

namespace fancy {

namespace {

inline bool BitAt(const uint8_t* row, int64_t bit) { return (row[bit >> 3] >> (7 - (bit & 7))) & 1; }

// Writes count bits from `value(i)` at bit `first` of dst; the bits around
// the run keep their values.
template <class Value>
void WriteBits(uint8_t* dst, int64_t first, int32_t count, Value value) {
  int64_t bit = first;
  int32_t i = 0;
  while (i < count) {
    uint8_t* byte = dst + (bit >> 3);
    int32_t b = static_cast<int32_t>(bit & 7);
    int32_t n = count - i < 8 - b ? count - i : 8 - b;
    uint8_t bits = 0;
    for (int32_t k = 0; k < n; ++k)
      if (value(i + k)) bits |= static_cast<uint8_t>(0x80 >> (b + k));
    uint8_t mask = BitRunMask(b, n);
    *byte = static_cast<uint8_t>((*byte & ~mask) | bits);
    i += n;
    bit += n;
  }
}

int32_t IndexAt(const RowConvertContext* c, const uint8_t* src, int32_t i) {
  int32_t depth = c->sourceDepth ? c->sourceDepth : 8;
  if (depth == 8) return src[i];
  int64_t bit = int64_t{c->sourceBit} + int64_t{i} * depth;
  if (depth == 1) return BitAt(src, bit);
  uint8_t byte = src[bit >> 3];
  return (bit & 7) ? (byte & 15) : (byte >> 4);
}

const PaletteEntry kBlack{0, 0, 0, 0};

const PaletteEntry& EntryOf(const RowConvertContext* c, int32_t index) {
  const Palette* p = c->sourcePalette;
  if (!p || index >= p->count) return kBlack;
  return PaletteEntries(p)[index];
}

}  // namespace

int RowBGRToGrey(const RowConvertContext*, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i, src += 3) dst[i] = GreyOfBGR(src[0], src[1], src[2]);
  return 1;
}

int RowGreyToBGR(const RowConvertContext*, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i, dst += 3) dst[0] = dst[1] = dst[2] = src[i];
  return 1;
}

int RowCMYKToGrey(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  if (!CLRPixelsCMYKToRGB(src, int64_t{count} * 4, c->scratch, int64_t{count} * 3, count, 1))
    return 0;
  return RowBGRToGrey(c, count, dst, c->scratch);
}

int RowGreyToCMYK(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  RowGreyToBGR(c, count, c->scratch, src);
  return CLRPixelsRGBToCMYK(c->scratch, int64_t{count} * 3, dst, int64_t{count} * 4, count, 1);
}

int RowBGRToCMYK(const RowConvertContext*, int32_t count, uint8_t* dst, const uint8_t* src) {
  return CLRPixelsRGBToCMYK(src, int64_t{count} * 3, dst, int64_t{count} * 4, count, 1);
}

int RowCMYKToBGR(const RowConvertContext*, int32_t count, uint8_t* dst, const uint8_t* src) {
  return CLRPixelsCMYKToRGB(src, int64_t{count} * 4, dst, int64_t{count} * 3, count, 1);
}

int RowBGRToLab(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  return CLRPixelsRGBToLab(src, int64_t{count} * 3, dst, int64_t{count} * 3, count, 1,
                           c->labScratch);
}

int RowLabToBGR(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  return CLRPixelsLabToRGB(src, int64_t{count} * 3, dst, int64_t{count} * 3, count, 1,
                           c->labScratch);
}

int RowBGRToBits(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  WriteBits(dst, c->destBit, count, [src](int32_t i) {
    const uint8_t* p = src + 3 * i;
    return 3u * p[2] + 6u * p[1] + p[0] > 1274u;
  });
  return 1;
}

int RowGreyToBits(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  WriteBits(dst, c->destBit, count, [src](int32_t i) { return src[i] > 127; });
  return 1;
}

int RowBitsToBGR(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i, dst += 3)
    dst[0] = dst[1] = dst[2] = BitAt(src, int64_t{c->sourceBit} + i) ? 255 : 0;
  return 1;
}

int RowBitsToGrey(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i) dst[i] = BitAt(src, int64_t{c->sourceBit} + i) ? 255 : 0;
  return 1;
}

int RowBGRToIndex(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i, src += 3)
    dst[i] = static_cast<uint8_t>(PaletteNearestIndex(c->destPalette, src[2], src[1], src[0]));
  return 1;
}

int RowIndexToBGR(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i, dst += 3) {
    const PaletteEntry& e = EntryOf(c, IndexAt(c, src, i));
    dst[0] = e.blue;
    dst[1] = e.green;
    dst[2] = e.red;
  }
  return 1;
}

int RowIndexToGrey(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i) {
    const PaletteEntry& e = EntryOf(c, IndexAt(c, src, i));
    dst[i] = GreyOfBGR(e.blue, e.green, e.red);
  }
  return 1;
}

int RowIndexToBits(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  WriteBits(dst, c->destBit, count, [c, src](int32_t i) {
    const PaletteEntry& e = EntryOf(c, IndexAt(c, src, i));
    return 3u * e.red + 6u * e.green + e.blue > 1274u;
  });
  return 1;
}

int RowBGRToRGB48(const RowConvertContext*, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < 3 * count; ++i) dst[2 * i] = dst[2 * i + 1] = src[i];
  return 1;
}

int RowRGB48ToBGR(const RowConvertContext*, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < 3 * count; ++i) dst[i] = src[2 * i + 1];
  return 1;
}

int RowBGRToGrey16(const RowConvertContext*, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i, src += 3) {
    uint32_t y = 3u * src[2] + 6u * src[1] + src[0];
    uint8_t g = static_cast<uint8_t>((y + y * 3276) >> 15);
    dst[2 * i] = dst[2 * i + 1] = g;
  }
  return 1;
}

int RowGrey16ToBGR(const RowConvertContext*, int32_t count, uint8_t* dst, const uint8_t* src) {
  for (int32_t i = 0; i < count; ++i, dst += 3) dst[0] = dst[1] = dst[2] = src[2 * i + 1];
  return 1;
}

int RowLeaveAlone(const RowConvertContext*, int32_t, uint8_t*, const uint8_t*) { return 1; }

RowConverter RowConverterToBGR(int32_t type) {
  switch (type) {
    case kImageCMYK32: return &RowCMYKToBGR;
    case kImageGrey8:
    case kImageMask: return &RowGreyToBGR;
    case kImageBilevel: return &RowBitsToBGR;
    case kImageIndexed: return &RowIndexToBGR;
    case kImageLab24: return &RowLabToBGR;
    case kImageRGB48: return &RowRGB48ToBGR;
    case kImageRaw48: return &RowLeaveAlone;
    case kImageGrey16: return &RowGrey16ToBGR;
    default: return nullptr;
  }
}

RowConverter RowConverterToGrey(int32_t type) {
  switch (type) {
    case kImageBGR24: return &RowBGRToGrey;
    case kImageCMYK32: return &RowCMYKToGrey;
    case kImageBilevel: return &RowBitsToGrey;
    case kImageIndexed: return &RowIndexToGrey;
    default: return nullptr;
  }
}

RowConverter RowConverterFromBGR(int32_t type) {
  switch (type) {
    case kImageCMYK32: return &RowBGRToCMYK;
    case kImageGrey8:
    case kImageMask: return &RowBGRToGrey;
    case kImageBilevel: return &RowBGRToBits;
    case kImageIndexed: return &RowBGRToIndex;
    case kImageLab24: return &RowBGRToLab;
    case kImageRGB48:
    case kImageRaw48: return &RowBGRToRGB48;
    case kImageGrey16: return &RowBGRToGrey16;
    default: return nullptr;
  }
}

int RowViaBGR(const RowConvertContext* c, int32_t count, uint8_t* dst, const uint8_t* src) {
  RowConverter in = RowConverterToBGR(c->sourceType);
  RowConverter out = RowConverterFromBGR(c->destType);
  RowConvertContext first = *c, second = *c;
  first.destBit = 0;
  second.sourceBit = 0;
  const uint8_t* bgr = src;
  if (in) {
    if (!in(&first, count, c->pairScratch, src)) return 0;
    bgr = c->pairScratch;
  }
  if (!out) {
    if (bgr != dst) std::memcpy(dst, bgr, static_cast<size_t>(count) * 3);
    return 1;
  }
  return out(&second, count, dst, bgr);
}

RowConverter RowConverterFor(int32_t s, int32_t d) {
  auto grey = [](int32_t t) { return t == kImageGrey8 || t == kImageMask; };
  if (s == d || (grey(s) && grey(d))) return nullptr;
  if (s == kImageRaw48) return &RowLeaveAlone;
  if (d == kImageBGR24) return RowConverterToBGR(s);
  if (s == kImageBGR24) return RowConverterFromBGR(d);
  if (grey(d) && RowConverterToGrey(s)) return RowConverterToGrey(s);
  if (d == kImageBilevel && grey(s)) return &RowGreyToBits;
  if (d == kImageBilevel && s == kImageIndexed) return &RowIndexToBits;
  if (d == kImageCMYK32 && grey(s)) return &RowGreyToCMYK;
  return &RowViaBGR;
}

}  // namespace fancy
