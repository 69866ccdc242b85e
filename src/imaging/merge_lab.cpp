// Merge tables of type 11 (lightness, a, b; a and b centred on 128). Most
// modes are the type 1 kernels on the bytes as they stand; Multiply and
// Screen treat a and b about their centre, IfLighter and IfDarker compare
// lightness alone, and ValueMerge replaces lightness only.
#include "imaging/merge_kernels.h"
#include "imaging/merge_ops.h"

namespace fancy::merge {

namespace {

template <bool ColorFamily>
constexpr Table<ColorFamily> LabTable() {
  using R = Family<ColorFamily>;
  // In the colour family both IfLighter and IfDarker take the new pixel when
  // its lightness is greater than the old one.
  using Darker = std::conditional_t<ColorFamily, PixChoose<TakeLighterLab, 3>,
                                    PixChoose<TakeDarkerLab, 3>>;
  return {{
      R::template Copy<OpNormal, 3>(),                     // 0
      R::template Chan<OpAnd, 3>(),                        // 1
      R::template Chan<OpOr, 3>(),                         // 2
      R::template Chan<OpXor, 3>(),                        // 3
      R::template Chan<OpAndNot, 3>(),                     // 4
      R::template Chan<OpInvertDest, 3>(),                 // 5
      R::template Chan<OpInvertSource, 3>(),               // 6
      R::template Chan<OpAddClamp, 3>(),                   // 7
      R::template Chan<OpSubtractInverse, 3>(),            // 8
      R::template Pix<PixLabMultiply, 3>(),                // 9
      R::template Chan<OpDivide, 3>(),                     // 10
      R::template Pix<PixChoose<TakeLighterLab, 3>, 3>(),  // 11
      R::template Pix<Darker, 3>(),                        // 12
      R::Null(),                                           // 13
      R::Null(),                                           // 14
      R::Null(),                                           // 15
      R::Null(),                                           // 16
      R::template Pix<PixChannel<0>, 3>(),                 // 17
      R::template Pix<PixChannel<0>, 3>(),                 // 18
      R::template Pix<PixChannel<1>, 3>(),                 // 19
      R::template Pix<PixChannel<2>, 3>(),                 // 20
      R::NoOp(),                                           // 21
      R::NoOp(),                                           // 22
      R::NoOp(),                                           // 23
      R::template Chan<OpDifference, 3>(),                 // 24
      R::template Chan<OpSubtractClamp, 3>(),              // 25
      R::template Chan<OpMultiplyInverse, 3>(),            // 26
      R::template Behind<OpBehind, 3>(),                   // 27
      R::template Pix<PixLabScreen, 3>(),                  // 28
      R::template Chan<OpOverlay, 3>(),                    // 29
      R::template Chan<OpSoftLight, 3>(),                  // 30
      R::template Chan<OpHardLight, 3>(),                  // 31
  }};
}

}  // namespace

constexpr Table<false> kRowsLab = LabTable<false>();
constexpr Table<true> kColorRowsLab = LabTable<true>();

}  // namespace fancy::merge
