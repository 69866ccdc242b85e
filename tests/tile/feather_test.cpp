#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "tile/feather_limit.h"
#include "tile/groups/groups.h"
#include "tile/shapes.h"
#include "tile/symmetry.h"

namespace fancy {
namespace {

bool MirrorsOnEveryEdge(int32_t id) {
  return id == kGroupPmm || id == kGroupP4m || id == kGroupP3m1 || id == kGroupP6m;
}

// A cell of about the given size at (x, y), whatever its shape.
std::unique_ptr<Symmetry> CellAt(int32_t id, int32_t x, int32_t y, int32_t size,
                                 int32_t imageWidth, int32_t imageHeight, int32_t shear = 0) {
  auto s = CreateSymmetry(id);
  s->imageWidth = imageWidth;
  s->imageHeight = imageHeight;
  s->SetScaled(x, y, size, size, shear, 1.0);
  s->ComputeCellExtent();
  return s;
}

TEST(FeatherLimit, MirroredGroupsHaveNoFeather) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    SCOPED_TRACE(id);
    for (auto [w, h] : {std::pair{100, 80}, std::pair{30, 300}, std::pair{500, 12}}) {
      const double limit = BuildFeatherLimit(id, w, h, 20);
      if (MirrorsOnEveryEdge(id)) {
        EXPECT_EQ(limit, 0.0);
        EXPECT_EQ(FeatherFromPercent(100, limit), -1);
        EXPECT_EQ(FeatherFromPercent(0, limit), -1);
      } else {
        EXPECT_GT(limit, 1.0);
        EXPECT_GE(FeatherFromPercent(100, limit), 1);
      }
    }
  }
  EXPECT_EQ(BuildFeatherLimit(0, 100, 100, 0), 0.0);
  EXPECT_EQ(BuildFeatherLimit(18, 100, 100, 0), 0.0);
}

TEST(FeatherLimit, ParallelogramSlantIn16Point16) {
  // Without shear the fixed-point path gives half the shorter side: one
  // more than the rectangles, which keep a pixel back.
  EXPECT_EQ(BuildFeatherLimit(kGroupP1, 100, 80, 0), 40.0);
  EXPECT_EQ(BuildFeatherLimit(kGroupP1, 60, 200, 0), 30.0);
  EXPECT_EQ(BuildFeatherLimit(kGroupPm, 60, 200, 0), 29.0);
  // At 45 degrees the band across the slant is width / 2 / sqrt 2, with
  // the root's 8 fraction bits.
  EXPECT_NEAR(BuildFeatherLimit(kGroupP1, 100, 400, 400), 50.0 / std::sqrt(2.0), 0.02);
  EXPECT_EQ(BuildFeatherLimit(kGroupP1, 100, 400, -400), BuildFeatherLimit(kGroupP1, 100, 400, 400));
  EXPECT_EQ(BuildFeatherLimit(kGroupP1, 100, 0, 5), 0.0);
}

TEST(FeatherLimit, PercentAndPixels) {
  EXPECT_EQ(FeatherFromPercent(100, 10.7), 10);
  EXPECT_EQ(FeatherFromPercent(100, 0.99), 0);
  EXPECT_EQ(FeatherFromPercent(100, 0.9e-5), -1);
  EXPECT_EQ(PercentFromFeather(3, 0.0), 0);
  // The percentage found for a feather gives it back, or one more step
  // gives at least it.
  for (double limit : {1.5, 7.3, 39.0, 126.9}) {
    for (int32_t percent = 0; percent <= 100; ++percent) {
      const int32_t feather = FeatherFromPercent(percent, limit);
      const int32_t back = PercentFromFeather(feather, limit);
      EXPECT_LE(back, percent);
      EXPECT_GE(FeatherFromPercent(back + 1, limit), feather) << limit << " " << percent;
    }
  }
}

// Whatever the percentage and wherever the cell lies, the feather it gets
// keeps the grown cell inside the picture, and never goes negative.
TEST(SymmetryFeather, PercentFeatherStaysInsideThePicture) {
  const int32_t w = 320;
  const int32_t h = 260;
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    for (auto [x, y] : {std::pair{100, 90}, std::pair{1, 50}, std::pair{0, 0}, std::pair{200, 3},
                        std::pair{150, 150}}) {
      for (int32_t percent : {0, 10, 50, 100}) {
        SCOPED_TRACE(testing::Message() << id << " at " << x << "," << y << " " << percent << "%");
        auto s = CellAt(id, x, y, 96, w, h, 12);
        s->SetFeatherPercent(percent);
        EXPECT_GE(s->feather, 0);
        EXPECT_EQ(s->featherPercent, percent);
        if (id == kGroupP3m1 || id == kGroupP6m) {
          EXPECT_EQ(s->feather, 0);
        }
        Rect16 box;
        s->GetRect(&box);
        if (s->feather > 0) {
          EXPECT_GE(box.left - s->feather, 1);
          EXPECT_GE(box.top - s->feather, 1);
          EXPECT_LE(box.left + s->extentWidth + s->feather, w - 1);
          EXPECT_LE(box.top + s->extentHeight + s->feather, h - 1);
          EXPECT_EQ(s->FeatherLeavesImage(), 0);
        }
      }
    }
  }
  // Room all round: 100 % is the shape's maximum.
  auto rect = CellAt(kGroupPm, 100, 100, 60, 400, 400);
  rect->SetFeatherPercent(100);
  EXPECT_EQ(rect->feather, 29);
  rect->SetFeatherPercent(50);
  EXPECT_EQ(rect->feather, 14);
}

