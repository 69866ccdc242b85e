#include "imaging/bit_copy.h"

#include <cstring>

namespace fancy {

namespace {

inline void PutBits(uint8_t* dst, int32_t bit, int32_t n, uint8_t leftAligned) {
  uint8_t mask = BitRunMask(bit, n);
  *dst = static_cast<uint8_t>((*dst & ~mask) | ((leftAligned >> bit) & mask));
}

}  // namespace

void CopyBits(uint8_t* dst, int64_t dstBit, const uint8_t* src, int64_t srcBit, int64_t count) {
  if (count <= 0) return;
  dst += dstBit >> 3;
  src += srcBit >> 3;
  int32_t d = static_cast<int32_t>(dstBit & 7);
  int32_t s = static_cast<int32_t>(srcBit & 7);
  if (d == s) {
    if (d) {
      int32_t n = count < 8 - d ? static_cast<int32_t>(count) : 8 - d;
      PutBits(dst, d, n, static_cast<uint8_t>(*src << d));
      count -= n;
      ++dst;
      ++src;
      if (count <= 0) return;
    }
    int64_t whole = count >> 3;
    if (dst != src) std::memmove(dst, src, static_cast<size_t>(whole));
    dst += whole;
    src += whole;
    int32_t tail = static_cast<int32_t>(count & 7);
    if (tail) PutBits(dst, 0, tail, *src);
    return;
  }
  while (count > 0) {
    int32_t n = count < 8 - d ? static_cast<int32_t>(count) : 8 - d;
    PutBits(dst, d, n, TakeBits(src, s, n));
    count -= n;
    s += n;
    src += s >> 3;
    s &= 7;
    d += n;
    if (d == 8) {
      d = 0;
      ++dst;
    }
  }
}

}  // namespace fancy
