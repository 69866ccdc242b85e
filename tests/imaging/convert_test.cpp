// Row converters, the palette lookup, error diffusion, ordered dithers and
// whole-image conversion.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "image_fixtures.h"
#include "imaging/convert_image.h"
#include "imaging/dither.h"
#include "imaging/error_diffusion.h"
#include "imaging/merge.h"
#include "imaging/palette_lookup.h"
#include "imaging/row_convert.h"
#include "raster_helpers.h"

namespace fancy {
namespace {

using testing::At;
using testing::Generate;
using testing::MakeImage;
using testing::Pixels;

std::vector<uint8_t> Random(size_t n, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> v(n);
  for (auto& b : v) b = static_cast<uint8_t>(rng());
  return v;
}

int BitsSet(const Image* image) {
  int n = 0;
  for (int y = 0; y < image->height; ++y)
    for (int x = 0; x < image->width; ++x) n += At(image, x, y);
  return n;
}

TEST(RowConverters, RulesOfTheTable) {
  RowConvertContext c{};
  uint8_t out[16] = {};
  // Grey from colour: (3R + 6G + B) x 3277 >> 15, white stays 255.
  const uint8_t bgr[] = {0, 0, 0, 255, 255, 255, 30, 60, 90, 255, 0, 0};
  RowBGRToGrey(&c, 4, out, bgr);
  EXPECT_EQ(out[0], 0);
  EXPECT_EQ(out[1], 255);
  EXPECT_EQ(out[2], ((3 * 90 + 6 * 60 + 30) * 3277) >> 15);
  EXPECT_EQ(out[3], (255 * 3277) >> 15);
  // A bit is set when 3R + 6G + B passes 1274: a grey v sums to 10 v, so
  // 127 is dark and 128 light. Bits around the run keep their values.
  uint8_t bits[2] = {0xFF, 0xFF};
  const uint8_t levels[] = {0, 0, 0, 255, 255, 255, 127, 127, 127, 128, 128, 128};
  c.destBit = 2;
  RowBGRToBits(&c, 4, bits, levels);
  EXPECT_EQ(bits[0], 0xD7);  // bits 2 to 5 are 0 1 0 1
  EXPECT_EQ(bits[1], 0xFF);
  // Grey to bits: above 127.
  const uint8_t greys[] = {127, 128, 0, 255};
  uint8_t g[1] = {0};
  c.destBit = 0;
  RowGreyToBits(&c, 4, g, greys);
  EXPECT_EQ(g[0], 0x50);
  // Bits read back as 0 and 255, from any bit.
  c.sourceBit = 1;
  RowBitsToGrey(&c, 3, out, g);
  EXPECT_EQ(out[0], 255);
  EXPECT_EQ(out[1], 0);
  EXPECT_EQ(out[2], 255);
  c.sourceBit = 0;
  // 16-bit channels: a byte doubles into both halves, the high byte comes back.
  const uint8_t one[] = {1, 128, 255};
  uint8_t wide[6] = {};
  RowBGRToRGB48(&c, 1, wide, one);
  EXPECT_EQ(wide[0] | wide[1] << 8, 257 * 1);
  EXPECT_EQ(wide[4] | wide[5] << 8, 257 * 255);
  RowRGB48ToBGR(&c, 1, out, wide);
  EXPECT_EQ(out[1], 128);
  uint8_t grey16[2] = {};
  RowBGRToGrey16(&c, 1, grey16, one);
  EXPECT_EQ(grey16[0], grey16[1]);
  // Raw 48-bit rows are never converted.
  uint8_t keep[3] = {7, 8, 9};
  RowLeaveAlone(&c, 1, keep, wide);
  EXPECT_EQ(keep[0], 7);
}

TEST(PaletteLookup, AgreesWithADirectScan) {
  std::mt19937 rng(3);
  for (int trial = 0; trial < 6; ++trial) {
    int count = trial == 0 ? 1 : trial == 1 ? 2 : 1 + static_cast<int>(rng() % 256);
    Palette* palette = PaletteCreate(kPaletteCustom, count);
    PaletteEntry* e = PaletteEntries(palette);
    for (int i = 0; i < count; ++i) {
      // Few distinct levels, so that ties are common.
      e[i].red = static_cast<uint8_t>((rng() % 6) * 51);
      e[i].green = static_cast<uint8_t>((rng() % 6) * 51);
      e[i].blue = static_cast<uint8_t>((rng() % 6) * 51);
    }
    for (int k = 0; k < 20000; ++k) {
      int r = static_cast<int>(rng() & 255), g = static_cast<int>(rng() & 255), b = static_cast<int>(rng() & 255);
      ASSERT_EQ(PaletteNearestIndex(palette, r, g, b), PaletteNearestIndexScan(palette, r, g, b))
          << r << " " << g << " " << b;
    }
    PaletteFree(palette);  // frees the lookup with it
  }
  // The cube's corners and greys are found exactly.
  Palette* cube = PaletteCreate(kPaletteCube, 0);
  EXPECT_EQ(PaletteNearestIndex(cube, 255, 0, 0), 5 * 36);
  EXPECT_EQ(PaletteNearestIndex(cube, 0, 0, 255), 5);
  EXPECT_EQ(PaletteNearestIndex(nullptr, 1, 2, 3), 0);
  PaletteFree(cube);
}

TEST(ErrorDiffusion, KeepsTheExtremesAndTheMean) {
  ImagingInit();
  DrawContext* context = DrawContextCreate();
  context->ditherMode = kDitherDiffusion;
  for (int level : {0, 255, 128, 64}) {
    auto grey = MakeImage(kImageGrey8, 64, 48, std::vector<uint8_t>(64 * 48, static_cast<uint8_t>(level)));
    auto bits = MakeImage(kImageBilevel, 64, 48);
    ASSERT_EQ(ConvertImage(context, bits.get(), 0, 0, grey.get(), 0, 0, 64, 48), 1);
    int set = BitsSet(bits.get());
    if (level == 0) EXPECT_EQ(set, 0);
    else if (level == 255) EXPECT_EQ(set, 64 * 48);
    else EXPECT_NEAR(set, 64 * 48 * level / 255.0, 64 * 48 * 0.01) << level;
  }
  // A colour source goes through the grey (3R + B + 6G) / 10: pure white
  // is white.
  auto white = MakeImage(kImageBGR24, 9, 3, std::vector<uint8_t>(81, 255));
  auto bits = MakeImage(kImageBilevel, 9, 3);
  ASSERT_EQ(ConvertImage(context, bits.get(), 0, 0, white.get(), 0, 0, 9, 3), 1);
  EXPECT_EQ(BitsSet(bits.get()), 27);

  // Rows of one pixel use only the first three slots.
  Diffusion d;
  ASSERT_EQ(DiffusionStart(&d, 1, 1), 1);
  uint8_t out[1] = {0};
  const uint8_t mid[1] = {128};
  for (int row = 0; row < 8; ++row) DiffuseRowToBits(&d, mid, 1, out, 0);
  EXPECT_EQ(d.errors[3], 0);
  EXPECT_EQ(d.errors[4], 0);

  // To a palette: a colour that is an entry stays that entry; the mean of a
  // flat colour between entries is kept.
  Palette* palette = PaletteCreate(kPaletteCube, 0);
  Image* indexed = ImageCreatePaletted(palette, 40, 40, 8, 1, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  auto exact = MakeImage(kImageBGR24, 40, 40, Generate(40, 40, 3, [](int, int, int c) { return c * 51; }));
  ASSERT_EQ(ConvertImage(context, indexed, 0, 0, exact.get(), 0, 0, 40, 40), 1);
  for (uint8_t v : Pixels(indexed)) ASSERT_EQ(v, PaletteNearestIndexScan(palette, 102, 51, 0));
  auto between = MakeImage(kImageBGR24, 40, 40, std::vector<uint8_t>(40 * 40 * 3, 25));
  ASSERT_EQ(ConvertImage(context, indexed, 0, 0, between.get(), 0, 0, 40, 40), 1);
  double sum = 0;
  for (uint8_t v : Pixels(indexed)) sum += PaletteEntries(palette)[v].green;
  EXPECT_NEAR(sum / 1600, 25, 1.5);
  ImageDestroy(indexed);
  PaletteFree(palette);
  DrawContextFree(context);
  ImagingShutdown();
}

TEST(OrderedDither, LevelsAndAlignment) {
  for (int mode : {4, 5, 6}) {
    const DitherMatrix* m = DitherFixedMatrix(mode);
    ASSERT_NE(m, nullptr);
    int rows = m->count / m->size;
    // Over one period black is black, white is white, and the share of set
    // bits grows with the grey.
    int previous = -1;
    for (int v : {0, 40, 100, 128, 200, 255}) {
      int set = 0;
      for (int y = 0; y < rows; ++y) {
        uint8_t row[4] = {};
        std::vector<uint8_t> grey(static_cast<size_t>(m->size), static_cast<uint8_t>(v));
        DitherRowToBits(m, grey.data(), m->size, 0, y, row, 0);
        for (int x = 0; x < m->size; ++x) set += (row[x >> 3] >> (7 - (x & 7))) & 1;
      }
      if (v == 0) {
        EXPECT_EQ(set, 0);
      }
      if (v == 255) {
        EXPECT_EQ(set, m->count);
      }
      EXPECT_GE(set, previous) << "mode " << mode;
      previous = set;
    }
  }
  // The matrix follows the image's coordinates, not the row's start.
  const DitherMatrix* m6 = DitherFixedMatrix(6);
  std::vector<uint8_t> grey(16, 100);
  uint8_t whole[2] = {}, split[2] = {};
  DitherRowToBits(m6, grey.data(), 16, 3, 5, whole, 0);
  DitherRowToBits(m6, grey.data(), 7, 3, 5, split, 0);
  DitherRowToBits(m6, grey.data(), 9, 10, 5, split, 7);
  EXPECT_EQ(whole[0], split[0]);
  EXPECT_EQ(whole[1], split[1]);

  // The cube table of mode 3: exact cube levels don't dither.
  Palette* cube = PaletteCreate(kPaletteCube, 0);
  Dither* d = DitherCreate(3, cube, kDitherFormPalette);
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(d->tableBytes, 16384);
  uint8_t bgr[24], indices[8];
  for (int i = 0; i < 8; ++i) {
    bgr[3 * i] = 51;
    bgr[3 * i + 1] = 153;
    bgr[3 * i + 2] = 255;
  }
  ASSERT_EQ(DitherRowToIndices(d, cube, bgr, 8, 0, 0, indices), 1);
  for (uint8_t v : indices) EXPECT_EQ(v, 5 * 36 + 3 * 6 + 1);
  DitherFree(d);
  EXPECT_EQ(DitherCreate(7, cube, kDitherFormPalette), nullptr);
  PaletteFree(cube);
}

TEST(ConvertImage, PathsByPairAndMode) {
  ImagingInit();
  DrawContext* context = DrawContextCreate();
  const auto rgb = Random(30 * 20 * 3, 9);
  auto colour = MakeImage(kImageBGR24, 30, 20, rgb);

  // A pair that needs no dithering is a plain merge, whatever the mode and
  // the target's mask; the context's opacity is put back afterwards.
  auto grey = MakeImage(kImageGrey8, 30, 20);
  Image* hidden = MakeImage(kImageMask, 30, 20).release();
  ImageSetMask(grey.get(), hidden, nullptr, nullptr, nullptr);
  context->opacity = 9;
  ASSERT_EQ(ConvertImage(context, grey.get(), 0, 0, colour.get(), 0, 0, 30, 20), 1);
  EXPECT_EQ(context->opacity, 9);
  EXPECT_EQ(At(grey.get(), 4, 4), GreyOfBGR(rgb[(4 * 30 + 4) * 3], rgb[(4 * 30 + 4) * 3 + 1],
                                            rgb[(4 * 30 + 4) * 3 + 2]));
  context->opacity = 255;

  // Colour to CMYK has no dither: the row converter, in any dither mode.
  auto cmyk = MakeImage(kImageCMYK32, 30, 20);
  context->ditherMode = 1;
  ASSERT_EQ(ConvertImage(context, cmyk.get(), 0, 0, colour.get(), 0, 0, 30, 20), 1);
  auto back = MakeImage(kImageBGR24, 30, 20);
  ASSERT_EQ(ConvertImage(context, back.get(), 0, 0, cmyk.get(), 0, 0, 30, 20), 1);
  for (size_t i = 0; i < rgb.size(); ++i) ASSERT_NEAR(Pixels(back.get())[i], rgb[i], 1);

  // A 1-bit target in a mode with no function fails; ordered modes work.
  auto bits = MakeImage(kImageBilevel, 30, 20);
  EXPECT_EQ(ConvertImage(context, bits.get(), 0, 0, colour.get(), 0, 0, 30, 20), 0);
  for (int mode : {3, 4, 5, 6}) {
    context->ditherMode = mode;
    EXPECT_EQ(ConvertImage(context, bits.get(), 0, 0, colour.get(), 0, 0, 30, 20), 1) << mode;
  }
  // Ordered dithering of a 4-bit palette target packs its indices.
  Palette* sixteen = PaletteCreate(kPaletteSixteen, 0);
  Image* nibbles = ImageCreatePaletted(sixteen, 30, 20, 4, 1, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  auto red = MakeImage(kImageBGR24, 30, 20, Generate(30, 20, 3, [](int, int, int c) { return c == 2 ? 255 : 0; }));
  context->ditherMode = 6;
  ASSERT_EQ(ConvertImage(context, nibbles, 0, 0, red.get(), 0, 0, 30, 20), 1);
  for (int x = 0; x < 30; ++x) ASSERT_EQ(PaletteEntries(sixteen)[At(nibbles, x, 7)].red, 255);
  ImageDestroy(nibbles);
  PaletteFree(sixteen);

  // Offsets and clipping: only the overlap is written.
  auto small = MakeImage(kImageGrey8, 10, 10, std::vector<uint8_t>(100, 1));
  auto white = MakeImage(kImageBGR24, 10, 10, std::vector<uint8_t>(300, 255));
  context->ditherMode = 2;
  auto target = MakeImage(kImageBilevel, 10, 10);
  ASSERT_EQ(ConvertImage(context, target.get(), 6, 7, white.get(), 0, 0, 10, 10), 1);
  EXPECT_EQ(BitsSet(target.get()), 4 * 3);
  EXPECT_EQ(At(target.get(), 6, 7), 1);
  EXPECT_EQ(At(target.get(), 5, 7), 0);
  EXPECT_EQ(ConvertImage(context, small.get(), 0, 0, nullptr, 0, 0, 5, 5), 0);

  // Ordered dithering follows the image's coordinates, so a tiled target
  // comes out as a one-cell one does.
  {
    testing::AttachedCache attached(60000);
    const int w = 900, h = 700;  // 1-bit tiles are 768 x 682
    auto picture = MakeImage(kImageGrey8, w, h, Generate(w, h, 1, [](int x, int y, int) { return (x + 2 * y) % 256; }));
    Image* tiled = ImageCreate(kImageBilevel, w, h, 0, 0, kStorageOptionTiled, nullptr, nullptr);
    ASSERT_EQ(tiled->storageKind, kStorageTiled);
    auto plain = MakeImage(kImageBilevel, w, h);
    context->ditherMode = 5;
    ASSERT_EQ(ConvertImage(context, tiled, 0, 0, picture.get(), 0, 0, w, h), 1);
    ASSERT_EQ(ConvertImage(context, plain.get(), 0, 0, picture.get(), 0, 0, w, h), 1);
    EXPECT_EQ(Pixels(tiled), Pixels(plain.get()));
    EXPECT_TRUE(testing::AllUnlocked(tiled));
    ImageDestroy(tiled);
  }
  DrawContextFree(context);
  ImagingShutdown();
}

}  // namespace
}  // namespace fancy
