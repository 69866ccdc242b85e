#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "colour/clr_convert.h"
#include "colour/clr_pixels.h"
#include "colour_test_util.h"
#include "platform/crt_random.h"

namespace fancy {
namespace {

using testing::MakeColor;

using PixelsFn = int (*)(const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t, int32_t, int32_t);

int RGBToLab(const uint8_t* s, ptrdiff_t ss, uint8_t* d, ptrdiff_t ds, int32_t w, int32_t h) {
  return CLRPixelsRGBToLab(s, ss, d, ds, w, h);
}
int LabToRGB(const uint8_t* s, ptrdiff_t ss, uint8_t* d, ptrdiff_t ds, int32_t w, int32_t h) {
  return CLRPixelsLabToRGB(s, ss, d, ds, w, h);
}

struct Edge {
  PixelsFn pixels;
  int srcBytes, dstBytes;
  int srcModel, dstModel;  // the single-colour form of the same edge
};
const Edge kEdges[] = {
    {CLRPixelsRGBToCMYK, 3, 4, kCLRRGB255, kCLRCMYK255},
    {CLRPixelsCMYKToRGB, 4, 3, kCLRCMYK255, kCLRRGB255},
    {RGBToLab, 3, 3, kCLRRGB255, kCLRLab255},
    {LabToRGB, 3, 3, kCLRLab255, kCLRRGB255},
};

// Each pixel of an array converts as the same colour does alone, whatever
// the strides, padding and row order; padding is never written.
TEST(ColourPixels, ArraysConvertAsSingleColoursDo) {
  CrtSrand(4);
  const int width = 37, height = 5;
  for (const Edge& edge : kEdges) {
    for (int pad : {0, 3, 17}) {
      ptrdiff_t srcStride = width * edge.srcBytes + pad, dstStride = width * edge.dstBytes + pad;
      std::vector<uint8_t> src(static_cast<size_t>(srcStride * height));
      for (uint8_t& b : src) b = static_cast<uint8_t>(CrtRand());
      for (bool bottomUp : {false, true}) {
        std::vector<uint8_t> dst(static_cast<size_t>(dstStride * height), 0xC3);
        const uint8_t* s = bottomUp ? src.data() + srcStride * (height - 1) : src.data();
        uint8_t* d = bottomUp ? dst.data() + dstStride * (height - 1) : dst.data();
        ptrdiff_t sStep = bottomUp ? -srcStride : srcStride, dStep = bottomUp ? -dstStride : dstStride;
        ASSERT_EQ(edge.pixels(s, sStep, d, dStep, width, height), 1);
        for (int y = 0; y < height; ++y) {
          for (int x = 0; x < width; ++x) {
            CLRColor one = MakeColor(edge.srcModel), out;
            std::memcpy(one.value8, &src[static_cast<size_t>(y * srcStride + x * edge.srcBytes)],
                        static_cast<size_t>(edge.srcBytes));
            CLRConvert(&out, edge.dstModel, &one);
            // White RGB goes to CMYK255 by the all-zero rule, which the
            // arithmetic gives as well.
            ASSERT_EQ(0, std::memcmp(out.value8, &dst[static_cast<size_t>(y * dstStride + x * edge.dstBytes)],
                                     static_cast<size_t>(edge.dstBytes)))
                << "edge " << edge.srcModel << "->" << edge.dstModel << " at " << x << "," << y;
          }
          for (int p = 0; p < pad; ++p)
            ASSERT_EQ(dst[static_cast<size_t>(y * dstStride + width * edge.dstBytes + p)], 0xC3);
        }
      }
    }
  }
}

TEST(ColourPixels, ArgumentsAndStrides) {
  EXPECT_EQ(CLRRGBArrayStride(1), 4);
  EXPECT_EQ(CLRRGBArrayStride(2), 8);
  for (int w = 0; w < 1000; ++w) ASSERT_GE(CLRRGBArrayStride(w), 3 * w);

  uint8_t src[8] = {}, dst[8] = {};
  for (const Edge& edge : kEdges) {
    EXPECT_EQ(edge.pixels(src, 8, dst, 8, 0, 5), 1);
    EXPECT_EQ(edge.pixels(nullptr, 0, nullptr, 0, 0, 0), 1);
    EXPECT_EQ(edge.pixels(src, 8, dst, 8, -1, 1), 0);
    EXPECT_EQ(edge.pixels(nullptr, 8, dst, 8, 1, 1), 0);
  }
}

TEST(ColourPixels, OneScratchRowServesManyRowsAndWidths) {
  CrtSrand(9);
  const int widest = 300;
  std::vector<uint8_t> rgb(static_cast<size_t>(widest * 3)), lab(rgb.size()), back(rgb.size());
  std::vector<uint8_t> labAlone(rgb.size()), backAlone(rgb.size());
  CLRScratchRow scratch;
  for (int width : {1, 20, widest, 7}) {
    for (uint8_t& b : rgb) b = static_cast<uint8_t>(CrtRand());
    ASSERT_EQ(CLRFallbackRGBToLab(rgb.data(), 0, lab.data(), 0, width, 1, &scratch), 1);
    ASSERT_EQ(CLRFallbackLabToRGB(lab.data(), 0, back.data(), 0, width, 1, &scratch), 1);
    EXPECT_GE(scratch.capacity, width);
    ASSERT_EQ(CLRFallbackRGBToLab(rgb.data(), 0, labAlone.data(), 0, width, 1), 1);
    ASSERT_EQ(CLRFallbackLabToRGB(labAlone.data(), 0, backAlone.data(), 0, width, 1), 1);
    EXPECT_EQ(0, std::memcmp(lab.data(), labAlone.data(), static_cast<size_t>(width * 3)));
    EXPECT_EQ(0, std::memcmp(back.data(), backAlone.data(), static_cast<size_t>(width * 3)));
  }
  CLRScratchRelease(&scratch);
  EXPECT_EQ(scratch.values, nullptr);
  CLRScratchRelease(&scratch);  // twice is harmless
}

}  // namespace
}  // namespace fancy
