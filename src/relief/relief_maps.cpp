#include "relief/relief_maps.h"

#include "relief/relief_memory.h"

namespace fancy {

namespace {

// The record, then the row pointers, then the rows, in one block. Null
// when the block would not fit in 32 bits.
template <typename Map, typename Sample>
Map* AllocMap(int32_t width, int32_t height, int32_t bytesPerSample, int32_t rowBytes,
              int32_t realRows) {
  if (width < 1 || height < 1 || width > INT16_MAX || height > INT16_MAX) return nullptr;
  if (realRows <= 0 || realRows > height) realRows = height;
  const int64_t head = (static_cast<int64_t>(sizeof(Map)) + 7) & ~int64_t{7};
  const int64_t pointers = static_cast<int64_t>(sizeof(Sample*)) * height;
  const int64_t total = head + pointers + static_cast<int64_t>(rowBytes) * realRows;
  if (total > INT32_MAX) return nullptr;
  auto* block = static_cast<uint8_t*>(AllocRelief(static_cast<int32_t>(total)));
  if (!block) return nullptr;
  auto* map = reinterpret_cast<Map*>(block);
  map->width = static_cast<int16_t>(width);
  map->height = static_cast<int16_t>(height);
  map->bytesPerSample = static_cast<int16_t>(bytesPerSample);
  map->rows = reinterpret_cast<Sample**>(block + head);
  uint8_t* data = block + head + pointers;
  for (int32_t y = 0; y < height; ++y)
    map->rows[y] = reinterpret_cast<Sample*>(data + static_cast<int64_t>(rowBytes) * (y % realRows));
  return map;
}

}  // namespace

int32_t ByteMapRowBytes(int32_t width, int32_t bytesPerSample) {
  return (width * bytesPerSample + 3) & ~3;
}

ByteMap* AllocByteMap(int32_t width, int32_t height, int32_t bytesPerSample, int32_t realRows) {
  if (bytesPerSample < 1 || bytesPerSample > 4) return nullptr;
  return AllocMap<ByteMap, uint8_t>(width, height, bytesPerSample,
                                    ByteMapRowBytes(width, bytesPerSample), realRows);
}

HeightMap* AllocHeightMap(int32_t width, int32_t height) {
  return AllocMap<HeightMap, Fixed>(width, height, 4, width * 4, height);
}

void FreeByteMap(ByteMap* map) { FreeRelief(map); }

void FreeHeightMap(HeightMap* map) { FreeRelief(map); }

}  // namespace fancy
