// The second pass over hand-made strokes: blends, the paint rule, the brush
// raster's stride, strokes at and past the picture's edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "stroke/brush_mask.h"
#include "stroke/placement.h"
#include "stroke/span_paint.h"
#include "stroke/stroke_scan.h"
#include "stroke_fixture.h"

namespace fancy {
namespace {

using testing::PaintStrokes;

// A brush of w x h values, held for the test.
struct TestBrush {
  std::vector<uint8_t> raster;
  InstalledBrush installed;
  TestBrush(int32_t w, int32_t h, uint8_t (*value)(int32_t x, int32_t y, int32_t w, int32_t h)) {
    raster.assign(static_cast<size_t>(w) * h + BrushMaskSpareBytes(w), 0);
    for (int32_t y = 0; y < h; ++y)
      for (int32_t x = 0; x < w; ++x) raster[static_cast<size_t>(y) * w + x] = value(x, y, w, h);
    BrushMask mask{static_cast<int16_t>(w), static_cast<int16_t>(h), raster.data(), 1};
    installed = InstallBrush(mask);
  }
};

// Full inside, with an empty border.
uint8_t Solid(int32_t x, int32_t y, int32_t w, int32_t h) {
  return (x > 0 && y > 0 && x < w - 1 && y < h - 1) ? 255 : 0;
}

StrokeEntry Stroke(int16_t x, int16_t y, uint8_t size = 255, uint8_t angle = 0) {
  StrokeEntry s{};
  s.x = x;
  s.y = y;
  s.size = size;
  s.angle = angle;
  s.opacity = 255;
  s.colour[0] = s.colour[1] = s.colour[2] = 200;
  return s;
}

// The stroke with its box worked out as the first pass does; skipped when
// the box misses the picture.
StrokeEntry Boxed(StrokeEntry s, const InstalledBrush& brush, int32_t w, int32_t h) {
  if (!StrokeBoxMeets(&s, brush, w, h)) s.skip = 1;
  return s;
}

std::vector<uint8_t> Canvas(int32_t w, int32_t h, uint8_t value) {
  return std::vector<uint8_t>(static_cast<size_t>(w) * h * 3, value);
}

// Rows of the canvas with any pixel other than value.
std::vector<int32_t> ChangedRows(const std::vector<uint8_t>& canvas, int32_t w, uint8_t value) {
  std::vector<int32_t> rows;
  const int32_t h = static_cast<int32_t>(canvas.size() / 3 / w);
  for (int32_t y = 0; y < h; ++y)
    if (std::any_of(canvas.begin() + y * w * 3, canvas.begin() + (y + 1) * w * 3,
                    [&](uint8_t c) { return c != value; }))
      rows.push_back(y);
  return rows;
}

TEST(SpanPaint, AnOpaqueStrokeNeverQuiteCovers) {
  const uint8_t full[2] = {255, 0};
  Span span{};
  span.raster = full;
  span.stride = 1;
  span.uLimit = span.vLimit = 0;  // one brush pixel, read at (0, 0)
  span.opacity = 255;
  span.colour[0] = span.colour[1] = span.colour[2] = 0;
  uint8_t px[3] = {255, 128, 1};
  PaintSpanNormal(span, px, 1);
  // a = (255 x 255 + 128) >> 8 = 254: a trace of what was there stays.
  EXPECT_GT(px[0], 0);
  EXPECT_LE(px[0], 2);
  EXPECT_GT(px[1], 0);
  span.colour[0] = 255;
  uint8_t dark[3] = {0, 0, 0};
  PaintSpanNormal(span, dark, 1);
  EXPECT_EQ(dark[0], 253) << "never the stroke's own 255";
}

TEST(SpanPaint, PaintRuleDarkensTowardTheEdgeAndKeepsTheStrongest) {
  // A stroke of the canvas's own colour: the normal rule changes nothing,
  // the paint rule darkens where the brush is less than full.
  const uint8_t ramp[6] = {255, 192, 128, 64, 0, 0};
  Span span{};
  span.raster = ramp;
  span.stride = 6;
  span.uLimit = 5 << 16;
  span.vLimit = 0;
  span.dudx = 0x10000;
  span.opacity = 255;
  span.colour[0] = span.colour[1] = span.colour[2] = 180;
  std::vector<uint8_t> normal(15, 180), paint(15, 180), coverage(15, 0);
  PaintSpanNormal(span, normal.data(), 5);
  PaintSpanPaint(span, paint.data(), coverage.data(), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(normal[i * 3], 180) << i;
  EXPECT_NEAR(paint[0], 180, 1);
  for (int i = 1; i < 4; ++i) EXPECT_LT(paint[i * 3], 175) << "darker where the brush thins, " << i;
  EXPECT_LT(paint[6], paint[3]);
  EXPECT_EQ(paint[12], 180) << "no brush, no paint";
  EXPECT_EQ(coverage[0], 255);
  EXPECT_EQ(coverage[3], 192);

  // A second, weaker stroke over the same pixels takes none of them.
  std::vector<uint8_t> again = paint;
  span.colour[0] = span.colour[1] = span.colour[2] = 0;
  span.raster = ramp + 1;  // 192, 128, 64, 0
  PaintSpanPaint(span, again.data(), coverage.data(), 4);
  EXPECT_EQ(again, paint);
}

// A stroke whose box begins at row -1 is activated at row 0 with its own
// row still at -1: it is painted exactly as the same stroke anchored one row
// lower. One that begins higher is stepped to row 0 and lands where it lies.
TEST(StrokeRendering, TopOfMinusOneLandsOneRowLow) {
  TestBrush brush(8, 8, Solid);
  const InstalledBrush& b = brush.installed;
  const StrokeEntry minusOne = Boxed(Stroke(10, 3), b, 20, 20);
  ASSERT_EQ(minusOne.top, -1);
  std::vector<uint8_t> slipped = Canvas(20, 20, 0), lower = Canvas(20, 20, 0);
  PaintStrokes({minusOne}, b, 20, 20, false, 1, &slipped);
  PaintStrokes({Boxed(Stroke(10, 4), b, 20, 20)}, b, 20, 20, false, 1, &lower);
  EXPECT_EQ(ChangedRows(slipped, 20, 0), (std::vector<int32_t>{1, 2, 3, 4, 5, 6}))
      << "rows 0..5 are where it lies";
  EXPECT_EQ(slipped, lower);

  const StrokeEntry minusTwo = Boxed(Stroke(10, 2), b, 20, 20);
  ASSERT_EQ(minusTwo.top, -2);
  std::vector<uint8_t> exact = Canvas(20, 20, 0);
  PaintStrokes({minusTwo}, b, 20, 20, false, 1, &exact);
  EXPECT_EQ(ChangedRows(exact, 20, 0), (std::vector<int32_t>{0, 1, 2, 3, 4}));
}

TEST(StrokeRendering, StrokesOutsideThePictureLeaveNoMark) {
  TestBrush brush(8, 8, Solid);
  const InstalledBrush& b = brush.installed;
  // Entirely above, below, left and right of the picture.
  std::vector<StrokeEntry> strokes;
  for (StrokeEntry s : {Stroke(10, -20), Stroke(10, 40), Stroke(-20, 10), Stroke(40, 10)}) {
    s = Boxed(s, b, 20, 20);
    EXPECT_EQ(s.skip, 1) << s.x << "," << s.y;
    s.skip = 0;  // painted all the same, they stay off the picture
    strokes.push_back(s);
  }
  // The stroke anchored at y = height: no row of the first pass reaches it,
  // so it is never evaluated and keeps a zero size, opacity and box.
  StrokeEntry unevaluated{};
  unevaluated.x = 10;
  unevaluated.y = 20;
  strokes.push_back(unevaluated);
  // Size 0: a point that reads the brush's empty corner.
  strokes.push_back(Boxed(Stroke(10, 10, 0), b, 20, 20));
  std::vector<uint8_t> canvas = Canvas(20, 20, 50);
  PaintStrokes(strokes, b, 20, 20, false, 0, &canvas);
  EXPECT_TRUE(ChangedRows(canvas, 20, 50).empty());

  // A stroke over the left edge and the last row is clipped to the picture,
  // its brush read from the clip on.
  canvas = Canvas(20, 20, 0);
  PaintStrokes({Boxed(Stroke(0, 19), b, 20, 20)}, b, 20, 20, false, 0, &canvas);
  EXPECT_EQ(ChangedRows(canvas, 20, 0), (std::vector<int32_t>{16, 17, 18, 19}));
  for (int32_t x = 0; x < 20; ++x) EXPECT_EQ(canvas[(18 * 20 + x) * 3] != 0, x <= 2) << x;
}

// The raster is walked with a stride of the width, not of the file's padded
// rows: a width of 100 paints a vertical line straight, 101 shears it by the
// three padding bytes a row.
TEST(StrokeRendering, BrushWidthsNotAMultipleOfFourShear) {
  testing::TempDir dir;
  auto columnsOfLine = [&](int32_t width) {
    testing::BrushBmp bmp;
    bmp.width = width;
    bmp.height = 12;
    bmp.value = [](int32_t x, int32_t y) { return static_cast<uint8_t>(x == 50 && y > 0 ? 255 : 0); };
    BrushMask mask;
    EXPECT_EQ(BrushMaskLoad(dir.Write("line.bmp", bmp.Bytes()).c_str(), &mask), 0);
    const InstalledBrush b = InstallBrush(mask);
    std::vector<uint8_t> canvas = Canvas(200, 40, 0);
    PaintStrokes({Boxed(Stroke(100, 20), b, 200, 40)}, b, 200, 40, false, 1, &canvas);
    BrushMaskFree(&mask);
    std::vector<int32_t> columns;
    for (int32_t y = 0; y < 40; ++y)
      for (int32_t x = 0; x < 200; ++x)
        if (canvas[(y * 200 + x) * 3]) columns.push_back(x);
    return columns;
  };
  const std::vector<int32_t> straight = columnsOfLine(100);
  ASSERT_EQ(straight.size(), 11u);
  for (int32_t x : straight) EXPECT_EQ(x, straight[0]);
  const std::vector<int32_t> sheared = columnsOfLine(101);
  ASSERT_EQ(sheared.size(), 11u);
  for (size_t i = 1; i < sheared.size(); ++i) EXPECT_EQ(sheared[i] - sheared[i - 1], 3) << i;
}

}  // namespace
}  // namespace fancy
