// Kernel templates: a channel or pixel operation (merge_ops.h) in one of the
// six coverage columns, as an image-family or colour-family kernel, and the
// rows that gather the six columns of a mode.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "imaging/merge.h"
#include "imaging/merge_math.h"

namespace fancy::merge {

// Pixels whose coverage is worked out ahead of the blend, per round.
constexpr size_t kChunk = 256;

// The coverage of pixels [first, first + n) of column Col (2 to 5).
template <int Col>
FANCY_KERNEL_INLINE void CoverageRun(uint8_t* out, const Coverage* cov, size_t first, size_t n) {
  // A local copy: stores to `out` could otherwise change the block, as far as
  // the compiler knows, and it would read it again for every pixel.
  const Coverage c = *cov;
  for (size_t j = 0; j < n; ++j) out[j] = static_cast<uint8_t>(CoverageAt<Col>(&c, first + j));
}

// One stretch of n pixels of a channel operation; pixel 0 of the stretch is
// pixel `first` of the coverage. Columns 0 and 2 take any n, the others at
// most kChunk.
template <class Op, int Col, int N>
FANCY_KERNEL_INLINE void ChanStretch(uint8_t* d, const uint8_t* s, size_t n, const Coverage* cov,
                                     size_t first) {
  const size_t bytes = n * N;
  if constexpr (Col == 0 && requires { Op::kIgnoresSource; }) {
    for (size_t i = 0; i < bytes; ++i) d[i] = static_cast<uint8_t>(Op::F(d[i], 0));
  } else if constexpr (Col == 0) {
    for (size_t i = 0; i < bytes; ++i) d[i] = static_cast<uint8_t>(Op::F(d[i], s[i]));
  } else if constexpr (Col == 2) {
    const uint32_t m = cov->opacity;
    for (size_t i = 0; i < bytes; ++i) d[i] = static_cast<uint8_t>(Op::C(d[i], s[i], m));
  } else {
    // Coverage a pixel at a time in its own loop (which vectorises), then the
    // blend of the pixels' bytes.
    uint8_t own[Col == 1 ? 1 : kChunk];
    const uint8_t* m = own;
    if constexpr (Col == 1) {
      m = cov->mask1 + first;
    } else {
      CoverageRun<Col>(own, cov, first, n);
    }
    if constexpr (N == 1) {
      for (size_t i = 0; i < n; ++i) d[i] = static_cast<uint8_t>(Op::C(d[i], s[i], m[i]));
    } else {
      // Spread over the pixels' bytes, so that the blend is one byte loop.
      uint8_t spread[kChunk * N];
      for (size_t j = 0; j < n; ++j)
        for (int k = 0; k < N; ++k) spread[j * N + k] = m[j];
      for (size_t i = 0; i < bytes; ++i)
        d[i] = static_cast<uint8_t>(Op::C(d[i], s[i], spread[i]));
    }
  }
}

// The same with one constant source byte (one-channel colour family).
template <class Op, int Col>
FANCY_KERNEL_INLINE void ChanStretchConst(uint8_t* d, uint32_t s, size_t n, const Coverage* cov, size_t first) {
  if constexpr (Col == 0) {
    for (size_t i = 0; i < n; ++i) d[i] = static_cast<uint8_t>(Op::F(d[i], s));
  } else if constexpr (Col == 2) {
    const uint32_t m = cov->opacity;
    for (size_t i = 0; i < n; ++i) d[i] = static_cast<uint8_t>(Op::C(d[i], s, m));
  } else if constexpr (Col == 1) {
    const uint8_t* m = cov->mask1 + first;
    for (size_t i = 0; i < n; ++i) d[i] = static_cast<uint8_t>(Op::C(d[i], s, m[i]));
  } else {
    uint8_t m[kChunk];
    CoverageRun<Col>(m, cov, first, n);
    for (size_t i = 0; i < n; ++i) d[i] = static_cast<uint8_t>(Op::C(d[i], s, m[i]));
  }
}

template <class Op, int Col, int N>
int ChanImage(const void*, int32_t count, uint8_t* dst, const uint8_t* src, const Coverage* cov) {
  if (count <= 0) return 0;
  const size_t total = static_cast<size_t>(count);
  if constexpr (Col == 0 || Col == 2 || (Col == 1 && N == 1)) {
    ChanStretch<Op, Col, N>(dst, src, total, cov, 0);
  } else {
    for (size_t p = 0; p < total; p += kChunk) {
      size_t n = total - p < kChunk ? total - p : kChunk;
      ChanStretch<Op, Col, N>(dst + p * N, src + p * N, n, cov, p);
    }
  }
  return 1;
}

template <class Op, int Col, int N>
int ChanFill(const void* context, int32_t count, uint8_t* dst, const Coverage* cov) {
  if (count <= 0) return 0;
  const uint8_t* pixel = static_cast<const ColorFillContext*>(context)->pixel;
  const size_t total = static_cast<size_t>(count);
  if constexpr (N == 1) {
    if constexpr (Col == 0 || Col == 1 || Col == 2) {
      ChanStretchConst<Op, Col>(dst, pixel[0], total, cov, 0);
    } else {
      for (size_t p = 0; p < total; p += kChunk) {
        size_t n = total - p < kChunk ? total - p : kChunk;
        ChanStretchConst<Op, Col>(dst + p, pixel[0], n, cov, p);
      }
    }
  } else {
    // A stretch of the colour repeated stands in for the source row.
    uint8_t pattern[kChunk * N];
    size_t filled = total < kChunk ? total : kChunk;
    for (size_t j = 0; j < filled; ++j) std::memcpy(pattern + j * N, pixel, N);
    for (size_t p = 0; p < total; p += kChunk) {
      size_t n = total - p < kChunk ? total - p : kChunk;
      ChanStretch<Op, Col, N>(dst + p * N, pattern, n, cov, p);
    }
  }
  return 1;
}

template <class Op, int Col, int N>
int PixImage(const void*, int32_t count, uint8_t* dst, const uint8_t* src, const Coverage* cov) {
  if (count <= 0) return 0;
  for (size_t i = 0; i < static_cast<size_t>(count); ++i, dst += N, src += N) {
    if constexpr (Col == 0) Op::Full(dst, src);
    else Op::Covered(dst, src, CoverageAt<Col>(cov, i));
  }
  return 1;
}

template <class Op, int Col, int N>
int PixFill(const void* context, int32_t count, uint8_t* dst, const Coverage* cov) {
  if (count <= 0) return 0;
  const uint8_t* pixel = static_cast<const ColorFillContext*>(context)->pixel;
  for (size_t i = 0; i < static_cast<size_t>(count); ++i, dst += N) {
    if constexpr (Col == 0) Op::Full(dst, pixel);
    else Op::Covered(dst, pixel, CoverageAt<Col>(cov, i));
  }
  return 1;
}

// Normal in column 0: whole rows copied.
template <int N>
int CopyImage(const void*, int32_t count, uint8_t* dst, const uint8_t* src, const Coverage*) {
  if (count <= 0) return 0;
  if (dst != src) std::memmove(dst, src, static_cast<size_t>(count) * N);
  return 1;
}

template <int N>
int CopyFill(const void* context, int32_t count, uint8_t* dst, const Coverage*) {
  if (count <= 0) return 0;
  const uint8_t* pixel = static_cast<const ColorFillContext*>(context)->pixel;
  if constexpr (N == 1) {
    std::memset(dst, pixel[0], static_cast<size_t>(count));
  } else {
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) std::memcpy(dst + i * N, pixel, N);
  }
  return 1;
}

