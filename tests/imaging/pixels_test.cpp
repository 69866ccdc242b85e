// Pixels in and out of images of every type: write and read round trips at
// odd offsets, starts outside the image and clipped edges, on one-cell images
// and on tile grids; fills.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "image_fixtures.h"
#include "imaging/image.h"
#include "imaging/tile_walk.h"

namespace fancy {
namespace {

using testing::AllUnlocked;
using testing::AttachedCache;
using testing::GetPixel;
using testing::RandomContent;
using testing::SetPixel;

struct Format {
  int type;
  int bits;
};
constexpr Format kFormats[] = {{1, 24}, {3, 32},  {5, 8},   {6, 1},   {10, 1},  {10, 4},
                               {10, 8}, {11, 24}, {12, 48}, {13, 48}, {14, 16}, {99, 8}};

struct Made {
  Image* image = nullptr;
  Palette* palette = nullptr;
  ~Made() {
    ImageDestroy(image);
    PaletteFree(palette);
  }
};

void Make(Made* made, const Format& f, int width, int height, int option,
          const CLRColor* fill = nullptr) {
  if (f.type == 10) {
    made->palette = PaletteCreate(f.bits == 1 ? 1 : f.bits == 4 ? 6 : 3, 0);
    made->image = ImageCreatePaletted(made->palette, width, height, f.bits, 1, 0, 0, option, fill,
                                      nullptr);
  } else {
    made->image = ImageCreate(f.type, width, height, 72000, 72000, option, fill, nullptr);
  }
}

// Rectangles of every kind: inside, at odd offsets, starting before the image,
// running past it, and wholly outside.
std::vector<Rect> Rectangles(int width, int height, std::mt19937& rng) {
  std::vector<Rect> rects = {
      MakeRect(0, 0, width, height), MakeRect(1, 1, 1, 1),   MakeRect(3, 2, 5, 3),
      MakeRect(-3, -1, 7, 4),        MakeRect(-1, 0, 2, 2),  MakeRect(width - 2, height - 1, 9, 5),
      MakeRect(-5, -5, width + 10, height + 10), MakeRect(width + 2, 0, 4, 4),
  };
  for (int i = 0; i < 10; ++i) {
    int x = static_cast<int>(rng() % (width + width / 2)) - width / 4;
    int y = static_cast<int>(rng() % (height + height / 2)) - height / 4;
    int w = 1 + static_cast<int>(rng() % (width / 2 + 1));
    int h = 1 + static_cast<int>(rng() % (height / 2 + 1));
    rects.push_back(MakeRect(x, y, w, h));
  }
  return rects;
}

void RoundTrips(const Format& f, int width, int height, int option) {
  SCOPED_TRACE(::testing::Message() << "type " << f.type << " bits " << f.bits << " " << width
                                    << "x" << height);
  Made made;
  Make(&made, f, width, height, option);
  Image* image = made.image;
  ASSERT_NE(image, nullptr);
  const int bits = image->bitsPerPixel;
  const int modelRow = ImageRowBytesFor(bits, width);
  std::vector<uint8_t> model = RandomContent(image, 7);
  std::mt19937 rng(f.type * 100 + f.bits);
  for (const Rect& r : Rectangles(width, height, rng)) {
    int w = r.right - r.left + 1, h = r.bottom - r.top + 1;
    int rowBytes = static_cast<int>(ImagePixelBytesFor(bits, w)) + static_cast<int>(rng() % 5);
    std::vector<uint8_t> buffer(static_cast<size_t>(rowBytes) * h);
    for (auto& v : buffer) v = static_cast<uint8_t>(rng());
    ASSERT_EQ(ImageWritePixels(image, r.left, r.top, w, h, rowBytes, buffer.data(), 0), 1);
    for (int j = 0; j < h; ++j) {
      for (int i = 0; i < w; ++i) {
        int x = r.left + i, y = r.top + j;
        if (x < 0 || y < 0 || x >= width || y >= height) continue;
        SetPixel(&model[static_cast<size_t>(y) * modelRow], bits, x,
                 GetPixel(&buffer[static_cast<size_t>(j) * rowBytes], bits, i));
      }
    }
    // The whole image reads back as the model.
    std::vector<uint8_t> whole(model.size(), 0);
    ASSERT_EQ(ImageReadPixels(image, 0, 0, width, height, modelRow, whole.data()), 1);
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x)
        ASSERT_EQ(GetPixel(&whole[static_cast<size_t>(y) * modelRow], bits, x),
                  GetPixel(&model[static_cast<size_t>(y) * modelRow], bits, x))
            << "pixel " << x << "," << y << " after writing at " << r.left << "," << r.top;
    // The rectangle reads back into a buffer whose pixels outside the image
    // keep what they had.
    std::vector<uint8_t> part(buffer.size());
    for (auto& v : part) v = static_cast<uint8_t>(rng());
    std::vector<uint8_t> before = part;
    ASSERT_EQ(ImageReadPixels(image, r.left, r.top, w, h, rowBytes, part.data()), 1);
    for (int j = 0; j < h; ++j) {
      for (int i = 0; i < w; ++i) {
        int x = r.left + i, y = r.top + j;
        bool inside = x >= 0 && y >= 0 && x < width && y < height;
        uint64_t want = inside ? GetPixel(&model[static_cast<size_t>(y) * modelRow], bits, x)
                               : GetPixel(&before[static_cast<size_t>(j) * rowBytes], bits, i);
        ASSERT_EQ(GetPixel(&part[static_cast<size_t>(j) * rowBytes], bits, i), want)
            << "read at " << r.left << "," << r.top << " pixel " << i << "," << j;
      }
    }
  }
  EXPECT_TRUE(AllUnlocked(image));
}

TEST(ImagePixels, RoundTripOnOneCellImages) {
  for (const Format& f : kFormats) RoundTrips(f, 37, 11, kStorageOptionOneCell);
}

TEST(ImagePixels, RoundTripAcrossTheCellsOfAGrid) {
  AttachedCache cache(4096);  // any image above 1 KB gets a grid
  for (const Format& f : kFormats) {
    TileShape shape = ImageTileShape(f.type, f.bits);
    int width = shape.width * 2 + 5, height = shape.height + 3;
    Made probe;
    Make(&probe, f, width, height, kStorageOptionTiled);
    ASSERT_EQ(probe.image->storageKind, kStorageTiled);
    EXPECT_EQ(probe.image->tileColumns, 3);
    EXPECT_EQ(probe.image->tileRows, 2);
    RoundTrips(f, width, height, kStorageOptionTiled);
  }
}

TEST(ImagePixels, WritesAndReadsRefuseEmptySizesAndMissingBuffers) {
  Image* image = ImageCreate(5, 8, 8, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  uint8_t buffer[64] = {};
  EXPECT_EQ(ImageWritePixels(image, 0, 0, 0, 4, 8, buffer, 0), 0);
  EXPECT_EQ(ImageWritePixels(image, 0, 0, 4, -1, 8, buffer, 0), 0);
  EXPECT_EQ(ImageWritePixels(image, 0, 0, 4, 4, 8, nullptr, 0), 0);
  EXPECT_EQ(ImageWritePixels(nullptr, 0, 0, 4, 4, 8, buffer, 0), 0);
  EXPECT_EQ(ImageWritePixels(image, 0, 0, 8, 1, 7, buffer, 0), 0);  // rows overlap
  EXPECT_EQ(ImageReadPixels(image, 0, 0, 0, 4, 8, buffer), 0);
  EXPECT_EQ(ImageReadPixels(nullptr, 0, 0, 4, 4, 8, buffer), 0);
  // Nothing left after clipping is success with nothing touched.
  EXPECT_EQ(ImageWritePixels(image, 100, 100, 4, 4, 8, buffer, 0), 1);
  EXPECT_EQ(ImageReadPixels(image, -10, 0, 4, 4, 8, buffer), 1);
  // An image on no buffer has nothing to read or write.
  Image* empty = ImageCreateOnBuffer(5, 8, 8, 0, 0, nullptr);
  EXPECT_EQ(ImageWritePixels(empty, 0, 0, 4, 4, 8, buffer, 0), 0);
  EXPECT_EQ(ImageReadPixels(empty, 0, 0, 4, 4, 8, buffer), 0);
  ImageDestroy(empty);
  ImageDestroy(image);
}

TEST(ImagePixels, FillSetsEveryPixelOfEveryType) {
  AttachedCache cache(1 << 20);
  for (int option : {kStorageOptionOneCell, kStorageOptionTiled}) {
    for (const Format& f : kFormats) {
      SCOPED_TRACE(::testing::Message() << "type " << f.type << " bits " << f.bits);
      int width = option == kStorageOptionTiled ? 1000 : 21, height = 300;
      Made made;
      Make(&made, f, width, height, option);
      ASSERT_NE(made.image, nullptr);
      Image* image = made.image;
      const uint8_t value = 0xA6;
      ASSERT_EQ(ImageFillWithByte(image, value), 1);
      const int bits = image->bitsPerPixel;
      const int rowBytes = ImageRowBytesFor(bits, width);
      std::vector<uint8_t> out(static_cast<size_t>(rowBytes) * height, 0);
      ASSERT_EQ(ImageReadPixels(image, 0, 0, width, height, rowBytes, out.data()), 1);
      uint64_t want;
      switch (f.type) {
        case 6: want = 1; break;                   // value != 0
        case 10: want = value & ((1u << bits) - 1); break;
        case 12: want = 0xA6A6A6A6A6A6ull; break;  // doubled into 16 bits
        case 13: want = 0; break;                  // fills write nothing
        case 14: want = 0xA6A6; break;
        default: want = 0; for (int k = 0; k < bits / 8; ++k) want = (want << 8) | value;
      }
      for (int y = 0; y < height; y += 7)
        for (int x = 0; x < width; x += 3)
          ASSERT_EQ(GetPixel(&out[static_cast<size_t>(y) * rowBytes], bits, x), want);
      EXPECT_TRUE(AllUnlocked(image));
    }
  }
}

TEST(ImagePixels, FillTakesTheColourBytesOfTheTypesModel) {
  CLRColor rgb48{};  // blue 0x0201 at value6, green 0x0403, red 0x0605
  const uint8_t expected[6] = {1, 2, 3, 4, 5, 6};
  std::memcpy(rgb48.value6, expected, 2);
  std::memcpy(rgb48.value8, expected + 2, 4);
  Image* wide = ImageCreate(12, 3, 1, 0, 0, kStorageOptionOneCell, &rgb48, nullptr);
  EXPECT_EQ(0, std::memcmp(ImagePixelAddress(wide, 2, 0), expected, 6));
  ImageDestroy(wide);
}

TEST(ImagePixels, AlphaRunsFollowFills) {
  Image* mask = ImageCreate(99, 40, 3, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  ASSERT_EQ(ImageBuildAlphaRuns(mask), 1);
  ASSERT_NE(mask->alphaRuns, nullptr);
  EXPECT_EQ(mask->alphaRuns->rows[0].runCount, 1);
  EXPECT_EQ(mask->alphaRuns->rows[0].runs[0].kind, kRunClear);
  ImageFillWithByte(mask, 255);
  for (int y = 0; y < 3; ++y) EXPECT_TRUE(RunMaskContains(mask->alphaRuns, 39, y));
  ImageFillWithByte(mask, 100);
  EXPECT_EQ(mask->alphaRuns->rows[2].runs[0].kind, kRunPartial);
  // A write leaves runs that would no longer describe the pixels behind.
  uint8_t row[40] = {};
  ImageWritePixels(mask, 0, 0, 40, 1, 40, row, 0);
  EXPECT_EQ(mask->alphaRuns, nullptr);
  ImageDestroy(mask);
}

}  // namespace
}  // namespace fancy
