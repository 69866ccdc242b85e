// Fuzzes the reader of the spot-ink list (sketchry.ink): any bytes as the
// file's text, then every query on the table it made.
//
//   CC=clang CXX=clang++ cmake -S . -B build-fuzz -DFANCY_FUZZ=ON -DFANCY_BENCH=OFF
//   cmake --build build-fuzz -j2 --target ink_table_fuzz
//   mkdir -p build-fuzz/ink-corpus
//   build-fuzz/bin/ink_table_fuzz build-fuzz/ink-corpus -max_total_time=60 -max_len=16384
//
// A crash, a sanitizer report or a broken invariant (__builtin_trap) leaves
// the input in crash-<hash> for a rerun: build-fuzz/bin/ink_table_fuzz crash-<hash>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "colour/ink_table.h"

using namespace fancy;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!InkTableLoadText(reinterpret_cast<const char*>(data), size)) return 0;
  char name[48];
  int found = 0;
  for (int index = -2; index <= kInkTableSize + 1; ++index) {
    CLRColor rgb, given;
    int hasRGB = InkRGB(index, &rgb);
    int hasGiven = InkCMYK(index, &given);
    if (hasRGB != hasGiven || hasRGB != (InkExists(index) ? 1 : 0)) __builtin_trap();
    if (hasRGB && rgb.model != kCLRRGB255) __builtin_trap();
    if (hasGiven && given.model != kCLRRGB255 && given.model != kCLRCMYK) __builtin_trap();
    if (hasGiven && given.model == kCLRCMYK)
      for (uint8_t v : given.value8)
        if (v > 100) __builtin_trap();
    found += hasRGB;
    InkName(index, name, sizeof name);
    if (std::strlen(name) >= sizeof name) __builtin_trap();
  }
  CLRColor at;
  int order = 0;
  for (; InkAt(order, &at); ++order)
    if (order >= kInkTableSize || !InkExists(CLRGetI16(&at, 8))) __builtin_trap();
  // Every index held was read at least once; duplicates add to the order.
  if (order < found) __builtin_trap();
  InkTableRelease();
  return 0;
}
