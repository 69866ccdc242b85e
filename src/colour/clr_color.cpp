// The colour record's own operations: defaults, validation, comparison, the
// spot test and the names shown for palette entries.
#include "colour/clr_color.h"

#include <cmath>
#include <cstring>

#include "colour/clr_convert.h"
#include "colour/ink_table.h"
#include "config/color_settings.h"

namespace fancy {

namespace {

void ClearPaletteFields(CLRColor* c) {
  CLRSetPaletteWord(c, kCLRPalUser);
  std::memset(CLRBytes(c) + 4, 0, 4);
}

// -1 or 1 at the first differing byte, else 0.
int CompareBytes(const CLRColor* a, const CLRColor* b, int offset, int count) {
  const uint8_t* pa = CLRBytes(a) + offset;
  const uint8_t* pb = CLRBytes(b) + offset;
  for (int i = 0; i < count; ++i)
    if (pa[i] != pb[i]) return pa[i] < pb[i] ? -1 : 1;
  return 0;
}

int Sign(double v) { return v < 0 ? -1 : (v > 0 ? 1 : 0); }

// Rounds half away from zero to a whole number.
double RoundHalfAway(double v) { return v < 0 ? std::ceil(v - 0.5) : std::floor(v + 0.5); }

// A byte as the whole percent the dialogs show.
int DisplayPercent(uint8_t v) { return static_cast<int>(RoundHalfAway(v * 100.0 / 255.0)); }

// One Lab255 component as shown, in tenths: L in percent, a and b in the
// signed scale of +-60.
double LabDisplayTenths(const CLRColor* c, int i) {
  const uint8_t* v = c->value8;
  double x = (i == 0) ? v[0] * 100.0 / 255.0 : (v[i] - 128) * 60.0 / 127.0;
  return RoundHalfAway(x * 10.0);
}

int SpotFlagFor(uint8_t palette) {
  switch (palette) {
    case kCLRPalFocoltone: return FocoltoneAsSpot() ? 1 : 0;
    case kCLRPalToyo: return ToyoAsSpot() ? 1 : 0;
    case kCLRPalDIC: return DICAsSpot() ? 1 : 0;
    default: return -1;  // not one of the three
  }
}

}  // namespace

void CLRSetWhite(CLRColor* color) {
  color->model = kCLRRGB255;
  ClearPaletteFields(color);
  color->value8[0] = color->value8[1] = color->value8[2] = 255;
}

void CLRSetBlack(CLRColor* color) {
  color->model = kCLRRGB255;
  ClearPaletteFields(color);
  color->value8[0] = color->value8[1] = color->value8[2] = 0;
}

void CLRSetFailure(CLRColor* color) {
  color->model = kCLRNone;
  ClearPaletteFields(color);
}

bool CLRIsCMYKFamily(const CLRColor* color) {
  return color->model == kCLRCMYK || color->model == kCLRCMYK255 ||
         color->model == kCLRCMYK100;
}

int CLRValidate(CLRColor* color) {
  switch (color->model) {
    case kCLRPantone: {
      CLRSetPaletteWord(color, kCLRPalPantoneSpot);
      if (CLRGetU16(color, 10) > 100) CLRSetU16(color, 10, 100);
      if (CLRGetI16(color, 8) == 0) CLRSetU16(color, 8, 4);
      if (!InkExists(CLRGetI16(color, 8))) return 0;
      break;
    }
    case kCLRCMYK:
      for (uint8_t& v : color->value8)
        if (v > 100) v = 100;
      break;
    case kCLRHSB:
    case kCLRHLS:
      if (CLRGetI16(color, 8) > 360) CLRSetU16(color, 8, 360);
      break;
    case kCLRBW:
      if (CLRGetI32(color, 8) > 1) CLRSetI32(color, 8, 1);
      break;
    default:
      break;
  }
  if (color->palette == 0) CLRSetPaletteWord(color, kCLRPalUser);
  return 1;
}

int CLRCompare(const CLRColor* a, const CLRColor* b) {
  bool familyA = CLRIsCMYKFamily(a), familyB = CLRIsCMYKFamily(b);
  int diff;
  if (familyA && familyB) diff = 0;
  else if (familyA) diff = kCLRCMYK - b->model;
  else if (familyB) diff = a->model - kCLRCMYK;
  else diff = a->model - b->model;
  if (diff != 0) return diff < 0 ? -1 : 1;

  switch (a->model) {
    case kCLRPantone:
    case kCLRBW:
    case kCLRHexSpot:
    case kCLRUserInk:
    case kCLRUserInkRef:
    case kCLRRegistration:
      return CompareBytes(a, b, 8, 4);
    case kCLRCMYK:
    case kCLRCMYK255:
    case kCLRCMYK100: {
      // Both through the representation the dialogs show, so that a percent
      // colour and a 0..255 colour of the same ink are the same colour.
      int target = CMYKDisplayPercent() ? kCLRCMYK : kCLRCMYK255;
      CLRColor ca{}, cb{};
      CLRConvert(&ca, target, a);
      CLRConvert(&cb, target, b);
      return CompareBytes(&ca, &cb, 8, 4);
    }
    case kCLRCMY255:
    case kCLRLab:
    case kCLRRGB255:
    case kCLRYIQ255:
      return CompareBytes(a, b, 8, 3);
    case kCLRHSB:
    case kCLRHLS: {
      if (CompareBytes(a, b, 8, 4) == 0) return 0;
      int hueA = CLRGetI16(a, 8), hueB = CLRGetI16(b, 8);
      if (hueA != hueB) return hueA - hueB;
      for (int i = 2; i < 4; ++i) {
        int d = DisplayPercent(a->value8[i]) - DisplayPercent(b->value8[i]);
        if (d != 0) return d < 0 ? -1 : 1;
      }
      return 0;
    }
    case kCLRGray255:
      return CompareBytes(a, b, 8, 1);
    case kCLRHexProcess:
    case kCLRRGB48:
      return CompareBytes(a, b, 4, 8);
    case kCLRLab255: {
      if (CompareBytes(a, b, 8, 3) == 0) return 0;
      for (int i = 0; i < 3; ++i) {
        int s = Sign(LabDisplayTenths(a, i) - LabDisplayTenths(b, i));
        if (s != 0) return s;
      }
      return 0;
    }
    case kCLRGray16:
      return CompareBytes(a, b, 8, 2);
    default:
      return 0;
  }
}

bool CLRSame(const CLRColor* a, const CLRColor* b) { return CLRCompare(a, b) == 0; }

bool CLRIsSpot(const CLRColor* color) {
  uint8_t palette = color->palette;
  if (palette == kCLRPalPantoneSpot || palette == kCLRPalUserInks) return true;
  int flag = SpotFlagFor(palette);
  if (flag >= 0) return flag == 1;
  if (palette == kCLRPalUser) {
    if (color->subPalette == kCLRPalPantoneSpot) return true;
    if (SpotFlagFor(color->subPalette) == 1) return true;
    return color->model == kCLRPantone;
  }
  return false;
}

int CLRSpotTint(const CLRColor* color) {
  if (!CLRIsSpot(color)) return 100;
  switch (color->model) {
    case kCLRUserInk: return color->value8[3];
    case kCLRUserInkRef: return color->value8[2];
    case kCLRPantone:
    case kCLRHexSpot: return CLRGetU16(color, 10);
    default: return color->tint;
  }
}

void CLRPaletteName(char* out, const char* name, int palette) {
  const char* prefix = "";
  switch (palette) {
    case kCLRPalTrumatch: prefix = "TRUMATCH "; break;
    case kCLRPalPantoneProcess: prefix = "PANTONE S"; break;
    case kCLRPalRGBStd: prefix = "RGB "; break;
    case kCLRPalFocoltone: prefix = "FOCOLTONE "; break;
    case kCLRPalDupont: prefix = "SpectraMaster\xC2\xAE "; break;
    case kCLRPalToyo: prefix = "TOYO "; break;
    case kCLRPalDIC: prefix = "DIC "; break;
    case kCLRPalLab: prefix = "L*a*b* "; break;
    default: break;
  }
  // A stored name fills at most the 32 bytes of its entry and may lack a NUL.
  size_t nameLength = name ? strnlen(name, 32) : 0;
  size_t prefixLength = std::strlen(prefix);
  if (prefixLength + nameLength == 0) {
    std::strcpy(out, "unnamed color");
    return;
  }
  std::memcpy(out, prefix, prefixLength);
  std::memcpy(out + prefixLength, name, nameLength);
  out[prefixLength + nameLength] = '\0';
}

}  // namespace fancy
