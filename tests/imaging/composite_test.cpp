// CompositeImage: early answers, the overflow guard, fast paths, masks,
// conversions through working types, tiled images and progress.
#include <gtest/gtest.h>

#include <vector>

#include "image_fixtures.h"
#include "imaging/composite.h"
#include "imaging/merge.h"
#include "imaging/palette_lookup.h"
#include "imaging/tile_walk.h"
#include "raster_helpers.h"

namespace fancy {
namespace {

using testing::AllUnlocked;
using testing::AttachedCache;
using testing::At;
using testing::Generate;
using testing::MakeImage;
using testing::Pixels;
using testing::Random;

class Composite : public ::testing::Test {
 protected:
  void SetUp() override { ImagingInit(); }
  void TearDown() override { ImagingShutdown(); }
};

int Merge(DrawContext* context, Image* dst, Image* src, uint32_t mode) {
  return CompositeImage(context, dst, 0, 0, dst->width, dst->height, nullptr, src, 0, 0,
                        src ? src->width : 0, src ? src->height : 0, nullptr, mode);
}

TEST_F(Composite, CallsWithNothingToDoAnswerOneAndLeaveTheImage) {
  auto image = MakeImage(kImageBGR24, 6, 4, Random(72, 1));
  auto other = MakeImage(kImageBGR24, 6, 4, Random(72, 2));
  const auto before = Pixels(image.get());
  DrawContext* context = DrawContextCreate();
  context->opacity = 0;
  EXPECT_EQ(Merge(context, image.get(), other.get(), kMergeBehindMerge), 1);  // opacity 0 first
  context->opacity = 255;
  EXPECT_EQ(Merge(context, image.get(), other.get(), 32), 1);
  EXPECT_EQ(Merge(context, image.get(), other.get(), kMergeUnused22), 1);
  EXPECT_EQ(CompositeImage(context, image.get(), 0, 0, 0, 4, nullptr, other.get(), 0, 0, 6, 4,
                           nullptr, 0),
            1);
  EXPECT_EQ(CompositeImage(context, nullptr, 0, 0, 6, 4, nullptr, other.get(), 0, 0, 6, 4, nullptr, 0), 1);
  // The whole image merged onto itself by Normal.
  EXPECT_EQ(Merge(nullptr, image.get(), image.get(), kMergeNormal), 1);
  EXPECT_EQ(Merge(nullptr, image.get(), nullptr, kMergeNormal), 1);
  EXPECT_EQ(Pixels(image.get()), before);

  // A palette image of 4 bits can't be merged: nothing happens.
  Palette* palette = PaletteCreate(kPaletteSixteen, 0);
  Image* four = ImageCreatePaletted(palette, 6, 4, 4, 1, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  EXPECT_EQ(Merge(nullptr, image.get(), four, kMergeNormal), 1);
  EXPECT_EQ(Pixels(image.get()), before);
  ImageDestroy(four);
  PaletteFree(palette);

  // With Rects the numeric source size is not looked at.
  Rect whole = ImageBounds(image.get());
  EXPECT_EQ(CompositeImage(context, image.get(), 0, 0, 6, 4, &whole, other.get(), 0, 0, 0, 0,
                           &whole, kMergeNormal),
            1);
  EXPECT_EQ(Pixels(image.get()), Pixels(other.get()));
  // An empty source Rect (right one left of left) merges nothing.
  auto blank = MakeImage(kImageBGR24, 6, 4);
  Rect empty{2, 3, 1, 0};
  EXPECT_EQ(CompositeImage(context, blank.get(), 0, 0, 6, 4, &whole, other.get(), 0, 0, 0, 0,
                           &empty, kMergeNormal),
            1);
  EXPECT_EQ(Pixels(blank.get()), std::vector<uint8_t>(72, 0));
  DrawContextFree(context);
}

TEST_F(Composite, OverflowGuardFillsOrMarksTheCentre) {
  // A 1 x 1 target from a source of 2^30 x 1: the target's centre goes black.
  auto target = MakeImage(kImageBGR24, 1, 1, {9, 9, 9});
  auto source = MakeImage(kImageBGR24, 4, 1, std::vector<uint8_t>(12, 200));
  Rect to{0, 0, 0, 0};
  Rect from{0, 0, (1 << 30) - 1, 0};
  EXPECT_EQ(CompositeImage(nullptr, target.get(), 0, 0, 1, 1, &to, source.get(), 0, 0, 0, 0, &from,
                           kMergeNormal),
            1);
  EXPECT_EQ(Pixels(target.get()), (std::vector<uint8_t>{0, 0, 0}));
  // Black on a CMYK target is full black ink.
  auto cmyk = MakeImage(kImageCMYK32, 1, 1, {0, 0, 0, 0});
  EXPECT_EQ(CompositeImage(nullptr, cmyk.get(), 0, 0, 1, 1, &to, source.get(), 0, 0, 0, 0, &from,
                           kMergeNormal),
            1);
  EXPECT_EQ(At(cmyk.get(), 0, 0, 3), 255);

  // The other way round the target is filled with the source's centre colour.
  auto wide = MakeImage(kImageBGR24, 5, 2);
  auto dot = MakeImage(kImageBGR24, 1, 1, {10, 20, 30});
  Rect huge{0, 1, (1 << 30) - 1, 0};
  Rect one{0, 0, 0, 0};
  EXPECT_EQ(CompositeImage(nullptr, wide.get(), 0, 0, 0, 0, &huge, dot.get(), 0, 0, 0, 0, &one,
                           kMergeNormal),
            1);
  for (int x = 0; x < 5; ++x) {
    EXPECT_EQ(At(wide.get(), x, 1, 0), 10);
    EXPECT_EQ(At(wide.get(), x, 1, 2), 30);
  }
}

TEST_F(Composite, InvertModes) {
  const auto a = Random(5 * 3 * 3, 3), b = Random(5 * 3 * 3, 4);
  auto image = MakeImage(kImageBGR24, 5, 3, a);
  auto other = MakeImage(kImageBGR24, 5, 3, b);
  // InvertSource with the image as its own source inverts it in place.
  EXPECT_EQ(Merge(nullptr, image.get(), image.get(), kMergeInvertSource), 1);
  for (size_t i = 0; i < a.size(); ++i) ASSERT_EQ(Pixels(image.get())[i], 255 - a[i]);
  // With another source it is the ordinary kernel: the source inverted.
  EXPECT_EQ(Merge(nullptr, image.get(), other.get(), kMergeInvertSource), 1);
  for (size_t i = 0; i < b.size(); ++i) ASSERT_EQ(Pixels(image.get())[i], 255 - b[i]);
  // InvertDest needs no source; a part inverts only the part.
  EXPECT_EQ(CompositeImage(nullptr, image.get(), 1, 1, 2, 1, nullptr, nullptr, 0, 0, 0, 0, nullptr,
                           kMergeInvertDest),
            1);
  auto after = Pixels(image.get());
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 5; ++x)
      for (int c = 0; c < 3; ++c) {
        size_t i = (y * 5 + x) * 3 + c;
        bool inside = y == 1 && (x == 1 || x == 2);
        ASSERT_EQ(after[i], inside ? b[i] : 255 - b[i]) << x << "," << y;
      }
}

TEST_F(Composite, BilevelSourceOntoColourExpandsToFullLevels) {
  // Bits 1 0 1 1 0 0 1 0 0 1, most significant first.
  auto bits = MakeImage(kImageBilevel, 10, 1, {0xB2, 0x40});
  auto rgb = MakeImage(kImageBGR24, 10, 1, std::vector<uint8_t>(30, 77));
  ASSERT_EQ(Merge(nullptr, rgb.get(), bits.get(), kMergeNormal), 1);
  const int expect[10] = {1, 0, 1, 1, 0, 0, 1, 0, 0, 1};
  for (int x = 0; x < 10; ++x)
    for (int c = 0; c < 3; ++c) EXPECT_EQ(At(rgb.get(), x, 0, c), expect[x] ? 255 : 0);
  // And back: full levels make the same bits.
  auto again = MakeImage(kImageBilevel, 10, 1);
  ASSERT_EQ(Merge(nullptr, again.get(), rgb.get(), kMergeNormal), 1);
  EXPECT_EQ(Pixels(again.get()), Pixels(bits.get()));
}

TEST_F(Composite, BitsMergeAtAnyBitOffset) {
  // 1-bit images merged by Xor between unaligned places, plain and under a
  // mask; the model works bit by bit.
  const int w = 29, h = 5;
  const int rowBytes = (w + 7) / 8;
  const auto a = Random(size_t{rowBytes} * h, 13), b = Random(size_t{rowBytes} * h, 14);
  auto dst = MakeImage(kImageBilevel, w, h, a);
  auto src = MakeImage(kImageBilevel, w, h, b);
  ASSERT_EQ(CompositeImage(nullptr, dst.get(), 3, 1, 13, 4, nullptr, src.get(), 5, 0, 13, 4,
                           nullptr, kMergeXor),
            1);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      uint64_t d = testing::GetPixel(&a[y * rowBytes], 1, x);
      bool inside = x >= 3 && x < 16 && y >= 1;
      if (inside) d ^= testing::GetPixel(&b[(y - 1) * rowBytes], 1, x + 2);
      ASSERT_EQ(At(dst.get(), x, y), d) << x << "," << y;
    }
  // Under a mask only the covered bits change.
  auto masked = MakeImage(kImageBilevel, w, h, a);
  Image* mask = MakeImage(kImageMask, w, h, Generate(w, h, 1, [](int x, int, int) {
                  return x % 4 == 1 ? 0 : 200;
                })).release();
  ImageSetMask(masked.get(), mask, nullptr, nullptr, nullptr);
  ASSERT_EQ(Merge(nullptr, masked.get(), src.get(), kMergeNormal), 1);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const auto& from = x % 4 == 1 ? a : b;
      ASSERT_EQ(At(masked.get(), x, y), testing::GetPixel(&from[y * rowBytes], 1, x)) << x << "," << y;
    }
}