TEST(SymmetryFeather, EngineCapOf127) {
  // The band mask holds 2 feather + 1 in a byte: shapes that use it stop
  // at 127; the rectangles and squares, feathered by bands, do not.
  for (int32_t id : {kGroupP1, kGroupCm, kGroupP4g, kGroupCmm, kGroupP3, kGroupP31m, kGroupP6}) {
    auto s = CellAt(id, 1000, 1000, 1200, 5000, 5000);
    s->SetFeatherPercent(100);
    EXPECT_EQ(s->feather, 127) << id;
  }
  for (int32_t id : {kGroupPm, kGroupPgg, kGroupP4}) {
    auto s = CellAt(id, 1000, 1000, 1200, 5000, 5000);
    s->SetFeatherPercent(100);
    EXPECT_EQ(s->feather, 599) << id;
  }
}

TEST(SymmetryFeather, ClampFeatherLowersToTheShapesLimit) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    SCOPED_TRACE(id);
    auto s = CellAt(id, 100, 100, 60, 400, 400);
    s->feather = 200;
    const int32_t result = s->ClampFeather();
    if (id == kGroupP1) {  // its limit is the dialog's
      EXPECT_EQ(result, 0);
      EXPECT_EQ(s->feather, 200);
      continue;
    }
    EXPECT_EQ(result, -1);
    EXPECT_LT(s->feather, 30);
    EXPECT_GE(s->feather, 0);
    if (id == kGroupP3m1 || id == kGroupP6m) {
      EXPECT_EQ(s->feather, 0);
    }
    const int32_t lowered = s->feather;
    EXPECT_EQ(s->ClampFeather(), 0);
    EXPECT_EQ(s->feather, lowered);
  }
}

TEST(SymmetryFeather, ShearedOffsetsGrowWithTheSlant) {
  P1 p;
  p.height = 100;
  for (int32_t shear : {0, 30, -30, 100, 250}) {
    p.shear = shear;
    const double t = std::abs(shear) / 100.0;
    for (int32_t feather : {0, 1, 10, 100}) {
      int32_t a = 0;
      int32_t b = 0;
      p.ShearedOffsets(feather, &a, &b);
      // One pixel more than the feather across the slant and along the
      // rows; the root has 8 fraction bits.
      EXPECT_NEAR(a, feather * std::sqrt(1.0 + t * t) + 1.0, 1.0) << shear << " " << feather;
      EXPECT_NEAR(b, feather * t + 1.0, 1.0) << shear << " " << feather;
    }
  }
}

TEST(SymmetryFeather, MarginsBoundsAndSourceRect) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    SCOPED_TRACE(id);
    auto s = CellAt(id, 120, 110, 80, 400, 400, 10);
    s->SetFeatherPercent(60);
    s->cellMargin[kSideLeft] = 99;  // cleared before use
    s->PrepareMargins();
    const int32_t f = s->feather;
    for (int side = 0; side < 4; ++side) {
      EXPECT_EQ(s->cellMargin[side], 0);
      EXPECT_EQ(s->featherMargin[side], f);
    }
    // Bounds count rows up from the cell's bottom edge and columns from
    // its left edge.
    EXPECT_EQ(s->featherBounds[kSideTop], s->extentHeight + f);
    EXPECT_EQ(s->featherBounds[kSideLeft], -f);
    EXPECT_EQ(s->featherBounds[kSideBottom], -f);
    EXPECT_EQ(s->featherBounds[kSideRight], s->extentWidth + f);

    Rect16 box;
    Rect16 source;
    s->GetRect(&box);
    s->GetSourceRect(&source);
    EXPECT_EQ(source.top, box.top - f);
    EXPECT_EQ(source.left, box.left - f);
    EXPECT_EQ(source.bottom, box.bottom + f);
    EXPECT_EQ(source.right, box.right + f);

    // The outer margin reaches at least 5 pixels past the feather.
    s->SetOuterMargin();
    for (int side = 0; side < 4; ++side) EXPECT_GE(s->outerMargin[side], f + 5);
  }
}

TEST(SymmetryExtent, NormalizeKeepsTheBoxValidInsideThePicture) {
  auto pm = CreateSymmetry(kGroupPm);
  pm->imageWidth = 200;
  pm->imageHeight = 100;
  CellExtent e{20.0, 30.0, 24.0, 33.0, 0.4};
  pm->NormalizeExtent(&e);
  EXPECT_DOUBLE_EQ(e.right - e.left, 10.0);
  EXPECT_DOUBLE_EQ(e.bottom - e.top, 10.0);
  EXPECT_EQ(e.shearFraction, 0.0);

  auto p6 = CreateSymmetry(kGroupP6);
  p6->imageWidth = 200;
  p6->imageHeight = 100;
  e = {20.0, 30.0, 60.0, 35.0, 0.0};
  p6->NormalizeExtent(&e);
  EXPECT_DOUBLE_EQ(e.right - e.left, 12.0);  // 12 for the hexagonal groups

  // A box past the right and bottom edges moves back, keeping its size.
  auto p1 = CreateSymmetry(kGroupP1);
  p1->imageWidth = 200;
  p1->imageHeight = 100;
  e = {80.0, 170.5, 120.0, 230.5, -0.25};
  p1->NormalizeExtent(&e);
  EXPECT_DOUBLE_EQ(e.left, 139.0);
  EXPECT_DOUBLE_EQ(e.top, 59.0);
  EXPECT_EQ(e.shearFraction, -0.25);
  // And past the left and top edges.
  e = {-5.0, -20.0, 30.0, 40.0, 0.0};
  p1->NormalizeExtent(&e);
  EXPECT_DOUBLE_EQ(e.right, 61.0);
  EXPECT_DOUBLE_EQ(e.bottom, 36.0);
}

}  // namespace
}  // namespace fancy
