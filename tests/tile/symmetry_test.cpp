#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <utility>

#include "frame/result_codes.h"
#include "tile/groups/groups.h"
#include "tile/shapes.h"
#include "tile/symmetry.h"

namespace fancy {
namespace {

// Sets a cell by its shape: rectangles and the parallelogram take height
// and width (and shear), the others size.
void SetCell(Symmetry* s, int32_t x, int32_t y, int32_t height, int32_t width, int32_t size,
             int32_t shear = 0) {
  s->cellX = x;
  s->cellY = y;
  if (auto* r = dynamic_cast<RectSymm*>(s)) {
    r->height = height;
    r->width = width;
  } else if (auto* p = dynamic_cast<ParallelogramSymm*>(s)) {
    p->height = height;
    p->width = width;
    p->shear = shear;
  } else {
    dynamic_cast<SizedSymm*>(s)->size = size;
  }
}

TEST(Symmetry, MakeSymmetryOwnsOneObjectOfTheGroupsClass) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    Symmetry* s = MakeSymmetry(id);
    ASSERT_NE(s, nullptr) << id;
    EXPECT_EQ(s->groupId, id);
    EXPECT_EQ(CurrentSymmetry(), s);
    const bool rect = dynamic_cast<RectSymm*>(s) != nullptr;
    EXPECT_EQ(rect, (id >= kGroupPm && id <= kGroupPmm) || id == kGroupPmg) << id;
  }
  for (int32_t id : {kGroupCm, kGroupP4g, kGroupP4m, kGroupCmm}) {
    EXPECT_NE(dynamic_cast<T45Symm*>(MakeSymmetry(id)), nullptr) << id;
  }
  EXPECT_NE(dynamic_cast<KiteSymm*>(MakeSymmetry(kGroupP31m)), nullptr);
  EXPECT_NE(dynamic_cast<KiteSymm*>(MakeSymmetry(kGroupP6)), nullptr);

  // An unknown id leaves no object behind.
  EXPECT_EQ(MakeSymmetry(18), nullptr);
  EXPECT_EQ(CurrentSymmetry(), nullptr);
  ASSERT_NE(MakeSymmetry(kGroupP2), nullptr);
  ReleaseSymmetry();
  EXPECT_EQ(CurrentSymmetry(), nullptr);

  // The tile builders are the groups' own; the base refuses.
  auto s = CreateSymmetry(kGroupPm);
  uint8_t pixel = 7;
  EXPECT_EQ(s->Symmetry::BuildTile(&pixel, 1, 1, 0, &pixel, 1, 1, nullptr), kErrFilterFailure);
  EXPECT_EQ(s->Symmetry::BuildFeatheredCell(&pixel, 1, 1, 0, &pixel, 1, 1), kErrFilterFailure);
  EXPECT_EQ(pixel, 7);
}

TEST(Symmetry, TileSizesFollowTheTable) {
  struct Row {
    int32_t id, tileWidth, tileHeight, sizeAfter;
  };
  // Cells of 30 by 20 (rectangles, P1) or size 21 (the others).
  const Row table[] = {
      {kGroupP1, 30, 20, 0},     {kGroupCm, 21, 21, 21},   {kGroupPm, 60, 20, 0},
      {kGroupP2, 60, 20, 0},     {kGroupPg, 60, 20, 0},    {kGroupPgg, 60, 40, 0},
      {kGroupPmm, 60, 40, 0},    {kGroupP4, 42, 42, 21},   {kGroupP4g, 42, 42, 21},
      {kGroupP4m, 42, 42, 21},   {kGroupCmm, 42, 42, 21},  {kGroupPmg, 120, 20, 0},
      {kGroupP3, 72, 42, 21},    {kGroupP3m1, 60, 34, 20}, {kGroupP31m, 60, 34, 20},
      {kGroupP6, 60, 34, 20},    {kGroupP6m, 120, 70, 20},
  };
  for (const Row& row : table) {
    SCOPED_TRACE(row.id);
    auto s = CreateSymmetry(row.id);
    SetCell(s.get(), 5, 5, 20, 30, 21, -4);
    s->ComputeTileSize();
    EXPECT_EQ(s->tileWidth, row.tileWidth);
    EXPECT_EQ(s->tileHeight, row.tileHeight);
    if (auto* sized = dynamic_cast<SizedSymm*>(s.get())) {
      EXPECT_EQ(sized->size, row.sizeAfter);
    }
    s->ComputeRowShift();
    EXPECT_EQ(s->rowShift, row.id == kGroupP1 ? -4 : 0);
  }
  // An even size stays; P3m1 lowers it by one each time.
  auto p6 = CreateSymmetry(kGroupP6);
  SetCell(p6.get(), 0, 0, 0, 0, 20);
  p6->ComputeTileSize();
  EXPECT_EQ(p6->tileWidth, 60);
  auto p3m1 = CreateSymmetry(kGroupP3m1);
  SetCell(p3m1.get(), 0, 0, 0, 0, 20);
  p3m1->ComputeTileSize();
  EXPECT_EQ(p3m1->tileWidth, 56);
  EXPECT_EQ(p3m1->tileHeight, 32);
}

