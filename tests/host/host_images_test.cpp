// The picture and the selection as an effect reads them through the Images
// of the host extension, during a run of the host's own run loop.
#include <gtest/gtest.h>

#include "filter_host.h"
#include "imaging/image.h"
#include "run_fancyhost.h"

namespace fancy {
namespace {

// The extension as an effect gets it: headed, then filled by hostProc 1.
HostExtension AskHost(FilterRecord* record) {
  HostExtension extension{};
  extension.signature = record->hostSig;
  extension.version = 4;
  extension.filterRecord = record;
  record->hostProc(kHostProcFill, reinterpret_cast<intptr_t*>(&extension));
  return extension;
}

// Every pixel of the image through the image model, rows packed.
std::vector<uint8_t> ReadAll(const Image* image, int32_t bytesPerPixel) {
  const int32_t width = ImageGetWidth(image), height = ImageGetHeight(image);
  std::vector<uint8_t> out(size_t(width) * size_t(height) * size_t(bytesPerPixel), 0xEE);
  EXPECT_EQ(ImageReadPixels(image, 0, 0, width, height, width * bytesPerPixel, out.data()), 1);
  return out;
}

// The bytes a reader of the Image must see for a file's pixels: blue, green,
// red for RGB; each ink as 255 - ink for CMYK, as the host's rows carry it.
std::vector<uint8_t> ExpectedBytes(const FilePicture& file) {
  std::vector<uint8_t> out = file.pixels;
  if (file.mode == PixelMode::kRGB)
    for (size_t i = 0; i < out.size(); i += 3) std::swap(out[i], out[i + 2]);
  if (file.mode == PixelMode::kCMYK)
    for (uint8_t& b : out) b = uint8_t(255 - b);
  return out;
}

FilterHost QuietHost() {
  FilterHost host;
  host.settings.quiet = true;
  host.settings.noDialog = true;
  return host;
}

TEST(HostImages, EffectReadsThePictureLiveThroughItsImage) {
  const int32_t width = 7, height = 5;  // odd: packed rows differ from padded ones
  const struct {
    PixelMode mode;
    int32_t type;
  } cases[] = {{PixelMode::kGrey, kImageGrey8},
               {PixelMode::kRGB, kImageBGR24},
               {PixelMode::kCMYK, kImageCMYK32}};
  for (const auto& c : cases) {
    SCOPED_TRACE(ModeName(c.mode));
    const int32_t planes = PlanesOf(c.mode);
    const FilePicture file = testing::TestPicture(width, height, c.mode);
    HostImage image = ToHostImage(file, c.mode);
    FilterHost host = QuietHost();
    FilterHostInit(&host, &image, nullptr, Rect16{0, 0, int16_t(height), int16_t(width)},
                   nullptr);

    HostExtension atStart{};
    std::vector<uint8_t> seenAtStart, seenAtFinish;
    int32_t type = 0, storageKind = 0, xResolution = -1, yResolution = -1;
    auto effect = [&](int16_t selector, FilterRecord* r, intptr_t*, int16_t* result) {
      *result = 0;
      if (selector == kSelectorStart) {
        atStart = AskHost(r);
        if (!atStart.sourceImage) return;
        type = ImageGetType(atStart.sourceImage);
        storageKind = ImageGetStorageKind(atStart.sourceImage);
        seenAtStart = ReadAll(atStart.sourceImage, planes);
        ImageGetResolution(atStart.sourceImage, &xResolution, &yResolution);
        // Ask for row 2 to write it.
        r->outRect = Rect16{2, 0, 3, int16_t(width)};
        r->outLoPlane = 0;
        r->outHiPlane = int16_t(planes - 1);
      } else if (selector == kSelectorContinue) {
        auto* out = static_cast<uint8_t*>(r->outData);
        for (int32_t i = 0; i < width * planes; ++i) out[i] = uint8_t(200 + i);
        r->outRect = Rect16{};
      } else if (selector == kSelectorFinish) {
        HostExtension ext = AskHost(r);
        if (ext.sourceImage) seenAtFinish = ReadAll(ext.sourceImage, planes);
      }
    };
    FilterRunResult run = FilterHostRun(&host, effect, nullptr);
    EXPECT_EQ(run.result, 0);
    EXPECT_FALSE(run.hostFailure) << host.failure;

    const Image* source = atStart.sourceImage;
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(atStart.maskImage, nullptr) << "no selection, no mask image";
    EXPECT_NE(atStart.displayContext, nullptr);
    EXPECT_EQ(atStart.colorContext, nullptr);
    EXPECT_EQ(type, c.type);
    EXPECT_EQ(storageKind, kStorageBuffer);
    EXPECT_EQ(seenAtStart, ExpectedBytes(file));
    EXPECT_EQ(xResolution, 72000);
    EXPECT_EQ(yResolution, 72000);

    // Rows taken back show in the Image at once: it lies on the host's pixels.
    std::vector<uint8_t> expected = ExpectedBytes(file);
    for (int32_t i = 0; i < width * planes; ++i)
      expected[size_t(2 * width * planes + i)] = uint8_t(200 + i);
    EXPECT_EQ(seenAtFinish, expected);
    EXPECT_EQ(image.pixels, expected);

    // The run's Images are gone with the run.
    EXPECT_EQ(host.sourceImage, nullptr);
    EXPECT_EQ(host.maskImage, nullptr);
  }
}

TEST(HostImages, MaskImageReadsBackTheSelectionWithInclusiveBounds) {
  const int32_t width = 9, height = 7;
  FilePicture file = testing::TestPicture(width, height, PixelMode::kRGB);
  HostImage image = ToHostImage(file, PixelMode::kRGB);
  HostImage mask;
  mask.width = width, mask.height = height, mask.mode = PixelMode::kGrey, mask.planes = 1;
  mask.pixels.assign(size_t(width * height), 0);
  // Fully inside at columns 2..5 of rows 1..4, and one faint pixel at (6, 5)
  // that the bounds must still hold.
  for (int32_t y = 1; y <= 4; ++y)
    for (int32_t x = 2; x <= 5; ++x) mask.pixels[size_t(y * width + x)] = 255;
  mask.pixels[size_t(5 * width + 6)] = 1;

  FilterHost host = QuietHost();
  FilterHostInit(&host, &image, &mask, Rect16{0, 0, int16_t(height), int16_t(width)}, nullptr);
  HostExtension ext{};
  int32_t type = 0, maskWidth = 0, maskHeight = 0;
  std::vector<uint8_t> seen, inBounds;
  auto effect = [&](int16_t selector, FilterRecord* r, intptr_t*, int16_t* result) {
    *result = 0;
    if (selector != kSelectorPrepare) return;
    ext = AskHost(r);
    if (!ext.maskImage) return;
    type = ImageGetType(ext.maskImage);
    maskWidth = ImageGetWidth(ext.maskImage);
    maskHeight = ImageGetHeight(ext.maskImage);
    seen = ReadAll(ext.maskImage, 1);
    const int32_t w = ext.maskRight - ext.maskLeft + 1, h = ext.maskBottom - ext.maskTop + 1;
    if (w <= 0 || h <= 0) return;
    inBounds.assign(size_t(w * h), 0);
    ImageReadPixels(ext.maskImage, ext.maskLeft, ext.maskTop, w, h, w, inBounds.data());
  };
  FilterRunResult run = FilterHostRun(&host, effect, nullptr);
  EXPECT_EQ(run.result, 0);
  EXPECT_FALSE(run.hostFailure) << host.failure;

  ASSERT_NE(ext.maskImage, nullptr);
  ASSERT_NE(ext.sourceImage, nullptr);
  EXPECT_NE(ext.maskImage, ext.sourceImage);
  EXPECT_EQ(type, kImageMask);
  EXPECT_EQ(maskWidth, width);
  EXPECT_EQ(maskHeight, height);
  EXPECT_EQ(seen, mask.pixels);
  EXPECT_EQ(ext.maskTop, 1);
  EXPECT_EQ(ext.maskLeft, 2);
  EXPECT_EQ(ext.maskBottom, 5);
  EXPECT_EQ(ext.maskRight, 6);
  // The inclusive bounds hold every selected pixel.
  int sumAll = 0, sumIn = 0;
  for (uint8_t b : mask.pixels) sumAll += b;
  for (uint8_t b : inBounds) sumIn += b;
  EXPECT_EQ(sumIn, sumAll);
  EXPECT_EQ(host.sourceImage, nullptr);
  EXPECT_EQ(host.maskImage, nullptr);
}

TEST(HostImages, PictureThatCannotBeAnImageRunsNothing) {
  HostImage image = ToHostImage(testing::TestPicture(4, 3, PixelMode::kRGB), PixelMode::kRGB);
  image.pixels.resize(image.pixels.size() - 1);  // a buffer short of its last pixel
  FilterHost host = QuietHost();
  FilterHostInit(&host, &image, nullptr, Rect16{0, 0, 3, 4}, nullptr);
  int calls = 0;
  FilterRunResult run = FilterHostRun(
      &host, [&](int16_t, FilterRecord*, intptr_t*, int16_t* result) {
        ++calls;
        *result = 0;
      },
      nullptr);
  EXPECT_TRUE(run.hostFailure);
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(host.sourceImage, nullptr);
}

}  // namespace
}  // namespace fancy
