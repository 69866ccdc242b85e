// Kernel choice: the merge row for the types and the mode, directly or in a
// working type through the conversion table, or one channel into another
// under a ChannelSelector.
#include "imaging/composite.h"
#include "imaging/composite_state.h"
#include "imaging/image_rows.h"

namespace fancy {

namespace {

bool Wide(int32_t type) { return type == kImageRGB48 || type == kImageGrey16; }

// The byte offset of a channel within a pixel of the type, or -1 when the
// channel lies past the pixel's bytes.
int32_t ChannelOffset(const Image* image, int32_t channel) {
  int32_t bytes = ImagePixelBytes(image);
  int32_t step = Wide(image->type) ? 2 : 1;
  int32_t offset = channel * step;
  if (bytes == 0 || offset + step > bytes) return -1;
  return offset;
}

bool RowUsable(const MergeRow* row, bool coverage) {
  if (!row || !row->kernels[kColumnPlain]) return false;
  if (coverage)
    for (int k = 1; k < kMergeColumnCount; ++k)
      if (!row->kernels[k]) return false;
  return true;
}

}  // namespace

int ChooseKernels(CompositeState* s) {
  const Image* src = s->src;
  const Image* dst = s->dst;
  s->srcBytes = ImagePixelBytes(src);
  s->dstBytes = ImagePixelBytes(dst);

  if (s->selector) {
    int32_t dc = static_cast<int32_t>((s->modeArg >> kCompositeDestChannelShift) & 15);
    int32_t sc = static_cast<int32_t>((s->modeArg >> kCompositeSourceChannelShift) & 15);
    s->dstChannelOffset = ChannelOffset(dst, dc > 0 ? dc - 1 : 0);
    s->srcChannelOffset = ChannelOffset(src, sc > 0 ? sc - 1 : 0);
    if (s->dstChannelOffset < 0 || s->srcChannelOffset < 0) return 0;
    s->row = FindChannelMergeRow(src->type, s->mode);
    if (!RowUsable(s->row, s->anyCoverage)) return 0;
    s->channelContext = ChannelMergeContext{s->srcBytes, s->dstBytes};
    s->convert = false;
    s->workingType = src->type == kImageIndexed ? kImageGrey8 : src->type;
    s->workingBits = src->bitsPerPixel;
    s->workingBytes = s->srcBytes;
    return 1;
  }

  bool convert = true;
  if (SameTypeFamily(src->type, dst->type)) {
    convert = false;
    if (src->type == kImageIndexed)
      convert = (s->scaling && s->filter == kFilterSmooth) || s->anyCoverage ||
                !PaletteSame(src->palette, dst->palette);
    if (!convert) {
      s->row = FindMergeRow(dst->type, dst->bitsPerPixel, s->mode);
      convert = !RowUsable(s->row, s->anyCoverage);
    }
  }
  if (convert) {
    s->conversion = FindConversion(src->type, dst->type);
    if (!s->conversion) return 0;
    s->workingType = s->conversion->workingType;
    s->workingBits = s->conversion->workingBits;
    s->row = FindMergeRow(s->workingType, s->workingBits, s->mode);
    if (!RowUsable(s->row, s->anyCoverage)) return 0;
  } else {
    s->workingType = src->type == kImageIndexed ? kImageGrey8 : src->type;
    s->workingBits = src->type == kImageIndexed ? 8 : src->bitsPerPixel;
  }
  s->convert = convert;
  s->workingBytes = s->workingBits >= 8 ? s->workingBits / 8 : 0;
  return 1;
}

}  // namespace fancy
