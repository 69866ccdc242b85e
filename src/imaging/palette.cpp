#include "imaging/palette.h"

#include <cstdlib>
#include <cstring>

namespace fancy {

namespace {

Palette* AllocatePalette(int32_t kind, int32_t count) {
  size_t bytes = sizeof(Palette) + sizeof(PaletteEntry) * static_cast<size_t>(count);
  auto* palette = static_cast<Palette*>(std::calloc(1, bytes));
  if (!palette) return nullptr;
  palette->kind = static_cast<uint16_t>(kind);
  palette->count = static_cast<uint16_t>(count);
  return palette;
}

void SetEntry(PaletteEntry* e, int red, int green, int blue) {
  e->blue = static_cast<uint8_t>(blue);
  e->green = static_cast<uint8_t>(green);
  e->red = static_cast<uint8_t>(red);
  e->pad = 0;
}

}  // namespace

Palette* PaletteCreate(int32_t kind, int32_t count) {
  switch (kind) {
    case kPaletteBlackWhite: count = 2; break;
    case kPaletteCustom:
    case kPaletteCustomAlt:
      if (count < 1 || count > 65535) return nullptr;
      break;
    case kPaletteGreyRamp: count = 256; break;
    case kPaletteCube: count = 236; break;
    case kPaletteSixteen: count = 16; break;
    default: return nullptr;
  }
  Palette* palette = AllocatePalette(kind, count);
  if (!palette) return nullptr;
  PaletteEntry* e = PaletteEntries(palette);
  switch (kind) {
    case kPaletteBlackWhite:
      SetEntry(&e[0], 0, 0, 0);
      SetEntry(&e[1], 255, 255, 255);
      break;
    case kPaletteGreyRamp:
      for (int n = 0; n < 256; ++n) SetEntry(&e[n], n, n, n);
      break;
    case kPaletteCube: {
      int n = 0;
      for (int r = 0; r < 6; ++r)
        for (int g = 0; g < 6; ++g)
          for (int b = 0; b < 6; ++b) SetEntry(&e[n++], r * 51, g * 51, b * 51);
      for (int k = 0; k < 20; ++k, ++n) {
        int v = 255 * k / 19;
        SetEntry(&e[n], v, v, v);
      }
      break;
    }
    case kPaletteSixteen:
      for (int n = 0; n < 8; ++n) {
        SetEntry(&e[n], (n & 1) ? 128 : 0, (n & 2) ? 128 : 0, (n & 4) ? 128 : 0);
        SetEntry(&e[8 + n], (n & 1) ? 255 : 0, (n & 2) ? 255 : 0, (n & 4) ? 255 : 0);
      }
      SetEntry(&e[8], 192, 192, 192);
      break;
    default: break;  // the caller's entries, left zeroed
  }
  return palette;
}

Palette* PaletteCopy(const Palette* palette) {
  if (!palette) return nullptr;
  Palette* copy = AllocatePalette(palette->kind, palette->count);
  if (!copy) return nullptr;
  std::memcpy(PaletteEntries(copy), PaletteEntries(palette),
              sizeof(PaletteEntry) * palette->count);
  return copy;
}

void PaletteFree(Palette* palette) {
  if (!palette) return;
  if (palette->lookup) PaletteLookupFree(palette->lookup);
  std::free(palette);
}

bool PaletteSame(const Palette* a, const Palette* b) {
  if (a == b) return true;
  if (!a || !b || a->count != b->count) return false;
  const PaletteEntry* ea = PaletteEntries(a);
  const PaletteEntry* eb = PaletteEntries(b);
  for (int n = 0; n < a->count; ++n) {
    if (ea[n].blue != eb[n].blue || ea[n].green != eb[n].green || ea[n].red != eb[n].red)
      return false;
  }
  return true;
}

int32_t PaletteNearestCube(int32_t red, int32_t green, int32_t blue) {
  if (red == green && green == blue) {
    int32_t v = red;
    if (v < 1) return 0;
    if (v >= 255 || 5 * v + 33 >= 1275) return 215;
    return 216 + (5 * v + 33) / 67;
  }
  auto level = [](int32_t c) {
    int32_t up = c + 25;
    if (up > 255) up = 255;
    if (up < 0) up = 0;
    return up / 51;
  };
  return (level(red) * 6 + level(green)) * 6 + level(blue);
}

int32_t PaletteNearestSixteen(int32_t c0, int32_t c1, int32_t c2) {
  const int32_t c[3] = {c0, c1, c2};
  int32_t dark = 0, bright = 8;
  int32_t darkDist = 0, brightDist = 0, greyDist = 0;
  for (int k = 0; k < 3; ++k) {
    int32_t d = c[k] < 64 ? 0 : 128;
    if (d) dark |= 1 << k;
    darkDist += (c[k] - d) * (c[k] - d);
    int32_t b = c[k] < 128 ? 0 : 255;
    if (b) bright |= 1 << k;
    brightDist += (c[k] - b) * (c[k] - b);
    greyDist += (c[k] - 192) * (c[k] - 192);
  }
  if (darkDist <= brightDist && darkDist <= greyDist) return dark;
  if (brightDist <= greyDist) return bright;
  return 8;
}

}  // namespace fancy
