// The merge kernels: row functions that merge a source row (or one constant
// colour) into a destination row by a merge mode, under optional coverage.
// They are found through tables by ImageType, MergeMode and coverage form;
// nothing here reads an Image.
#pragma once

#include <cstdint>

namespace fancy {

enum MergeMode : int32_t {
  kMergeNormal = 0,
  kMergeAnd = 1,
  kMergeOr = 2,
  kMergeXor = 3,
  kMergeAndNot = 4,
  kMergeInvertDest = 5,
  kMergeInvertSource = 6,
  kMergeAddClamp = 7,
  kMergeSubtractInverse = 8,
  kMergeMultiply = 9,
  kMergeDivide = 10,
  kMergeIfLighter = 11,
  kMergeIfDarker = 12,
  kMergeTexturize = 13,
  kMergeColorMerge = 14,
  kMergeHueMerge = 15,
  kMergeSaturationMerge = 16,
  kMergeValueMerge = 17,
  kMergeChannel0 = 18,
  kMergeChannel1 = 19,
  kMergeChannel2 = 20,
  kMergeChannel3 = 21,
  kMergeUnused22 = 22,  // computes nothing in any type
  kMergeUnused23 = 23,
  kMergeDifference = 24,
  kMergeSubtractClamp = 25,
  kMergeMultiplyInverse = 26,
  kMergeBehindMerge = 27,
  kMergeScreen = 28,
  kMergeOverlay = 29,
  kMergeSoftLight = 30,
  kMergeHardLight = 31,
  kMergeModeCount = 32,
};

// The six coverage forms, the columns of a MergeRow.
enum MergeColumn : int32_t {
  kColumnPlain = 0,             // no mask, opacity 255: no coverage argument
  kColumnMask = 1,              // m = mask1[i]
  kColumnOpacity = 2,           // m = opacity
  kColumnTwoMasks = 3,          // m = T[mask1[i] x mask2[i]]
  kColumnMaskOpacity = 4,       // m = T[mask1[i] x opacity]
  kColumnTwoMasksOpacity = 5,   // m = T[T[mask1[i] x mask2[i]] x opacity]
  kMergeColumnCount = 6,
};

// Coverage of columns 1 to 5. The mask pointers run in step with the pixels:
// mask1[i] is the coverage byte of pixel i.
struct Coverage {
  const uint8_t* mask1;
  const uint8_t* mask2;
  uint8_t opacity;
};

// Image family: merges `count` source pixels into the destination. Colour
// family: merges the colour of the ColorFillContext. The result is ignored.
// A count of 0 (or less) does nothing; source and destination may be the
// same row. Kernels check nothing else: the caller hands rows long enough.
using MergeKernel = int (*)(const void* context, int32_t count, uint8_t* dst, const uint8_t* src,
                            const Coverage* coverage);
using ColorMergeKernel = int (*)(const void* context, int32_t count, uint8_t* dst,
                                 const Coverage* coverage);

// Kernel context of type 6 (1-bit): the bit of the first byte where the
// source row starts (0 is the most significant bit), then that of the
// destination. A null context means both 0.
struct BitMergeContext {
  int32_t sourceBit;
  int32_t destBit;
};

// Kernel context of the channel tables: bytes from one pixel to the next.
struct ChannelMergeContext {
  int32_t sourceStride;
  int32_t destStride;
};

// Colour family context: the colour as a pixel of the image's type (for type
// 6 the bit in pixel[0]), and for type 6 the destination's starting bit.
struct ColorFillContext {
  uint8_t pixel[8];
  int32_t destBit;
};

// A cell is a kernel, the no-op kernel (test by identity with NoOpMergeKernel
// or NoOpColorMergeKernel), or null: a null first cell means the type can't
// run the mode itself.
struct MergeRow {
  MergeKernel kernels[kMergeColumnCount];
};
struct ColorMergeRow {
  ColorMergeKernel kernels[kMergeColumnCount];
};

int NoOpMergeKernel(const void* context, int32_t count, uint8_t* dst, const uint8_t* src,
                    const Coverage* coverage);
int NoOpColorMergeKernel(const void* context, int32_t count, uint8_t* dst,
                         const Coverage* coverage);

// The row of a mode (0 to 31) for an image type and depth, or null: type 13,
// type 10 below 8 bits, unknown types and modes outside 0..31 have none.
// Types 5 and 99 share their rows.
const MergeRow* FindMergeRow(int32_t type, int32_t bits, int32_t mode);
const ColorMergeRow* FindColorMergeRow(int32_t type, int32_t bits, int32_t mode);

// The channel tables (image family only): one channel of a source merges into
// one channel of the destination, pixels `sourceStride` and `destStride`
// bytes apart. With a source of type 12 or 14 the source channel is 16 bits
// and its high byte is merged.
const MergeRow* FindChannelMergeRow(int32_t sourceType, int32_t mode);

// --- shared arithmetic ----------------------------------------------------------

// Start and stop of the imaging layer, counted: the first start reads the
// processor and builds the tables, the last stop clears the count.
int ImagingInit();
void ImagingShutdown();

struct ImagingGlobals {
  int32_t initCount;
  int32_t cpuClass;      // 486, 586 or 686; kept, but selects nothing
  uint32_t cpuFeatures;  // feature bits 0x8081f9 of the processor, or 0x80000000
  // DivTable T: T[x] is about x / 255 for a product of two bytes or a blend
  // sum x (0 to 65025); entries past 65025 are 0.
  uint8_t divTable[65536];
  uint8_t squareTable[256];  // S[i] = T[i x i]
  uint8_t sqrtTable[256];    // Q[i] = truncate(sqrt(i / 255) x 255)
};
extern ImagingGlobals gImaging;

inline const uint8_t* DivTable() { return gImaging.divTable; }
inline const uint8_t* SquareTable() { return gImaging.squareTable; }
inline const uint8_t* SqrtTable() { return gImaging.sqrtTable; }
inline int32_t CpuClass() { return gImaging.cpuClass; }
inline uint32_t CpuFeatures() { return gImaging.cpuFeatures; }

enum : uint32_t { kCpuFeatureMultimedia = 0x800000 };

// The class and feature word for what the processor identification reports:
// `identified` false for a processor without it; `vendor` its 12 characters;
// `family` and `featureBits` from its version and feature words.
void ClassifyProcessor(bool identified, const char* vendor, uint32_t family,
                       uint32_t featureBits, int32_t* cpuClass, uint32_t* cpuFeatures);

// DivTable's value computed by its rule rather than read: equal to
// DivTable()[x] for x from 0 to 65025.
uint32_t DivByRule(uint32_t x);

// The division of a 24-bit blend sum w = a x m + b x (255 - m) of 16-bit
// values a, b by 255.
uint32_t WideDivide(uint32_t w);

// Hue (0 to 359), saturation and value (0 to 255) of a pixel, and back.
struct HsvColor {
  int32_t hue;
  int32_t saturation;
  int32_t value;
};
HsvColor RgbToHsv(uint32_t red, uint32_t green, uint32_t blue);
// Writes blue, green, red to bgr[0..2].
void HsvToBgr(int32_t hue, int32_t saturation, int32_t value, uint8_t* bgr);

}  // namespace fancy
