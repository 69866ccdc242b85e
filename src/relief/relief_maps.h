// The relief engine's two maps: the mask as bytes (which the distance
// transform then overwrites in place with distances) and the height field
// as 16.16 samples. Each map is one block of AllocRelief: the record, its
// row pointers and the rows.
#pragma once

#include <cstdint>

#include "frame/fixed.h"

namespace fancy {

struct ByteMap {
  int16_t width;
  int16_t height;          // row pointers
  int16_t bytesPerSample;
  uint8_t** rows;          // height pointers
};

// 32-bit samples, each a Fixed; a row is width * 4 bytes.
struct HeightMap {
  int16_t width;
  int16_t height;
  int16_t bytesPerSample;  // 4
  Fixed** rows;
};

// Bytes of one ByteMap row: (width * bytes + 3) & ~3.
int32_t ByteMapRowBytes(int32_t width, int32_t bytesPerSample);

// A zeroed map of width x height samples. With realRows below height only
// that many rows exist and the pointers repeat them cyclically; 0 or more
// than height means height. Null for sizes below 1 or when memory is short.
ByteMap* AllocByteMap(int32_t width, int32_t height, int32_t bytesPerSample, int32_t realRows);
HeightMap* AllocHeightMap(int32_t width, int32_t height);

// Null is ignored.
void FreeByteMap(ByteMap* map);
void FreeHeightMap(HeightMap* map);

}  // namespace fancy
