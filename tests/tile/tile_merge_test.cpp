// The merge kernels, the row walker and the tile's row origin.
#include "tile/tile_merge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "config/strings.h"
#include "tile/tile_buffer.h"
#include "tile/tile_pixel.h"
#include "tile_test_util.h"

namespace fancy {
namespace {

// A one-row tile of `width` pixels of `type`, filled from a generator.
struct Tile {
  std::vector<uint8_t> bytes;
  TileBuffer buffer{};
  Tile(int32_t width, int32_t type, int32_t mode, int32_t opacity) {
    buffer.pixelType = static_cast<int16_t>(type);
    buffer.bytesPerPixel = static_cast<int16_t>(TileBytesPerPixel(type));
    buffer.width = width;
    buffer.height = 1;
    buffer.rowBytes = TileRowBytes(type, width);
    buffer.mode = static_cast<int16_t>(mode);
    buffer.opacity = static_cast<uint8_t>(opacity);
    bytes.resize(buffer.rowBytes);
    buffer.data = bytes.data();
  }
};

int32_t Lum(const uint8_t* p) { return (77 * p[0] + 151 * p[1] + 28 * p[2]) >> 8; }

// Runs one pixel through a mode: image i, tile t (RGB), out.
void MergePixel(int32_t mode, int32_t opacity, const uint8_t i[3], const uint8_t t[3],
                uint8_t out[3]) {
  Tile tile(1, kTilePixelRgb, mode, opacity);
  std::memcpy(tile.bytes.data(), t, 3);
  ASSERT_TRUE(MergeRow(tile.buffer, i, out, 0, 0, 1, kTilePixelRgb, 0, 0));
}

TEST(TileMerge, OpacityGivesTheImagesWeight) {
  EXPECT_EQ(TileOpacityAlpha(100), 0);
  EXPECT_EQ(TileOpacityAlpha(1), 252);
  EXPECT_EQ(TileOpacityAlpha(0), 255);
  EXPECT_EQ(TileOpacityAlpha(50), 127);
  EXPECT_EQ(TileOpacityAlpha(250), 0);
  EXPECT_EQ(TileRowBytes(kTilePixelRgb, 5), 16);
  EXPECT_EQ(TileRowBytes(kTilePixelGray, 5), 8);
  EXPECT_EQ(TileRowBytes(kTilePixelCmyk, 5), 20);
  EXPECT_STREQ(FindString(kTileModeFirstString + kTileModeNormal - 1), "Normal");
  EXPECT_STREQ(FindString(kTileModeFirstString + kTileModeScreen - 1), "Screen");
}

// Opacity 100 runs the full-opacity kernel. At alpha 0 the opacity forms
// of Normal, Darken and Lighten give the same bytes; Multiply and Screen
// weigh by beta = 255 and lose at most one level.
TEST(TileMerge, FullOpacityIsTheOpacityFormAtAlphaZero) {
  std::vector<uint8_t> image(256 * 3), tileRow(256 * 3);
  for (int32_t t = 0; t < 256; ++t) {
    for (int32_t i = 0; i < 256; ++i) {
      image[i * 3] = image[i * 3 + 1] = image[i * 3 + 2] = static_cast<uint8_t>(i);
    }
    for (int32_t mode = kTileModeFirst; mode <= kTileModeLast; ++mode) {
      SCOPED_TRACE(mode);
      Tile tile(1, kTilePixelRgb, mode, 100);
      tile.bytes[0] = static_cast<uint8_t>(t);
      tile.bytes[1] = static_cast<uint8_t>(255 - t);
      tile.bytes[2] = static_cast<uint8_t>(t / 2);
      std::vector<uint8_t> full(image.size()), blended(image.size());
      ASSERT_TRUE(MergeRow(tile.buffer, image.data(), full.data(), 0, 0, 256, kTilePixelRgb, 0, 0));
      GetTileKernel(mode, false)(tile.buffer.data, 1, tile.buffer.rowBytes, 0, 0, kTilePixelRgb,
                                 256, kTilePixelRgb, blended.data(), image.data(), 0, 0, 0, 3);
      const int32_t allowed = mode == kTileModeMultiply || mode == kTileModeScreen ? 1 : 0;
      for (size_t k = 0; k < full.size(); ++k) {
        ASSERT_LE(std::abs(full[k] - blended[k]), allowed) << k;
      }
    }
  }
}

TEST(TileMerge, DarkenNeverLightensAndLightenNeverDarkens) {
  const int32_t types[] = {kTilePixelGray, kTilePixelRgb, kTilePixelCmyk, kTilePixelRgb4};
  for (int32_t type : types) {
    TilePixelLayout layout;
    ASSERT_TRUE(GetTilePixelLayout(type, &layout));
    for (int32_t opacity : {100, 73, 1, 0}) {
      Tile darken(256, type, kTileModeDarken, opacity);
      Tile lighten(256, type, kTileModeLighten, opacity);
      for (int32_t t = 0; t < 256; ++t) {
        for (int32_t b = 0; b < layout.bytes; ++b) {
          darken.bytes[t * layout.bytes + b] = lighten.bytes[t * layout.bytes + b] =
              static_cast<uint8_t>(t + 37 * b);
        }
      }
      std::vector<uint8_t> image(256 * layout.bytes);
      for (int32_t i = 0; i < 256; ++i) {
        for (int32_t x = 0; x < 256; ++x) {
          std::fill_n(image.begin() + x * layout.bytes, layout.bytes, static_cast<uint8_t>(i));
        }
        std::vector<uint8_t> dark(image.size()), light(image.size());
        ASSERT_TRUE(MergeRow(darken.buffer, image.data(), dark.data(), 0, 0, 256, type, 0, 0));
        ASSERT_TRUE(MergeRow(lighten.buffer, image.data(), light.data(), 0, 0, 256, type, 0, 0));
        for (int32_t x = 0; x < 256; ++x) {
          for (int32_t ch = 0; ch < layout.channels; ++ch) {
            const size_t k = static_cast<size_t>(x) * layout.bytes + layout.offset + ch;
            ASSERT_LE(dark[k], i) << type;
            ASSERT_GE(light[k], i) << type;
          }
        }
      }
    }
  }
}

// Where no channel leaves 0..255 the colour modes keep the luminosity they
// aim at exactly. Where one does, the colour is solved with one end pinned
// (a channel at 0 or 255, or black when two channels were equal) and its
// luminosity stays within two levels.
TEST(TileMerge, ColourModesKeepLuminosity) {
  testing::Lcg random{1234};
  for (int32_t mode : {kTileModeColor, kTileModeLuminosity, kTileModeHue, kTileModeSaturation}) {
    SCOPED_TRACE(mode);
    int32_t exact = 0, pinned = 0;
    // Every pair of colours made of the extreme and middle values (equal
    // channels, grays, pure colours: the divisions' edge cases), then
    // random ones, some with two equal channels.
    constexpr uint8_t kEdges[6] = {0, 1, 127, 128, 254, 255};
    for (int n = 0; n < 46656 + 60000; ++n) {
      uint8_t image[3], tile[3], out[3];
      if (n < 46656) {
        for (int c = 0, k = n; c < 3; ++c, k /= 36) {
          image[c] = kEdges[k % 6];
          tile[c] = kEdges[(k / 6) % 6];
        }
      } else {
        for (int c = 0; c < 3; ++c) {
          image[c] = random.Next();
          tile[c] = random.Next();
        }
        if (n % 7 == 0) tile[n % 3] = tile[(n + 1) % 3];
      }
      MergePixel(mode, 100, image, tile, out);
      const int32_t target = mode == kTileModeLuminosity ? Lum(tile) : Lum(image);
      const bool atEnd = std::count(out, out + 3, 0) + std::count(out, out + 3, 255) > 0;
      if (Lum(out) == target) {
        ++exact;
        continue;
      }
      ASSERT_TRUE(atEnd) << int(image[0]) << " " << int(image[1]) << " " << int(image[2]) << " / "
                         << int(tile[0]) << " " << int(tile[1]) << " " << int(tile[2]);
      ++pinned;
      if (mode == kTileModeColor || mode == kTileModeLuminosity) {
        const bool black = out[0] == 0 && out[1] == 0 && out[2] == 0;
        if (!black) {
          ASSERT_LE(std::abs(Lum(out) - target), 2);
        }
      }
    }
    EXPECT_GT(exact, pinned);
  }
}

TEST(TileMerge, GrayInHueModeIsUnchangedAndGrayRowsHaveNoColourModes) {
  testing::Lcg random{99};
  for (int n = 0; n < 20000; ++n) {
    const uint8_t g = random.Next();
    const uint8_t image[3] = {g, g, g};
    uint8_t tile[3], out[3];
    for (int c = 0; c < 3; ++c) tile[c] = random.Next();
    MergePixel(kTileModeHue, 100, image, tile, out);
    ASSERT_EQ(out[0], g);
    ASSERT_EQ(out[1], g);
    ASSERT_EQ(out[2], g);
  }
  // A gray row in a colour mode, and the fourth byte of a CMYK pixel, are
  // left as they were.
  for (int32_t mode = kTileModeHue; mode <= kTileModeLuminosity; ++mode) {
    Tile gray(4, kTilePixelGray, mode, 100);
    const uint8_t image[4] = {10, 20, 30, 40};
    uint8_t out[4] = {1, 2, 3, 4};
    ASSERT_TRUE(MergeRow(gray.buffer, image, out, 0, 0, 4, kTilePixelGray, 0, 0));
    EXPECT_EQ(out[0], 1);
    EXPECT_EQ(out[3], 4);
    Tile cmyk(1, kTilePixelCmyk, mode, 40);
    const uint8_t pixel[4] = {200, 10, 90, 77};
    std::memcpy(cmyk.bytes.data(), pixel, 4);
    uint8_t cmykOut[4] = {0, 0, 0, 9};
    ASSERT_TRUE(MergeRow(cmyk.buffer, image, cmykOut, 0, 0, 1, kTilePixelCmyk, 0, 0));
    EXPECT_EQ(cmykOut[3], 9);
  }
}

// The walker: the tile position after k output pixels is column + k
// (stepWhole + 1) + floor(k stepFraction / 100000), modulo the tile's
// width, so a tile narrower than the row wraps at once.
TEST(TileMerge, TheWalkerStepsAndWraps) {
  for (int32_t width : {1, 2, 3, 7}) {
    Tile tile(width, kTilePixelGray, kTileModeNormal, 100);
    for (int32_t x = 0; x < width; ++x) tile.bytes[x] = static_cast<uint8_t>(10 + x);
    struct Step {
      int32_t whole, fraction;
    };
    for (Step step : {Step{0, 0}, Step{1, 0}, Step{0, 50000}, Step{2, 33333}, Step{0, 99999}}) {
      for (int32_t column = 0; column < width; ++column) {
        std::vector<uint8_t> image(40, 0), out(40, 0);
        ASSERT_TRUE(MergeRow(tile.buffer, image.data(), out.data(), column, 0, 40, kTilePixelGray,
                             step.fraction, step.whole));
        for (int64_t k = 0; k < 40; ++k) {
          const int64_t at = (column + k * (step.whole + 1) + k * step.fraction / 100000) % width;
          ASSERT_EQ(out[k], 10 + at) << width << " " << column << " " << k;
        }
      }
    }
  }
  // A step of a fraction of 100000 or more is refused, as are rows and
  // columns outside the tile and modes outside 1..9.
  Tile tile(4, kTilePixelRgb, kTileModeNormal, 100);
  uint8_t row[12] = {};
  EXPECT_FALSE(MergeRow(tile.buffer, row, row, 0, 0, 4, kTilePixelRgb, 100000, 0));
  EXPECT_FALSE(MergeRow(tile.buffer, row, row, 4, 0, 4, kTilePixelRgb, 0, 0));
  EXPECT_FALSE(MergeRow(tile.buffer, row, row, 0, 1, 4, kTilePixelRgb, 0, 0));
  EXPECT_FALSE(MergeRow(tile.buffer, row, row, 0, 0, 4, kTilePixelGray, 0, 0));
  tile.buffer.mode = 10;
  EXPECT_FALSE(MergeRow(tile.buffer, row, row, 0, 0, 4, kTilePixelRgb, 0, 0));
}

// RGB rows and tiles in three or four bytes mix; the skipped byte of a
// four-byte pixel is never written.
TEST(TileMerge, ThreeAndFourByteRgbMergeAlike) {
  for (int32_t mode = kTileModeFirst; mode <= kTileModeLast; ++mode) {
    Tile three(5, kTilePixelRgb, mode, 60), four(5, kTilePixelRgb4, mode, 60);
    for (int32_t x = 0; x < 5; ++x) {
      for (int c = 0; c < 3; ++c) {
        three.bytes[x * 3 + c] = four.bytes[x * 4 + 1 + c] = static_cast<uint8_t>(40 * x + 70 * c);
      }
    }
    uint8_t image3[15], image4[20], out3[15], out4[20];
    for (int32_t x = 0; x < 5; ++x) {
      for (int c = 0; c < 3; ++c)
        image3[x * 3 + c] = image4[x * 4 + 1 + c] = static_cast<uint8_t>(250 - 30 * x - 50 * c);
      image4[x * 4] = 0;
    }
    std::memset(out4, 0xEE, sizeof out4);
    ASSERT_TRUE(MergeRow(three.buffer, image3, out3, 0, 0, 5, kTilePixelRgb, 0, 0));
    ASSERT_TRUE(MergeRow(four.buffer, image4, out4, 0, 0, 5, kTilePixelRgb4, 0, 0));
    for (int32_t x = 0; x < 5; ++x) {
      EXPECT_EQ(out4[x * 4], 0xEE);
      for (int c = 0; c < 3; ++c) EXPECT_EQ(out3[x * 3 + c], out4[x * 4 + 1 + c]) << mode;
    }
    uint8_t cross[20];
    std::memset(cross, 0xEE, sizeof cross);
    ASSERT_TRUE(MergeRow(three.buffer, image4, cross, 0, 0, 5, kTilePixelRgb4, 0, 0));
    EXPECT_EQ(0, std::memcmp(cross, out4, sizeof cross));
  }
}

TEST(TileMerge, RowOriginWrapsAndShiftsBands) {
  TileBuffer tile{};
  tile.width = 10;
  tile.height = 6;
  tile.offsetX = 3;
  tile.offsetY = -4;
  int32_t column, row;
  TileRowOrigin(tile, 2, -20, &column, &row);
  EXPECT_EQ(column, 9);  // (2 - 3) mod 10
  EXPECT_EQ(row, 2);     // (-20 + 4) mod 6
  // With a row shift each band of tile rows starts rowShift further on:
  // the pixel x of row y is the tile's pixel at (origin + x) mod width, and
  // (x, y) matches (x + rowShift, y + height).
  for (int32_t shift : {4, -7, 13}) {
    tile.rowShift = shift;
    for (int32_t y = -30; y < 30; ++y) {
      int32_t c0, r0, c1, r1;
      TileRowOrigin(tile, 0, y, &c0, &r0);
      TileRowOrigin(tile, 0, y + tile.height, &c1, &r1);
      ASSERT_EQ(r0, r1);
      ASSERT_GE(c0, 0);
      ASSERT_LT(c0, tile.width);
      ASSERT_EQ(((c0 - c1 - shift) % tile.width + tile.width) % tile.width, 0) << y;
    }
  }
}

}  // namespace
}  // namespace fancy
