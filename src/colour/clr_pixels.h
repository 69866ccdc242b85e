// The four device edges over pixel arrays: RGB to CMYK, CMYK to RGB, RGB to
// Lab and Lab to RGB. Each first asks the colour-management bridge for a
// transform and, when there is none, runs the arithmetic that every build
// shares. The imaging layer calls them per row or per image; single colours
// go through them with one pixel.
//
// Pixels: RGB 3 bytes blue first; CMYK 4 bytes C, M, Y, K (0..255, 255 full
// ink); Lab 3 bytes L, a + 128, b + 128. Strides are in bytes and may be
// negative for bottom-up images. Source and destination must not overlap.
// Every function answers 1 when done (also for an empty array) and 0 for bad
// arguments or when the scratch row could not be had.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fancy {

// The stride the colour layer itself gives an RGB array of width w:
// ((w + 1) * 3) with the two low bits cleared (4 for one pixel, 8 for two).
// It is never below 3 * w.
constexpr ptrdiff_t CLRRGBArrayStride(int32_t width) {
  return static_cast<ptrdiff_t>((width + 1) * 3) & ~static_cast<ptrdiff_t>(3);
}

// One row of doubles, three a pixel, for the two stages of the Lab
// arithmetic. A caller converting many rows keeps one and releases it after
// the last row; passing null makes each call use its own.
struct CLRScratchRow {
  double* values = nullptr;
  int32_t capacity = 0;  // pixels
};
// Makes room for width pixels; false (condition reported) when memory fails.
bool CLRScratchReserve(CLRScratchRow* scratch, int32_t width);
void CLRScratchRelease(CLRScratchRow* scratch);

// Bridge first, then the arithmetic fallback.
int CLRPixelsRGBToCMYK(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                       ptrdiff_t dstStride, int32_t width, int32_t height);
int CLRPixelsCMYKToRGB(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                       ptrdiff_t dstStride, int32_t width, int32_t height);
int CLRPixelsRGBToLab(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                      ptrdiff_t dstStride, int32_t width, int32_t height,
                      CLRScratchRow* scratch = nullptr);
int CLRPixelsLabToRGB(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                      ptrdiff_t dstStride, int32_t width, int32_t height,
                      CLRScratchRow* scratch = nullptr);

// The arithmetic alone.
//   RGB to CMYK: C = 255 - R, M = 255 - G, Y = 255 - B, K = min(C, M, Y), and
//   C, M, Y each lose K. CMYK to RGB: R = 255 - min(C + K, 255), and so on.
//   Lab and RGB: the CIE formulas on linear RGB with a D65-like white and no
//   gamma curve, in doubles, in two stages per row.
int CLRFallbackRGBToCMYK(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                         ptrdiff_t dstStride, int32_t width, int32_t height);
int CLRFallbackCMYKToRGB(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                         ptrdiff_t dstStride, int32_t width, int32_t height);
int CLRFallbackRGBToLab(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                        ptrdiff_t dstStride, int32_t width, int32_t height,
                        CLRScratchRow* scratch = nullptr);
int CLRFallbackLabToRGB(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                        ptrdiff_t dstStride, int32_t width, int32_t height,
                        CLRScratchRow* scratch = nullptr);

}  // namespace fancy
