// Merge tables of the types that only copy: 8-bit type 10 (index bytes) and
// the 16-bit types 12 and 14, whose blends divide by the wide division. Every
// other mode runs in a working type.
#include "imaging/merge_kernels.h"
#include "imaging/merge_ops.h"

namespace fancy::merge {

namespace {

template <bool ColorFamily>
constexpr Table<ColorFamily> NullTable() {
  Table<ColorFamily> t{};
  t[kMergeUnused22] = Family<ColorFamily>::NoOp();
  t[kMergeUnused23] = Family<ColorFamily>::NoOp();
  return t;
}

// Column 0 copies whole pixels; the others blend channels First to
// First + C - 1 of a pixel of N bytes.
template <bool ColorFamily, int N, int First, int C>
constexpr typename Family<ColorFamily>::Row WideRow() {
  auto row = Family<ColorFamily>::template Pix<PixWide<First, C>, N>();
  if constexpr (First == 0 && 2 * C == N) {
    if constexpr (ColorFamily) row.kernels[0] = &CopyFill<N>;
    else row.kernels[0] = &CopyImage<N>;
  }
  return row;
}

constexpr Table<false> IndexedImage() {
  Table<false> t = NullTable<false>();
  t[kMergeNormal].kernels[0] = &CopyImage<1>;
  t[kMergeChannel0].kernels[0] = &CopyImage<1>;
  return t;
}

constexpr Table<true> IndexedColor() {
  Table<true> t = NullTable<true>();
  t[kMergeNormal] = CopyColorRow<OpNormal, 1>();
  t[kMergeChannel0] = CopyColorRow<OpNormal, 1>();
  return t;
}

constexpr Table<false> RGB48Image() {
  Table<false> t = NullTable<false>();
  t[kMergeNormal] = WideRow<false, 6, 0, 3>();
  t[kMergeChannel0] = WideRow<false, 6, 0, 1>();
  t[kMergeChannel1] = WideRow<false, 6, 1, 1>();
  t[kMergeChannel2] = WideRow<false, 6, 2, 1>();
  return t;
}

constexpr Table<true> RGB48Color() {
  Table<true> t = NullTable<true>();
  t[kMergeNormal] = WideRow<true, 6, 0, 3>();
  for (int mode = kMergeChannel0; mode <= kMergeUnused23; ++mode) t[mode] = kNoOpColorRow;
  return t;
}

template <bool ColorFamily>
constexpr Table<ColorFamily> Grey16Table() {
  Table<ColorFamily> t = NullTable<ColorFamily>();
  t[kMergeNormal] = WideRow<ColorFamily, 2, 0, 1>();
  if constexpr (!ColorFamily) t[kMergeChannel0] = WideRow<false, 2, 0, 1>();
  return t;
}

}  // namespace

constexpr Table<false> kRowsIndexed = IndexedImage();
constexpr Table<true> kColorRowsIndexed = IndexedColor();
constexpr Table<false> kRowsRGB48 = RGB48Image();
constexpr Table<true> kColorRowsRGB48 = RGB48Color();
constexpr Table<false> kRowsGrey16 = Grey16Table<false>();
constexpr Table<true> kColorRowsGrey16 = Grey16Table<true>();

}  // namespace fancy::merge
