// Merge tables of type 3 (cyan, magenta, yellow, black bytes; 255 is full
// ink). Modes 7 to 10 and MultiplyInverse work on the complements of the inks
// so that they mean on the page what they mean on screen; Difference,
// SubtractClamp and Screen keep their formulas on the stored bytes (Screen so
// equals Multiply here). The hue merges have no row and run by way of type 1.
#include "imaging/merge_kernels.h"
#include "imaging/merge_ops.h"

namespace fancy::merge {

namespace {

template <bool ColorFamily>
constexpr Table<ColorFamily> CmykTable() {
  using R = Family<ColorFamily>;
  Table<ColorFamily> t = {{
      R::template Copy<OpNormal, 4>(),                      // 0
      R::template Chan<OpAnd, 4>(),                         // 1
      R::template Chan<OpOr, 4>(),                          // 2
      R::template Chan<OpXor, 4>(),                         // 3
      R::template Chan<OpAndNot, 4>(),                      // 4
      R::template Chan<OpInvertDest, 4>(),                  // 5
      R::template Chan<OpInvertSource, 4>(),                // 6
      R::template Chan<OpOnInks<OpAddClamp>, 4>(),          // 7
      R::template Chan<OpOnInks<OpSubtractInverse>, 4>(),   // 8
      R::template Chan<OpOnInks<OpMultiply>, 4>(),          // 9
      R::template Chan<OpOnInks<OpDivide>, 4>(),            // 10
      R::template Pix<PixChoose<TakeLighterInks, 4>, 4>(),  // 11
      R::template Pix<PixChoose<TakeDarkerInks, 4>, 4>(),   // 12
      R::template Pix<PixTexturize<4>, 4>(),                // 13
      R::Null(),                                            // 14
      R::Null(),                                            // 15
      R::Null(),                                            // 16
      R::Null(),                                            // 17
      R::template Pix<PixChannel<0>, 4>(),                  // 18
      R::template Pix<PixChannel<1>, 4>(),                  // 19
      R::template Pix<PixChannel<2>, 4>(),                  // 20
      R::template Pix<PixChannel<3>, 4>(),                  // 21
      R::NoOp(),                                            // 22
      R::NoOp(),                                            // 23
      R::template Chan<OpDifference, 4>(),                  // 24
      R::template Chan<OpSubtractClamp, 4>(),               // 25
      R::template Chan<OpMultiplyInverseInks, 4>(),         // 26
      R::template Behind<OpBehind, 4>(),                    // 27
      R::template Chan<OpScreen, 4>(),                      // 28
      R::template Chan<OpOverlay, 4>(),                     // 29
      R::template Chan<OpSoftLight, 4>(),                   // 30
      R::template Chan<OpHardLight, 4>(),                   // 31
  }};
  // MultiplyInverse under a bare opacity is the opacity kernel of Multiply:
  // the row has always been so, and pictures made with it depend on it.
  t[kMergeMultiplyInverse].kernels[kColumnOpacity] = t[kMergeMultiply].kernels[kColumnOpacity];
  return t;
}

}  // namespace

constexpr Table<false> kRowsCMYK = CmykTable<false>();
constexpr Table<true> kColorRowsCMYK = CmykTable<true>();

}  // namespace fancy::merge
