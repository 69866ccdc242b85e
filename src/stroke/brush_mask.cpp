#include "stroke/brush_mask.h"

#include <cstdio>
#include <cstring>

#include "frame/block.h"
#include "imaging/bmp_header.h"
#include "platform/byte_order.h"
#include "platform/file.h"

namespace fancy {

namespace {

constexpr long kTableOffset = 54;  // where the table is read, whatever the header says
constexpr uint32_t kMaxTableEntries = 256;
constexpr int32_t kMinSpareBytes = 1024;

bool ReadExactly(std::FILE* file, uint8_t* out, size_t bytes) {
  return std::fread(out, 1, bytes, file) == bytes;
}

}  // namespace

int32_t BrushMaskSpareBytes(int32_t width) {
  return width >= kMinSpareBytes ? width + 1 : kMinSpareBytes;
}

int32_t BrushMaskLoad(const char* path, BrushMask* mask) {
  *mask = BrushMask{};
  if (!path || !path[0]) return -1;
  FilePtr owned(std::fopen(path, "rb"));
  std::FILE* file = owned.get();
  if (!file) return -1;

  uint8_t head[kBmpFileHeaderBytes + 4];
  if (!ReadExactly(file, head, sizeof head) || head[0] != 'B' || head[1] != 'M') return -1;
  // The short form has no table to read, so it never counts as grey.
  if (LoadLE32(head + kBmpFileHeaderBytes) == kBmpCoreHeaderBytes) return -1;
  uint8_t info[36];
  if (!ReadExactly(file, info, sizeof info)) return -1;
  const int16_t width = static_cast<int16_t>(LoadLE16(info + 0));
  const int16_t height = static_cast<int16_t>(LoadLE16(info + 4));
  const uint16_t planes = LoadLE16(info + 8);
  const uint16_t bitCount = LoadLE16(info + 10);
  const uint32_t compression = LoadLE32(info + 12);
  const uint32_t coloursUsed = LoadLE32(info + 28);
  // Only plain 8-bit rasters are brushes; anything else would be read as
  // bytes that mean something other than coverage.
  if (planes != 1 || bitCount != 8 || compression != 0) return -1;
  if (width <= 0 || height <= 0) return -1;

  const uint32_t entries = coloursUsed ? coloursUsed : kMaxTableEntries;
  if (entries > kMaxTableEntries) return -1;
  uint8_t table[kMaxTableEntries * 4];
  if (std::fseek(file, kTableOffset, SEEK_SET) != 0 || !ReadExactly(file, table, entries * 4))
    return -1;
  for (uint32_t i = 0; i < entries; ++i) {
    const uint8_t* entry = table + i * 4;
    if (entry[0] != entry[1] || entry[1] != entry[2]) return -1;
  }

  const int32_t rowBytes = static_cast<int32_t>(BmpRowBytes(8, width));
  const int32_t dataBytes = rowBytes * height;  // at most 32768 x 32767
  // A header that promises more than the file holds is refused before the
  // raster's block is taken.
  const long dataStart = std::ftell(file);
  if (dataStart < 0 || std::fseek(file, 0, SEEK_END) != 0) return -1;
  const long fileEnd = std::ftell(file);
  if (fileEnd < dataStart || fileEnd - dataStart < dataBytes ||
      std::fseek(file, dataStart, SEEK_SET) != 0)
    return -1;
  auto* raster = static_cast<uint8_t*>(BlockAlloc(dataBytes + BrushMaskSpareBytes(width)));
  if (!raster) return -1;
  if (!ReadExactly(file, raster, static_cast<size_t>(dataBytes))) {
    BlockFree(raster);
    return -1;
  }
  mask->width = width;
  mask->height = height;
  mask->raster = raster;
  mask->flag = 1;
  return 0;
}

void BrushMaskFree(BrushMask* mask) {
  BlockFree(mask->raster);
  *mask = BrushMask{};
}

}  // namespace fancy
