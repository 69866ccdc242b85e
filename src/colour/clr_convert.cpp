// CLRConvert: the source stage resolves what a colour stands for (a spot
// ink, a Hexachrome ink, a user ink, a tint of a colour), the target stage
// picks the edge for the target and the source model.
#include "colour/clr_convert.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "colour/clr_pixels.h"
#include "colour/hex_table.h"
#include "colour/ink_table.h"
#include "colour/user_inks.h"
#include "config/color_settings.h"

namespace fancy {

namespace {

// Resolutions nest only a few deep (a user ink naming a tinted spot ink);
// the bound keeps a palette that refers to itself from recursing forever.
constexpr int kMaxDepth = 8;

void ConvertAt(CLRColor* dst, int target, const CLRColor* src, int depth);

// A copy: all 12 bytes, then palette word 5.
void CopyColor(CLRColor* dst, const CLRColor* src) {
  *dst = *src;
  CLRSetPaletteWord(dst, kCLRPalUser);
}

CLRColor Fresh(int model) {
  CLRColor r{};
  r.model = static_cast<uint16_t>(model);
  CLRSetPaletteWord(&r, kCLRPalUser);
  return r;
}

// A scratch record that the conversion may leave unfilled starts as a clean
// failure form, so that nothing reads what was never written.
CLRColor Scratch() { return Fresh(kCLRNone); }

uint8_t TintTowardWhite(int x, int t) { return static_cast<uint8_t>(255 - (255 - x) * t / 100); }
uint8_t TintInk(int x, int t) { return static_cast<uint8_t>(x * t / 100); }
uint8_t TintInkCapped(int x, int t) { return static_cast<uint8_t>(std::min(x * t / 100, 100)); }
uint16_t TintTowardWhite16(int x, int t) {
  return static_cast<uint16_t>(65535 - (65535 - x) * t / 100);
}

// Scales a colour toward no ink by t percent, keeping its model (CMY becomes
// CMYK percent, user inks RGB). False for models that have no tint.
bool TintMix(const CLRColor* src, int t, CLRColor* out) {
  CLRColor r = *src;
  CLRSetPaletteWord(&r, kCLRPalUser);
  uint8_t* v = r.value8;
  switch (src->model) {
    case kCLRPantone:
    case kCLRHexSpot:
      CLRSetU16(&r, 10, static_cast<uint32_t>(CLRGetU16(src, 10) * t / 100));
      CLRSetPaletteWord(&r, src->model == kCLRPantone ? kCLRPalPantoneSpot : kCLRPalHexachrome);
      break;
    case kCLRCMYK:
    case kCLRCMYK255:
    case kCLRCMYK100:
      for (int i = 0; i < 4; ++i) v[i] = TintInk(v[i], t);
      break;
    case kCLRCMY255:
      // The CMY bytes are taken as CMYK percent, and byte 11 stays as it was.
      for (int i = 0; i < 3; ++i) v[i] = TintInk(v[i], t);
      r.model = kCLRCMYK;
      break;
    case kCLRRGB255:
    case kCLRUserInk:
      for (int i = 0; i < 3; ++i) v[i] = TintTowardWhite(v[i], t);
      r.model = kCLRRGB255;
      break;
    case kCLRHSB:
      v[2] = TintInk(v[2], t);
      v[3] = TintTowardWhite(v[3], t);
      break;
    case kCLRHLS:
      v[2] = TintTowardWhite(v[2], t);
      break;
    case kCLRBW:
      break;
    case kCLRGray255:
      v[0] = TintTowardWhite(v[0], t);
      break;
    case kCLRYIQ255:
      for (int i = 0; i < 3; ++i) v[i] = TintTowardWhite(v[i], t);
      break;
    case kCLRLab:
      v[0] = TintTowardWhite(v[0], t);
      v[1] = static_cast<uint8_t>(static_cast<int8_t>(v[1]) * t / 100);
      v[2] = static_cast<uint8_t>(static_cast<int8_t>(v[2]) * t / 100);
      break;
    case kCLRHexProcess:
      for (int i = 0; i < 6; ++i) CLRBytes(&r)[6 + i] = TintInk(CLRBytes(&r)[6 + i], t);
      break;
    case kCLRLab255:
      // a and b are scaled as the bytes stand, offset of 128 and all.
      v[0] = TintTowardWhite(v[0], t);
      v[1] = TintInk(v[1], t);
      v[2] = TintInk(v[2], t);
      break;
    case kCLRRGB48:
      for (int offset = 6; offset <= 10; offset += 2)
        CLRSetU16(&r, offset, TintTowardWhite16(CLRGetU16(&r, offset), t));
      break;
    case kCLRGray16:
      CLRSetU16(&r, 8, TintTowardWhite16(CLRGetU16(&r, 8), t));
      break;
    default:
      return false;
  }
  *out = r;
  return true;
}

bool SpotAsCMYK(uint8_t palette) {
  switch (palette) {
    case kCLRPalFocoltone: return FocoltoneAsSpot();
    case kCLRPalToyo: return ToyoAsSpot();
    case kCLRPalDIC: return DICAsSpot();
    default: return false;
  }
}

bool WantsInkCMYK(int target) {
  return target == kCLRCMYK || target == kCLRCMYK255 || target == kCLRCMYK100 ||
         target == 1007 || target == 1008 || ShowSpotAsProcess();
}

// ---- target stage helpers ----------------------------------------------------------

// The source as RGB255; false (out left as a failure form) when it has none.
bool ToRGB(const CLRColor* src, CLRColor* out, int depth) {
  *out = Scratch();
  ConvertAt(out, kCLRRGB255, src, depth + 1);
  return out->model == kCLRRGB255;
}

bool IsWhiteRGB(const CLRColor* c) {
  return c->value8[0] == 255 && c->value8[1] == 255 && c->value8[2] == 255;
}

// CMYK of any of the family as CMYK255.
CLRColor AsCMYK255(const CLRColor* src) {
  CLRColor r = *src;
  if (src->model == kCLRCMYK) CLRConvertCMYKToCMYK255(&r, src);
  return r;
}

// CMYK to RGB as the grey targets take it: the plain arithmetic when grey is
// to mean K alone, else the device edge.
void CMYKToRGBForGrey(const CLRColor* src, CLRColor* rgb) {
  CLRColor cmyk = AsCMYK255(src);
  if (GrayConvertsToCMYK_K()) {
    *rgb = Fresh(kCLRRGB255);
    CLRFallbackCMYKToRGB(cmyk.value8, 4, rgb->value8, CLRRGBArrayStride(1), 1, 1);
  } else {
    CLRConvertCMYK255ToRGB255(rgb, &cmyk);
  }
}

CLRColor FullCMYK255() {
  CLRColor r = Fresh(kCLRCMYK255);
  std::memset(r.value8, 255, 4);
  return r;
}

// ---- the targets ----------------------------------------------------------------------

void ToCMYK255(CLRColor* dst, int target, const CLRColor* src, int depth) {
  CLRColor r = Fresh(kCLRCMYK255);  // all-zero CMYK: paper white
  switch (src->model) {
    case kCLRCMYK:
      CLRConvertCMYKToCMYK255(&r, src);
      break;
    case kCLRCMYK255:
    case kCLRCMYK100:
      CopyColor(&r, src);
      break;
    case kCLRRGB255:
      if (!IsWhiteRGB(src)) CLRConvertRGB255ToCMYK255(&r, src);
      break;
    case kCLRLab:
    case kCLRLab255: {
      CLRColor lab = *src;
      if (src->model == kCLRLab) CLRConvertLABToLAB255(&lab, src);
      bool paperWhite = lab.value8[0] > 254 && lab.value8[1] == 128 && lab.value8[2] == 128;
      if (!paperWhite) CLRConvertLAB255ToCMYK255(&r, &lab);
      break;
    }
    case kCLRRegistration:
      r = FullCMYK255();
      break;
    case kCLRRGB48:
      if (!(CLRGetU16(src, 6) == 65535 && CLRGetU16(src, 8) == 65535 &&
            CLRGetU16(src, 10) == 65535))
        CLRConvertRGB48ToCMYK255(&r, src);
      break;
    default: {
      CLRColor rgb;
      if ((src->model == kCLRGray255 || src->model == kCLRGray16) && GrayConvertsToCMYK_K()) {
        // Grey becomes K alone.
        CLRColor grey = *src;
        if (src->model == kCLRGray16) CLRConvertGray16ToGray255(&grey, src);
        CLRConvertGray255ToRGB255(&rgb, &grey);
        CLRFallbackRGBToCMYK(rgb.value8, CLRRGBArrayStride(1), r.value8, 4, 1, 1);
        break;
      }
      if (!ToRGB(src, &rgb, depth)) {
        CLRSetFailure(dst);
        return;
      }
      if (!IsWhiteRGB(&rgb)) CLRConvertRGB255ToCMYK255(&r, &rgb);
      break;
    }
  }
  if (r.model != kCLRCMYK255 && r.model != kCLRCMYK100) {
    CLRSetFailure(dst);
    return;
  }
  r.model = static_cast<uint16_t>(target);
  *dst = r;
}

// Target 5; returns false when the source model has no edge to RGB (dst is
// then left as it stands).
bool ToRGB255(CLRColor* dst, const CLRColor* src) {
  CLRColor r;
  switch (src->model) {
    case kCLRNone: r = Fresh(kCLRRGB255); CLRSetWhite(&r); break;
    case kCLRCMYK: {
      CLRColor cmyk = AsCMYK255(src);
      CLRConvertCMYK255ToRGB255(&r, &cmyk);
      break;
    }
    case kCLRCMYK255:
    case kCLRCMYK100: CLRConvertCMYK255ToRGB255(&r, src); break;
    case kCLRCMY255: CLRConvertCMY255ToRGB255(&r, src); break;
    case kCLRRGB255: CopyColor(&r, src); break;
    case kCLRHSB: CLRConvertHSBToRGB255(&r, src); break;
    case kCLRHLS: CLRConvertHLSToRGB255(&r, src); break;
    case kCLRBW: CLRConvertBWToRGB255(&r, src); break;
    case kCLRGray255: CLRConvertGray255ToRGB255(&r, src); break;
    case kCLRYIQ255: CLRConvertYIQ255ToRGB255(&r, src); break;
    case kCLRLab: {
      CLRColor lab;
      CLRConvertLABToLAB255(&lab, src);
      CLRConvertLAB255ToRGB255(&r, &lab);
      break;
    }
    case kCLRLab255: CLRConvertLAB255ToRGB255(&r, src); break;
    case kCLRRegistration: {
      CLRColor full = FullCMYK255();
      CLRConvertCMYK255ToRGB255(&r, &full);
      break;
    }
    case kCLRRGB48: CLRConvertRGB48ToRGB255(&r, src); break;
    case kCLRGray16: {
      CLRColor grey;
      CLRConvertGray16ToGray255(&grey, src);
      CLRConvertGray255ToRGB255(&r, &grey);
      break;
    }
    default: return false;
  }
  *dst = r;
  return true;
}

void ToGray255(CLRColor* dst, const CLRColor* src, int depth) {
  CLRColor rgb;
  switch (src->model) {
    case kCLRCMYK:
    case kCLRCMYK255:
    case kCLRCMYK100:
      CMYKToRGBForGrey(src, &rgb);
      break;
    case kCLRCMY255: CLRConvertCMY255ToRGB255(&rgb, src); break;
    case kCLRRGB255: rgb = *src; break;
    case kCLRHSB: {
      // The brightness byte is taken as the grey without computation.
      CLRColor r = Fresh(kCLRGray255);
      r.value8[0] = src->value8[3];
      *dst = r;
      return;
    }
    case kCLRHLS: CLRConvertHLSToRGB255(&rgb, src); break;
    case kCLRBW: CLRConvertBWToGray255(dst, src); return;
    case kCLRGray255: CopyColor(dst, src); return;
    case kCLRRGB48: CLRConvertRGB48ToRGB255(&rgb, src); break;
    case kCLRGray16: CLRConvertGray16ToGray255(dst, src); return;
    default:
      if (!ToRGB(src, &rgb, depth)) {
        CLRSetFailure(dst);
        return;
      }
      break;
  }
  CLRConvertRGB255ToGray255(dst, &rgb);
}

void ToBW(CLRColor* dst, const CLRColor* src, int depth) {
  CLRColor grey;
  switch (src->model) {
    case kCLRBW: CopyColor(dst, src); return;
    case kCLRGray255: grey = *src; break;
    case kCLRGray16: CLRConvertGray16ToGray255(&grey, src); break;
    case kCLRHSB:
      grey = Fresh(kCLRGray255);
      grey.value8[0] = src->value8[3];
      break;
    default: {
      // The CMYK family takes the device edge here, whatever grey means for CMYK.
      CLRColor rgb;
      if (!ToRGB(src, &rgb, depth)) {
        CLRSetFailure(dst);
        return;
      }
      CLRConvertRGB255ToGray255(&grey, &rgb);
      break;
    }
  }
  CLRConvertGray255ToBW(dst, &grey);
}

// Targets 6, 7 and 11: a formula from RGB255 and one from RGB48.
void ToHueModel(CLRColor* dst, int target, const CLRColor* src, int depth) {
  void (*from8)(CLRColor*, const CLRColor*) =
      target == kCLRHSB ? CLRConvertRGB255ToHSB
                        : (target == kCLRHLS ? CLRConvertRGB255ToHLS : CLRConvertRGB255ToYIQ255);
  void (*from16)(CLRColor*, const CLRColor*) =
      target == kCLRHSB ? CLRConvertRGB48ToHSB
                        : (target == kCLRHLS ? CLRConvertRGB48ToHLS : CLRConvertRGB48ToYIQ255);
  if (src->model == target) {
    CopyColor(dst, src);
  } else if (src->model == kCLRRGB255) {
    from8(dst, src);
  } else if (src->model == kCLRRGB48) {
    from16(dst, src);
  } else if (src->model == kCLRGray16) {
    CLRColor rgb48;
    CLRConvertGray16ToRGB48(&rgb48, src);
    from16(dst, &rgb48);
  } else {
    CLRColor rgb;
    if (!ToRGB(src, &rgb, depth)) {
      CLRSetFailure(dst);
      return;
    }
    from8(dst, &rgb);
  }
}

// Targets 12 and 18.
void ToLab(CLRColor* dst, int target, const CLRColor* src, int depth) {
  CLRColor lab255;
  switch (src->model) {
    case kCLRLab:
      if (target == kCLRLab) CopyColor(dst, src);
      else CLRConvertLABToLAB255(dst, src);
      return;
    case kCLRLab255:
      if (target == kCLRLab255) CopyColor(dst, src);
      else CLRConvertLAB255ToLAB(dst, src);
      return;
    case kCLRCMYK:
    case kCLRCMYK255:
    case kCLRCMYK100: {
      CLRColor cmyk = AsCMYK255(src);
      CLRConvertCMYK255ToLAB255(&lab255, &cmyk);
      break;
    }
    case kCLRRGB255: CLRConvertRGB255ToLAB255(&lab255, src); break;
    case kCLRRGB48: CLRConvertRGB48ToLAB255(&lab255, src); break;
    case kCLRGray16: {
      CLRColor rgb48;
      CLRConvertGray16ToRGB48(&rgb48, src);
      CLRConvertRGB48ToLAB255(&lab255, &rgb48);
      break;
    }
    default: {
      CLRColor rgb;
      if (!ToRGB(src, &rgb, depth)) {
        CLRSetFailure(dst);
        return;
      }
      CLRConvertRGB255ToLAB255(&lab255, &rgb);
      break;
    }
  }
  if (target == kCLRLab) CLRConvertLAB255ToLAB(dst, &lab255);
  else *dst = lab255;
}

// Target 23; returns false when the source model has no edge to RGB48.
bool ToRGB48(CLRColor* dst, const CLRColor* src) {
  CLRColor r, rgb;
  switch (src->model) {
    case kCLRNone:
      // The failure form reads as white here, in 8-bit values.
      r = Fresh(kCLRRGB48);
      CLRSetU16(&r, 6, 255);
      CLRSetU16(&r, 8, 255);
      CLRSetU16(&r, 10, 255);
      break;
    case kCLRCMYK:
    case kCLRCMYK255:
    case kCLRCMYK100:
    case kCLRRegistration: {
      CLRColor cmyk = src->model == kCLRRegistration ? FullCMYK255() : AsCMYK255(src);
      CLRConvertCMYK255ToRGB48(&r, &cmyk);
      break;
    }
    case kCLRCMY255:
      CLRConvertCMY255ToRGB255(&rgb, src);
      CLRConvertRGB255ToRGB48(&r, &rgb);
      break;
    case kCLRRGB255: CLRConvertRGB255ToRGB48(&r, src); break;
    case kCLRHSB: CLRConvertHSBToRGB48(&r, src); break;
    case kCLRHLS: CLRConvertHLSToRGB48(&r, src); break;
    case kCLRBW:
    case kCLRGray255:
      ToRGB255(&rgb, src);
      CLRConvertRGB255ToRGB48(&r, &rgb);
      break;
    case kCLRYIQ255: CLRConvertYIQ255ToRGB48(&r, src); break;
    case kCLRLab: {
      // This edge has always answered in RGB255, model 5.
      CLRColor lab;
      CLRConvertLABToLAB255(&lab, src);
      CLRConvertLAB255ToRGB255(&r, &lab);
      break;
    }
    case kCLRLab255: CLRConvertLAB255ToRGB48(&r, src); break;
    case kCLRRGB48: CopyColor(&r, src); break;
    case kCLRGray16: CLRConvertGray16ToRGB48(&r, src); break;
    default: return false;
  }
  *dst = r;
  return true;
}

void ToGray16(CLRColor* dst, const CLRColor* src, int depth) {
  CLRColor tmp;
  switch (src->model) {
    case kCLRCMYK:
    case kCLRCMYK255:
    case kCLRCMYK100:
      CMYKToRGBForGrey(src, &tmp);
      CLRConvertRGB255ToGray16(dst, &tmp);
      return;
    case kCLRRGB255: CLRConvertRGB255ToGray16(dst, src); return;
    case kCLRHSB:
    case kCLRBW:
    case kCLRGray255:
      ToGray255(&tmp, src, depth);
      CLRConvertGray255ToGray16(dst, &tmp);
      return;
    case kCLRRGB48: CLRConvertRGB48ToGray16(dst, src); return;
    case kCLRGray16: CopyColor(dst, src); return;
    default:
      if (!ToRGB(src, &tmp, depth)) {
        CLRSetFailure(dst);
        return;
      }
      CLRConvertRGB255ToGray16(dst, &tmp);
      return;
  }
}

void TargetStage(CLRColor* dst, int target, const CLRColor* src, int depth) {
  switch (target) {
    case kCLRPantone: {
      CLRColor rgb;
      if (src->model == kCLRRGB255) rgb = *src;
      else if (!ToRGB(src, &rgb, depth)) {
        CLRSetFailure(dst);
        return;
      }
      CLRConvertRGB255ToPANTONE(dst, &rgb);
      return;
    }
    case kCLRCMYK: {
      if (src->model == kCLRCMYK) {
        CopyColor(dst, src);
      } else if (src->model == kCLRRegistration) {
        CLRColor r = Fresh(kCLRCMYK);
        std::memset(r.value8, 100, 4);
        *dst = r;
      } else {
        CLRColor cmyk = Scratch();
        ToCMYK255(&cmyk, kCLRCMYK255, src, depth);
        if (cmyk.model == kCLRCMYK255) CLRConvertCMYK255ToCMYK(dst, &cmyk);
        else CLRSetFailure(dst);
      }
      return;
    }
    case kCLRCMYK255:
    case kCLRCMYK100:
      ToCMYK255(dst, target, src, depth);
      return;
    case kCLRCMY255: {
      CLRColor rgb;
      switch (src->model) {
        case kCLRCMY255: CopyColor(dst, src); return;
        case kCLRRGB255: rgb = *src; break;
        case kCLRRGB48: CLRConvertRGB48ToRGB255(&rgb, src); break;
        case kCLRCMYK:
        case kCLRCMYK255:
        case kCLRCMYK100: {
          CLRColor cmyk = AsCMYK255(src);
          CLRConvertCMYK255ToRGB255(&rgb, &cmyk);
          break;
        }
        default:
          if (!ToRGB(src, &rgb, depth)) {
            CLRSetFailure(dst);
            return;
          }
          break;
      }
      CLRConvertRGB255ToCMY255(dst, &rgb);
      return;
    }
    case kCLRRGB255:
      ToRGB255(dst, src);
      return;
    case kCLRHSB:
    case kCLRHLS:
    case kCLRYIQ255:
      ToHueModel(dst, target, src, depth);
      return;
    case kCLRBW:
      ToBW(dst, src, depth);
      return;
    case kCLRGray255:
      ToGray255(dst, src, depth);
      return;
    case kCLRLab:
    case kCLRLab255:
      ToLab(dst, target, src, depth);
      return;
    case kCLRXYZ: {
      if (src->model == kCLRXYZ) {
        CopyColor(dst, src);
        return;
      }
      CLRColor lab = Scratch();
      if (src->model == kCLRLab) lab = *src;
      else ConvertAt(&lab, kCLRLab, src, depth + 1);
      if (lab.model == kCLRLab) CLRConvertLABToXYZ(dst, &lab);
      else CLRSetFailure(dst);
      return;
    }
    case kCLRRegistration: {
      CLRColor r = Fresh(kCLRRegistration);
      std::memset(r.value8, 100, 4);
      *dst = r;
      return;
    }
    case kCLRRGB48:
      ToRGB48(dst, src);
      return;
    case kCLRGray16:
      ToGray16(dst, src, depth);
      return;
    default:
      // Models without a target row (10, 13, 14, 15, 16, 21, 22) take only
      // a colour already in that model.
      if (src->model == target) CopyColor(dst, src);
      return;
  }
}

void ConvertAt(CLRColor* dst, int target, const CLRColor* srcIn, int depth) {
  if (target < 1 || target > 24) return;
  if (depth > kMaxDepth) {
    CLRSetFailure(dst);
    return;
  }
  const CLRColor src = *srcIn;  // dst may be the source
  CLRColor resolved;
  switch (CLRResolveSource(&src, target, &resolved, dst)) {
    case kCLRSourceFinal: return;
    case kCLRSourceResolved: ConvertAt(dst, target, &resolved, depth + 1); return;
    default: break;
  }
  TargetStage(dst, target, &src, depth);
}

}  // namespace

int CLRResolveSource(const CLRColor* src, int target, CLRColor* resolved, CLRColor* dst) {
  // A colour already in the target spot model stays as it is.
  switch (src->model) {
    case kCLRPantone: {
      if (target == kCLRPantone) {
        *dst = *src;
        return kCLRSourceFinal;
      }
      int index = CLRGetI16(src, 8);
      int tint = CLRGetU16(src, 10);
      CLRColor ink;
      bool found = WantsInkCMYK(target) ? InkCMYK(index, &ink) : InkRGB(index, &ink);
      if (!found) {
        CLRSetFailure(dst);
        return kCLRSourceFinal;
      }
      if (tint != 100) {
        if (ink.model == kCLRCMYK)
          for (uint8_t& v : ink.value8) v = TintInkCapped(v, tint);
        else
          for (int i = 0; i < 3; ++i) ink.value8[i] = TintTowardWhite(ink.value8[i], tint);
      }
      *resolved = ink;
      return kCLRSourceResolved;
    }
    case kCLRHexSpot: {
      if (target == kCLRHexSpot) {
        *dst = *src;
        return kCLRSourceFinal;
      }
      int id = CLRGetI16(src, 8);
      int tint = CLRGetU16(src, 10);
      if (target == kCLRHexProcess) {
        CLRColor inks;
        if (HexColorForId(id, tint, &inks)) *dst = inks;
        else CLRSetFailure(dst);
        return kCLRSourceFinal;
      }
      if (!HexRGBForId(id, tint, resolved)) {
        CLRSetFailure(dst);
        return kCLRSourceFinal;
      }
      return kCLRSourceResolved;
    }
    case kCLRUserInk: {
      if (target == kCLRUserInk) {
        *dst = *src;
        return kCLRSourceFinal;
      }
      if (src->value8[3] == 100) {
        *resolved = Fresh(kCLRRGB255);
        std::memcpy(resolved->value8, src->value8, 3);
      } else {
        TintMix(src, src->value8[3], resolved);
      }
      return kCLRSourceResolved;
    }
    case kCLRUserInkRef: {
      if (target == kCLRUserInkRef) {
        *dst = *src;
        return kCLRSourceFinal;
      }
      CLRColor entry;
      if (!UserInkEntry(CLRGetU16(src, 8), &entry)) {
        CLRSetFailure(dst);
        return kCLRSourceFinal;
      }
      entry.tint = src->value8[2];
      if (entry.model == kCLRUserInk) entry.value8[3] = src->value8[2];
      *resolved = entry;
      return kCLRSourceResolved;
    }
    default:
      break;
  }

  if (src->palette == kCLRPalUserInks) {
    if (!TintMix(src, src->tint, resolved)) {
      CLRSetFailure(dst);
      return kCLRSourceFinal;
    }
    return kCLRSourceResolved;
  }

  // FOCOLTONE, TOYO and DIC colours that count as spot inks hold CMYK
  // percent, whatever their model says, and are tinted by byte 4.
  uint8_t origin = src->palette == kCLRPalUser ? src->subPalette : src->palette;
  if (SpotAsCMYK(origin)) {
    CLRColor r = Fresh(kCLRCMYK);
    for (int i = 0; i < 4; ++i) r.value8[i] = TintInkCapped(src->value8[i], src->tint);
    *resolved = r;
    return kCLRSourceResolved;
  }
  return kCLRSourceAsIs;
}

void CLRConvert(CLRColor* dst, int dstModel, const CLRColor* src) {
  ConvertAt(dst, dstModel, src, 0);
}

void CLRConvertRGB255ToPANTONE(CLRColor* dst, const CLRColor* src) {
  if (src->model != kCLRRGB255) {
    CLRSetFailure(dst);
    return;
  }
  const uint8_t* want = src->value8;
  int best = 765, bestIndex = 1;
  for (int index = 1; index < kInkTableSize; ++index) {
    CLRColor ink;
    InkRGB(index, &ink);  // a missing ink reads as black
    int distance = std::abs(ink.value8[0] - want[0]) + std::abs(ink.value8[1] - want[1]) +
                   std::abs(ink.value8[2] - want[2]);
    if (distance < best) {
      best = distance;
      bestIndex = index;
    }
  }
  CLRColor r = Fresh(kCLRPantone);
  CLRSetPaletteWord(&r, kCLRPalPantoneSpot);
  CLRSetU16(&r, 8, static_cast<uint32_t>(bestIndex));
  CLRSetU16(&r, 10, 100);
  *dst = r;
}

int CLRWorkingModel(CLRColor* color) {
  int target;
  switch (color->model) {
    case kCLRPantone:
    case kCLRCMYK:
    case kCLRCMYK100:
    case kCLRRegistration: target = kCLRCMYK255; break;
    case kCLRHexSpot: target = kCLRHexProcess; break;
    case kCLRUserInk: target = kCLRRGB255; break;
    case kCLRUserInkRef: {
      CLRColor entry;
      if (!UserInkEntry(CLRGetU16(color, 8), &entry)) return 0;
      entry.tint = color->value8[2];
      if (entry.model == kCLRUserInk) entry.value8[3] = color->value8[2];
      if (entry.model == kCLRUserInkRef) return 0;  // a reference to a reference
      int model = CLRWorkingModel(&entry);
      if (model) *color = entry;
      return model;
    }
    case kCLRCMYK255: case kCLRCMY255: case kCLRRGB255: case kCLRHSB: case kCLRHLS:
    case kCLRBW: case kCLRGray255: case kCLRYIQ255: case kCLRLab: case kCLRHexProcess:
    case 16: case kCLRLab255: case kCLRXYZ: case kCLRRGB48: case kCLRGray16:
      return color->model;
    default:
      return 0;
  }
  CLRConvert(color, target, color);
  return color->model;
}

}  // namespace fancy
