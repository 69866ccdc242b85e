#include "imaging/conversion_table.h"

#include "imaging/image_types.h"

namespace fancy {

namespace {

constexpr int32_t kOrder[9] = {kImageBGR24, kImageGrey8, kImageCMYK32, kImageBilevel, kImageIndexed,
                               kImageLab24, kImageRaw48, kImageRGB48, kImageGrey16};

int32_t BitsOf(int32_t type) { return type == kImageIndexed ? 8 : ImageTypeBits(type); }

// Sources whose own colours go to grey in one step.
bool GreyReadable(int32_t s) {
  return s == kImageBGR24 || s == kImageGrey8 || s == kImageCMYK32 || s == kImageBilevel ||
         s == kImageIndexed;
}

ConversionCell Build(int32_t s, int32_t d) {
  ConversionCell c{};
  c.direct = RowConverterFor(s, d);
  c.destBits = BitsOf(d);
  // As a rule the merge runs in BGR, with the destination read into it and
  // written back.
  c.workingType = kImageBGR24;
  c.readSource = RowConverterToBGR(s);
  c.readDest = RowConverterToBGR(d);
  c.writeDest = RowConverterFromBGR(d);
  switch (d) {
    case kImageBGR24:
      c.readDest = c.writeDest = nullptr;
      break;
    case kImageGrey8:
      if (GreyReadable(s)) {
        c.workingType = kImageGrey8;
        c.readSource = RowConverterToGrey(s);
        c.readDest = c.writeDest = nullptr;
      }
      break;
    case kImageCMYK32:
      if (s == kImageGrey8) {
        c.workingType = kImageCMYK32;
        c.readSource = &RowGreyToCMYK;
        c.readDest = c.writeDest = nullptr;
      }
      break;
    case kImageBilevel:
      if (GreyReadable(s)) {
        c.workingType = kImageGrey8;
        c.readSource = RowConverterToGrey(s);
        c.readDest = &RowBitsToGrey;
        c.writeDest = &RowGreyToBits;
      }
      break;
    case kImageRaw48:
      c.readDest = &RowLeaveAlone;  // raw channels are not read
      break;
    default:
      break;
  }
  c.workingBits = ImageTypeBits(c.workingType);
  return c;
}

struct Table {
  ConversionCell cells[9][9];
  Table() {
    for (int i = 0; i < 9; ++i)
      for (int j = 0; j < 9; ++j) cells[i][j] = Build(kOrder[i], kOrder[j]);
  }
};

}  // namespace

int32_t ConversionIndex(int32_t type) {
  if (type == kImageMask) type = kImageGrey8;
  for (int32_t i = 0; i < 9; ++i)
    if (kOrder[i] == type) return i;
  return -1;
}

const ConversionCell* FindConversion(int32_t sourceType, int32_t destType) {
  static const Table table;
  int32_t i = ConversionIndex(sourceType), j = ConversionIndex(destType);
  if (i < 0 || j < 0) return nullptr;
  return &table.cells[i][j];
}

}  // namespace fancy
