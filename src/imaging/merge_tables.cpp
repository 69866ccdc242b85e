// Finding a kernel row by image type, depth and mode; the no-op kernels.
#include "imaging/image_types.h"
#include "imaging/merge_kernels.h"

namespace fancy {

int NoOpMergeKernel(const void*, int32_t, uint8_t*, const uint8_t*, const Coverage*) { return 1; }
int NoOpColorMergeKernel(const void*, int32_t, uint8_t*, const Coverage*) { return 1; }

namespace {

template <bool ColorFamily>
const merge::Table<ColorFamily>* TableFor(int32_t type, int32_t bits) {
  using namespace merge;
  switch (type) {
    case kImageBGR24:
      if constexpr (ColorFamily) return &kColorRowsBGR; else return &kRowsBGR;
    case kImageCMYK32:
      if constexpr (ColorFamily) return &kColorRowsCMYK; else return &kRowsCMYK;
    case kImageGrey8:
    case kImageMask:
      if constexpr (ColorFamily) return &kColorRowsGrey; else return &kRowsGrey;
    case kImageBilevel:
      if constexpr (ColorFamily) return &kColorRowsBits; else return &kRowsBits;
    case kImageIndexed:
      if (bits != 8) return nullptr;
      if constexpr (ColorFamily) return &kColorRowsIndexed; else return &kRowsIndexed;
    case kImageLab24:
      if constexpr (ColorFamily) return &kColorRowsLab; else return &kRowsLab;
    case kImageRGB48:
      if constexpr (ColorFamily) return &kColorRowsRGB48; else return &kRowsRGB48;
    case kImageGrey16:
      if constexpr (ColorFamily) return &kColorRowsGrey16; else return &kRowsGrey16;
    default:
      return nullptr;
  }
}

}  // namespace

const MergeRow* FindMergeRow(int32_t type, int32_t bits, int32_t mode) {
  if (mode < 0 || mode >= kMergeModeCount) return nullptr;
  const auto* table = TableFor<false>(type, bits);
  return table ? &(*table)[mode] : nullptr;
}

const ColorMergeRow* FindColorMergeRow(int32_t type, int32_t bits, int32_t mode) {
  if (mode < 0 || mode >= kMergeModeCount) return nullptr;
  const auto* table = TableFor<true>(type, bits);
  return table ? &(*table)[mode] : nullptr;
}

const MergeRow* FindChannelMergeRow(int32_t sourceType, int32_t mode) {
  if (mode < 0 || mode >= kMergeModeCount) return nullptr;
  bool wide = sourceType == kImageRGB48 || sourceType == kImageGrey16;
  return wide ? &merge::kChannelRows16[mode] : &merge::kChannelRows8[mode];
}

}  // namespace fancy
