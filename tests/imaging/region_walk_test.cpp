// The DrawContext's defaults and map, RegionWalk's stretches under several
// coverage sources, and nested progress scopes.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "imaging/draw_context.h"
#include "imaging/progress.h"
#include "imaging/region_walk.h"
#include "raster_helpers.h"

namespace fancy {
namespace {

using testing::Generate;
using testing::MakeImage;

TEST(DrawContext, DefaultsAndTheNullContext) {
  DrawContext* c = DrawContextCreate();
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->foreground.value8[0], 200);  // blue
  EXPECT_EQ(c->foreground.value8[2], 0);
  EXPECT_EQ(c->background.value8[0], 0);
  EXPECT_EQ(c->background.value8[1], 255);
  EXPECT_EQ(c->background.value8[2], 255);
  EXPECT_EQ(c->ditherMode, 3);
  EXPECT_EQ(c->filterMode, 1);
  EXPECT_EQ(DrawContextGetMergeMode(c), 0);
  EXPECT_EQ(c->opacity, 255);
  EXPECT_EQ(c->maskReadMode, 1);
  EXPECT_EQ(c->scaleXNum, 1);
  EXPECT_EQ(c->mapXKind, kMapIdentity);
  // A null context answers the defaults, but merges nothing.
  EXPECT_EQ(DrawContextGetOpacity(nullptr), 255);
  EXPECT_EQ(DrawContextGetMergeMode(nullptr), 32);
  EXPECT_EQ(DrawContextGetFilterMode(nullptr), 1);
  EXPECT_EQ(DrawContextGetMaskReadMode(nullptr), 1);
  EXPECT_EQ(DrawContextGetForeground(nullptr).value8[0], 200);
  EXPECT_EQ(DrawContextSetOpacity(nullptr, 3), 0);
  DrawContextFree(c);
  DrawContextFree(nullptr);
}

TEST(DrawContext, MapKindsAndPoints) {
  EXPECT_EQ(MapKindOf(0, 5), kMapNone);
  EXPECT_EQ(MapKindOf(5, 0), kMapNone);
  EXPECT_EQ(MapKindOf(7, 7), kMapIdentity);
  EXPECT_EQ(MapKindOf(7, -7), kMapMirror);
  EXPECT_EQ(MapKindOf(3, 7), kMapScale);
  EXPECT_EQ(MapKindOf(3, -7), kMapScaleSourceFlip);
  EXPECT_EQ(MapKindOf(-3, 7), kMapScaleTargetFlip);
  EXPECT_EQ(MapKindOf(-3, -7), kMapScaleBothFlip);

  DrawContext c;
  DrawContextSetDefaults(&c);
  EXPECT_EQ(DrawContextSetScale(&c, 0, 4, 1, 1), 0);
  EXPECT_EQ(DrawContextSetScale(&c, 10, 4, 3, 9), 1);
  EXPECT_DOUBLE_EQ(c.ratioX, 2.5);
  EXPECT_DOUBLE_EQ(c.inverseY, 3.0);
  DrawContextSetOrigins(&c, Point32{100, 50}, Point32{7, 9});
  // Pixel centres map: target x of 10 pixels over 4 source pixels.
  for (int x = 0; x < 10; ++x) {
    Point32 p = DrawContextMapPoint(&c, Point32{100 + x, 50});
    EXPECT_EQ(p.x, 7 + static_cast<int>(std::floor((x + 0.5) * 4 / 10))) << x;
  }
  EXPECT_EQ(DrawContextMapPoint(&c, Point32{100, 51}).y, 9 + 4);  // floor(1.5 x 3)
  // Mirrors count the other way from the origin.
  DrawContextSetScale(&c, 4, -4, -2, 6);
  EXPECT_EQ(DrawContextMapPoint(&c, Point32{102, 50}).x, 7 - 2);
  EXPECT_EQ(DrawContextMapPoint(&c, Point32{100, 49}).y, 9 + 4);  // floor(1.5 x 3)
  // A rectangle's corners are mapped and ordered.
  DrawContextSetScale(&c, 10, 4, 3, 9);
  Rect r = DrawContextMapRect(&c, Rect{100, 52, 109, 50});
  EXPECT_EQ(r.left, 7);
  EXPECT_EQ(r.right, 10);
  EXPECT_EQ(r.top, 10);
  EXPECT_EQ(r.bottom, 16);  // floor(2.5 x 3)
  // Back from source to target: every target pixel that a source pixel
  // touches, partly covered ones included.
  Rect back = DrawContextReverseMapRect(&c, Rect{8, 9, 8, 9});
  EXPECT_EQ(back.left, 102);   // source pixel 1 spans target 2.5 .. 5
  EXPECT_EQ(back.right, 104);
  EXPECT_EQ(back.top, 50);
  EXPECT_EQ(back.bottom, 50);  // 3 source rows a target row
}

struct Stretch {
  int32_t x, y, count;
  bool mask1, mask2;
  int first1, first2;
};

struct Recorder {
  std::vector<Stretch> stretches;
  int lines = 0;
  int begins = 0;
  int ends = 0;
  int stopAt = -1;
};

int Begin(void* user, const Rect&) {
  ++static_cast<Recorder*>(user)->begins;
  return 1;
}
int Line(void* user) {
  ++static_cast<Recorder*>(user)->lines;
  return 1;
}
int End(void* user) {
  ++static_cast<Recorder*>(user)->ends;
  return 1;
}
int Span(void* user, int32_t x, int32_t y, int32_t count, const Coverage* c) {
  auto* r = static_cast<Recorder*>(user);
  r->stretches.push_back(Stretch{x, y, count, c->mask1 != nullptr, c->mask2 != nullptr,
                                 c->mask1 ? c->mask1[0] : -1, c->mask2 ? c->mask2[0] : -1});
  return r->stopAt < 0 || static_cast<int>(r->stretches.size()) < r->stopAt;
}

TEST(RegionWalk, StretchesUnderSeveralSources) {
  Recorder rec;
  SpanTable table{&rec, &Begin, &Line, &Span, &End};
  // No source: one span a row with a line end, or one for everything.
  ASSERT_EQ(RegionWalk(nullptr, &table, MakeRect(2, 3, 5, 4), nullptr, 0), 1);
  EXPECT_EQ(rec.stretches.size(), 4u);
  EXPECT_EQ(rec.lines, 4);
  SpanTable once{&rec, &Begin, nullptr, &Span, nullptr};
  rec = Recorder{};
  ASSERT_EQ(RegionWalk(nullptr, &once, MakeRect(2, 3, 5, 4), nullptr, 0), 1);
  ASSERT_EQ(rec.stretches.size(), 1u);
  EXPECT_EQ(rec.stretches[0].count, 5);
  EXPECT_EQ(rec.stretches[0].y, 3);

  // A run mask: clear 2, full 3, partial 3 (value 90 carried in the run).
  RunMask* runs = RunMaskCreate(8, 1);
  RunRowAppend(&runs->rows[0], kRunClear, 2, nullptr, 0, false);
  RunRowAppend(&runs->rows[0], kRunFull, 3, nullptr, 0, false);
  RunRowAppend(&runs->rows[0], kRunPartial, 3, nullptr, 90, false);
  // Mask images: one of 0..7 left to right, one flat 200, one that hides
  // pixel 6 only.
  auto ramp = MakeImage(kImageMask, 8, 1, Generate(8, 1, 1, [](int x, int, int) { return x == 0 ? 255 : x * 30; }));
  auto flat = MakeImage(kImageMask, 8, 1, std::vector<uint8_t>(8, 200));
  auto hole = MakeImage(kImageMask, 8, 1, Generate(8, 1, 1, [](int x, int, int) { return x == 6 ? 0 : 255; }));
  Rect area = MakeRect(10, 20, 8, 1);
  CoverageSource sources[4] = {
      {kCoverageImage, nullptr, ramp.get(), area, 1},
      {kCoverageRuns, runs, nullptr, area, 1},
      {kCoverageImage, nullptr, flat.get(), area, 1},
      {kCoverageImage, nullptr, hole.get(), area, 1},
  };
  rec = Recorder{};
  ASSERT_EQ(RegionWalk(nullptr, &table, area, sources, 4), 1);
  // Pixels 10, 11 are clear in the run mask; 16 is clear in the hole.
  int covered = 0;
  for (const Stretch& s : rec.stretches) {
    covered += s.count;
    for (int x = s.x; x < s.x + s.count; ++x) {
      EXPECT_GE(x, 12);
      EXPECT_NE(x, 16);
    }
    // The run mask takes the first slot; only two pointers fit.
    ASSERT_TRUE(s.mask1);
    ASSERT_TRUE(s.mask2);
    if (s.x >= 15) EXPECT_EQ(s.first1, 90);
    else EXPECT_EQ(s.first1, (s.x - 10) * 30);
  }
  EXPECT_EQ(covered, 5);
  EXPECT_EQ(rec.begins, 1);
  EXPECT_EQ(rec.ends, 1);

  // A run mask that doesn't reach over the area is a failure.
  CoverageSource shortRuns{kCoverageRuns, runs, nullptr, MakeRect(10, 20, 20, 1), 1};
  EXPECT_EQ(RegionWalk(nullptr, &table, MakeRect(10, 20, 20, 1), &shortRuns, 1), 0);
  // A span that answers 0 stops the walk, and end is still called.
  rec = Recorder{};
  rec.stopAt = 1;
  EXPECT_EQ(RegionWalk(nullptr, &table, area, sources, 2), 0);
  EXPECT_EQ(rec.stretches.size(), 1u);
  EXPECT_EQ(rec.ends, 1);
  // Nothing in common: done at once.
  Rect elsewhere = MakeRect(0, 0, 3, 3);
  EXPECT_EQ(RegionWalk(nullptr, &table, elsewhere, sources, 1), 1);
  RunMaskFree(runs);
}

struct Calls {
  std::vector<std::pair<int32_t, int32_t>> seen;
};

int Note(int32_t done, int32_t total, void* data) {
  static_cast<Calls*>(data)->seen.emplace_back(done, total);
  return 1;
}

TEST(ProgressScope, NestedStepsReportIntoTheParent) {
  DrawContext c;
  DrawContextSetDefaults(&c);
  Calls calls;
  DrawContextSetProgress(&c, &Note, &calls);
  EXPECT_EQ(ProgressIntervals(&c), 20);
  ProgressScope outer;
  ProgressScopeOpen(&outer, &c, 1, 4);  // steps of a quarter
  EXPECT_EQ(ProgressIntervals(&c), 5);
  ProgressScopeNext(&outer, 2);  // the second step takes a half
  ProgressScope inner;
  ProgressScopeOpen(&inner, &c, 1, 2);
  EXPECT_EQ(ProgressIntervals(&c), 5);  // half of the outer step's ten
  c.progress(10, 10, c.progressData);   // the inner first step done: half the outer step
  ProgressScopeClose(&inner);
  ProgressScopeFinish(&outer);
  c.progress(1, 1, c.progressData);
  ProgressScopeClose(&outer);
  EXPECT_EQ(c.progress, &Note);
  ASSERT_EQ(calls.seen.size(), 2u);
  // The outer scope reports out of 4 x 128: its first step done and half of
  // its second; and at the end the whole.
  EXPECT_EQ(calls.seen[0].second, 4 * 128);
  EXPECT_EQ(calls.seen[0].first, 128 + 256 / 2);
  EXPECT_EQ(calls.seen[1].first, 4 * 128);

  // A walk's ticker: the first interval absorbs the remainder.
  calls.seen.clear();
  ProgressTicker ticker;
  ProgressTickerStart(&ticker, &c, 45);
  for (int row = 1; row <= 45; ++row) ASSERT_EQ(ProgressTickerAdvance(&ticker, row), 1);
  ASSERT_EQ(calls.seen.size(), 20u);
  EXPECT_EQ(calls.seen[0].first, 2 + 5);
  EXPECT_EQ(calls.seen.back().first, 45);
}

}  // namespace
}  // namespace fancy
