// The picture readers on good files of every supported form, and on hostile
// bytes: every answer is a clean refusal, never a crash or an overrun (the
// sanitizer build checks the latter).
#include <png.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "bmp_file.h"
#include "image_file.h"
#include "jpeg_file.h"
#include "platform/crt_random.h"
#include "png_file.h"
#include "run_fancyhost.h"

namespace fancy {
namespace {

void Put16(std::vector<uint8_t>& b, size_t at, uint32_t v) {
  b[at] = uint8_t(v);
  b[at + 1] = uint8_t(v >> 8);
}
void Put32(std::vector<uint8_t>& b, size_t at, uint32_t v) {
  for (int i = 0; i < 4; ++i) b[at + i] = uint8_t(v >> (8 * i));
}

// A BMP made field by field, independently of the writer under test.
// value(x, y) gives a palette index for 1..8 bits, or 0xRRGGBB for 24.
template <typename Value>
std::vector<uint8_t> MakeBmp(int bits, bool coreHeader, bool topDown, int width, int height,
                             const std::vector<uint32_t>& palette, Value value) {
  const uint32_t headerSize = coreHeader ? 12 : 40;
  const uint32_t entry = coreHeader ? 3 : 4;
  const uint32_t stride = ((uint32_t(width) * bits + 31) / 32) * 4;
  const uint32_t offset = 14 + headerSize + uint32_t(palette.size()) * entry;
  std::vector<uint8_t> b(offset + stride * uint32_t(height), 0);
  b[0] = 'B';
  b[1] = 'M';
  Put32(b, 2, uint32_t(b.size()));
  Put32(b, 10, offset);
  Put32(b, 14, headerSize);
  if (coreHeader) {
    Put16(b, 18, uint32_t(width));
    Put16(b, 20, uint32_t(height));
    Put16(b, 22, 1);
    Put16(b, 24, uint32_t(bits));
  } else {
    Put32(b, 18, uint32_t(width));
    Put32(b, 22, uint32_t(topDown ? -height : height));
    Put16(b, 26, 1);
    Put16(b, 28, uint32_t(bits));
    Put32(b, 46, uint32_t(palette.size()));
  }
  for (size_t i = 0; i < palette.size(); ++i) {
    size_t at = 14 + headerSize + i * entry;
    b[at] = uint8_t(palette[i]);
    b[at + 1] = uint8_t(palette[i] >> 8);
    b[at + 2] = uint8_t(palette[i] >> 16);
  }
  for (int y = 0; y < height; ++y) {
    int fileRow = topDown ? y : height - 1 - y;
    uint8_t* row = b.data() + offset + size_t(fileRow) * stride;
    for (int x = 0; x < width; ++x) {
      uint32_t v = value(x, y);
      if (bits == 24) {
        row[x * 3] = uint8_t(v);
        row[x * 3 + 1] = uint8_t(v >> 8);
        row[x * 3 + 2] = uint8_t(v >> 16);
      } else if (bits == 8) {
        row[x] = uint8_t(v);
      } else if (bits == 4) {
        row[x / 2] |= uint8_t(v << ((x & 1) ? 0 : 4));
      } else {
        row[x / 8] |= uint8_t(v << (7 - (x & 7)));
      }
    }
  }
  return b;
}

const std::vector<uint32_t> kColourPalette = {0xFF0000, 0x00FF00, 0x0000FF, 0x102030,
                                              0xFFFFFF, 0x000000, 0x808080, 0xC0A000};

TEST(BmpReader, ReadsEveryDepthInBothHeaderFormsAndRowOrders) {
  const int width = 13, height = 5;  // odd width: rows are padded
  for (int bits : {1, 4, 8, 24}) {
    for (bool core : {false, true}) {
      for (bool topDown : {false, true}) {
        if (core && topDown) continue;  // the core header has unsigned heights
        SCOPED_TRACE(::testing::Message() << bits << " bits, core " << core << ", top-down " << topDown);
        std::vector<uint32_t> palette;
        if (bits <= 8) palette.assign(kColourPalette.begin(), kColourPalette.begin() + (bits == 1 ? 2 : 8));
        auto value = [&](int x, int y) -> uint32_t {
          if (bits == 24) return uint32_t(x * 19) << 16 | uint32_t(y * 50) << 8 | uint32_t(x + y);
          return uint32_t(x + 3 * y) % uint32_t(palette.size());
        };
        std::vector<uint8_t> file = MakeBmp(bits, core, topDown, width, height, palette, value);
        FilePicture picture;
        std::string error;
        ASSERT_TRUE(DecodeBmp(file.data(), file.size(), &picture, &error)) << error;
        ASSERT_EQ(picture.width, width);
        ASSERT_EQ(picture.height, height);
        ASSERT_EQ(picture.mode, PixelMode::kRGB);
        for (int y = 0; y < height; ++y)
          for (int x = 0; x < width; ++x) {
            uint32_t rgb = bits == 24 ? value(x, y) : palette[value(x, y)];
            const uint8_t* p = &picture.pixels[(size_t(y) * width + x) * 3];
            ASSERT_EQ(p[0], uint8_t(rgb >> 16)) << x << "," << y;
            ASSERT_EQ(p[1], uint8_t(rgb >> 8)) << x << "," << y;
            ASSERT_EQ(p[2], uint8_t(rgb)) << x << "," << y;
          }
      }
    }
  }
}

TEST(BmpReader, GreyPaletteGivesGreyPictureAndWriterRoundTrips) {
  std::vector<uint32_t> grey(256);
  for (uint32_t i = 0; i < 256; ++i) grey[i] = i * 0x010101u;
  auto file = MakeBmp(8, false, false, 9, 4, grey, [](int x, int y) { return uint32_t(x * 28 + y); });
  FilePicture picture;
  std::string error;
  ASSERT_TRUE(DecodeBmp(file.data(), file.size(), &picture, &error)) << error;
  EXPECT_EQ(picture.mode, PixelMode::kGrey);
  EXPECT_EQ(picture.pixels[size_t(2 * 9 + 3)], 3 * 28 + 2);

  for (PixelMode mode : {PixelMode::kGrey, PixelMode::kRGB}) {
    FilePicture original = testing::TestPicture(7, 6, mode);
    std::vector<uint8_t> bytes = EncodeBmp(original);
    FilePicture back;
    ASSERT_TRUE(DecodeBmp(bytes.data(), bytes.size(), &back, &error)) << error;
    EXPECT_EQ(back.mode, mode);
    EXPECT_EQ(back.pixels, original.pixels);
  }
}

// Each damaged file is refused with a message that names the trouble.
TEST(BmpReader, RefusesFilesWhoseHeadersLie) {
  auto good = MakeBmp(8, false, false, 16, 16, kColourPalette, [](int x, int) { return uint32_t(x % 8); });
  FilePicture picture;
  std::string error;
  ASSERT_TRUE(DecodeBmp(good.data(), good.size(), &picture, &error));

  struct Case {
    const char* name;
    std::function<void(std::vector<uint8_t>&)> damage;
    const char* says;
  };
  const Case cases[] = {
      {"file size beyond the file", [](auto& b) { Put32(b, 2, uint32_t(b.size() + 100)); }, "truncated"},
      {"more colours than the depth allows", [](auto& b) { Put32(b, 46, 300); }, "palette"},
      {"a colour count that cannot be", [](auto& b) { Put32(b, 46, 0xFFFFFFFFu); }, "palette"},
      {"pixels beyond the end", [](auto& b) { Put32(b, 10, uint32_t(b.size() - 10)); }, "truncated"},
      {"pixels inside the palette", [](auto& b) { Put32(b, 10, 20); }, "palette"},
      {"a vast width", [](auto& b) { Put32(b, 18, 100000); }, "too large"},
      {"a vast height", [](auto& b) { Put32(b, 22, 0x7FFFFFFF); }, "too large"},
      {"a negative width", [](auto& b) { Put32(b, 18, uint32_t(-16)); }, "no pixels"},
      {"no height", [](auto& b) { Put32(b, 22, 0); }, "no pixels"},
      {"run-length compression", [](auto& b) { Put32(b, 30, 1); }, "run-length"},
      {"an unknown header size", [](auto& b) { Put32(b, 14, 20); }, "header"},
      {"a header larger than the file", [](auto& b) { Put32(b, 14, 0x7FFFFFF0); }, "truncated"},
      {"a depth of 7 bits", [](auto& b) { Put16(b, 28, 7); }, "bits"},
      {"a pixel past the palette", [](auto& b) { Put32(b, 46, 4); b[b.size() - 1] = 7; }, "colour"},
  };
  for (const Case& c : cases) {
    std::vector<uint8_t> bad = good;
    c.damage(bad);
    error.clear();
    EXPECT_FALSE(DecodeBmp(bad.data(), bad.size(), &picture, &error)) << c.name;
    EXPECT_NE(error.find(c.says), std::string::npos) << c.name << ": " << error;
  }
}

// Decodes every prefix and many random damages of a file: never a crash,
// and whatever is accepted is a whole picture.
void Torture(const std::vector<uint8_t>& good, bool prefixesFail) {
  FilePicture picture;
  std::string error;
  for (size_t length = 0; length < good.size(); ++length) {
    std::vector<uint8_t> cut(good.begin(), good.begin() + length);
    bool ok = DecodePicture(cut.data(), cut.size(), &picture, &error);
    if (prefixesFail) {
      EXPECT_FALSE(ok) << "a file cut to " << length << " bytes was accepted";
    }
  }
  CrtSrand(7);
  for (int round = 0; round < 1500; ++round) {
    std::vector<uint8_t> bad = good;
    int flips = 1 + CrtRand() % 4;
    for (int i = 0; i < flips; ++i) {
      size_t at = size_t(CrtRand()) * size_t(CrtRand() + 1) % bad.size();
      bad[at] = uint8_t(CrtRand());
    }
    if (DecodePicture(bad.data(), bad.size(), &picture, &error)) {
      EXPECT_EQ(picture.pixels.size(),
                size_t(picture.width) * size_t(picture.height) * size_t(PlanesOf(picture.mode)));
    }
  }
}

TEST(PictureReaders, SurviveCutAndDamagedFiles) {
  FilePicture rgb = testing::TestPicture(24, 10, PixelMode::kRGB);
  FilePicture cmyk = testing::TestPicture(16, 16, PixelMode::kCMYK);
  std::vector<uint8_t> bmp = EncodeBmp(rgb), png, jpeg, cmykJpeg;
  std::string error;
  ASSERT_TRUE(EncodePng(rgb, &png, &error));
  ASSERT_TRUE(EncodeJpeg(rgb, 90, &jpeg, &error));
  ASSERT_TRUE(EncodeJpeg(cmyk, 90, &cmykJpeg, &error));
  Torture(bmp, true);
  Torture(png, true);
  Torture(jpeg, true);
  Torture(cmykJpeg, false);
}

TEST(PictureReaders, RefuseGarbageAndNameTheFormat) {
  FilePicture picture;
  std::string error;
  std::vector<uint8_t> garbage(4000);
  CrtSrand(3);
  for (uint8_t& b : garbage) b = uint8_t(CrtRand());
  EXPECT_FALSE(DecodePicture(garbage.data(), garbage.size(), &picture, &error));
  EXPECT_NE(error.find("not a BMP, PNG or JPEG"), std::string::npos) << error;

  garbage[0] = 0xFF, garbage[1] = 0xD8, garbage[2] = 0xFF;  // a JPEG start, then noise
  EXPECT_FALSE(DecodePicture(garbage.data(), garbage.size(), &picture, &error));
  EXPECT_NE(error.find("JPEG"), std::string::npos) << error;

  const uint8_t signature[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
  std::memcpy(garbage.data(), signature, 8);
  EXPECT_FALSE(DecodePicture(garbage.data(), garbage.size(), &picture, &error));
  EXPECT_NE(error.find("PNG"), std::string::npos) << error;

  EXPECT_FALSE(DecodePicture(nullptr, 0, &picture, &error));
  EXPECT_NE(error.find("empty"), std::string::npos) << error;
}

TEST(PngReader, ReadsWhatItWritesAndExpandsPalettes) {
  std::string error;
  for (PixelMode mode : {PixelMode::kGrey, PixelMode::kRGB}) {
    FilePicture original = testing::TestPicture(31, 9, mode);
    std::vector<uint8_t> bytes;
    ASSERT_TRUE(EncodePng(original, &bytes, &error)) << error;
    FilePicture back;
    ASSERT_TRUE(DecodePng(bytes.data(), bytes.size(), &back, &error)) << error;
    EXPECT_EQ(back.mode, mode);
    EXPECT_EQ(back.pixels, original.pixels);
  }

  // A paletted file with transparency, made with libpng's simple interface.
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = 4;
  image.height = 2;
  image.format = PNG_FORMAT_RGBA_COLORMAP;
  image.colormap_entries = 3;
  const uint8_t colormap[] = {255, 0, 0, 255, 0, 0, 255, 128, 10, 20, 30, 0};
  const uint8_t indices[] = {0, 1, 2, 0, 2, 2, 1, 0};
  png_alloc_size_t size = 0;
  ASSERT_TRUE(png_image_write_get_memory_size(image, size, 0, indices, 0, colormap));
  std::vector<uint8_t> bytes(size);
  ASSERT_TRUE(png_image_write_to_memory(&image, bytes.data(), &size, 0, indices, 0, colormap));
  bytes.resize(size);
  FilePicture back;
  ASSERT_TRUE(DecodePng(bytes.data(), bytes.size(), &back, &error)) << error;
  ASSERT_EQ(back.mode, PixelMode::kRGB);
  for (int i = 0; i < 8; ++i) {
    const uint8_t* expected = colormap + indices[i] * 4;
    EXPECT_EQ(back.pixels[size_t(i) * 3], expected[0]) << i;
    EXPECT_EQ(back.pixels[size_t(i) * 3 + 1], expected[1]) << i;
    EXPECT_EQ(back.pixels[size_t(i) * 3 + 2], expected[2]) << i;
  }
}

// CMYK JPEGs carry the Adobe marker and inverted inks; a reader that missed
// the inversion would give 255 - ink.
TEST(JpegReader, KeepsModesAndReadsAdobeCmykInks) {
  std::string error;
  FilePicture flat;
  flat.width = flat.height = 16;
  flat.mode = PixelMode::kCMYK;
  for (int i = 0; i < 256; ++i) {
    const uint8_t ink[4] = {200, 30, 0, 90};
    flat.pixels.insert(flat.pixels.end(), ink, ink + 4);
  }
  std::vector<uint8_t> bytes;
  ASSERT_TRUE(EncodeJpeg(flat, 95, &bytes, &error)) << error;
  FilePicture back;
  ASSERT_TRUE(DecodeJpeg(bytes.data(), bytes.size(), &back, &error)) << error;
  ASSERT_EQ(back.mode, PixelMode::kCMYK);
  for (size_t i = 0; i < back.pixels.size(); ++i)
    EXPECT_NEAR(back.pixels[i], flat.pixels[i], 3) << i;

  FilePicture grey = testing::TestPicture(16, 8, PixelMode::kGrey);
  ASSERT_TRUE(EncodeJpeg(grey, 95, &bytes, &error)) << error;
  ASSERT_TRUE(DecodeJpeg(bytes.data(), bytes.size(), &back, &error)) << error;
  EXPECT_EQ(back.mode, PixelMode::kGrey);
}

// The host's pixel order: blue first in RGB, CMYK stored inverted; and the
// conversions between modes lose nothing where nothing need be lost.
TEST(HostPixels, OrderAndModeConversions) {
  FilePicture red;
  red.width = red.height = 1;
  red.mode = PixelMode::kRGB;
  red.pixels = {255, 0, 0};
  HostImage bgr = ToHostImage(red, PixelMode::kRGB);
  EXPECT_EQ(bgr.pixels, (std::vector<uint8_t>{0, 0, 255}));
  HostImage cmyk = ToHostImage(red, PixelMode::kCMYK);
  // Red is magenta and yellow ink; stored inverted, 255 is no ink.
  EXPECT_EQ(cmyk.pixels, (std::vector<uint8_t>{255, 0, 0, 255}));

  FilePicture rgb = testing::TestPicture(40, 20, PixelMode::kRGB);
  EXPECT_EQ(ToFilePicture(ToHostImage(rgb, PixelMode::kCMYK), PixelMode::kRGB).pixels, rgb.pixels);
  EXPECT_EQ(ToFilePicture(ToHostImage(rgb, PixelMode::kRGB), PixelMode::kRGB).pixels, rgb.pixels);
  FilePicture grey = testing::TestPicture(40, 20, PixelMode::kGrey);
  for (PixelMode mode : {PixelMode::kGrey, PixelMode::kRGB, PixelMode::kCMYK})
    EXPECT_EQ(ToFilePicture(ToHostImage(grey, mode), PixelMode::kGrey).pixels, grey.pixels)
        << ModeName(mode);
  // Grey goes to black ink alone.
  HostImage greyInk = ToHostImage(grey, PixelMode::kCMYK);
  for (size_t i = 0; i < greyInk.pixels.size(); i += 4) {
    EXPECT_EQ(greyInk.pixels[i], 255);
    EXPECT_EQ(greyInk.pixels[i + 3], grey.pixels[i / 4]);
  }
}

}  // namespace
}  // namespace fancy
