// Walking the cells of tiled images: order, parts, lock counts after every
// walk (also after failures and early stops), copy-on-write, solid cells and
// cells produced by a backing.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <vector>

#include "image_fixtures.h"
#include "imaging/image.h"
#include "imaging/tile_walk.h"

namespace fancy {
namespace {

using testing::AllUnlocked;
using testing::AttachedCache;

constexpr int64_t kSmallBudget = 4096;

// A grey image of 3 x 2 cells (256 x 256 each, the last column and row cut).
Image* GreyGrid() {
  return ImageCreate(5, 600, 300, 0, 0, kStorageOptionTiled, nullptr, nullptr);
}

TEST(TileWalk, VisitsCellsInOrderWithTheirParts) {
  AttachedCache cache(kSmallBudget);
  Image* image = GreyGrid();
  ASSERT_EQ(image->storageKind, kStorageTiled);
  ASSERT_EQ(image->tileColumns, 3);
  ASSERT_EQ(image->tileRows, 2);
  EXPECT_EQ(image->tiles[1][2].right, 599);
  EXPECT_EQ(image->tiles[1][2].bottom, 299);

  for (bool bottomUp : {false, true}) {
    Rect asked = MakeRect(100, 200, 450, 90);  // touches all six cells
    TileWalk walk;
    Rect part;
    std::vector<std::pair<int, int>> order;
    int64_t area = 0;
    TileCell* cell = bottomUp ? TileWalkOpenBottomUp(&walk, image, asked, CellLockRead, &part)
                              : TileWalkOpen(&walk, image, asked, CellLockRead, &part);
    for (; cell; cell = TileWalkNext(&walk, &part)) {
      order.emplace_back(walk.row, walk.column);
      EXPECT_EQ(cell->lockCount, 1);
      EXPECT_TRUE(RectInside(part, Rect{cell->left, cell->bottom, cell->right, cell->top}));
      EXPECT_TRUE(RectInside(part, asked));
      area += RectWidth(part) * RectHeight(part);
    }
    EXPECT_EQ(TileWalkClose(&walk), 1);
    EXPECT_EQ(area, 450 * 90);
    std::vector<std::pair<int, int>> want =
        bottomUp ? std::vector<std::pair<int, int>>{{1, 0}, {1, 1}, {1, 2}, {0, 0}, {0, 1}, {0, 2}}
                 : std::vector<std::pair<int, int>>{{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}, {1, 2}};
    EXPECT_EQ(order, want);
    EXPECT_TRUE(AllUnlocked(image));
  }
  ImageDestroy(image);
}

TEST(TileWalk, LockCountsBalanceAfterEarlyStops) {
  AttachedCache cache(kSmallBudget);
  Image* image = GreyGrid();
  TileWalk walk;
  Rect part;
  // Stopped with cells remaining: a failure, and nothing stays locked.
  ASSERT_NE(TileWalkOpen(&walk, image, ImageBounds(image), CellLockWrite, &part), nullptr);
  ASSERT_NE(TileWalkNext(&walk, &part), nullptr);
  EXPECT_EQ(TileWalkClose(&walk), 0);
  EXPECT_TRUE(AllUnlocked(image));
  // Closed on the last cell without asking for more: nothing remained.
  ASSERT_NE(TileWalkOpen(&walk, image, MakeRect(590, 290, 5, 5), CellLockRead, &part), nullptr);
  EXPECT_EQ(TileWalkClose(&walk), 1);
  EXPECT_TRUE(AllUnlocked(image));
  // Nothing to walk is no failure.
  EXPECT_EQ(TileWalkOpen(&walk, image, MakeRect(700, 0, 5, 5), CellLockRead, &part), nullptr);
  EXPECT_EQ(TileWalkClose(&walk), 1);
  // Next after the end keeps answering null.
  ASSERT_NE(TileWalkOpen(&walk, image, MakeRect(0, 0, 5, 5), CellLockRead, &part), nullptr);
  EXPECT_EQ(TileWalkNext(&walk, &part), nullptr);
  EXPECT_EQ(TileWalkNext(&walk, &part), nullptr);
  EXPECT_EQ(TileWalkClose(&walk), 1);
  EXPECT_TRUE(AllUnlocked(image));
  ImageDestroy(image);
}

// A backing that produces rows of value (top + row) but fails for one cell.
struct Backing {
  int failLeft = -1;
  int calls = 0;
  static int Read(void* user, int32_t left, int32_t top, int32_t width, int32_t height,
                  uint8_t* pixels, int32_t rowBytes) {
    auto* self = static_cast<Backing*>(user);
    ++self->calls;
    if (left == self->failLeft) return 0;
    for (int y = 0; y < height; ++y) std::memset(pixels + y * rowBytes, (top + y) & 255, width);
    return 1;
  }
};

TEST(TileWalk, BackedImagesProduceCellsOnFirstUseAndFailCleanly) {
  AttachedCache cache(kSmallBudget);
  Backing source;
  TileBacking backing{&Backing::Read, &source};
  // A backing needs a cache and option 1, and no fill colour.
  CLRColor white = ImageColorFromByte(5, 255);
  EXPECT_EQ(ImageCreate(5, 600, 300, 0, 0, kStorageOptionOneCell, nullptr, &backing), nullptr);
  EXPECT_EQ(ImageCreate(5, 600, 300, 0, 0, kStorageOptionTiled, &white, &backing), nullptr);

  Image* image = ImageCreate(5, 600, 300, 0, 0, kStorageOptionTiled, nullptr, &backing);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(source.calls, 0);
  std::vector<uint8_t> row(600);
  ASSERT_EQ(ImageReadPixels(image, 0, 260, 600, 1, 600, row.data()), 1);
  EXPECT_EQ(row[0], 260 & 255);
  EXPECT_EQ(row[599], 260 & 255);
  EXPECT_EQ(source.calls, 3);  // the three cells of the second row
  ASSERT_EQ(ImageReadPixels(image, 0, 261, 600, 1, 600, row.data()), 1);
  EXPECT_EQ(source.calls, 3);  // produced once

  source.failLeft = 256;  // the middle column of the first row
  std::vector<uint8_t> rows(600 * 10);
  EXPECT_EQ(ImageReadPixels(image, 0, 0, 600, 10, 600, rows.data()), 0);
  EXPECT_TRUE(AllUnlocked(image));
  EXPECT_EQ(ImageWritePixels(image, 250, 0, 20, 1, 20, row.data(), 0), 0);
  EXPECT_TRUE(AllUnlocked(image));
  ImageDestroy(image);

  gTileCache = nullptr;  // without a cache a backing fails
  EXPECT_EQ(ImageCreate(5, 600, 300, 0, 0, kStorageOptionTiled, nullptr, &backing), nullptr);
  gTileCache = cache.cache();
}

TEST(TileWalk, SolidCellsStaySolidForReadsAndExpandForPartialWrites) {
  AttachedCache cache(kSmallBudget);
  CLRColor grey = ImageColorFromByte(5, 77);
  Image* image = ImageCreate(5, 600, 300, 0, 0, kStorageOptionTiled, &grey, nullptr);
  ASSERT_NE(image, nullptr);
  for (int r = 0; r < 2; ++r)
    for (int c = 0; c < 3; ++c) ASSERT_NE(CellSolidColor(&image->tiles[r][c]), nullptr);
  EXPECT_EQ(cache.cache()->bytesHeld, 0);  // no pixels yet

  std::vector<uint8_t> row(600);
  ASSERT_EQ(ImageReadPixels(image, 0, 5, 600, 1, 600, row.data()), 1);
  EXPECT_EQ(row[0], 77);
  EXPECT_EQ(row[599], 77);
  EXPECT_NE(CellSolidColor(&image->tiles[0][0]), nullptr);  // read without expanding

  // A write into part of a solid cell keeps the colour around it.
  uint8_t dot[4] = {1, 2, 3, 4};
  ASSERT_EQ(ImageWritePixels(image, 10, 10, 4, 1, 4, dot, 0), 1);
  EXPECT_EQ(CellSolidColor(&image->tiles[0][0]), nullptr);
  ASSERT_EQ(ImageReadPixels(image, 8, 10, 8, 1, 8, row.data()), 1);
  const uint8_t want[8] = {77, 77, 1, 2, 3, 4, 77, 77};
  EXPECT_EQ(0, std::memcmp(row.data(), want, 8));
  // A write over a whole cell replaces its content.
  std::vector<uint8_t> block(256 * 256, 9);
  ASSERT_EQ(ImageWritePixels(image, 256, 0, 256, 256, 256, block.data(), 0), 1);
  ASSERT_EQ(ImageReadPixels(image, 250, 100, 12, 1, 12, row.data()), 1);
  EXPECT_EQ(row[5], 77);
  EXPECT_EQ(row[6], 9);
  EXPECT_EQ(row[11], 9);
  // A fill makes every cell solid again.
  ImageFillWithByte(image, 3);
  EXPECT_NE(CellSolidColor(&image->tiles[0][1]), nullptr);
  EXPECT_TRUE(AllUnlocked(image));
  ImageDestroy(image);
}

TEST(TileWalk, DuplicatesShareTilesUntilWritten) {
  AttachedCache cache(kSmallBudget);
  Image* image = GreyGrid();
  std::vector<uint8_t> model = testing::RandomContent(image, 3);
  Image* copy = ImageDuplicate(image);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->storageKind, kStorageTiled);
  EXPECT_EQ(copy->tiles[0][0].tile, image->tiles[0][0].tile);
  EXPECT_EQ(image->tiles[0][0].tile->refCount, 2);

