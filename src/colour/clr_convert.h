// Colour conversion: a hub around RGB255 with direct edges where a shortcut
// is worth having. Spot inks, Hexachrome inks, user inks and tinted colours
// are first resolved into a plain colour (the source stage), which is then
// turned into the target model (the target stage).
//
// Every conversion result carries palette word 5 and zero bytes 4..7 (bytes
// 4 and 5 only for model 23, whose blue sits at 6): a converted colour has
// lost its palette. A copy takes all 12 bytes and then sets palette word 5.
#pragma once

#include <cstdint>

#include "colour/clr_color.h"

namespace fancy {

// Converts src into dstModel (1..24) in dst; dst and src may be the same
// record. Other dstModel values leave dst as it is. A source that cannot be
// converted leaves the failure form (model 0); targets 5 and 23 leave dst as
// it stands for a source model with no edge to them.
void CLRConvert(CLRColor* dst, int dstModel, const CLRColor* src);

// Folds color in place into the model the layer computes with: PANTONE, CMYK
// percent, CMYK100 and registration to CMYK255; Hexachrome spot to its six
// inks; user inks to RGB255. Returns the resulting model, or 0 (color
// unchanged) for a model the layer does not compute with.
int CLRWorkingModel(CLRColor* color);

// The source stage alone, for callers that convert to a device form of
// their own (target may also be 1007 or 1008, the printer's CMYK forms).
enum CLRSourceResult : int {
  kCLRSourceAsIs = 0,      // convert src as it stands
  kCLRSourceResolved = 1,  // convert *resolved instead
  kCLRSourceFinal = 2,     // *dst already holds the result (or the failure form)
};
int CLRResolveSource(const CLRColor* src, int target, CLRColor* resolved, CLRColor* dst);

// The nearest PANTONE ink to an RGB255 colour: the least sum of absolute
// channel differences over inks 1..1049 (missing inks count as black), the
// first of equals. Writes model 1, palette word 3, tint 100.
void CLRConvertRGB255ToPANTONE(CLRColor* dst, const CLRColor* src);

// ---- one-edge conversions ---------------------------------------------------------
// Each (dst, src) tests the source model and writes the failure form on a
// wrong one. dst and src may be the same record.

void CLRConvertCMYKToCMYK255(CLRColor* dst, const CLRColor* src);    // 2 -> 3, scaled
void CLRConvertCMYK255ToCMYK(CLRColor* dst, const CLRColor* src);    // 3, 17 -> 2, scaled
void CLRConvertCMY255ToRGB255(CLRColor* dst, const CLRColor* src);   // 4 -> 5
void CLRConvertRGB255ToCMY255(CLRColor* dst, const CLRColor* src);   // 5 -> 4
void CLRConvertRGB255ToRGB48(CLRColor* dst, const CLRColor* src);    // 5 -> 23
void CLRConvertRGB48ToRGB255(CLRColor* dst, const CLRColor* src);    // 23 -> 5
void CLRConvertGray255ToGray16(CLRColor* dst, const CLRColor* src);  // 9 -> 24
void CLRConvertGray16ToGray255(CLRColor* dst, const CLRColor* src);  // 24 -> 9
void CLRConvertGray16ToRGB48(CLRColor* dst, const CLRColor* src);    // 24 -> 23
void CLRConvertGray255ToRGB255(CLRColor* dst, const CLRColor* src);  // 9 -> 5
void CLRConvertGray255ToBW(CLRColor* dst, const CLRColor* src);      // 9 -> 8
void CLRConvertBWToRGB255(CLRColor* dst, const CLRColor* src);       // 8 -> 5
void CLRConvertBWToGray255(CLRColor* dst, const CLRColor* src);      // 8 -> 9
void CLRConvertRGB255ToGray255(CLRColor* dst, const CLRColor* src);  // 5 -> 9
void CLRConvertRGB255ToGray16(CLRColor* dst, const CLRColor* src);   // 5 -> 24
void CLRConvertRGB48ToGray16(CLRColor* dst, const CLRColor* src);    // 23 -> 24
void CLRConvertLABToLAB255(CLRColor* dst, const CLRColor* src);      // 12 -> 18
void CLRConvertLAB255ToLAB(CLRColor* dst, const CLRColor* src);      // 18 -> 12
void CLRConvertLABToXYZ(CLRColor* dst, const CLRColor* src);         // 12 -> 19
void CLRConvertRGB255ToHSB(CLRColor* dst, const CLRColor* src);      // 5 -> 6
void CLRConvertRGB48ToHSB(CLRColor* dst, const CLRColor* src);       // 23 -> 6
void CLRConvertHSBToRGB255(CLRColor* dst, const CLRColor* src);      // 6 -> 5
void CLRConvertHSBToRGB48(CLRColor* dst, const CLRColor* src);       // 6 -> 23
void CLRConvertRGB255ToHLS(CLRColor* dst, const CLRColor* src);      // 5 -> 7
void CLRConvertRGB48ToHLS(CLRColor* dst, const CLRColor* src);       // 23 -> 7
void CLRConvertHLSToRGB255(CLRColor* dst, const CLRColor* src);      // 7 -> 5
void CLRConvertHLSToRGB48(CLRColor* dst, const CLRColor* src);       // 7 -> 23
void CLRConvertRGB255ToYIQ255(CLRColor* dst, const CLRColor* src);   // 5 -> 11
void CLRConvertRGB48ToYIQ255(CLRColor* dst, const CLRColor* src);    // 23 -> 11
void CLRConvertYIQ255ToRGB255(CLRColor* dst, const CLRColor* src);   // 11 -> 5
void CLRConvertYIQ255ToRGB48(CLRColor* dst, const CLRColor* src);    // 11 -> 23

// The device edges, one pixel through the pixel-array functions.
void CLRConvertRGB255ToCMYK255(CLRColor* dst, const CLRColor* src);  // 5 -> 3
void CLRConvertCMYK255ToRGB255(CLRColor* dst, const CLRColor* src);  // 3, 17 -> 5
void CLRConvertRGB255ToLAB255(CLRColor* dst, const CLRColor* src);   // 5 -> 18
void CLRConvertLAB255ToRGB255(CLRColor* dst, const CLRColor* src);   // 18 -> 5
void CLRConvertCMYK255ToLAB255(CLRColor* dst, const CLRColor* src);  // 3, 17 -> 18
void CLRConvertLAB255ToCMYK255(CLRColor* dst, const CLRColor* src);  // 18 -> 3

// The 16-bit device edges have no path of their own: they drop to 8 bits
// (high bytes) or rise from them around the 8-bit edge, and say so on the
// debug output.
void CLRConvertRGB48ToLAB255(CLRColor* dst, const CLRColor* src);    // 23 -> 18
void CLRConvertLAB255ToRGB48(CLRColor* dst, const CLRColor* src);    // 18 -> 23
void CLRConvertCMYK255ToRGB48(CLRColor* dst, const CLRColor* src);   // 3, 17 -> 23
void CLRConvertRGB48ToCMYK255(CLRColor* dst, const CLRColor* src);   // 23 -> 3

// Windows MulDiv: a * b / c with a 64-bit product, rounded to the nearest,
// half away from zero; -1 when c is 0 or the result does not fit 32 bits.
int32_t CLRMulDiv(int32_t a, int32_t b, int32_t c);

}  // namespace fancy
