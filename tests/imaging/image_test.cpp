// Image records: what creation refuses, row and image sizes, who owns the
// palette, copies and views, masks, row steps and direct addresses.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "image_fixtures.h"
#include "imaging/image.h"

namespace fancy {
namespace {

TEST(ImageCreation, RefusesTypesOptionsAndSizesThatDoNotExist) {
  uint8_t buffer[64] = {};
  std::vector<int> refused = {0, -1, 2, 4, 7, 10, 100, 1000};
  for (int t = 15; t <= 98; ++t) refused.push_back(t);
  for (int type : refused) {
    EXPECT_EQ(ImageCreate(type, 4, 4, 0, 0, kStorageOptionOneCell, nullptr, nullptr), nullptr) << type;
    EXPECT_EQ(ImageCreateOnBuffer(type, 4, 4, 0, 0, buffer), nullptr) << type;
  }
  for (int option : {0, 3, -1})
    EXPECT_EQ(ImageCreate(5, 4, 4, 0, 0, option, nullptr, nullptr), nullptr) << option;
  for (auto [w, h] : {std::pair{0, 4}, {4, 0}, {-3, 4}, {4, -1}}) {
    EXPECT_EQ(ImageCreate(5, w, h, 0, 0, kStorageOptionOneCell, nullptr, nullptr), nullptr);
    EXPECT_EQ(ImageCreateOnBuffer(5, w, h, 0, 0, buffer), nullptr);
  }
  // Pixel bytes that don't fit in 31 bits.
  EXPECT_EQ(ImageCreateOnBuffer(1, 100000, 100000, 0, 0, buffer), nullptr);
  EXPECT_EQ(ImageCreateOnBuffer(12, INT32_MAX, 1, 0, 0, buffer), nullptr);
  // A fill colour and a backing together.
  CLRColor white = ImageColorFromByte(5, 255);
  TileBacking backing{[](void*, int32_t, int32_t, int32_t, int32_t, uint8_t*, int32_t) { return 1; },
                      nullptr};
  EXPECT_EQ(ImageCreate(5, 4, 4, 0, 0, kStorageOptionTiled, &white, &backing), nullptr);
  EXPECT_EQ(ImageCreate(5, 4, 4, 0, 0, kStorageOptionTiled, nullptr, &backing), nullptr);  // no cache

  Palette* two = PaletteCreate(1, 0);
  Palette* sixteen = PaletteCreate(6, 0);
  Palette* grey = PaletteCreate(3, 0);
  Palette* many = PaletteCreate(2, 257);
  Image* bilevel = ImageCreatePalettedOnBuffer(two, 4, 4, 1, 1, 0, 0, buffer);
  EXPECT_NE(bilevel, nullptr);
  ImageDestroy(bilevel);
  EXPECT_EQ(ImageCreatePalettedOnBuffer(sixteen, 4, 4, 1, 1, 0, 0, buffer), nullptr);
  EXPECT_EQ(ImageCreatePalettedOnBuffer(grey, 4, 4, 4, 1, 0, 0, buffer), nullptr);
  EXPECT_EQ(ImageCreatePalettedOnBuffer(many, 4, 4, 8, 1, 0, 0, buffer), nullptr);
  EXPECT_EQ(ImageCreatePalettedOnBuffer(grey, 4, 4, 8, 2, 0, 0, buffer), nullptr);  // planes
  EXPECT_EQ(ImageCreatePalettedOnBuffer(grey, 4, 4, 2, 1, 0, 0, buffer), nullptr);  // depth
  EXPECT_EQ(ImageCreatePalettedOnBuffer(nullptr, 4, 4, 8, 1, 0, 0, buffer), nullptr);
  // With a fill colour a paletted image takes option 1 only.
  CLRColor index = ImageColorFromByte(10, 3);
  EXPECT_EQ(ImageCreatePaletted(grey, 4, 4, 8, 1, 0, 0, kStorageOptionOneCell, &index, nullptr), nullptr);
  Image* filled = ImageCreatePaletted(grey, 4, 4, 8, 1, 0, 0, kStorageOptionTiled, &index, nullptr);
  ASSERT_NE(filled, nullptr);
  EXPECT_EQ(*ImagePixelAddress(filled, 3, 3), 3);
  ImageDestroy(filled);
  for (Palette* p : {two, sixteen, grey, many}) PaletteFree(p);
}

TEST(ImageCreation, RowAndImageSizes) {
  struct Case {
    int type, width, height, rowBytes;
  } cases[] = {{1, 1, 7, 4}, {1, 5, 1, 16}, {6, 33, 2, 8}, {6, 32, 2, 4},
               {12, 1, 3, 8}, {13, 3, 1, 20}, {14, 3, 2, 8}, {99, 4, 4, 4}};
  for (const Case& c : cases) {
    Image* image = ImageCreate(c.type, c.width, c.height, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->rowBytes, c.rowBytes) << c.type << " " << c.width;
    EXPECT_EQ(image->imageBytes, c.rowBytes * c.height);
    EXPECT_TRUE(RectEqual(image->validRect, MakeRect(0, 0, c.width, c.height)));
    ImageDestroy(image);
  }
  // Type 10 at 4 bits, 9 wide: 36 bits, 5 bytes, 8 with the padding.
  Palette* sixteen = PaletteCreate(6, 0);
  Image* four = ImageCreatePaletted(sixteen, 9, 2, 4, 1, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  EXPECT_EQ(four->rowBytes, 8);
  ImageDestroy(four);
  PaletteFree(sixteen);
  // Each tile of a grid holds about 64 KB.
  for (int type : {1, 3, 5, 6, 10, 11, 12, 13, 14, 99}) {
    TileShape shape = ImageTileShape(type, type == 10 ? 8 : ImageTypeBits(type));
    int64_t bytes = int64_t{shape.rowBytes} * shape.height;
    EXPECT_GE(bytes, 65232) << type;
    EXPECT_LE(bytes, 65536) << type;
  }
}

TEST(ImageCreation, TheAliasCodesMakePalettedImagesWithTheirOwnPalette) {
  Image* eight = ImageCreate(8, 10, 10, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  ASSERT_NE(eight, nullptr);
  EXPECT_EQ(eight->type, 10);
  EXPECT_EQ(eight->bitsPerPixel, 8);
  EXPECT_EQ(eight->palette->count, 236);
  EXPECT_EQ(eight->flags & kImagePaletteBorrowed, 0u);
  Image* four = ImageCreateOnBuffer(9, 10, 10, 0, 0, nullptr);
  ASSERT_NE(four, nullptr);
  EXPECT_EQ(four->bitsPerPixel, 4);
  EXPECT_EQ(four->palette->count, 16);
  EXPECT_EQ(four->tiles, nullptr);  // no pixels given: no cells
  EXPECT_EQ(four->storageKind, kStorageBuffer);
  // Destroy frees the owned palettes (the leak checker watches this).
  EXPECT_EQ(ImageDestroy(eight), 1);
  EXPECT_EQ(ImageDestroy(four), 1);
  EXPECT_EQ(ImageDestroy(nullptr), 0);
}

TEST(ImageOwnership, ABorrowedPaletteOutlivesItsImages) {
  Palette* palette = PaletteCreate(5, 0);
  Palette* reference = PaletteCopy(palette);
  std::vector<uint8_t> buffer(64);
  Image* onBuffer = ImageCreatePalettedOnBuffer(palette, 8, 8, 8, 1, 0, 0, buffer.data());
  Image* allocated = ImageCreatePaletted(palette, 8, 8, 8, 1, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  Image* copy = ImageDuplicate(allocated);
  Image* sized = ImageSameFormat(allocated, 3, 3);
  for (Image* image : {onBuffer, allocated, copy, sized}) {
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->palette, palette);
    EXPECT_NE(image->flags & kImagePaletteBorrowed, 0u);
    ImageDestroy(image);
  }
  EXPECT_TRUE(PaletteSame(palette, reference));  // still alive and whole
  EXPECT_EQ(buffer[0], 0);                       // the caller's pixels untouched
  PaletteFree(reference);
  PaletteFree(palette);

  // An owned palette is copied with the image.
  Image* owner = ImageCreate(8, 4, 4, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  Image* twin = ImageDuplicate(owner);
  EXPECT_NE(twin->palette, owner->palette);
  EXPECT_TRUE(PaletteSame(twin->palette, owner->palette));
  ImageDestroy(owner);
  EXPECT_EQ(twin->palette->count, 236);
  ImageDestroy(twin);
}

TEST(ImageCopies, DuplicateIsDeepAndViewsShare) {
  std::vector<uint8_t> pixels(16 * 4);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i);
  Image* image = ImageCreateOnBuffer(1, 5, 4, 300000, 150000, pixels.data());
  ASSERT_NE(image, nullptr);
  Image* mask = ImageCreate(99, 5, 4, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  ImageFillWithByte(mask, 128);
  ImageSetMask(image, mask, nullptr, nullptr, nullptr);
  RunMask* runs = RunMaskCreate(5, 4);
  RunMaskFill(runs, 255);
  ImageSetRunMask(image, runs);

  Image* copy = ImageDuplicate(image);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->storageKind, kStorageBlock);
  EXPECT_EQ(copy->xResolution, 300000);
  EXPECT_EQ(copy->yResolution, 150000);
  ASSERT_NE(copy->maskImage, nullptr);
  EXPECT_NE(copy->maskImage, mask);
  EXPECT_EQ(*ImagePixelAddress(copy->maskImage, 4, 3), 128);
  ASSERT_NE(copy->runMask, nullptr);
  EXPECT_NE(copy->runMask, runs);
  EXPECT_TRUE(RunMaskContains(copy->runMask, 4, 3));
  EXPECT_TRUE(RectEqual(copy->maskRect, image->maskRect));
  for (int y = 0; y < 4; ++y)
    EXPECT_EQ(0, std::memcmp(ImagePixelAddress(copy, 0, y), &pixels[y * 16], 15));
  pixels[0] = 99;
  EXPECT_NE(*ImagePixelAddress(copy, 0, 0), 99);  // its own pixels

  Image* view = ImageMakeView(image);
  EXPECT_EQ(view->storageKind, kStorageBlockView);
  EXPECT_EQ(view->maskImage, nullptr);
  EXPECT_EQ(view->rowBytes, image->rowBytes);
  EXPECT_EQ(view->reserved1, image->reserved1);
  EXPECT_EQ(ImagePixelAddress(view, 0, 0), ImagePixelAddress(image, 0, 0));
  uint8_t blue[3] = {1, 2, 3};
  ImageWritePixels(view, 2, 1, 1, 1, 3, blue, kWriteIgnoreRunMask | kWriteIgnoreMaskImage);
  EXPECT_EQ(pixels[16 + 6], 1);  // written through to the caller's buffer
  Image* viewOfView = ImageMakeView(view);
  EXPECT_EQ(viewOfView->storageKind, kStorageBlockView);
  ImageDestroy(viewOfView);
  ImageDestroy(view);

  Image* sized = ImageSameFormat(image, 7, 2);
  EXPECT_EQ(sized->type, 1);
  EXPECT_EQ(sized->width, 7);
  EXPECT_EQ(sized->xResolution, 300000);
  EXPECT_EQ(sized->maskImage, nullptr);
  EXPECT_EQ(*ImagePixelAddress(sized, 6, 1), 0);
  ImageDestroy(sized);
  ImageDestroy(copy);
  ImageDestroy(image);  // frees mask and runs too
  EXPECT_EQ(pixels[1], 1);  // never the caller's pixels
}

TEST(ImageMasks, RectanglesOfMasksAndRunMasks) {
  Image* image = ImageCreate(5, 20, 10, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  Image* small = ImageCreate(99, 8, 30, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  Image* other = ImageCreate(99, 4, 4, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  Image* old = reinterpret_cast<Image*>(1);
  Rect oldRect{};
  ASSERT_EQ(ImageSetMask(image, small, nullptr, &old, &oldRect), 1);
  EXPECT_EQ(old, nullptr);
  EXPECT_TRUE(RectIsEmpty(oldRect));
  EXPECT_TRUE(RectEqual(image->maskRect, MakeRect(0, 0, 8, 10)));  // the smaller of both
  EXPECT_EQ(ImageGetMask(image), small);

  Rect given = MakeRect(5, 2, 10, 10);  // larger than the 4 x 4 mask: cut
  ASSERT_EQ(ImageSetMask(image, other, &given, &old, &oldRect), 1);
  EXPECT_EQ(old, small);
  EXPECT_TRUE(RectEqual(oldRect, MakeRect(0, 0, 8, 10)));
  EXPECT_TRUE(RectEqual(image->maskRect, MakeRect(5, 2, 4, 4)));
  Rect inside = MakeRect(1, 1, 2, 3);  // within the mask: kept
  ImageSetMask(image, other, &inside, nullptr, nullptr);
  EXPECT_TRUE(RectEqual(image->maskRect, inside));
  ImageSetMask(image, nullptr, nullptr, &old, nullptr);
  EXPECT_EQ(old, other);
  EXPECT_EQ(ImageGetMask(image), nullptr);
  ImageDestroy(small);
  ImageDestroy(other);

  RunMask* wide = RunMaskCreate(50, 3);
  EXPECT_EQ(ImageSetRunMask(image, wide), nullptr);
  EXPECT_TRUE(RectEqual(image->runMaskRect, MakeRect(0, 0, 20, 3)));
  EXPECT_EQ(ImageGetRunMask(image), wide);
  EXPECT_EQ(ImageSetRunMask(image, nullptr), wide);
  RunMaskFree(wide);
  EXPECT_EQ(ImageSetMask(nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(ImageGetMask(nullptr), nullptr);
  EXPECT_EQ(ImageSetRunMask(nullptr, nullptr), nullptr);
  ImageDestroy(image);
}

TEST(ImageFields, RowStepsAndDirectAddresses) {
  std::vector<uint8_t> pixels(10 * 40);
  Image* onBuffer = ImageCreateOnBuffer(5, 7, 10, 0, 0, pixels.data());
  EXPECT_EQ(ImageSetRowBytes(onBuffer, 40), 8);
  EXPECT_EQ(onBuffer->tiles[0][0].rowBytes, 40);
  uint8_t value = 42;
  ImageWritePixels(onBuffer, 3, 2, 1, 1, 1, &value, 0);
  EXPECT_EQ(pixels[2 * 40 + 3], 42);  // the new step places the pixel
  EXPECT_EQ(ImagePixelAddress(onBuffer, 3, 2), &pixels[2 * 40 + 3]);
  EXPECT_EQ(ImageSetRowBytes(onBuffer, 6), 0);  // shorter than a row
  EXPECT_EQ(ImagePixelAddress(onBuffer, 7, 0), nullptr);
  EXPECT_EQ(ImagePixelAddress(onBuffer, 0, -1), nullptr);

  Image* block = ImageCreate(6, 20, 4, 0, 0, kStorageOptionOneCell, nullptr, nullptr);
  EXPECT_EQ(ImageSetRowBytes(block, 5), 0);  // past the end of its block
  EXPECT_EQ(ImageSetRowBytes(block, 3), 4);  // the three bytes of a row
  EXPECT_EQ(ImagePixelAddress(block, 17, 1), block->tiles[0][0].pixels + 3 + 2);
  Image* view = ImageMakeView(block);
  EXPECT_EQ(ImageSetRowBytes(view, 4), 0);  // views keep their step
  EXPECT_NE(ImagePixelAddress(view, 0, 0), nullptr);
  ImageDestroy(view);
  ImageDestroy(block);
  ImageDestroy(onBuffer);

  EXPECT_EQ(ImageSetRowBytes(nullptr, 8), 0);
  EXPECT_EQ(ImagePixelAddress(nullptr, 0, 0), nullptr);
}

}  // namespace
}  // namespace fancy
