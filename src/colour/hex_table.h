// The Hexachrome inks of pantone.hex, in the data directory: per id
// (0..2023) six ink percentages (Yellow, Orange, Magenta, Cyan, Green, Black),
// a Lab value and a name.
//
// File, little-endian: u16 magic 0xDDCC, u16 count (always 2023), then 2023
// records of ten u32 (id, the six inks, L, a, b; each value kept as a byte),
// a u8 name length and the name. A file that is missing or damaged is
// reported and replaced by one built-in ink, "Hex. Yellow".
//
// The table lives in one movable block: offsets by load order (2023) and by
// id (2024), then the packed entries. It is load-counted; a query with no
// table loaded loads it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "colour/clr_color.h"

namespace fancy {

constexpr int kHexRecordCount = 2023;
constexpr int kHexIdCount = 2024;

// Reads the file on the first load; later loads only count. Returns 1, or 0
// when memory failed.
int HexTableLoad();
// The same, from the given file (tests, tools).
int HexTableLoadFile(const char* path);
// The same, from the bytes of a file in memory; a damaged one falls back to
// the built-in ink without a message.
int HexTableLoadBytes(const uint8_t* data, size_t size);
void HexTableRelease();
// Loads now held (0 when the table is not in memory).
int HexTableLoadCount();

// The six inks of id scaled by tint percent (byte arithmetic, wrapping), as
// a model-15 colour. Returns 0 (out untouched) when there is no such id.
int HexColorForId(int id, int tint, CLRColor* out15);
// The Lab value of id as RGB255, tinted toward white. Returns 0 (out
// untouched) when there is no such id.
int HexRGBForId(int id, int tint, CLRColor* outRGB);
// "BLACK" for 0, "PANTONE <name> CV", "PANTONE <id> CV" for an empty name,
// "unknown PANTONE color <id>" for none; with useHexachromeWord the six
// process inks (ids below 7) read "Hexachrome <name from its sixth
// character>". Cut to size - 1.
void HexName(int id, char* out, size_t size, bool useHexachromeWord);
// The order-th record read (from 0) as a palette colour: model 14, palette
// word 12, its id, tint 100. Returns 0 past the last.
int HexAt(int order, CLRColor* out);

}  // namespace fancy
