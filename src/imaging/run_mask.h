// RunMask: a region held as runs per row. A run is clear (kind 0), full
// (kind 1) or partial (kind 2); a partial run reads its coverage bytes from a
// TileCell, or, with no cell, has the one coverage value in `offset`.
#pragma once

#include <cstdint>

namespace fancy {

struct TileCell;

enum RunKind : uint16_t {
  kRunClear = 0,
  kRunFull = 1,
  kRunPartial = 2,
};

struct Run {
  uint16_t kind;    // RunKind
  uint16_t length;  // pixels
  TileCell* cell;   // partial runs: the cell whose pixels hold the coverage
  int32_t offset;   // byte offset of the run's first coverage byte from the
                    // cell's pixels; the coverage itself when `cell` is null
};

struct RunRow {
  Run* runs;
  uint16_t pixelTotal;  // sum of the run lengths
  int16_t runCount;
  int16_t runCapacity;  // grows 20 runs at a time
};

struct RunMask {
  int32_t width;   // 1 to 65535, since a row's total is 16 bits
  int32_t height;
  RunRow* rows;    // height rows
};

// A mask of empty rows, or null for a bad size or no memory.
RunMask* RunMaskCreate(int32_t width, int32_t height);
void RunMaskFree(RunMask* mask);
RunMask* RunMaskCopy(const RunMask* mask);

// True when (x, y) lies in a run of kind 1.
bool RunMaskContains(const RunMask* mask, int32_t x, int32_t y);

// Makes every row one run of the coverage: 0 gives kind 0, 255 kind 1, the
// rest kind 2 with the value in `offset`. Returns 1, or 0 for a null mask or
// no memory.
int RunMaskFill(RunMask* mask, uint8_t coverage);

void RunRowClear(RunRow* row);

// Appends a run; with `merge`, a run of kind 0 or 1 that has the kind of the
// row's last run lengthens that run instead (partial runs never merge, since
// each reads its bytes through its own cell). Runs longer than 65535 are
// split. Returns 0 when the row would pass 65535 pixels or 32767 runs, or on
// no memory.
int RunRowAppend(RunRow* row, uint16_t kind, int32_t length, TileCell* cell, int32_t offset,
                 bool merge);

// Adds the runs of `count` 8-bit coverage values. With threshold < 0 there
// are three classes: 0 is clear, 255 full, 1 to 254 partial (whose run gets
// `cell` and `offset` plus its position). With a threshold t of 0 to 255, a
// value >= t is full and the rest clear. With `merge`, the first stretch
// joins the row's last run when it has its kind (a new cell continuing the
// row). Returns 1, or 0 as RunRowAppend.
int RunRowAddBytes(RunRow* row, const uint8_t* values, int32_t count, int32_t threshold,
                   TileCell* cell, int32_t offset, bool merge);

// Adds the runs of `count` bits starting `firstBit` bits into `bits` (most
// significant bit first): a set bit is full, a clear one clear.
int RunRowAddBits(RunRow* row, const uint8_t* bits, int32_t firstBit, int32_t count, bool merge);

}  // namespace fancy
