// The PANTONE spot inks of sketchry.ink, in the data directory: per ink its
// index (0..1049), an RGB form, the form the file gave (CMYK percent or RGB)
// and a name. The file is a text list, one ink a line:
//
//   ; comment
//   12 249 245 131 "Yellow"          index, R, G, B, optional name
//   P 12 0 2 51 0 "Yellow"           index, C, M, Y, K (percent)
//   S 12 0 2 51 0 249 245 131 "..."  index, C, M, Y, K and R, G, B
//
// The table lives in one movable block: two arrays of 1050 offsets (by load
// order, by index) and the packed entries after them. It is load-counted; a
// query finds it loaded or loads it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "colour/clr_color.h"

namespace fancy {

constexpr int kInkTableSize = 1050;

// Reads the file on the first load (a file that cannot be opened is
// reported and replaced by one built-in ink); later loads only count.
// Returns 1, or 0 when memory failed.
int InkTableLoad();
// The same, reading the given file on the first load (tests, tools).
int InkTableLoadFile(const char* path);
// The same, reading the text of a file from memory (no file, no message).
int InkTableLoadText(const char* text, size_t size);
// Counts one load down; the last frees the table.
void InkTableRelease();
// Loads now held (0 when the table is not in memory).
int InkTableLoadCount();

bool InkExists(int index);
// The RGB form (model 5). A missing ink gives black and returns 0.
int InkRGB(int index, CLRColor* out);
// The form the file gave: model 2 from "P" and "S" lines, model 5 from plain
// ones. A missing ink gives black RGB and returns 0.
int InkCMYK(int index, CLRColor* out);
// "BLACK" for 0, "PANTONE <name> CV", "PANTONE <index> CV" without a name,
// "unknown PANTONE color <index>" for none; cut to size - 1.
void InkName(int index, char* out, size_t size);
// The order-th ink read (from 0) as a palette colour: model 1, palette word 3,
// its index, tint 100. Returns 0 past the last.
int InkAt(int order, CLRColor* out);

}  // namespace fancy
