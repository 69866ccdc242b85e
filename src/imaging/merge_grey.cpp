// Merge tables of one-byte channels: types 5 and 99 (which share them, so a
// mask merges with a grey image), and the channel tables that merge one
// channel of a pixel into one channel of another.
#include "imaging/merge_kernels.h"
#include "imaging/merge_ops.h"

namespace fancy::merge {

namespace {

template <bool ColorFamily>
constexpr Table<ColorFamily> GreyTable() {
  using R = Family<ColorFamily>;
  return {{
      R::template Copy<OpNormal, 1>(),           // 0
      R::template Chan<OpAnd, 1>(),              // 1
      R::template Chan<OpOr, 1>(),               // 2
      R::template Chan<OpXor, 1>(),              // 3
      R::template Chan<OpAndNot, 1>(),           // 4
      R::template Chan<OpInvertDest, 1>(),       // 5
      R::template Chan<OpInvertSource, 1>(),     // 6
      R::template Chan<OpAddClamp, 1>(),         // 7
      R::template Chan<OpSubtractInverse, 1>(),  // 8
      R::template Chan<OpMultiply, 1>(),         // 9
      R::template Chan<OpDivide, 1>(),           // 10
      R::template Chan<OpLighter, 1>(),          // 11
      R::template Chan<OpDarker, 1>(),           // 12
      R::template Chan<OpMultiply, 1>(),         // 13: the level of one channel is itself
      R::NoOp(),                                 // 14
      R::NoOp(),                                 // 15
      R::NoOp(),                                 // 16
      R::NoOp(),                                 // 17
      R::template Copy<OpNormal, 1>(),           // 18
      R::NoOp(),                                 // 19
      R::NoOp(),                                 // 20
      R::NoOp(),                                 // 21
      R::NoOp(),                                 // 22
      R::NoOp(),                                 // 23
      R::template Chan<OpDifference, 1>(),       // 24
      R::template Chan<OpSubtractClamp, 1>(),    // 25
      R::template Chan<OpMultiplyInverse, 1>(),  // 26
      R::template Behind<OpBehind, 1>(),         // 27
      R::template Chan<OpScreen, 1>(),           // 28
      R::template Chan<OpOverlay, 1>(),          // 29
      R::template Chan<OpSoftLight, 1>(),        // 30
      R::template Chan<OpHardLight, 1>(),        // 31
  }};
}

// One channel with strides; a wide source is a 16-bit channel whose high
// byte is merged.
template <class Op, int Col, bool WideSource>
int StrideImage(const void* context, int32_t count, uint8_t* dst, const uint8_t* src,
                const Coverage* cov) {
  if (count <= 0) return 0;
  const auto* c = static_cast<const ChannelMergeContext*>(context);
  const ptrdiff_t ss = c->sourceStride, ds = c->destStride;
  const uint8_t* s = src + (WideSource ? 1 : 0);
  for (ptrdiff_t i = 0; i < count; ++i) {
    uint32_t sv = s[i * ss];
    uint8_t* d = dst + i * ds;
    if constexpr (Col == 0) *d = static_cast<uint8_t>(Op::F(*d, sv));
    else *d = static_cast<uint8_t>(Op::C(*d, sv, CoverageAt<Col>(cov, static_cast<size_t>(i))));
  }
  return 1;
}

template <class Op, bool WideSource>
constexpr MergeRow StrideRow() {
  return {{&StrideImage<Op, 0, WideSource>, &StrideImage<Op, 1, WideSource>,
           &StrideImage<Op, 2, WideSource>, &StrideImage<Op, 3, WideSource>,
           &StrideImage<Op, 4, WideSource>, &StrideImage<Op, 5, WideSource>}};
}

template <bool WideSource>
constexpr Table<false> ChannelTable() {
  MergeRow behind = StrideRow<OpBehind, WideSource>();
  behind.kernels[0] = &NoOpMergeKernel;
  return {{
      StrideRow<OpNormal, WideSource>(),           // 0
      StrideRow<OpAnd, WideSource>(),              // 1
      StrideRow<OpOr, WideSource>(),               // 2
      StrideRow<OpXor, WideSource>(),              // 3
      StrideRow<OpAndNot, WideSource>(),           // 4
      StrideRow<OpInvertDest, WideSource>(),       // 5
      StrideRow<OpInvertSource, WideSource>(),     // 6
      StrideRow<OpAddClamp, WideSource>(),         // 7
      StrideRow<OpSubtractInverse, WideSource>(),  // 8
      StrideRow<OpMultiply, WideSource>(),         // 9
      StrideRow<OpDivide, WideSource>(),           // 10
      StrideRow<OpLighter, WideSource>(),          // 11
      StrideRow<OpDarker, WideSource>(),           // 12
      StrideRow<OpMultiply, WideSource>(),         // 13
      kNoOpRow,                                    // 14
      kNoOpRow,                                    // 15
      kNoOpRow,                                    // 16
      kNoOpRow,                                    // 17
      StrideRow<OpNormal, WideSource>(),           // 18
      kNoOpRow,                                    // 19
      kNoOpRow,                                    // 20
      kNoOpRow,                                    // 21
      kNoOpRow,                                    // 22
      kNoOpRow,                                    // 23
      StrideRow<OpDifference, WideSource>(),       // 24
      StrideRow<OpSubtractClamp, WideSource>(),    // 25
      StrideRow<OpMultiplyInverse, WideSource>(),  // 26
      behind,                                      // 27
      StrideRow<OpScreen, WideSource>(),           // 28
      kNoOpRow,                                    // 29
      kNoOpRow,                                    // 30
      kNoOpRow,                                    // 31
  }};
}

}  // namespace

constexpr Table<false> kRowsGrey = GreyTable<false>();
constexpr Table<true> kColorRowsGrey = GreyTable<true>();
constexpr Table<false> kChannelRows8 = ChannelTable<false>();
constexpr Table<false> kChannelRows16 = ChannelTable<true>();

}  // namespace fancy::merge
