// CLRColor: the 12-byte colour record, stored as it stands in palette files.
// RGB-like models hold blue first, so their value bytes can go to a 24-bit
// raster line unchanged.
#pragma once

#include <cstddef>
#include <cstdint>

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

}  // namespace fancy
