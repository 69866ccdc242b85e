#include <gtest/gtest.h>

#include <algorithm>

#include "tile/cell_polygon.h"
#include "tile/symmetry.h"

namespace fancy {
namespace {

struct Box {
  int32_t minX, minY, maxX, maxY;
  int32_t Width() const { return maxX - minX; }
  int32_t Height() const { return maxY - minY; }
};

Box BoundsOf(const CellPolygon& polygon) {
  Box box{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
  for (int i = 0; i < polygon.pointCount; ++i) {
    box.minX = std::min(box.minX, polygon.points[i].x);
    box.minY = std::min(box.minY, polygon.points[i].y);
    box.maxX = std::max(box.maxX, polygon.points[i].x);
    box.maxY = std::max(box.maxY, polygon.points[i].y);
  }
  return box;
}

bool IsTriangle(int32_t id) {
  return id == kGroupCm || id == kGroupP4g || id == kGroupP4m || id == kGroupCmm ||
         id == kGroupP3m1 || id == kGroupP6m;
}

// Groups whose cell has a fixed shape: its size follows the box's width.
bool HasFixedShape(int32_t id) {
  return id == kGroupCm || id == kGroupP4 || id == kGroupP4g || id == kGroupP4m ||
         id == kGroupCmm || id >= kGroupP3;
}

constexpr PolygonClip kPicture{0, 0, 400, 300};

TEST(CellPolygon, EveryGroupIsClosedWithItsHandles) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    SCOPED_TRACE(id);
    for (int32_t shear : {0, 9, -9}) {
      CellPolygon polygon;
      ASSERT_TRUE(BuildPolygon(id, 50, 40, 60, 45, shear, kPicture, &polygon));
      const int corners = IsTriangle(id) ? 3 : 4;
      ASSERT_EQ(polygon.pointCount, corners + 1);
      EXPECT_EQ(polygon.points[0].x, polygon.points[corners].x);
      EXPECT_EQ(polygon.points[0].y, polygon.points[corners].y);

      int handles = 0;
      while (handles <= kPolygonMaxHandles && polygon.handles[handles] != -1) {
        EXPECT_GE(polygon.handles[handles], 0);
        EXPECT_LT(polygon.handles[handles], corners);
        ++handles;
      }
      ASSERT_LE(handles, kPolygonMaxHandles) << "handle list not ended by -1";
      EXPECT_EQ(handles, id == kGroupP1 ? 2 : 1);

      const Box box = BoundsOf(polygon);
      EXPECT_GE(box.minX, kPicture.left);
      EXPECT_GE(box.minY, kPicture.top);
      EXPECT_LT(box.maxX, kPicture.right);
      EXPECT_LT(box.maxY, kPicture.bottom);
      EXPECT_EQ(box.minX, 50);
      EXPECT_EQ(box.minY, 40);
    }
  }
}

TEST(CellPolygon, ParallelogramEdgesStayParallel) {
  for (int32_t shear : {-12, -1, 0, 1, 12}) {
    CellPolygon polygon;
    ASSERT_TRUE(BuildPolygon(kGroupP1, 20, 30, 70, 40, shear, kPicture, &polygon));
    const PolygonPoint* p = polygon.points;
    // Top edge p3..p0, bottom edge p1..p2: horizontal and equally long.
    EXPECT_EQ(p[0].y, p[3].y);
    EXPECT_EQ(p[1].y, p[2].y);
    EXPECT_EQ(std::abs(p[3].x - p[0].x), std::abs(p[2].x - p[1].x)) << shear;
    EXPECT_EQ(std::abs(p[0].x - p[1].x), std::abs(shear));
    EXPECT_EQ(BoundsOf(polygon).Width(), 69);
  }
}

TEST(CellPolygon, BoxesUnderTenAreRaisedToTen) {
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    SCOPED_TRACE(id);
    CellPolygon tiny;
    CellPolygon ten;
    ASSERT_TRUE(BuildPolygon(id, 100, 100, 3, 2, 0, kPicture, &tiny));
    ASSERT_TRUE(BuildPolygon(id, 100, 100, 10, 10, 0, kPicture, &ten));
    ASSERT_EQ(tiny.pointCount, ten.pointCount);
    for (int i = 0; i < ten.pointCount; ++i) {
      EXPECT_EQ(tiny.points[i].x, ten.points[i].x);
      EXPECT_EQ(tiny.points[i].y, ten.points[i].y);
    }
    // w is the raised width less one, whatever the shape.
    EXPECT_EQ(BoundsOf(tiny).Width(), 9);

    CellPolygon narrow;
    ASSERT_TRUE(BuildPolygon(id, 100, 100, 0, 50, 0, kPicture, &narrow));
    EXPECT_EQ(BoundsOf(narrow).Width(), 9);
    if (!HasFixedShape(id)) {
      CellPolygon flat;
      ASSERT_TRUE(BuildPolygon(id, 100, 100, 50, -4, 0, kPicture, &flat));
      EXPECT_EQ(BoundsOf(flat).Height(), 9);
    }
  }
}

