// The nearest entry of a palette to a colour, by squared distance in red,
// green and blue, the earliest of equals. A palette of up to 256 entries
// gets a PaletteLookup at first use: the colour cube is cut into 32,768
// cells of 8 x 8 x 8, and each cell keeps, once asked, the few entries that
// can be nearest to any colour inside it, in palette order.
#pragma once

#include <cstdint>

#include "imaging/palette.h"

namespace fancy {

// The index nearest to (red, green, blue) (each 0 to 255). Builds the
// palette's lookup at first use; a palette whose lookup can't be made, or
// that is null or empty, answers 0. Palettes of more than 256 entries are
// scanned directly every time.
int32_t PaletteNearestIndex(Palette* palette, int32_t red, int32_t green, int32_t blue);

// The same by a direct scan of every entry, with no lookup.
int32_t PaletteNearestIndexScan(const Palette* palette, int32_t red, int32_t green, int32_t blue);

// Drops the lookup, for a caller that changed the palette's entries after a
// search.
void PaletteForgetLookup(Palette* palette);

}  // namespace fancy
