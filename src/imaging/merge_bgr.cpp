// Merge tables of type 1 (blue, green, red bytes).
#include "imaging/merge_kernels.h"
#include "imaging/merge_ops.h"

namespace fancy::merge {

namespace {

template <bool ColorFamily>
constexpr Table<ColorFamily> BgrTable() {
  using R = Family<ColorFamily>;
  return {{
      R::template Copy<OpNormal, 3>(),                   // 0
      R::template Chan<OpAnd, 3>(),                      // 1
      R::template Chan<OpOr, 3>(),                       // 2
      R::template Chan<OpXor, 3>(),                      // 3
      R::template Chan<OpAndNot, 3>(),                   // 4
      R::template Chan<OpInvertDest, 3>(),               // 5
      R::template Chan<OpInvertSource, 3>(),             // 6
      R::template Chan<OpAddClamp, 3>(),                 // 7
      R::template Chan<OpSubtractInverse, 3>(),          // 8
      R::template Chan<OpMultiply, 3>(),                 // 9
      R::template Chan<OpDivide, 3>(),                   // 10
      R::template Pix<PixChoose<TakeLighter3, 3>, 3>(),  // 11
      R::template Pix<PixChoose<TakeDarker3, 3>, 3>(),   // 12
      R::template Pix<PixTexturize<3>, 3>(),             // 13
      R::template Pix<PixHsv<true, true, false>, 3>(),   // 14
      R::template Pix<PixHsv<true, false, false>, 3>(),  // 15
      R::template Pix<PixHsv<false, true, false>, 3>(),  // 16
      R::template Pix<PixHsv<false, false, true>, 3>(),  // 17
      R::template Pix<PixChannel<0>, 3>(),               // 18
      R::template Pix<PixChannel<1>, 3>(),               // 19
      R::template Pix<PixChannel<2>, 3>(),               // 20
      R::NoOp(),                                         // 21: no fourth byte
      R::NoOp(),                                         // 22
      R::NoOp(),                                         // 23
      R::template Chan<OpDifference, 3>(),               // 24
      R::template Chan<OpSubtractClamp, 3>(),            // 25
      R::template Chan<OpMultiplyInverse, 3>(),          // 26
      R::template Behind<OpBehind, 3>(),                 // 27
      R::template Chan<OpScreen, 3>(),                   // 28
      R::template Chan<OpOverlay, 3>(),                  // 29
      R::template Chan<OpSoftLight, 3>(),                // 30
      R::template Chan<OpHardLight, 3>(),                // 31
  }};
}

}  // namespace

constexpr Table<false> kRowsBGR = BgrTable<false>();
constexpr Table<true> kColorRowsBGR = BgrTable<true>();

}  // namespace fancy::merge