// ---- rows ----------------------------------------------------------------------------

template <class Op, int N>
constexpr MergeRow ChanRow() {
  return {{&ChanImage<Op, 0, N>, &ChanImage<Op, 1, N>, &ChanImage<Op, 2, N>,
           &ChanImage<Op, 3, N>, &ChanImage<Op, 4, N>, &ChanImage<Op, 5, N>}};
}
template <class Op, int N>
constexpr ColorMergeRow ChanColorRow() {
  return {{&ChanFill<Op, 0, N>, &ChanFill<Op, 1, N>, &ChanFill<Op, 2, N>,
           &ChanFill<Op, 3, N>, &ChanFill<Op, 4, N>, &ChanFill<Op, 5, N>}};
}
template <class Op, int N>
constexpr MergeRow PixRow() {
  return {{&PixImage<Op, 0, N>, &PixImage<Op, 1, N>, &PixImage<Op, 2, N>,
           &PixImage<Op, 3, N>, &PixImage<Op, 4, N>, &PixImage<Op, 5, N>}};
}
template <class Op, int N>
constexpr ColorMergeRow PixColorRow() {
  return {{&PixFill<Op, 0, N>, &PixFill<Op, 1, N>, &PixFill<Op, 2, N>,
           &PixFill<Op, 3, N>, &PixFill<Op, 4, N>, &PixFill<Op, 5, N>}};
}

