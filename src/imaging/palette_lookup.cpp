#include "imaging/palette_lookup.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace fancy {

namespace {

constexpr int32_t kCells = 1 << 15;
constexpr int32_t kStartBound = 0x30000;  // above 3 x 255 x 255
constexpr size_t kBlockBytes = 16012;     // room for 62 full lists of 257 bytes

// The candidate lists live in a chain of blocks that never move.
struct ListBlock {
  ListBlock* next;
  size_t used;
  uint8_t bytes[kBlockBytes];
};

}  // namespace

struct PaletteLookup {
  int32_t count;
  uint8_t red[256], green[256], blue[256];
  int32_t squareTable[511];         // (d - 255)^2 for d = 0 .. 510
  const uint8_t* cells[kCells];     // per cell: a count byte less one, then the
                                    // indices; null until asked
  ListBlock* blocks;                // the newest first
  uint32_t lastKey;                 // the last colour asked, + 1 (0: none)
  int32_t lastIndex;
};

void PaletteLookupFree(PaletteLookup* lookup) {
  if (!lookup) return;
  for (ListBlock* b = lookup->blocks; b;) {
    ListBlock* next = b->next;
    std::free(b);
    b = next;
  }
  std::free(lookup);
}

namespace {

const int32_t* Squares(const PaletteLookup* l) { return l->squareTable + 255; }

PaletteLookup* BuildLookup(const Palette* palette) {
  auto* l = static_cast<PaletteLookup*>(std::calloc(1, sizeof(PaletteLookup)));
  if (!l) return nullptr;
  l->count = palette->count;
  const PaletteEntry* e = PaletteEntries(palette);
  for (int32_t i = 0; i < l->count; ++i) {
    l->red[i] = e[i].red;
    l->green[i] = e[i].green;
    l->blue[i] = e[i].blue;
  }
  for (int32_t d = -255; d <= 255; ++d) l->squareTable[d + 255] = d * d;
  return l;
}

// Room for `bytes` in the newest block, or in a new one.
uint8_t* Reserve(PaletteLookup* l, size_t bytes) {
  ListBlock* b = l->blocks;
  if (!b || b->used + bytes > kBlockBytes) {
    b = static_cast<ListBlock*>(std::calloc(1, sizeof(ListBlock)));
    if (!b) return nullptr;
    b->next = l->blocks;
    l->blocks = b;
  }
  uint8_t* at = b->bytes + b->used;
  b->used += bytes;
  return at;
}

// Squared distance from channel value c to the interval [lo, lo + 7]: the
// least and the most.
void IntervalDistance(int32_t c, int32_t lo, int32_t* least, int32_t* most) {
  int32_t hi = lo + 7;
  int32_t near = c < lo ? lo - c : c > hi ? c - hi : 0;
  int32_t far = std::max(std::abs(c - lo), std::abs(c - hi));
  *least = near * near;
  *most = far * far;
}

// The entries that can be nearest to some colour of the cell: those whose
// least distance to the cell's box is no more than the smallest greatest
// distance of any entry.
bool BuildCell(PaletteLookup* l, int32_t cell) {
  int32_t r0 = (cell >> 10) << 3, g0 = ((cell >> 5) & 31) << 3, b0 = (cell & 31) << 3;
  int32_t least[256];
  int32_t bound = kStartBound;
  for (int32_t i = 0; i < l->count; ++i) {
    int32_t lr, mr, lg, mg, lb, mb;
    IntervalDistance(l->red[i], r0, &lr, &mr);
    IntervalDistance(l->green[i], g0, &lg, &mg);
    IntervalDistance(l->blue[i], b0, &lb, &mb);
    least[i] = lr + lg + lb;
    bound = std::min(bound, mr + mg + mb);
  }
  int32_t n = 0;
  for (int32_t i = 0; i < l->count; ++i) n += least[i] <= bound;
  uint8_t* out = Reserve(l, static_cast<size_t>(n) + 1);
  if (!out) return false;
  out[0] = static_cast<uint8_t>(n - 1);  // 1 to 256 candidates
  int32_t k = 1;
  for (int32_t i = 0; i < l->count; ++i)
    if (least[i] <= bound) out[k++] = static_cast<uint8_t>(i);
  l->cells[cell] = out;
  return true;
}

}  // namespace

int32_t PaletteNearestIndexScan(const Palette* palette, int32_t red, int32_t green, int32_t blue) {
  if (!palette || palette->count == 0) return 0;
  const PaletteEntry* e = PaletteEntries(palette);
  int32_t best = kStartBound, index = 0;
  for (int32_t i = 0; i < palette->count; ++i) {
    int32_t dr = red - e[i].red, dg = green - e[i].green, db = blue - e[i].blue;
    int32_t d = dr * dr + dg * dg + db * db;
    if (d < best) {
      best = d;
      index = i;
    }
  }
  return index;
}

int32_t PaletteNearestIndex(Palette* palette, int32_t red, int32_t green, int32_t blue) {
  if (!palette || palette->count == 0) return 0;
  red = std::clamp(red, 0, 255);
  green = std::clamp(green, 0, 255);
  blue = std::clamp(blue, 0, 255);
  if (palette->count > 256) return PaletteNearestIndexScan(palette, red, green, blue);
  if (!palette->lookup) {
    palette->lookup = BuildLookup(palette);
    if (!palette->lookup) return 0;
    palette->lookupKind = 1;
  }
  PaletteLookup* l = palette->lookup;
  uint32_t key = static_cast<uint32_t>((red << 16) | (green << 8) | blue) + 1;
  if (key == l->lastKey) return l->lastIndex;
  int32_t cell = ((red >> 3) << 10) | ((green >> 3) << 5) | (blue >> 3);
  if (!l->cells[cell] && !BuildCell(l, cell)) return 0;
  const uint8_t* list = l->cells[cell];
  int32_t n = list[0] + 1;
  int32_t index = list[1];
  if (n > 1) {
    const int32_t* sq = Squares(l);
    int32_t best = kStartBound;
    for (int32_t k = 1; k <= n; ++k) {
      int32_t i = list[k];
      int32_t d = sq[red - l->red[i]];
      if (d >= best) continue;
      d += sq[green - l->green[i]];
      if (d >= best) continue;
      d += sq[blue - l->blue[i]];
      if (d < best) {
        best = d;
        index = i;
      }
    }
  }
  l->lastKey = key;
  l->lastIndex = index;
  return index;
}

void PaletteForgetLookup(Palette* palette) {
  if (!palette) return;
  PaletteLookupFree(palette->lookup);
  palette->lookup = nullptr;
  palette->lookupKind = 0;
}

}  // namespace fancy