  uint8_t dot = 200;
  ASSERT_EQ(ImageWritePixels(copy, 3, 3, 1, 1, 1, &dot, 0), 1);
  EXPECT_NE(copy->tiles[0][0].tile, image->tiles[0][0].tile);  // made private
  EXPECT_EQ(copy->tiles[0][1].tile, image->tiles[0][1].tile);  // still shared
  uint8_t original = 0, copied = 0;
  ImageReadPixels(image, 3, 3, 1, 1, 1, &original);
  ImageReadPixels(copy, 3, 3, 1, 1, 1, &copied);
  EXPECT_EQ(original, model[3 * 600 + 3]);
  EXPECT_EQ(copied, 200);
  uint8_t neighbour = 0;
  ImageReadPixels(copy, 4, 3, 1, 1, 1, &neighbour);
  EXPECT_EQ(neighbour, model[3 * 600 + 4]);  // the private copy kept the rest

  // Filling the copy replaces its shared tiles and leaves the original alone.
  ImageFillWithByte(copy, 1);
  ImageReadPixels(image, 300, 100, 1, 1, 1, &original);
  EXPECT_EQ(original, model[100 * 600 + 300]);

  // A view of a grid walks the same tiles.
  Image* view = ImageMakeView(image);
  EXPECT_EQ(view->storageKind, kStorageTiledView);
  EXPECT_EQ(ImagePixelAddress(view, 0, 0), nullptr);
  uint8_t throughView = 0;
  ImageReadPixels(view, 300, 100, 1, 1, 1, &throughView);
  EXPECT_EQ(throughView, original);
  ImageDestroy(view);
  EXPECT_TRUE(AllUnlocked(image));
  EXPECT_TRUE(AllUnlocked(copy));
  ImageDestroy(copy);
  ImageDestroy(image);
}

}  // namespace
}  // namespace fancy