// Normal: rows copied in column 0, the lerp under coverage.
template <class Op, int N>
constexpr MergeRow CopyRow() {
  MergeRow row = ChanRow<Op, N>();
  row.kernels[0] = &CopyImage<N>;
  return row;
}
template <class Op, int N>
constexpr ColorMergeRow CopyColorRow() {
  ColorMergeRow row = ChanColorRow<Op, N>();
  row.kernels[0] = &CopyFill<N>;
  return row;
}

// Behind: column 0 leaves the destination alone.
template <class Op, int N>
constexpr MergeRow BehindRow() {
  MergeRow row = ChanRow<Op, N>();
  row.kernels[0] = &NoOpMergeKernel;
  return row;
}
template <class Op, int N>
constexpr ColorMergeRow BehindColorRow() {
  ColorMergeRow row = ChanColorRow<Op, N>();
  row.kernels[0] = &NoOpColorMergeKernel;
  return row;
}

constexpr MergeRow kNoOpRow = {{&NoOpMergeKernel, &NoOpMergeKernel, &NoOpMergeKernel,
                                &NoOpMergeKernel, &NoOpMergeKernel, &NoOpMergeKernel}};
constexpr ColorMergeRow kNoOpColorRow = {
    {&NoOpColorMergeKernel, &NoOpColorMergeKernel, &NoOpColorMergeKernel,
     &NoOpColorMergeKernel, &NoOpColorMergeKernel, &NoOpColorMergeKernel}};
constexpr MergeRow kNullRow = {};
constexpr ColorMergeRow kNullColorRow = {};

// The row builders of one family, so that a type's table is written once
// for both families.
template <bool ColorFamily>
struct Family;

template <>
struct Family<false> {
  using Row = MergeRow;
  template <class Op, int N> static constexpr Row Chan() { return ChanRow<Op, N>(); }
  template <class Op, int N> static constexpr Row Pix() { return PixRow<Op, N>(); }
  template <class Op, int N> static constexpr Row Copy() { return CopyRow<Op, N>(); }
  template <class Op, int N> static constexpr Row Behind() { return BehindRow<Op, N>(); }
  static constexpr Row NoOp() { return kNoOpRow; }
  static constexpr Row Null() { return kNullRow; }
};

template <>
struct Family<true> {
  using Row = ColorMergeRow;
  template <class Op, int N> static constexpr Row Chan() { return ChanColorRow<Op, N>(); }
  template <class Op, int N> static constexpr Row Pix() { return PixColorRow<Op, N>(); }
  template <class Op, int N> static constexpr Row Copy() { return CopyColorRow<Op, N>(); }
  template <class Op, int N> static constexpr Row Behind() { return BehindColorRow<Op, N>(); }
  static constexpr Row NoOp() { return kNoOpColorRow; }
  static constexpr Row Null() { return kNullColorRow; }
};

template <bool ColorFamily>
using Table = std::array<typename Family<ColorFamily>::Row, kMergeModeCount>;

// The tables of the types, one per family.
extern const Table<false> kRowsBGR;
extern const Table<true> kColorRowsBGR;
extern const Table<false> kRowsCMYK;
extern const Table<true> kColorRowsCMYK;
extern const Table<false> kRowsGrey;
extern const Table<true> kColorRowsGrey;
extern const Table<false> kRowsBits;
extern const Table<true> kColorRowsBits;
extern const Table<false> kRowsIndexed;
extern const Table<true> kColorRowsIndexed;
extern const Table<false> kRowsLab;
extern const Table<true> kColorRowsLab;
extern const Table<false> kRowsRGB48;
extern const Table<true> kColorRowsRGB48;
extern const Table<false> kRowsGrey16;
extern const Table<true> kColorRowsGrey16;
extern const Table<false> kChannelRows8;
extern const Table<false> kChannelRows16;

}  // namespace fancy::merge
