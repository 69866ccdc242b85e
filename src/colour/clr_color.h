// CLRColor: the 12-byte colour record, stored as it stands in palette files.
// RGB-like models hold blue first, so their value bytes can go to a 24-bit
// raster line unchanged.
//
// Offset 2 read as a little-endian u16 is the palette word: palette in the low
// byte, subPalette in the high byte (261 = custom palette first taken from
// TRUMATCH). A word of 5 means "custom, no origin".
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/byte_order.h"

namespace fancy {

struct CLRColor {
  uint16_t model;       // CLRModel
  uint8_t palette;      // CLRPaletteCode; 5 for no fixed palette
  uint8_t subPalette;   // with palette 5: the palette first taken from
  uint8_t tint;         // percent, spot-like colours
  uint8_t reserved;
  uint8_t value6[2];
  uint8_t value8[4];
};
static_assert(sizeof(CLRColor) == 12, "CLRColor is a 12-byte file record");
static_assert(offsetof(CLRColor, value6) == 6 && offsetof(CLRColor, value8) == 8);

// Value bytes by model:
//   1, 14  i16 ink index at 8, u16 tint percent at 10
//   2      C M Y K percent at 8..11        3, 17  C M Y K 0..255 at 8..11
//   4      C M Y at 8..10                  5      B G R at 8..10
//   6      i16 hue at 8, S at 10, B at 11  7      i16 hue at 8, L at 10, S at 11
//   8      i32 0 or 1 at 8                 9      grey at 8
//   11     Y I Q at 8..10                  12     L, i8 a, i8 b at 8..10
//   15     six inks at 6..11 (Yellow, Orange, Magenta, Cyan, Green, Black)
//   18     L, a + 128, b + 128 at 8..10    19     X Y Z bytes at 8..10
//   20     C M Y K at 8..11, all 100       21     B G R at 8..10, tint at 11
//   22     u16 user-ink index at 8, tint at 10 (and at 4)
//   23     u16 B at 6, u16 G at 8, u16 R at 10
//   24     u16 grey at 8
enum CLRModel : uint16_t {
  kCLRNone = 0,
  kCLRPantone = 1,
  kCLRCMYK = 2,
  kCLRCMYK255 = 3,
  kCLRCMY255 = 4,
  kCLRRGB255 = 5,
  kCLRHSB = 6,
  kCLRHLS = 7,
  kCLRBW = 8,
  kCLRGray255 = 9,
  kCLRYIQ255 = 11,
  kCLRLab = 12,
  kCLRHexSpot = 14,
  kCLRHexProcess = 15,
  kCLRCMYK100 = 17,
  kCLRLab255 = 18,
  kCLRXYZ = 19,
  kCLRRegistration = 20,
  kCLRUserInk = 21,
  kCLRUserInkRef = 22,
  kCLRRGB48 = 23,
  kCLRGray16 = 24,
};

// Where a colour comes from. Codes 1..16 are also the palette catalogue's slots.
enum CLRPaletteCode : uint8_t {
  kCLRPalTrumatch = 1,
  kCLRPalPantoneProcess = 2,
  kCLRPalPantoneSpot = 3,
  kCLRPalImage = 4,
  kCLRPalUser = 5,
  kCLRPalCustomFixed = 6,
  kCLRPalRGBStd = 7,
  kCLRPalFocoltone = 8,
  kCLRPalDupont = 9,
  kCLRPalToyo = 10,
  kCLRPalDIC = 11,
  kCLRPalHexachrome = 12,
  kCLRPalLab = 13,
  kCLRPalNetscape = 14,
  kCLRPalExplorer = 15,
  kCLRPalUserInks = 16,
};

// ---- byte access -----------------------------------------------------------
// The record is a file format: multi-byte fields are little-endian whatever
// the machine, so they are read and written byte by byte.

inline uint8_t* CLRBytes(CLRColor* c) { return reinterpret_cast<uint8_t*>(c); }
inline const uint8_t* CLRBytes(const CLRColor* c) { return reinterpret_cast<const uint8_t*>(c); }

inline uint16_t CLRGetU16(const CLRColor* c, int offset) {
  return LoadLE16(CLRBytes(c) + offset);
}
inline int16_t CLRGetI16(const CLRColor* c, int offset) {
  return static_cast<int16_t>(CLRGetU16(c, offset));
}
inline void CLRSetU16(CLRColor* c, int offset, uint32_t value) {
  StoreLE16(CLRBytes(c) + offset, value);
}
inline int32_t CLRGetI32(const CLRColor* c, int offset) {
  return static_cast<int32_t>(LoadLE32(CLRBytes(c) + offset));
}
inline void CLRSetI32(CLRColor* c, int offset, uint32_t value) {
  StoreLE32(CLRBytes(c) + offset, value);
}
inline uint16_t CLRPaletteWord(const CLRColor* c) { return CLRGetU16(c, 2); }
inline void CLRSetPaletteWord(CLRColor* c, uint32_t word) { CLRSetU16(c, 2, word); }

// ---- values and models ---------------------------------------------------------

// The longest colour string is under 64 characters.
constexpr size_t kCLRTextSize = 64;
// Room for a shown palette-entry name: the longest prefix and a 32-byte name.
constexpr size_t kCLRPaletteNameSize = 56;

// Writes the colour string of color into buffer (cut to size - 1). A model-0
// record is first stored back as model 2 (CMYK); models without a text form
// give "".
void CLRColorToText(CLRColor* color, char* buffer, size_t size = kCLRTextSize);

// Reads a colour string into color. text is cut at its commas in place. A
// string that cannot be read leaves white; "" keeps what color held (after
// CLRValidate). Bytes the model does not use keep what they held. Returns 0
// when the record became white because the string could not be read, else 1.
int CLRColorFromText(CLRColor* color, char* text);

// Repairs ranges by model. Returns 0 (record left as repaired so far) when a
// PANTONE colour names an ink that does not exist, else 1.
int CLRValidate(CLRColor* color);

// Three-way comparison: models first (the CMYK family counts as one model),
// then values, CMYK through one representation and HSB/HLS/Lab255 at the
// precision they are shown in. Models 6 and 7 return the raw hue difference.
int CLRCompare(const CLRColor* a, const CLRColor* b);
bool CLRSame(const CLRColor* a, const CLRColor* b);

// Model 5 white or black, palette word 5, bytes 4..7 zero; byte 11 is kept.
void CLRSetWhite(CLRColor* color);
void CLRSetBlack(CLRColor* color);
// The failure form of a conversion: model 0, palette word 5, bytes 4..7 zero;
// the value bytes are kept.
void CLRSetFailure(CLRColor* color);

bool CLRIsCMYKFamily(const CLRColor* color);  // model 2, 3 or 17
bool CLRIsSpot(const CLRColor* color);
int CLRSpotTint(const CLRColor* color);

// The name shown for a palette entry: the palette's prefix and the stored
// name (read to at most 32 bytes; it need not be terminated). out must hold
// kCLRPaletteNameSize bytes. An empty result reads "unnamed color".
void CLRPaletteName(char* out, const char* name, int palette);

}  // namespace fancy
