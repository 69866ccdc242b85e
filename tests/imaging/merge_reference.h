// Merge formulas written straight from the mode table, one channel or one
// pixel at a time with the DivTable read as a table: the kernels must give
// the same bytes.
#pragma once

#include <cstdint>

namespace fancy::testing {

// F(d, s) of a channel mode on type 1 bytes (modes 0-10, 24-31).
int RefChannel(int mode, int d, int s);
// The same under coverage m (columns 1 to 5).
int RefChannelCovered(int mode, int d, int s, int m);

// Type 3: modes 7-10 and 26 on the inks' complements; the rest as type 1.
int RefInk(int mode, int d, int s);
int RefInkCovered(int mode, int d, int s, int m);

// Modes that act on whole pixels of types 1, 3 and 11 (IfLighter, IfDarker,
// Texturize, the hue merges, the channel modes, Lab's Multiply and Screen).
// m < 0 is column 0.
void RefPixel(int type, int mode, uint8_t* d, const uint8_t* s, int m);

// The coverage m of pixel i in a column (1 to 5).
int RefCoverage(int column, int mask1, int mask2, int opacity);

}  // namespace fancy::testing
