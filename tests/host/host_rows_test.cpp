// The host's side of the row protocol, its mask blend and its parameters
// file, checked on small pictures against rules a reader can verify.
#include <cstdlib>

#include <gtest/gtest.h>

#include "filter_host.h"
#include "params_file.h"
#include "run_fancyhost.h"

namespace fancy {
namespace {

HostImage Picture(int32_t width, int32_t height, PixelMode mode) {
  return ToHostImage(testing::TestPicture(width, height, mode), mode);
}

TEST(HostRows, DeliveryFollowsRectAndPlanes) {
  HostImage rgb = Picture(10, 6, PixelMode::kRGB);
  std::vector<uint8_t> buffer;
  int32_t rowBytes = 0;
  std::string error;
  // Planes 1..2 of a 3 x 2 rectangle at (4, 2): green and red.
  ASSERT_TRUE(DeliverPlanes(rgb, Rect16{2, 4, 4, 7}, 1, 2, &buffer, &rowBytes, &error)) << error;
  ASSERT_GE(rowBytes, 3 * 2);
  EXPECT_EQ(rowBytes % 4, 0);
  for (int y = 0; y < 2; ++y)
    for (int x = 0; x < 3; ++x)
      for (int p = 0; p < 2; ++p)
        EXPECT_EQ(buffer[size_t(y * rowBytes + x * 2 + p)], rgb.Pixel(4 + x, 2 + y)[1 + p]);

  // A grey picture hands its grey in every plane asked for.
  HostImage grey = Picture(5, 5, PixelMode::kGrey);
  ASSERT_TRUE(DeliverPlanes(grey, Rect16{1, 0, 2, 5}, 0, 2, &buffer, &rowBytes, &error));
  for (int x = 0; x < 5; ++x)
    for (int p = 0; p < 3; ++p) EXPECT_EQ(buffer[size_t(x * 3 + p)], grey.Pixel(x, 1)[0]);

  // Outside the picture the edge repeats.
  ASSERT_TRUE(DeliverPlanes(grey, Rect16{-2, -1, 0, 1}, 0, 0, &buffer, &rowBytes, &error));
  EXPECT_EQ(buffer[0], grey.Pixel(0, 0)[0]);
  EXPECT_EQ(buffer[size_t(rowBytes) + 1], grey.Pixel(0, 0)[0]);

  // Requests that cannot be served are refused, not attempted.
  EXPECT_FALSE(DeliverPlanes(rgb, Rect16{0, 0, 1, 1}, 2, 1, &buffer, &rowBytes, &error));
  EXPECT_FALSE(DeliverPlanes(rgb, Rect16{0, 0, 1, 1}, -1, 1, &buffer, &rowBytes, &error));
  EXPECT_FALSE(DeliverPlanes(rgb, Rect16{0, 0, 32767, 32767}, 0, 2000, &buffer, &rowBytes, &error));
}

TEST(HostRows, TakingBackWritesOnlyWhatWasAskedInsideThePicture) {
  for (PixelMode mode : {PixelMode::kGrey, PixelMode::kRGB, PixelMode::kCMYK}) {
    HostImage image = Picture(9, 7, mode);
    const HostImage before = image;
    std::vector<uint8_t> buffer;
    int32_t rowBytes = 0;
    std::string error;
    const Rect16 rect{-1, 6, 3, 12};  // crosses the top and right edges
    const int16_t hi = int16_t(image.planes - 1);
    ASSERT_TRUE(DeliverPlanes(image, rect, 0, hi, &buffer, &rowBytes, &error));
    // Unchanged data comes back unchanged.
    TakePlanes(&image, rect, 0, hi, buffer.data(), rowBytes);
    EXPECT_EQ(image.pixels, before.pixels) << ModeName(mode);
    // Changed data lands inside rect and the picture, and nowhere else.
    for (uint8_t& b : buffer) b = uint8_t(b ^ 0x5A);
    TakePlanes(&image, rect, 0, hi, buffer.data(), rowBytes);
    for (int32_t y = 0; y < image.height; ++y)
      for (int32_t x = 0; x < image.width; ++x) {
        bool inside = y < 3 && x >= 6;
        for (int p = 0; p < image.planes; ++p) {
          uint8_t was = before.Pixel(x, y)[p];
          EXPECT_EQ(image.Pixel(x, y)[p], inside ? uint8_t(was ^ 0x5A) : was)
              << ModeName(mode) << " " << x << "," << y << " plane " << p;
        }
      }
  }
}

TEST(HostRows, GreyTakesThreePlanesThroughItsGreyRule) {
  HostImage grey = Picture(4, 1, PixelMode::kGrey);
  // Blue, green, red in planes 0, 1, 2.
  const uint8_t row[12] = {0, 0, 255, 0, 255, 0, 255, 0, 0, 90, 90, 90};
  TakePlanes(&grey, Rect16{0, 0, 1, 4}, 0, 2, row, 12);
  EXPECT_EQ(grey.Pixel(0, 0)[0], GreyOf(255, 0, 0));
  EXPECT_EQ(grey.Pixel(1, 0)[0], GreyOf(0, 255, 0));
  EXPECT_EQ(grey.Pixel(2, 0)[0], GreyOf(0, 0, 255));
  EXPECT_EQ(grey.Pixel(3, 0)[0], 90);
  // One plane is taken as it stands.
  const uint8_t one[4] = {7, 8, 9, 10};
  TakePlanes(&grey, Rect16{0, 0, 1, 4}, 0, 0, one, 4);
  EXPECT_EQ(grey.pixels, (std::vector<uint8_t>{7, 8, 9, 10}));
}

TEST(HostRows, MaskBlendsResultIntoOriginal) {
  HostImage original = Picture(3, 1, PixelMode::kRGB);
  HostImage result = original;
  for (uint8_t& b : result.pixels) b = uint8_t(255 - b);
  HostImage mask;
  mask.width = 3, mask.height = 1, mask.mode = PixelMode::kGrey, mask.planes = 1;
  mask.pixels = {0, 255, 128};
  HostImage blended = result;
  BlendThroughMask(original, mask, &blended);
  for (int p = 0; p < 3; ++p) {
    EXPECT_EQ(blended.Pixel(0, 0)[p], original.Pixel(0, 0)[p]);
    EXPECT_EQ(blended.Pixel(1, 0)[p], result.Pixel(1, 0)[p]);
    int a = original.Pixel(2, 0)[p], b = result.Pixel(2, 0)[p];
    EXPECT_NEAR(blended.Pixel(2, 0)[p], (a * 127 + b * 128) / 255.0, 0.5 + 1e-9);
  }
}

TEST(ParamsFile, RoundTripsAndRefusesDamage) {
  ParamsBlock block;
  block.filterId = 201;
  for (int i = 0; i < 300; ++i) block.bytes.push_back(uint8_t(i * 7));
  std::vector<uint8_t> file = EncodeParams(block);
  ParamsBlock back;
  std::string error;
  ASSERT_TRUE(DecodeParams(file.data(), file.size(), &back, &error)) << error;
  EXPECT_EQ(back.filterId, 201);
  EXPECT_EQ(back.bytes, block.bytes);

  for (size_t at : {size_t(0), size_t(8), size_t(16), size_t(20), file.size() - 1}) {
    std::vector<uint8_t> bad = file;
    bad[at] ^= 0x10;
    EXPECT_FALSE(DecodeParams(bad.data(), bad.size(), &back, &error)) << "byte " << at;
  }
  EXPECT_FALSE(DecodeParams(file.data(), file.size() - 1, &back, &error));
  EXPECT_FALSE(DecodeParams(file.data(), 10, &back, &error));

  char** handle = MakeParamsHandle(block.bytes);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(std::vector<uint8_t>(*handle, *handle + 300), block.bytes);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(handle) + sizeof(char*), 4), "HNDL");
  FreeParamsHandle(handle);
}

}  // namespace
}  // namespace fancy
