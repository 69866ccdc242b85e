#include "config/strings.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace fancy {

namespace {

struct StringRow {
  uint32_t id;
  const char* text;
};

// Each subsystem keeps its own rows; the table is their union.
const StringRow kStringRows[] = {
#include "frame/strings.inc"
#include "stroke/strings.inc"
#include "tile/strings.inc"
#include "relief/strings.inc"
#include "imaging/strings.inc"
#include "colour/strings.inc"
#include "controls/strings.inc"
#include "config/strings.inc"
    {0, nullptr},
};

constexpr size_t kTempStringBuffer = 2304;
constexpr size_t kTempStringMax = 256;
char gTempStrings[kTempStringBuffer];
size_t gTempStringNext = 0;

}  // namespace

const char* FindString(uint32_t id) {
  for (const StringRow& row : kStringRows)
    if (row.text && row.id == id) return row.text;
  return nullptr;
}

const char* CopyTempString(const char* text) {
  if (!text) text = "";
  size_t length = std::min(std::strlen(text), kTempStringMax - 1);
  if (gTempStringNext + length + 1 > kTempStringBuffer) gTempStringNext = 0;
  char* out = gTempStrings + gTempStringNext;
  std::memmove(out, text, length);  // text may itself lie in the buffer
  out[length] = '\0';
  gTempStringNext += length + 1;
  return out;
}

uint32_t StringTableDuplicateId() {
  const size_t count = std::size(kStringRows) - 1;  // the last row ends the table
  for (size_t i = 0; i < count; ++i)
    for (size_t j = i + 1; j < count; ++j)
      if (kStringRows[i].id == kStringRows[j].id) return kStringRows[i].id;
  return 0;
}

const char* LoadTempString(uint32_t id) { return CopyTempString(FindString(id)); }

}  // namespace fancy
