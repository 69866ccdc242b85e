// Merge tables of type 6 (one bit a pixel, most significant bit first). The
// seven bitwise modes serve every mode that has a meaning on bits; under
// coverage a pixel whose coverage is not 0 takes the mode, the others stay.
#include "imaging/bit_copy.h"
#include "imaging/merge_kernels.h"

namespace fancy::merge {

namespace {

enum BitOp { kBitCopy, kBitAnd, kBitOr, kBitXor, kBitAndNot, kBitInvertDest, kBitInvertSource };

template <int Op>
inline uint8_t ApplyBits(uint8_t d, uint8_t s) {
  switch (Op) {
    case kBitCopy: return s;
    case kBitAnd: return d & s;
    case kBitOr: return d | s;
    case kBitXor: return d ^ s;
    case kBitAndNot: return d & static_cast<uint8_t>(~s);
    case kBitInvertDest: return static_cast<uint8_t>(~d);
    default: return static_cast<uint8_t>(~s);
  }
}

// Merges `count` bits; `source` gives the n source bits for a stretch that
// starts `done` bits in, left-aligned. Column 0 goes a byte of the
// destination at a time, the covered columns a bit at a time.
template <int Op, int Col, class Source>
void MergeBits(uint8_t* dst, int32_t destBit, int32_t count, const Coverage* cov, Source source) {
  dst += destBit >> 3;
  int32_t db = destBit & 7;
  int32_t done = 0;
  while (done < count) {
    int32_t n = count - done < 8 - db ? count - done : 8 - db;
    uint8_t s = Op == kBitInvertDest ? 0 : static_cast<uint8_t>(source(done, n) >> db);
    uint8_t mask = BitRunMask(db, n);
    if constexpr (Col != 0) {
      uint8_t covered = 0;
      for (int32_t k = 0; k < n; ++k)
        if (CoverageAt<Col>(cov, static_cast<size_t>(done + k))) covered |= 0x80 >> (db + k);
      mask &= covered;
    }
    uint8_t r = ApplyBits<Op>(*dst, s);
    *dst = static_cast<uint8_t>((*dst & ~mask) | (r & mask));
    done += n;
    db = 0;
    ++dst;
  }
}

template <int Op, int Col>
int BitImage(const void* context, int32_t count, uint8_t* dst, const uint8_t* src,
             const Coverage* cov) {
  if (count <= 0) return 0;
  const auto* c = static_cast<const BitMergeContext*>(context);
  int32_t sourceBit = c ? c->sourceBit : 0;
  int32_t destBit = c ? c->destBit : 0;
  const uint8_t* s0 = src + (sourceBit >> 3);
  int32_t sb = sourceBit & 7;
  MergeBits<Op, Col>(dst, destBit, count, cov, [&](int32_t done, int32_t n) {
    int32_t at = sb + done;
    return TakeBits(s0 + (at >> 3), at & 7, n);
  });
  return 1;
}

template <int Op, int Col>
int BitFill(const void* context, int32_t count, uint8_t* dst, const Coverage* cov) {
  if (count <= 0) return 0;
  const auto* c = static_cast<const ColorFillContext*>(context);
  uint8_t all = (c->pixel[0] & 1) ? 0xFF : 0x00;
  MergeBits<Op, Col>(dst, c->destBit, count, cov,
                     [&](int32_t, int32_t n) { return static_cast<uint8_t>(all & (0xFF00u >> n)); });
  return 1;
}

template <bool ColorFamily, int Op>
constexpr typename Family<ColorFamily>::Row BitRow() {
  if constexpr (ColorFamily)
    return {{&BitFill<Op, 0>, &BitFill<Op, 1>, &BitFill<Op, 2>, &BitFill<Op, 3>, &BitFill<Op, 4>,
             &BitFill<Op, 5>}};
  else
    return {{&BitImage<Op, 0>, &BitImage<Op, 1>, &BitImage<Op, 2>, &BitImage<Op, 3>,
             &BitImage<Op, 4>, &BitImage<Op, 5>}};
}

template <bool ColorFamily>
constexpr Table<ColorFamily> BitTable() {
  using R = Family<ColorFamily>;
  constexpr auto copy = BitRow<ColorFamily, kBitCopy>();
  constexpr auto band = BitRow<ColorFamily, kBitAnd>();
  constexpr auto bor = BitRow<ColorFamily, kBitOr>();
  constexpr auto bxor = BitRow<ColorFamily, kBitXor>();
  constexpr auto andNot = BitRow<ColorFamily, kBitAndNot>();
  return {{
      copy,                                          // 0
      band,                                          // 1
      bor,                                           // 2
      bxor,                                          // 3
      andNot,                                        // 4
      BitRow<ColorFamily, kBitInvertDest>(),         // 5
      BitRow<ColorFamily, kBitInvertSource>(),       // 6
      bor,                                           // 7 AddClamp
      band,                                          // 8 SubtractInverse
      band,                                          // 9 Multiply
      R::Null(),                                     // 10
      bor,                                           // 11 IfLighter
      band,                                          // 12 IfDarker
      R::Null(),                                     // 13
      R::NoOp(),                                     // 14
      R::NoOp(),                                     // 15
      R::NoOp(),                                     // 16
      copy,                                          // 17 ValueMerge
      copy,                                          // 18 Channel0
      R::NoOp(),                                     // 19
      R::NoOp(),                                     // 20
      R::NoOp(),                                     // 21
      R::NoOp(),                                     // 22
      R::NoOp(),                                     // 23
      bxor,                                          // 24 Difference
      andNot,                                        // 25 SubtractClamp
      andNot,                                        // 26 MultiplyInverse
      R::Null(),                                     // 27
      bor,                                           // 28 Screen
      R::NoOp(),                                     // 29
      copy,                                          // 30 SoftLight
      copy,                                          // 31 HardLight
  }};
}

}  // namespace

constexpr Table<false> kRowsBits = BitTable<false>();
constexpr Table<true> kColorRowsBits = BitTable<true>();

}  // namespace fancy::merge
