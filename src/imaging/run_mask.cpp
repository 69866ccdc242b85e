#include "imaging/run_mask.h"

#include <cstdlib>
#include <cstring>

namespace fancy {

namespace {

constexpr int32_t kRunStep = 20;
constexpr int32_t kMaxRuns = 32767;
constexpr int32_t kMaxLength = 65535;

bool Grow(RunRow* row) {
  int32_t capacity = row->runCapacity + kRunStep;
  if (capacity > kMaxRuns) capacity = kMaxRuns;
  if (capacity <= row->runCount) return false;
  auto* runs = static_cast<Run*>(std::calloc(static_cast<size_t>(capacity), sizeof(Run)));
  if (!runs) return false;
  if (row->runCount > 0) std::memcpy(runs, row->runs, sizeof(Run) * row->runCount);
  std::free(row->runs);
  row->runs = runs;
  row->runCapacity = static_cast<int16_t>(capacity);
  return true;
}

uint32_t Load4(const uint8_t* p) {
  uint32_t w;
  std::memcpy(&w, p, 4);
  return w;
}

bool HasZeroByte(uint32_t w) { return ((w - 0x01010101u) & ~w & 0x80808080u) != 0; }

uint16_t ClassOf(uint8_t v, int32_t threshold) {
  if (threshold >= 0) return v >= threshold ? kRunFull : kRunClear;
  return v == 0 ? kRunClear : v == 255 ? kRunFull : kRunPartial;
}

// True when the four bytes at p all have the class `kind`.
bool FourOfClass(const uint8_t* p, uint16_t kind, int32_t threshold) {
  if (threshold >= 0) {
    bool full = kind == kRunFull;
    return (p[0] >= threshold) == full && (p[1] >= threshold) == full &&
           (p[2] >= threshold) == full && (p[3] >= threshold) == full;
  }
  uint32_t w = Load4(p);
  if (kind == kRunClear) return w == 0;
  if (kind == kRunFull) return w == 0xFFFFFFFFu;
  return !HasZeroByte(w) && !HasZeroByte(~w);
}

}  // namespace

RunMask* RunMaskCreate(int32_t width, int32_t height) {
  if (width < 1 || width > kMaxLength || height < 1) return nullptr;
  auto* mask = static_cast<RunMask*>(std::calloc(1, sizeof(RunMask)));
  if (!mask) return nullptr;
  mask->rows = static_cast<RunRow*>(std::calloc(static_cast<size_t>(height), sizeof(RunRow)));
  if (!mask->rows) {
    std::free(mask);
    return nullptr;
  }
  mask->width = width;
  mask->height = height;
  return mask;
}

void RunRowClear(RunRow* row) {
  std::free(row->runs);
  row->runs = nullptr;
  row->pixelTotal = 0;
  row->runCount = 0;
  row->runCapacity = 0;
}

void RunMaskFree(RunMask* mask) {
  if (!mask) return;
  for (int32_t y = 0; y < mask->height; ++y) RunRowClear(&mask->rows[y]);
  std::free(mask->rows);
  std::free(mask);
}

RunMask* RunMaskCopy(const RunMask* mask) {
  if (!mask) return nullptr;
  RunMask* copy = RunMaskCreate(mask->width, mask->height);
  if (!copy) return nullptr;
  for (int32_t y = 0; y < mask->height; ++y) {
    const RunRow& from = mask->rows[y];
    RunRow& to = copy->rows[y];
    if (from.runCount <= 0) continue;
    to.runs = static_cast<Run*>(std::calloc(static_cast<size_t>(from.runCapacity), sizeof(Run)));
    if (!to.runs) {
      RunMaskFree(copy);
      return nullptr;
    }
    std::memcpy(to.runs, from.runs, sizeof(Run) * from.runCount);
    to.runCount = from.runCount;
    to.runCapacity = from.runCapacity;
    to.pixelTotal = from.pixelTotal;
  }
  return copy;
}

bool RunMaskContains(const RunMask* mask, int32_t x, int32_t y) {
  if (!mask || x < 0 || y < 0 || y >= mask->height) return false;
  const RunRow& row = mask->rows[y];
  int32_t end = 0;
  for (int32_t i = 0; i < row.runCount; ++i) {
    end += row.runs[i].length;
    if (x < end) return row.runs[i].kind == kRunFull;
  }
  return false;
}

int RunMaskFill(RunMask* mask, uint8_t coverage) {
  if (!mask) return 0;
  uint16_t kind = coverage == 0 ? kRunClear : coverage == 255 ? kRunFull : kRunPartial;
  for (int32_t y = 0; y < mask->height; ++y) {
    RunRow* row = &mask->rows[y];
    row->runCount = 0;
    row->pixelTotal = 0;
    if (!RunRowAppend(row, kind, mask->width, nullptr, coverage, false)) return 0;
  }
  return 1;
}

int RunRowAppend(RunRow* row, uint16_t kind, int32_t length, TileCell* cell, int32_t offset,
                 bool merge) {
  if (length <= 0) return 1;
  if (int32_t{row->pixelTotal} + length > kMaxLength) return 0;
  if (merge && kind != kRunPartial && row->runCount > 0) {
    Run& last = row->runs[row->runCount - 1];
    if (last.kind == kind) {
      int32_t room = kMaxLength - last.length;
      int32_t add = length < room ? length : room;
      last.length = static_cast<uint16_t>(last.length + add);
      row->pixelTotal = static_cast<uint16_t>(row->pixelTotal + add);
      length -= add;
      offset += add;
    }
  }
  while (length > 0) {
    if (row->runCount >= row->runCapacity && !Grow(row)) return 0;
    int32_t piece = length < kMaxLength ? length : kMaxLength;
    Run& run = row->runs[row->runCount++];
    run.kind = kind;
    run.length = static_cast<uint16_t>(piece);
    run.cell = kind == kRunPartial ? cell : nullptr;
    run.offset = kind == kRunPartial ? offset : 0;
    row->pixelTotal = static_cast<uint16_t>(row->pixelTotal + piece);
    length -= piece;
    offset += piece;
  }
  return 1;
}

int RunRowAddBytes(RunRow* row, const uint8_t* values, int32_t count, int32_t threshold,
                   TileCell* cell, int32_t offset, bool merge) {
  if (threshold > 255) threshold = 256;  // nothing reaches it: all clear
  int32_t i = 0;
  while (i < count) {
    int32_t start = i;
    uint16_t kind = ClassOf(values[i], threshold);
    ++i;
    while (i + 4 <= count && FourOfClass(values + i, kind, threshold)) i += 4;
    while (i < count && ClassOf(values[i], threshold) == kind) ++i;
    if (!RunRowAppend(row, kind, i - start, cell, offset + start, merge && start == 0))
      return 0;
  }
  return 1;
}

int RunRowAddBits(RunRow* row, const uint8_t* bits, int32_t firstBit, int32_t count,
                  bool merge) {
  const uint8_t* base = bits + (firstBit >> 3);
  int32_t bit = firstBit & 7;
  auto at = [&](int32_t i) -> uint16_t {
    int32_t b = bit + i;
    return (base[b >> 3] >> (7 - (b & 7))) & 1 ? kRunFull : kRunClear;
  };
  int32_t i = 0;
  while (i < count) {
    int32_t start = i;
    uint16_t kind = at(i);
    ++i;
    // Whole bytes of one class go four at a time, then one at a time.
    uint8_t same = kind == kRunFull ? 0xFF : 0x00;
    while (i < count && ((bit + i) & 7) != 0 && at(i) == kind) ++i;
    if (i < count && ((bit + i) & 7) == 0) {
      const uint8_t* p = base + ((bit + i) >> 3);
      uint32_t word = same ? 0xFFFFFFFFu : 0;
      while (i + 32 <= count && Load4(p) == word) {
        i += 32;
        p += 4;
      }
      while (i + 8 <= count && *p == same) {
        i += 8;
        ++p;
      }
    }
    while (i < count && at(i) == kind) ++i;
    if (!RunRowAppend(row, kind, i - start, nullptr, 0, merge && start == 0)) return 0;
  }
  return 1;
}

}  // namespace fancy