TEST_F(Composite, GreyThroughColourAndBackIsLossless) {
  const auto grey = Random(37 * 11, 5);
  auto source = MakeImage(kImageGrey8, 37, 11, grey);
  auto colour = MakeImage(kImageBGR24, 37, 11);
  auto back = MakeImage(kImageMask, 37, 11);
  ASSERT_EQ(Merge(nullptr, colour.get(), source.get(), kMergeNormal), 1);
  ASSERT_EQ(Merge(nullptr, back.get(), colour.get(), kMergeNormal), 1);
  EXPECT_EQ(Pixels(back.get()), grey);
  for (int c = 0; c < 3; ++c) EXPECT_EQ(At(colour.get(), 7, 3, c), grey[3 * 37 + 7]);
}

TEST_F(Composite, ConversionsGoThroughTheWorkingType) {
  // Colour onto grey takes the grey rule (3R + 6G + B) x 3277 >> 15.
  auto colour = MakeImage(kImageBGR24, 2, 1, {10, 200, 90, 255, 255, 255});
  auto grey = MakeImage(kImageGrey8, 2, 1);
  ASSERT_EQ(Merge(nullptr, grey.get(), colour.get(), kMergeNormal), 1);
  EXPECT_EQ(At(grey.get(), 0, 0), ((3 * 90 + 6 * 200 + 10) * 3277) >> 15);
  EXPECT_EQ(At(grey.get(), 1, 0), 255);

  // Onto a palette: each pixel gets its nearest entry.
  Palette* palette = PaletteCreate(kPaletteCube, 0);
  Image* indexed = ImageCreatePaletted(palette, 2, 1, 8, 1, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  ASSERT_EQ(Merge(nullptr, indexed, colour.get(), kMergeNormal), 1);
  EXPECT_EQ(At(indexed, 0, 0), PaletteNearestIndexScan(palette, 90, 200, 10));
  EXPECT_EQ(At(indexed, 1, 0), PaletteNearestIndexScan(palette, 255, 255, 255));
  // A palette image merged by a mode its indices can't take goes through
  // colour: Multiply by white keeps every entry.
  auto white = MakeImage(kImageBGR24, 2, 1, std::vector<uint8_t>(6, 255));
  const auto indices = Pixels(indexed);
  ASSERT_EQ(Merge(nullptr, indexed, white.get(), kMergeMultiply), 1);
  EXPECT_EQ(Pixels(indexed), indices);
  ImageDestroy(indexed);
  PaletteFree(palette);

  // CMYK and back stays within a step of the colour.
  const auto rgb = Random(16 * 3, 6);
  auto start = MakeImage(kImageBGR24, 16, 1, rgb);
  auto cmyk = MakeImage(kImageCMYK32, 16, 1);
  auto end = MakeImage(kImageBGR24, 16, 1);
  ASSERT_EQ(Merge(nullptr, cmyk.get(), start.get(), kMergeNormal), 1);
  ASSERT_EQ(Merge(nullptr, end.get(), cmyk.get(), kMergeNormal), 1);
  for (size_t i = 0; i < rgb.size(); ++i) EXPECT_NEAR(Pixels(end.get())[i], rgb[i], 1);

  // 16-bit targets keep the byte in both halves.
  auto wide = MakeImage(kImageRGB48, 16, 1);
  ASSERT_EQ(Merge(nullptr, wide.get(), start.get(), kMergeNormal), 1);
  const auto words = Pixels(wide.get());
  for (size_t i = 0; i < rgb.size(); ++i) {
    EXPECT_EQ(words[2 * i], rgb[i]);
    EXPECT_EQ(words[2 * i + 1], rgb[i]);
  }
}

TEST_F(Composite, MasksDecideWhereAndHowMuch) {
  const auto a = Random(6 * 2 * 3, 7), b = Random(6 * 2 * 3, 8);
  auto dst = MakeImage(kImageBGR24, 6, 2, a);
  auto src = MakeImage(kImageBGR24, 6, 2, b);
  // A destination mask: clear, full and half by column pairs.
  Image* mask = MakeImage(kImageMask, 6, 2, Generate(6, 2, 1, [](int x, int, int) {
                  return x < 2 ? 0 : x < 4 ? 255 : 128;
                })).release();
  ImageSetMask(dst.get(), mask, nullptr, nullptr, nullptr);
  ASSERT_EQ(Merge(nullptr, dst.get(), src.get(), kMergeNormal), 1);
  auto out = Pixels(dst.get());
  for (int y = 0; y < 2; ++y)
    for (int x = 0; x < 6; ++x)
      for (int c = 0; c < 3; ++c) {
        size_t i = (y * 6 + x) * 3 + c;
        if (x < 2) EXPECT_EQ(out[i], a[i]);
        else if (x < 4) EXPECT_EQ(out[i], b[i]);
        else EXPECT_LE(std::abs(2 * out[i] - a[i] - b[i]), 3) << "half way between";
      }
  // Ignoring the destination's mask merges everywhere.
  ASSERT_EQ(Merge(nullptr, dst.get(), src.get(), kMergeNormal | kCompositeIgnoreDestMaskImage), 1);
  EXPECT_EQ(Pixels(dst.get()), b);

  // A source whose own mask is clear everywhere leaves the target as it was.
  auto target = MakeImage(kImageBGR24, 6, 2, a);
  Image* clear = MakeImage(kImageMask, 6, 2).release();
  ImageSetMask(src.get(), clear, nullptr, nullptr, nullptr);
  ASSERT_EQ(Merge(nullptr, target.get(), src.get(), kMergeNormal | kCompositeSourceMaskImage), 1);
  EXPECT_EQ(Pixels(target.get()), a);
  // Without the flag the source's mask is not looked at.
  ASSERT_EQ(Merge(nullptr, target.get(), src.get(), kMergeNormal), 1);
  EXPECT_EQ(Pixels(target.get()), b);

  // A run mask on the destination: full in the first three columns only.
  auto ruled = MakeImage(kImageBGR24, 6, 2, a);
  RunMask* runs = RunMaskCreate(6, 2);
  for (int y = 0; y < 2; ++y) {
    RunRowAppend(&runs->rows[y], kRunFull, 3, nullptr, 0, false);
    RunRowAppend(&runs->rows[y], kRunClear, 3, nullptr, 0, false);
  }
  ImageSetRunMask(ruled.get(), runs);
  ASSERT_EQ(Merge(nullptr, ruled.get(), src.get(), kMergeNormal), 1);
  out = Pixels(ruled.get());
  for (int y = 0; y < 2; ++y)
    for (int x = 0; x < 6; ++x)
      for (int c = 0; c < 3; ++c) {
        size_t i = (y * 6 + x) * 3 + c;
        EXPECT_EQ(out[i], x < 3 ? b[i] : a[i]);
      }

  // The source's run mask, asked for, limits too: a run carrying coverage 0
  // in its offset covers nothing.
  auto both = MakeImage(kImageBGR24, 6, 2, a);
  RunMask* none = RunMaskCreate(6, 2);
  RunMaskFill(none, 0);
  ImageSetRunMask(src.get(), none);
  ASSERT_EQ(Merge(nullptr, both.get(), src.get(), kMergeNormal | kCompositeSourceRunMask), 1);
  EXPECT_EQ(Pixels(both.get()), a);
}

TEST_F(Composite, OpacityAndChannels) {
  auto dst = MakeImage(kImageBGR24, 4, 1, std::vector<uint8_t>(12, 0));
  auto src = MakeImage(kImageBGR24, 4, 1, std::vector<uint8_t>(12, 250));
  DrawContext* context = DrawContextCreate();
  context->opacity = 128;
  ASSERT_EQ(Merge(context, dst.get(), src.get(), kMergeNormal), 1);
  for (uint8_t v : Pixels(dst.get())) EXPECT_NEAR(v, 125, 1);
  DrawContextFree(context);

  // Source channel 2 (red) into destination channel 0 (blue), nothing else.
  auto target = MakeImage(kImageBGR24, 2, 1, {1, 2, 3, 4, 5, 6});
  auto from = MakeImage(kImageBGR24, 2, 1, {10, 20, 30, 40, 50, 60});
  ASSERT_EQ(Merge(nullptr, target.get(), from.get(), kMergeNormal | CompositeChannels(0, 2)), 1);
  EXPECT_EQ(Pixels(target.get()), (std::vector<uint8_t>{30, 2, 3, 60, 5, 6}));
  // A grey source into the green of a colour image.
  auto grey = MakeImage(kImageGrey8, 2, 1, {99, 98});
  ASSERT_EQ(Merge(nullptr, target.get(), grey.get(), kMergeNormal | CompositeChannels(1, 0)), 1);
  EXPECT_EQ(Pixels(target.get()), (std::vector<uint8_t>{30, 99, 3, 60, 98, 6}));
  // A channel past the pixel's bytes merges nothing.
  ASSERT_EQ(Merge(nullptr, target.get(), grey.get(), kMergeNormal | CompositeChannels(3, 0)), 1);
  EXPECT_EQ(Pixels(target.get()), (std::vector<uint8_t>{30, 99, 3, 60, 98, 6}));
}

TEST_F(Composite, MovingAPartOverItselfReadsTheOldPixels) {
  const auto a = Random(9 * 7, 9);
  auto image = MakeImage(kImageGrey8, 9, 7, a);
  auto copy = MakeImage(kImageGrey8, 9, 7, a);
  // Down and right by (2, 1), overlapping.
  ASSERT_EQ(CompositeImage(nullptr, image.get(), 2, 1, 6, 5, nullptr, image.get(), 0, 0, 6, 5,
                           nullptr, kMergeNormal),
            1);
  ASSERT_EQ(CompositeImage(nullptr, copy.get(), 2, 1, 6, 5, nullptr, MakeImage(kImageGrey8, 9, 7, a).get(),
                           0, 0, 6, 5, nullptr, kMergeNormal),
            1);
  EXPECT_EQ(Pixels(image.get()), Pixels(copy.get()));
  for (int y = 1; y < 6; ++y)
    for (int x = 2; x < 8; ++x) EXPECT_EQ(At(image.get(), x, y), a[(y - 1) * 9 + (x - 2)]);

  // With its own mask as the source's coverage, the mask is read where the
  // source pixels are, not where they go.
  auto masked = MakeImage(kImageGrey8, 9, 7, a);
  Image* mask = MakeImage(kImageMask, 9, 7, Generate(9, 7, 1, [](int x, int, int) {
                  return x % 3 == 0 ? 255 : 0;
                })).release();
  ImageSetMask(masked.get(), mask, nullptr, nullptr, nullptr);
  ASSERT_EQ(CompositeImage(nullptr, masked.get(), 0, 0, 8, 7, nullptr, masked.get(), 1, 0, 8, 7,
                           nullptr, kCompositeSourceMaskImage | kCompositeIgnoreDestMaskImage),
            1);
  for (int y = 0; y < 7; ++y)
    for (int x = 0; x < 8; ++x)
      EXPECT_EQ(At(masked.get(), x, y), (x + 1) % 3 == 0 ? a[y * 9 + x + 1] : a[y * 9 + x]);
}

TEST_F(Composite, TiledImagesMergeAsOneCellImagesDo) {
  AttachedCache attached(200000);  // grids for anything above 50 KB
  const int w = 300, h = 350;      // grey tiles are 256 x 256
  const auto a = Random(size_t{w} * h, 10), b = Random(size_t{w} * h, 11);
  Image* tiledA = ImageCreate(kImageGrey8, w, h, 0, 0, kStorageOptionTiled, nullptr, nullptr);
  Image* tiledB = ImageCreate(kImageGrey8, w, h, 0, 0, kStorageOptionTiled, nullptr, nullptr);
  ASSERT_EQ(tiledA->storageKind, kStorageTiled);
  ImageWritePixels(tiledA, 0, 0, w, h, w, a.data(), 0);
  ImageWritePixels(tiledB, 0, 0, w, h, w, b.data(), 0);
  auto plainA = MakeImage(kImageGrey8, w, h, a);
  auto plainB = MakeImage(kImageGrey8, w, h, b);
  // Multiply with an offset that crosses tile borders on both sides.
  for (Image* d : {tiledA, plainA.get()}) {
    Image* s = d == tiledA ? tiledB : plainB.get();
    ASSERT_EQ(CompositeImage(nullptr, d, 20, 30, 270, 300, nullptr, s, 7, 3, 270, 300, nullptr,
                             kMergeMultiply),
              1);
  }
  EXPECT_EQ(Pixels(tiledA), Pixels(plainA.get()));
  EXPECT_TRUE(AllUnlocked(tiledA));
  EXPECT_TRUE(AllUnlocked(tiledB));

  // A whole aligned copy takes the source's tiles by reference.
  ASSERT_EQ(Merge(nullptr, tiledA, tiledB, kMergeNormal), 1);
  EXPECT_EQ(tiledA->tiles[0][0].tile, tiledB->tiles[0][0].tile);
  EXPECT_EQ(Pixels(tiledA), b);
  // Writing afterwards leaves the source alone.
  ASSERT_EQ(Merge(nullptr, tiledA, nullptr, kMergeInvertDest), 1);
  EXPECT_EQ(Pixels(tiledB), b);
  EXPECT_EQ(At(tiledA, 5, 5), 255 - b[5 * w + 5]);

  // Two solid mask cells merged by Xor stay solid.
  ImageFillWithByte(tiledA, 0xF0);
  ImageFillWithByte(tiledB, 0x3C);
  ASSERT_EQ(Merge(nullptr, tiledA, tiledB, kMergeXor), 1);
  EXPECT_NE(CellSolidColor(&tiledA->tiles[0][0]), nullptr);
  EXPECT_EQ(At(tiledA, 299, 349), 0xF0 ^ 0x3C);
  // Inverting a solid cell in place keeps it solid too.
  ASSERT_EQ(Merge(nullptr, tiledA, nullptr, kMergeInvertDest), 1);
  EXPECT_NE(CellSolidColor(&tiledA->tiles[1][1]), nullptr);
  EXPECT_EQ(At(tiledA, 280, 300), 255 - (0xF0 ^ 0x3C));
  EXPECT_TRUE(AllUnlocked(tiledA));
  ImageDestroy(tiledA);
  ImageDestroy(tiledB);
}

struct ProgressLog {
  std::vector<std::pair<int32_t, int32_t>> calls;
  int stopAfter = -1;
};

int Record(int32_t done, int32_t total, void* data) {
  auto* log = static_cast<ProgressLog*>(data);
  log->calls.emplace_back(done, total);
  return log->stopAfter < 0 || static_cast<int>(log->calls.size()) < log->stopAfter;
}

TEST_F(Composite, ProgressReportsTheWholeAndCanStop) {
  auto dst = MakeImage(kImageBGR24, 8, 45);
  auto src = MakeImage(kImageBGR24, 8, 45, std::vector<uint8_t>(8 * 45 * 3, 200));
  DrawContext* context = DrawContextCreate();
  ProgressLog log;
  DrawContextSetProgress(context, &Record, &log);
  context->opacity = 200;  // a walk a row at a time
  ASSERT_EQ(Merge(context, dst.get(), src.get(), kMergeNormal), 1);
  ASSERT_EQ(log.calls.size(), 20u);
  EXPECT_EQ(log.calls.back(), std::make_pair(45, 45));
  for (size_t i = 1; i < log.calls.size(); ++i) EXPECT_GT(log.calls[i].first, log.calls[i - 1].first);

  // Stopping at the third report leaves the work part done and answers 0.
  auto fresh = MakeImage(kImageBGR24, 8, 45);
  ProgressLog stop;
  stop.stopAfter = 3;
  DrawContextSetProgress(context, &Record, &stop);
  EXPECT_EQ(Merge(context, fresh.get(), src.get(), kMergeNormal), 0);
  EXPECT_EQ(stop.calls.size(), 3u);
  EXPECT_NE(At(fresh.get(), 0, 0), 0);
  EXPECT_EQ(At(fresh.get(), 0, 44), 0);
  DrawContextFree(context);
}

}  // namespace
}  // namespace fancy
