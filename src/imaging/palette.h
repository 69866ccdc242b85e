// Palette: the colour table of an indexed image. Header and entries are one
// block; entries are three bytes blue, green, red and a pad byte.
#pragma once

#include <cstdint>

namespace fancy {

enum PaletteKind : uint16_t {
  kPaletteBlackWhite = 1,  // 2 entries: black, white
  kPaletteCustom = 2,      // caller's entries, at least 1
  kPaletteGreyRamp = 3,    // 256 entries, n is (n, n, n)
  kPaletteCustomAlt = 4,   // caller's entries, at least 1
  kPaletteCube = 5,        // 236: a 6x6x6 cube, red slowest, then 20 greys
  kPaletteSixteen = 6,     // 16: the 0/128 cube, then the 0/255 cube, with 8 light grey
};

struct PaletteEntry {
  uint8_t blue;
  uint8_t green;
  uint8_t red;
  uint8_t pad;
};
static_assert(sizeof(PaletteEntry) == 4);

// The inverse table that finds the nearest entry fast; built and owned by the
// image conversion code, freed with its palette.
struct PaletteLookup;
void PaletteLookupFree(PaletteLookup* lookup);

struct Palette {
  uint16_t kind;        // PaletteKind
  uint16_t count;       // entries that follow the header
  uint16_t lookupKind;  // 0 none, 1 `lookup` is a PaletteLookup
  PaletteLookup* lookup;
  // `count` PaletteEntry follow in the same block; see PaletteEntries.
};

inline PaletteEntry* PaletteEntries(Palette* palette) {
  return reinterpret_cast<PaletteEntry*>(palette + 1);
}
inline const PaletteEntry* PaletteEntries(const Palette* palette) {
  return reinterpret_cast<const PaletteEntry*>(palette + 1);
}

// A new palette of the kind. Kinds 1, 3, 5 and 6 have their fixed entries and
// ignore `count`; kinds 2 and 4 take 1 to 65535 zeroed entries for the caller
// to set. Kind 0, kinds above 6 and bad counts give null.
Palette* PaletteCreate(int32_t kind, int32_t count);

// A copy of the header and entries; the lookup is not copied.
Palette* PaletteCopy(const Palette* palette);

// Frees the palette and its lookup. Null is ignored.
void PaletteFree(Palette* palette);

// Equal for merging: the same block, or the same count and entry by entry the
// same three bytes.
bool PaletteSame(const Palette* a, const Palette* b);

// Nearest index in a kind 5 palette by its fast rule: greys go to the grey
// ramp (or the black and white corners of the cube), other colours to the
// cube level nearest in each channel.
int32_t PaletteNearestCube(int32_t red, int32_t green, int32_t blue);

// Nearest index in a kind 6 palette: the nearest of the 0/128 corner, the
// 0/255 corner and light grey (entry 8), ties to the 0/128 corner, light grey
// losing to both. Bit 0 of a corner index is the first argument, bit 1 the
// second, bit 2 the third; PaletteCreate lays kind 6 out with bit 0 red,
// bit 1 green, bit 2 blue, so call it with (red, green, blue).
int32_t PaletteNearestSixteen(int32_t c0, int32_t c1, int32_t c2);

}  // namespace fancy
