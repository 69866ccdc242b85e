// Fuzzes the reader of the Hexachrome table (pantone.hex), then every query
// on the table it made. The first byte chooses the input's shape: even, the
// rest is the whole file; odd, the rest is one stretch of record bytes that
// follows a good header and is repeated for all 2023 records, so that
// mutations reach the record reader and not only the header test.
//
//   CC=clang CXX=clang++ cmake -S . -B build-fuzz -DFANCY_FUZZ=ON -DFANCY_BENCH=OFF
//   cmake --build build-fuzz -j2 --target hex_table_fuzz
//   mkdir -p build-fuzz/hex-corpus
//   build-fuzz/bin/hex_table_fuzz build-fuzz/hex-corpus -max_total_time=60 -max_len=4096
//
// A crash, a sanitizer report or a broken invariant (__builtin_trap) leaves
// the input in crash-<hash> for a rerun: build-fuzz/bin/hex_table_fuzz crash-<hash>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "colour/hex_table.h"

using namespace fancy;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  std::vector<uint8_t> file;
  const uint8_t* body = data + 1;
  size_t bodySize = size - 1;
  if ((data[0] & 1) && bodySize > 0 && bodySize <= 300) {
    file = {0xCC, 0xDD, 0xE7, 0x07};  // magic 0xDDCC, count 2023
    for (int i = 0; i < kHexRecordCount; ++i) file.insert(file.end(), body, body + bodySize);
  } else {
    file.assign(body, body + bodySize);
  }
  if (!HexTableLoadBytes(file.data(), file.size())) return 0;

  char name[40];
  int held = 0;
  for (int id = -2; id <= kHexIdCount + 1; ++id) {
    CLRColor inks, rgb;
    int hasInks = HexColorForId(id, 100, &inks);
    int hasRGB = HexRGBForId(id, 50, &rgb);
    if (hasInks != hasRGB) __builtin_trap();
    if (hasInks && (inks.model != kCLRHexProcess || rgb.model != kCLRRGB255)) __builtin_trap();
    held += hasInks;
    HexName(id, name, sizeof name, id & 1);
    if (std::strlen(name) >= sizeof name) __builtin_trap();
  }
  // The built-in ink, or every record of a good file.
  if (held == 0) __builtin_trap();
  CLRColor at;
  int order = 0;
  for (; HexAt(order, &at); ++order) {
    CLRColor inks;
    if (order >= kHexRecordCount || !HexColorForId(CLRGetI16(&at, 8), 100, &inks)) __builtin_trap();
  }
  if (order != 1 && order != kHexRecordCount) __builtin_trap();
  HexTableRelease();
  return 0;
}
