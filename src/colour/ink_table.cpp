// The spot-ink table: reader of sketchry.ink and the queries on its block.
//
// Block layout:
//   0      u32[1050]  offset of the n-th ink read (0 past the last)
//   4200   u32[1050]  offset of the ink with that index, 0 for none
//   8400   entries:   i16 index, 2 reserved bytes, CLRColor RGB form at 4,
//                     CLRColor file form at 16, then the name at 28:
//                       0                 no name
//                       255, u16, 0       a number as name
//                       text, 0           a text name
#include "colour/ink_table.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "colour/clr_convert.h"
#include "colour/colour_report.h"
#include "config/condition.h"
#include "config/config.h"
#include "config/memblock.h"
#include "platform/byte_order.h"
#include "platform/path.h"

namespace fancy {

namespace {

constexpr uint32_t kByOrder = 0;
constexpr uint32_t kByIndex = 4 * kInkTableSize;
constexpr uint32_t kEntriesStart = 8 * kInkTableSize;  // 8400
constexpr uint32_t kInitialBlock = 71400;
constexpr uint32_t kEntryHeader = 28;
constexpr uint8_t kNumberName = 255;
constexpr size_t kLineMax = 127;

// What the file said when it could not be opened: ink 1, a pale yellow.
constexpr char kBuiltInInk[] = "1 249 245 131 100";

struct InkTableState {
  MemHandle block = nullptr;
  int32_t loadCount = 0;
  int32_t inkCount = 0;
  uint32_t used = 0;      // bytes of the block in use
  uint32_t capacity = 0;  // bytes of the block
};
InkTableState gInks;

// ---- lines ------------------------------------------------------------------------

// Characters from a file or from memory.
struct CharSource {
  std::FILE* file = nullptr;
  const char* text = nullptr;
  size_t size = 0, pos = 0;
  int Get() {
    if (file) return std::fgetc(file);
    return pos < size ? static_cast<unsigned char>(text[pos++]) : EOF;
  }
};

// The next line of at most 127 characters, as a text-mode read gives it:
// CR and LF before a line are skipped, so blank lines vanish; a longer line
// goes on as the next one. False at the end.
bool NextLine(CharSource& source, char (&line)[kLineMax + 1]) {
  int c;
  do c = source.Get();
  while (c == '\r' || c == '\n');
  if (c == EOF) return false;
  size_t n = 0;
  while (c != EOF && c != '\n') {
    line[n++] = static_cast<char>(c);
    if (n == kLineMax) break;
    c = source.Get();
  }
  if (n > 0 && line[n - 1] == '\r') --n;
  line[n] = '\0';
  return true;
}

// ---- one ink line ------------------------------------------------------------------

enum class Shape { kRGB, kProcess, kSpot };

struct InkLine {
  Shape shape;
  int fields;           // numbers read, plus one for a name
  int32_t numbers[8];
  const char* name;     // into the line; nameLength characters
  size_t nameLength;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Digits from p, saturating far above any value the file may hold.
int32_t ReadNumber(const char*& p) {
  int32_t value = 0;
  for (; IsDigit(*p); ++p) value = value > 99999999 ? value : value * 10 + (*p - '0');
  return value;
}

int MinimumFields(Shape shape) {
  switch (shape) {
    case Shape::kRGB: return 4;
    case Shape::kProcess: return 5;
    default: return 8;
  }
}

// False for comments and lines that do not hold an ink.
bool ParseInkLine(const char* line, InkLine* ink) {
  const char* p = line;
  while (*p == ' ' || *p == '\t') ++p;
  if (*p == ';') return false;
  while (*p && *p != 'P' && *p != 'S' && !IsDigit(*p)) ++p;
  if (!*p) return false;
  if (*p == 'P') ink->shape = Shape::kProcess, ++p;
  else if (*p == 'S') ink->shape = Shape::kSpot, ++p;
  else ink->shape = Shape::kRGB;

  int minimum = MinimumFields(ink->shape);
  ink->fields = 0;
  while (ink->fields < minimum) {
    while (*p && !IsDigit(*p)) ++p;
    if (!*p) break;
    ink->numbers[ink->fields++] = ReadNumber(p);
  }
  // A name in double quotes may follow the numbers; it counts when it holds
  // at least one character. An unclosed quote runs to the end of the line.
  ink->name = nullptr;
  ink->nameLength = 0;
  if (const char* open = std::strchr(p, '"')) {
    const char* start = open + 1;
    const char* close = std::strchr(start, '"');
    size_t length = close ? static_cast<size_t>(close - start) : std::strlen(start);
    if (length > 0) {
      ink->name = start;
      ink->nameLength = length;
      ++ink->fields;
    }
  }
  return ink->fields >= minimum;
}

// ---- the block ----------------------------------------------------------------------

// Room for more bytes at the end of the block, growing it when needed.
uint8_t* Reserve(uint32_t more) {
  if (gInks.used + more > gInks.capacity) {
    uint32_t size = std::max(gInks.capacity * 2, gInks.used + more);
    if (!MemBlockResize(gInks.block, size)) {
      ReportColourCondition(kConditionNotResized, "ink_table.cpp", __LINE__);
      return nullptr;
    }
    gInks.capacity = size;
  }
  uint8_t* base = static_cast<uint8_t*>(MemBlockLock(gInks.block));
  if (!base) ReportColourCondition(kConditionNotLocked, "ink_table.cpp", __LINE__);
  return base;
}

CLRColor Plain(int model) {
  CLRColor c{};
  c.model = static_cast<uint16_t>(model);
  CLRSetPaletteWord(&c, kCLRPalUser);
  return c;
}

void SetRGB(CLRColor* c, int32_t r, int32_t g, int32_t b) {
  c->value8[0] = static_cast<uint8_t>(std::min(b, 255));
  c->value8[1] = static_cast<uint8_t>(std::min(g, 255));
  c->value8[2] = static_cast<uint8_t>(std::min(r, 255));
}

// Adds one ink line to the block. False when memory failed.
bool StoreInk(const InkLine& ink) {
  const int32_t* n = ink.numbers;
  CLRColor rgb, given;
  switch (ink.shape) {
    case Shape::kRGB:
      given = Plain(kCLRRGB255);
      SetRGB(&given, n[1], n[2], n[3]);
      CLRConvert(&rgb, kCLRRGB255, &given);
      break;
    case Shape::kProcess:
      given = Plain(kCLRCMYK);
      for (int i = 0; i < 4; ++i) given.value8[i] = static_cast<uint8_t>(std::min(n[1 + i], 100));
      CLRConvert(&rgb, kCLRRGB255, &given);
      break;
    case Shape::kSpot:
      given = Plain(kCLRCMYK);
      for (int i = 0; i < 4; ++i) given.value8[i] = static_cast<uint8_t>(std::min(n[1 + i], 100));
      rgb = Plain(kCLRRGB255);
      SetRGB(&rgb, n[5], n[6], n[7]);
      break;
  }

  // The name: none with the bare minimum of fields, else a number when the
  // text starts with digits worth more than 0, else the text.
  uint8_t name[kLineMax + 4];
  uint32_t nameSize = 1;
  name[0] = 0;
  if (ink.fields > MinimumFields(ink.shape)) {
    const char* text = ink.name;
    size_t length = ink.nameLength;
    // A stored text name must not begin with the number form's mark, or it
    // would be read back as a number: such bytes are dropped.
    while (length > 0 && static_cast<uint8_t>(*text) == kNumberName) ++text, --length;
    const char* digits = text;
    int32_t number = length > 0 && IsDigit(*text) ? ReadNumber(digits) : 0;
    if (number != 0) {
      name[0] = kNumberName;
      name[1] = static_cast<uint8_t>(number);
      name[2] = static_cast<uint8_t>(number >> 8);
      name[3] = 0;
      nameSize = 4;
    } else if (length > 0) {
      std::memcpy(name, text, length);
      name[length] = 0;
      nameSize = static_cast<uint32_t>(length) + 1;
    }
  }

  uint32_t size = kEntryHeader + nameSize;
  uint8_t* base = Reserve(size);
  if (!base) return false;
  uint32_t at = gInks.used;
  StoreLE16(base + at, static_cast<uint32_t>(n[0]));
  StoreLE16(base + at + 2, 0);
  std::memcpy(base + at + 4, &rgb, sizeof rgb);
  std::memcpy(base + at + 16, &given, sizeof given);
  std::memcpy(base + at + kEntryHeader, name, nameSize);
  StoreLE32(base + (kByOrder + 4 * static_cast<uint32_t>(gInks.inkCount)), at);
  StoreLE32(base + (kByIndex + 4 * static_cast<uint32_t>(n[0])), at);
  MemBlockUnlock(gInks.block);
  gInks.used += size;
  ++gInks.inkCount;
  return true;
}

// Fills a fresh table from the lines of source. False when memory failed.
bool ReadInks(CharSource& source) {
  gInks.block = MemBlockAlloc(kInitialBlock);
  if (!gInks.block) {
    ReportColourCondition(kConditionNotObtained, "ink_table.cpp", __LINE__);
    return false;
  }
  gInks.capacity = kInitialBlock;
  gInks.used = kEntriesStart;
  gInks.inkCount = 0;

  char line[kLineMax + 1];
  while (gInks.inkCount < kInkTableSize && NextLine(source, line)) {
    InkLine ink;
    if (!ParseInkLine(line, &ink)) continue;
    if (ink.numbers[0] < 0 || ink.numbers[0] >= kInkTableSize) continue;
    if (!StoreInk(ink)) {
      MemBlockFree(gInks.block);
      gInks = InkTableState{};
      return false;
    }
  }
  if (MemBlockResize(gInks.block, gInks.used)) gInks.capacity = gInks.used;
  return true;
}

int LoadWith(CharSource& source) {
  if (gInks.loadCount > 0) {
    ++gInks.loadCount;
    return 1;
  }
  if (!ReadInks(source)) return 0;
  gInks.loadCount = 1;
  return 1;
}

int LoadFromFile(const char* path) {
  if (gInks.loadCount > 0) {
    ++gInks.loadCount;
    return 1;
  }
  CharSource source;
  source.file = std::fopen(path, "rb");
  if (!source.file) {
    ReportColourFileError(kStrVerbOpening, path);
    source.text = kBuiltInInk;
    source.size = sizeof kBuiltInInk - 1;
  }
  int result = LoadWith(source);
  if (source.file) std::fclose(source.file);
  return result;
}

// The entry of an index, with the block locked; null (and unlocked) for none.
const uint8_t* LockEntry(int index) {
  if (index < 0 || index >= kInkTableSize) return nullptr;
  if (gInks.loadCount == 0 && !InkTableLoad()) return nullptr;
  const uint8_t* base = static_cast<const uint8_t*>(MemBlockLock(gInks.block));
  if (!base) {
    ReportColourCondition(kConditionNotLocked, "ink_table.cpp", __LINE__);
    return nullptr;
  }
  uint32_t at = LoadLE32(base + (kByIndex + 4 * static_cast<uint32_t>(index)));
  if (at == 0) {
    MemBlockUnlock(gInks.block);
    return nullptr;
  }
  return base + at;
}

int CopyForm(int index, int offset, CLRColor* out) {
  const uint8_t* entry = LockEntry(index);
  if (!entry) {
    *out = Plain(kCLRRGB255);  // black
    return 0;
  }
  std::memcpy(out, entry + offset, sizeof *out);
  MemBlockUnlock(gInks.block);
  return 1;
}

}  // namespace

int InkTableLoad() {
  if (gInks.loadCount > 0) {
    ++gInks.loadCount;
    return 1;
  }
  char dir[kMaxPath + 1];
  GetDataDir(dir, sizeof dir);
  return LoadFromFile(JoinPath(dir, "sketchry.ink").c_str());
}

int InkTableLoadFile(const char* path) { return LoadFromFile(path ? path : ""); }

int InkTableLoadText(const char* text, size_t size) {
  CharSource source;
  source.text = text ? text : "";
  source.size = text ? size : 0;
  return LoadWith(source);
}

void InkTableRelease() {
  if (gInks.loadCount == 0) return;
  if (--gInks.loadCount > 0) return;
  MemBlockFree(gInks.block);
  gInks = InkTableState{};
}

int InkTableLoadCount() { return gInks.loadCount; }

bool InkExists(int index) {
  const uint8_t* entry = LockEntry(index);
  if (!entry) return false;
  MemBlockUnlock(gInks.block);
  return true;
}

int InkRGB(int index, CLRColor* out) { return CopyForm(index, 4, out); }

int InkCMYK(int index, CLRColor* out) { return CopyForm(index, 16, out); }

void InkName(int index, char* out, size_t size) {
  if (!out || size == 0) return;
  if (index == 0) {
    std::snprintf(out, size, "BLACK");
    return;
  }
  const uint8_t* entry = LockEntry(index);
  if (!entry) {
    std::snprintf(out, size, "unknown PANTONE color %d", index);
    return;
  }
  const uint8_t* name = entry + kEntryHeader;
  if (name[0] == 0)
    std::snprintf(out, size, "PANTONE %d CV", index);
  else if (name[0] == kNumberName)
    std::snprintf(out, size, "PANTONE %d CV", LoadLE16(name + 1));
  else
    std::snprintf(out, size, "PANTONE %s CV", reinterpret_cast<const char*>(name));
  MemBlockUnlock(gInks.block);
}

int InkAt(int order, CLRColor* out) {
  if (order < 0 || order >= kInkTableSize) return 0;
  if (gInks.loadCount == 0 && !InkTableLoad()) return 0;
  if (order >= gInks.inkCount) return 0;
  const uint8_t* base = static_cast<const uint8_t*>(MemBlockLock(gInks.block));
  if (!base) {
    ReportColourCondition(kConditionNotLocked, "ink_table.cpp", __LINE__);
    return 0;
  }
  uint32_t at = LoadLE32(base + (kByOrder + 4 * static_cast<uint32_t>(order)));
  int index = static_cast<int16_t>(LoadLE16(base + at));
  MemBlockUnlock(gInks.block);
  CLRColor c = Plain(kCLRPantone);
  CLRSetPaletteWord(&c, kCLRPalPantoneSpot);
  CLRSetU16(&c, 8, static_cast<uint32_t>(index));
  CLRSetU16(&c, 10, 100);
  *out = c;
  return 1;
}

}  // namespace fancy