TEST(CellPolygon, ShrinksAtThePicturesBottomKeepingItsProportions) {
  const int32_t rowsLeft = 29;
  const int32_t top = kPicture.bottom - 1 - rowsLeft;
  for (int32_t id = kGroupFirst; id <= kGroupLast; ++id) {
    SCOPED_TRACE(id);
    CellPolygon free;
    CellPolygon low;
    ASSERT_TRUE(BuildPolygon(id, 60, 20, 120, 200, 0, kPicture, &free));
    ASSERT_TRUE(BuildPolygon(id, 60, top, 120, 200, 0, kPicture, &low));
    const Box freeBox = BoundsOf(free);
    const Box lowBox = BoundsOf(low);
    // The cell ends exactly on the picture's last row.
    EXPECT_EQ(lowBox.minY, top);
    EXPECT_EQ(lowBox.maxY, kPicture.bottom - 1);
    EXPECT_LE(lowBox.maxX, kPicture.right - 1);
    if (!HasFixedShape(id)) {
      EXPECT_EQ(lowBox.Width(), freeBox.Width());  // width and height are free
      continue;
    }
    ASSERT_GT(freeBox.Height(), rowsLeft);
    EXPECT_LT(lowBox.Width(), freeBox.Width());
    const double freeRatio = static_cast<double>(freeBox.Width()) / freeBox.Height();
    EXPECT_NEAR(lowBox.Width(), lowBox.Height() * freeRatio, 1.5);
    // The shape is the same one at the smaller size: every vertex scales.
    const double k = static_cast<double>(lowBox.Height()) / freeBox.Height();
    for (int i = 0; i < free.pointCount; ++i) {
      EXPECT_NEAR(low.points[i].x - lowBox.minX, (free.points[i].x - freeBox.minX) * k, 1.5) << i;
      EXPECT_NEAR(low.points[i].y - lowBox.minY, (free.points[i].y - freeBox.minY) * k, 1.5) << i;
    }
  }
}

TEST(CellPolygon, ClipsToThePictureAndRefusesWhatLiesOutside) {
  CellPolygon polygon;
  ASSERT_TRUE(BuildPolygon(kGroupPm, 380, -10, 60, 50, 0, kPicture, &polygon));
  const Box box = BoundsOf(polygon);
  EXPECT_EQ(box.minX, 380);
  EXPECT_EQ(box.maxX, kPicture.right - 1);
  EXPECT_EQ(box.minY, 0);
  EXPECT_EQ(box.maxY, 39);

  EXPECT_FALSE(BuildPolygon(kGroupPm, 500, 10, 60, 50, 0, kPicture, &polygon));
  EXPECT_EQ(polygon.pointCount, 0);
  EXPECT_EQ(polygon.handles[0], -1);
  EXPECT_FALSE(BuildPolygon(18, 10, 10, 60, 50, 0, kPicture, &polygon));
}

}  // namespace
}  // namespace fancy
