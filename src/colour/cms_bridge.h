// The colour-management bridge as the conversions see it: transforms through
// the system profile for the device edges. Each operation converts whole
// pixel arrays (row strides in bytes, which may be negative for bottom-up
// images) and answers 1 when it did, or 0 when there is no transform, in
// which case the caller runs its arithmetic fallback and nothing in dst has
// been written.
//
// Pixels: RGB 3 bytes blue first; CMYK 4 bytes C, M, Y, K (0..255); Lab 3
// bytes L, a + 128, b + 128.
//
// mapping chooses among the transforms a client asked for; null means the
// layer's global choice, which is what single-colour conversions use.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fancy {

struct CmsMapping;  // the client's choice of transforms; opaque here

// What CmsFromCMYK produces.
enum CmsFromCMYKKind : int {
  kCmsToRGB = 0,
  kCmsToLab = 1,
  kCmsToRGB48 = 2,
};

// RGB to the printer's CMYK.
int CmsToDeviceFromRGB(const CmsMapping* mapping, const uint8_t* src, ptrdiff_t srcStride,
                       uint8_t* dst, ptrdiff_t dstStride, int32_t width, int32_t height);
// Lab to the printer's CMYK.
int CmsToDeviceFromLab(const CmsMapping* mapping, const uint8_t* src, ptrdiff_t srcStride,
                       uint8_t* dst, ptrdiff_t dstStride, int32_t width, int32_t height);
// CMYK to RGB, Lab or RGB48 (three u16 a pixel, blue first).
int CmsFromCMYK(const CmsMapping* mapping, int toKind, const uint8_t* src, ptrdiff_t srcStride,
                uint8_t* dst, ptrdiff_t dstStride, int32_t width, int32_t height);
int CmsLabToRGB(const CmsMapping* mapping, const uint8_t* src, ptrdiff_t srcStride,
                uint8_t* dst, ptrdiff_t dstStride, int32_t width, int32_t height);
int CmsRGBToLab(const CmsMapping* mapping, const uint8_t* src, ptrdiff_t srcStride,
                uint8_t* dst, ptrdiff_t dstStride, int32_t width, int32_t height);

}  // namespace fancy