// Each shape rounds with its own guard: 1e-7 for P1, the rectangles,
// squares, T45 triangles and P6m; 0.01 for P3; 0.001 for the kites and
// P3m1. A value short of an integer by half the guard rounds up, by twice
// the guard it does not.
TEST(Symmetry, ScaledCellsRoundWithTheShapesGuard) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    SCOPED_TRACE(id);
    const double guard = id == kGroupP3 ? 0.01
                         : (id == kGroupP3m1 || id == kGroupP31m || id == kGroupP6) ? 0.001
                                                                                     : 1e-7;
    auto s = CreateSymmetry(id);
    for (auto [scale, expected] : {std::pair{7.0 - guard / 2, 7}, std::pair{7.0 - guard * 2, 6}}) {
      s->SetScaled(1, 1, 1, 1, 1, scale);
      SymmetryParams p{};
      s->StoreParams(&p);
      EXPECT_EQ(p.cellX, expected);
      EXPECT_EQ(p.cellY, expected);
      if (dynamic_cast<SizedSymm*>(s.get())) {
        EXPECT_EQ(p.size, expected);
      } else {
        EXPECT_EQ(p.height, expected);
        EXPECT_EQ(p.width, expected);
      }
      if (id == kGroupP1) {
        EXPECT_EQ(p.shear, expected);
      }
    }
  }
}

// The float box read back and set again gives the same integer cell, at
// any scale: the inverse constants and the guards agree.
TEST(Symmetry, ExtentRoundTripKeepsTheCell) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    for (double scale : {0.37, 1.0, 1.9, 3.3}) {
      SCOPED_TRACE(testing::Message() << id << " at " << scale);
      auto s = CreateSymmetry(id);
      s->SetScaled(31, 17, 90, 140, -23, scale);
      SymmetryParams before{};
      s->StoreParams(&before);
      CellExtent extent;
      s->GetExtent(&extent);
      auto t = CreateSymmetry(id);
      t->SetFromExtent(extent);
      SymmetryParams after{};
      t->StoreParams(&after);
      EXPECT_EQ(after.cellX, before.cellX);
      EXPECT_EQ(after.cellY, before.cellY);
      EXPECT_EQ(after.size, before.size);
      EXPECT_EQ(after.height, before.height);
      EXPECT_EQ(after.width, before.width);
      EXPECT_EQ(after.shear, before.shear);
    }
  }
}

TEST(Symmetry, ParallelogramBoxAndScaling) {
  // The parallelogram's box starts at the bottom edge for a negative shear.
  ParallelogramSymm* p1 = dynamic_cast<ParallelogramSymm*>(MakeSymmetry(kGroupP1));
  SetCell(p1, 50, 10, 40, 60, 0, -15);
  Rect16 box;
  p1->GetRect(&box);
  EXPECT_EQ(box.left, 35);
  EXPECT_EQ(box.right, 35 + 60 + 15);
  p1->Scale(0.5);
  EXPECT_EQ(p1->cellX, 25);
  EXPECT_EQ(p1->shear, -7);  // truncated toward zero
  EXPECT_EQ(p1->width, 30);
  ReleaseSymmetry();
}

TEST(Symmetry, ParametersRoundTripAndLeaveOtherShapesFieldsAlone) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    auto s = CreateSymmetry(id);
    s->imageWidth = 640;
    s->imageHeight = 480;
    SetCell(s.get(), 12, 34, 56, 78, 90, -9);
    s->feather = 6;
    s->featherPercent = 40;
    s->reserved = 1234;
    SymmetryParams p{};
    p.size = p.height = p.width = p.shear = -77;
    s->StoreParams(&p);
    EXPECT_EQ(p.groupId, id);
    EXPECT_EQ(p.imageWidth, 640);
    EXPECT_EQ(p.imageHeight, 480);
    const bool sized = dynamic_cast<SizedSymm*>(s.get()) != nullptr;
    EXPECT_EQ(p.size, sized ? 90 : -77) << id;
    EXPECT_EQ(p.height, sized ? -77 : 56) << id;
    EXPECT_EQ(p.shear, id == kGroupP1 ? -9 : -77) << id;

    auto t = CreateSymmetry(id);
    t->LoadParams(p);
    t->imageWidth = 640;
    t->imageHeight = 480;
    SymmetryParams q{};
    q.size = q.height = q.width = q.shear = -77;
    t->StoreParams(&q);
    EXPECT_EQ(0, std::memcmp(&p, &q, sizeof p)) << id;
  }
}

TEST(Symmetry, DefaultCellIsAThirdOfThePicture) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    for (auto [w, h] : {std::pair{300, 240}, std::pair{240, 300}, std::pair{901, 97}}) {
      SCOPED_TRACE(testing::Message() << id << " in " << w << "x" << h);
      auto s = CreateSymmetry(id);
      s->imageWidth = w;
      s->imageHeight = h;
      s->feather = 9;
      s->SetDefaultCell();
      s->ComputeCellExtent();
      EXPECT_EQ(s->feather, 0);
      EXPECT_GE(s->cellX, 0);
      EXPECT_GE(s->cellY, 0);
      EXPECT_LE(s->cellX + s->extentWidth, w);
      EXPECT_LE(s->cellY + s->extentHeight, h);
      // The cell fills a third of the picture along its tighter side.
      const double fill = std::max(static_cast<double>(s->extentWidth) / w,
                                   static_cast<double>(s->extentHeight) / h);
      EXPECT_NEAR(fill, 1.0 / 3.0, 0.03);
    }
  }
}

}  // namespace
}  // namespace fancy
