// Little-endian fields inside the packed table blocks of the ink readers.
// Offsets are in bytes; the caller has checked them against the block.
#pragma once

#include <cstdint>

namespace fancy {

inline uint16_t PackedU16(const uint8_t* base, uint32_t offset) {
  return static_cast<uint16_t>(base[offset] | (base[offset + 1] << 8));
}
inline uint32_t PackedU32(const uint8_t* base, uint32_t offset) {
  return static_cast<uint32_t>(base[offset]) | (static_cast<uint32_t>(base[offset + 1]) << 8) |
         (static_cast<uint32_t>(base[offset + 2]) << 16) |
         (static_cast<uint32_t>(base[offset + 3]) << 24);
}
inline void PutPackedU16(uint8_t* base, uint32_t offset, uint32_t value) {
  base[offset] = static_cast<uint8_t>(value);
  base[offset + 1] = static_cast<uint8_t>(value >> 8);
}
inline void PutPackedU32(uint8_t* base, uint32_t offset, uint32_t value) {
  for (int i = 0; i < 4; ++i) base[offset + i] = static_cast<uint8_t>(value >> (8 * i));
}

}  // namespace fancy
