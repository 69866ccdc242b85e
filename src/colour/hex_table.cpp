// The Hexachrome table: reader of pantone.hex and the queries on its block.
//
// Block layout:
//   0       u32[2023]  offset of the n-th record read (0 past the last)
//   8092    u32[2024]  offset of the record with that id, 0 for none
//   16188   entries:   i16 id, u16 15, u16 5, six inks, L, i8 a, i8 b,
//                      1 reserved byte, the name and its NUL
#include "colour/hex_table.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "colour/clr_pixels.h"
#include "colour/colour_report.h"
#include "config/condition.h"
#include "config/config.h"
#include "config/memblock.h"
#include "platform/byte_order.h"
#include "platform/path.h"

namespace fancy {

namespace {

constexpr uint16_t kHexMagic = 0xDDCC;
constexpr uint32_t kByOrder = 0;
constexpr uint32_t kById = 4 * kHexRecordCount;                  // 8092
constexpr uint32_t kEntriesStart = kById + 4 * kHexIdCount;      // 16188
constexpr uint32_t kInitialBlock = 113292;
constexpr uint32_t kEntryHeader = 16;
constexpr size_t kRecordHeader = 41;  // ten u32 and the name length
// No valid file is longer: header and 2023 records with 255-byte names.
constexpr size_t kMaxFileBytes = 4 + kHexRecordCount * (kRecordHeader + 255);

struct HexTableState {
  MemHandle block = nullptr;
  int32_t loadCount = 0;
  int32_t recordCount = 0;
  uint32_t used = 0;
  uint32_t capacity = 0;
};
HexTableState gHex;

struct HexRecord {
  uint32_t id;
  uint8_t inks[6];
  uint8_t lab[3];  // L, a, b as bytes (a and b signed)
  const uint8_t* name;
  size_t nameLength;
};

// Numbers in the file are little-endian, four bytes unless a field says
// otherwise. What CheckFile finds:
enum class ParseResult { kOk, kBadHeader, kDamaged };

// Checks the whole file before anything is stored: the header, every record
// within the data, every id within the table.
ParseResult CheckFile(const uint8_t* data, size_t size) {
  if (size < 4 || LoadLE16(data) != kHexMagic || LoadLE16(data + 2) != kHexRecordCount)
    return ParseResult::kBadHeader;
  size_t pos = 4;
  for (int i = 0; i < kHexRecordCount; ++i) {
    if (size - pos < kRecordHeader) return ParseResult::kDamaged;
    if (LoadLE32(data + pos) >= static_cast<uint32_t>(kHexIdCount)) return ParseResult::kDamaged;
    size_t nameLength = data[pos + 40];
    pos += kRecordHeader;
    if (size - pos < nameLength) return ParseResult::kDamaged;
    pos += nameLength;
  }
  return ParseResult::kOk;
}

bool StoreRecord(const HexRecord& record) {
  // A name ends at its length or at a NUL inside it.
  size_t nameLength = strnlen(reinterpret_cast<const char*>(record.name), record.nameLength);
  uint32_t size = kEntryHeader + static_cast<uint32_t>(nameLength) + 1;
  if (gHex.used + size > gHex.capacity) {
    uint32_t grown = std::max(gHex.capacity * 2, gHex.used + size);
    if (!MemBlockResize(gHex.block, grown)) {
      ReportColourCondition(kConditionNotResized, "hex_table.cpp", __LINE__);
      return false;
    }
    gHex.capacity = grown;
  }
  uint8_t* base = static_cast<uint8_t*>(MemBlockLock(gHex.block));
  if (!base) {
    ReportColourCondition(kConditionNotLocked, "hex_table.cpp", __LINE__);
    return false;
  }
  uint32_t at = gHex.used;
  StoreLE16(base + at, record.id);
  StoreLE16(base + at + 2, kCLRHexProcess);
  StoreLE16(base + at + 4, kCLRPalUser);
  std::memcpy(base + at + 6, record.inks, 6);
  std::memcpy(base + at + 12, record.lab, 3);
  base[at + 15] = 0;
  std::memcpy(base + at + kEntryHeader, record.name, nameLength);
  base[at + kEntryHeader + nameLength] = 0;
  StoreLE32(base + (kByOrder + 4 * static_cast<uint32_t>(gHex.recordCount)), at);
  StoreLE32(base + (kById + 4 * record.id), at);
  MemBlockUnlock(gHex.block);
  gHex.used += size;
  ++gHex.recordCount;
  return true;
}

bool StartBlock() {
  gHex.block = MemBlockAlloc(kInitialBlock);
  if (!gHex.block) {
    ReportColourCondition(kConditionNotObtained, "hex_table.cpp", __LINE__);
    return false;
  }
  gHex.capacity = kInitialBlock;
  gHex.used = kEntriesStart;
  gHex.recordCount = 0;
  return true;
}

void FinishBlock() {
  if (MemBlockResize(gHex.block, gHex.used)) gHex.capacity = gHex.used;
  gHex.loadCount = 1;
}

void DropBlock() {
  MemBlockFree(gHex.block);
  gHex = HexTableState{};
}

// The one ink the table holds when the file cannot be had.
bool StoreBuiltIn() {
  static const uint8_t kName[] = "Hex. Yellow";
  HexRecord record{};
  record.id = 1;
  record.inks[0] = 100;
  record.lab[0] = 233;
  record.lab[1] = static_cast<uint8_t>(-13);
  record.lab[2] = 107;
  record.name = kName;
  record.nameLength = sizeof kName - 1;
  return StoreRecord(record);
}

// Fills a fresh table from checked file bytes, or with the built-in ink.
int Fill(const uint8_t* data, bool useFile) {
  if (!StartBlock()) return 0;
  bool stored = true;
  if (useFile) {
    size_t pos = 4;
    for (int i = 0; i < kHexRecordCount && stored; ++i) {
      const uint8_t* p = data + pos;
      HexRecord record;
      record.id = LoadLE32(p);
      for (int k = 0; k < 6; ++k) record.inks[k] = static_cast<uint8_t>(LoadLE32(p + 4 + 4 * k));
      for (int k = 0; k < 3; ++k) record.lab[k] = static_cast<uint8_t>(LoadLE32(p + 28 + 4 * k));
      record.nameLength = p[40];
      record.name = p + kRecordHeader;
      pos += kRecordHeader + record.nameLength;
      stored = StoreRecord(record);
    }
  } else {
    stored = StoreBuiltIn();
  }
  if (!stored) {
    DropBlock();
    return 0;
  }
  FinishBlock();
  return 1;
}

int LoadBytes(const uint8_t* data, size_t size, const char* pathForMessage) {
  if (gHex.loadCount > 0) {
    ++gHex.loadCount;
    return 1;
  }
  ParseResult result = data ? CheckFile(data, size) : ParseResult::kBadHeader;
  if (result != ParseResult::kOk && pathForMessage)
    ReportColourFileError(kStrVerbReading, pathForMessage);
  return Fill(data, result == ParseResult::kOk);
}

int LoadFromFile(const char* path) {
  if (gHex.loadCount > 0) {
    ++gHex.loadCount;
    return 1;
  }
  std::FILE* file = std::fopen(path, "rb");
  if (!file) {
    ReportColourFileError(kStrVerbOpening, path);
    return Fill(nullptr, false);
  }
  // Read no more than a valid file can hold; anything after it is not used.
  std::vector<uint8_t> data(kMaxFileBytes);
  size_t size = std::fread(data.data(), 1, data.size(), file);
  std::fclose(file);
  return LoadBytes(data.data(), size, path);
}

// The entry of an id, with the block locked; null (and unlocked) for none.
const uint8_t* LockEntry(int id) {
  if (id < 0 || id >= kHexIdCount) return nullptr;
  if (gHex.loadCount == 0 && !HexTableLoad()) return nullptr;
  const uint8_t* base = static_cast<const uint8_t*>(MemBlockLock(gHex.block));
  if (!base) {
    ReportColourCondition(kConditionNotLocked, "hex_table.cpp", __LINE__);
    return nullptr;
  }
  uint32_t at = LoadLE32(base + (kById + 4 * static_cast<uint32_t>(id)));
  if (at == 0) {
    MemBlockUnlock(gHex.block);
    return nullptr;
  }
  return base + at;
}

CLRColor Plain(int model) {
  CLRColor c{};
  c.model = static_cast<uint16_t>(model);
  CLRSetPaletteWord(&c, kCLRPalUser);
  return c;
}

}  // namespace

int HexTableLoad() {
  if (gHex.loadCount > 0) {
    ++gHex.loadCount;
    return 1;
  }
  char dir[kMaxPath + 1];
  GetDataDir(dir, sizeof dir);
  return LoadFromFile(JoinPath(dir, "pantone.hex").c_str());
}

int HexTableLoadFile(const char* path) { return LoadFromFile(path ? path : ""); }

int HexTableLoadBytes(const uint8_t* data, size_t size) { return LoadBytes(data, size, nullptr); }

void HexTableRelease() {
  if (gHex.loadCount == 0) return;
  if (--gHex.loadCount > 0) return;
  DropBlock();
}

int HexTableLoadCount() { return gHex.loadCount; }

int HexColorForId(int id, int tint, CLRColor* out15) {
  const uint8_t* entry = LockEntry(id);
  if (!entry) return 0;
  CLRColor c = Plain(kCLRHexProcess);
  for (int i = 0; i < 6; ++i) CLRBytes(&c)[6 + i] = static_cast<uint8_t>(entry[6 + i] * tint / 100);
  MemBlockUnlock(gHex.block);
  *out15 = c;
  return 1;
}

int HexRGBForId(int id, int tint, CLRColor* outRGB) {
  const uint8_t* entry = LockEntry(id);
  if (!entry) return 0;
  uint8_t lab[4] = {entry[12], static_cast<uint8_t>(entry[13] + 128),
                    static_cast<uint8_t>(entry[14] + 128), 0};
  MemBlockUnlock(gHex.block);
  CLRColor c = Plain(kCLRRGB255);
  CLRPixelsLabToRGB(lab, 4, c.value8, CLRRGBArrayStride(1), 1, 1);
  for (int i = 0; i < 3; ++i)
    c.value8[i] = static_cast<uint8_t>(255 - (255 - c.value8[i]) * tint / 100);
  *outRGB = c;
  return 1;
}

void HexName(int id, char* out, size_t size, bool useHexachromeWord) {
  if (!out || size == 0) return;
  if (id == 0) {
    std::snprintf(out, size, "BLACK");
    return;
  }
  const uint8_t* entry = LockEntry(id);
  if (!entry) {
    std::snprintf(out, size, "unknown PANTONE color %d", id);
    return;
  }
  const char* name = reinterpret_cast<const char*>(entry + kEntryHeader);
  size_t length = std::strlen(name);
  if (length == 0)
    std::snprintf(out, size, "PANTONE %d CV", id);
  else if (useHexachromeWord && id < 7)
    std::snprintf(out, size, "Hexachrome %s", length > 5 ? name + 5 : "");
  else
    std::snprintf(out, size, "PANTONE %s CV", name);
  MemBlockUnlock(gHex.block);
}

int HexAt(int order, CLRColor* out) {
  if (order < 0 || order >= kHexRecordCount) return 0;
  if (gHex.loadCount == 0 && !HexTableLoad()) return 0;
  if (order >= gHex.recordCount) return 0;
  const uint8_t* base = static_cast<const uint8_t*>(MemBlockLock(gHex.block));
  if (!base) {
    ReportColourCondition(kConditionNotLocked, "hex_table.cpp", __LINE__);
    return 0;
  }
  uint32_t at = LoadLE32(base + (kByOrder + 4 * static_cast<uint32_t>(order)));
  int id = static_cast<int16_t>(LoadLE16(base + at));
  MemBlockUnlock(gHex.block);
  CLRColor c = Plain(kCLRHexSpot);
  CLRSetPaletteWord(&c, kCLRPalHexachrome);
  CLRSetU16(&c, 8, static_cast<uint32_t>(id));
  CLRSetU16(&c, 10, 100);
  *out = c;
  return 1;
}

}  // namespace fancy
