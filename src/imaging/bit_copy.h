// Copying runs of bits between rows whose pixels are packed most significant
// bit first (1- and 4-bit images).
#pragma once

#include <cstdint>

namespace fancy {

// `n` (1 to 8) bits of src starting `bit` (0 to 7) bits into its first byte,
// left-aligned in the result; the second byte is read only when the bits
// reach into it.
inline uint8_t TakeBits(const uint8_t* src, int32_t bit, int32_t n) {
  uint32_t window = static_cast<uint32_t>(src[0]) << 8;
  if (bit + n > 8) window |= src[1];
  return static_cast<uint8_t>(((window << bit) >> 8) & (0xFF00u >> n));
}

// The mask of n bits starting `bit` bits into a byte.
inline uint8_t BitRunMask(int32_t bit, int32_t n) {
  return static_cast<uint8_t>(((0xFF00u >> n) & 0xFFu) >> bit);
}

// Copies `count` bits from `src` at bit `srcBit` to `dst` at bit `dstBit`.
// Bits of dst outside the run keep their values; no byte is read or written
// beyond those that hold the run. The two runs must not overlap unless they
// are the same run.
void CopyBits(uint8_t* dst, int64_t dstBit, const uint8_t* src, int64_t srcBit, int64_t count);

}  // namespace fancy
