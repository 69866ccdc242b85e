// P31m and P6 on the kite, a third of a hexagon: corners (0, 0) (60
// degrees), (0.75 s, V2 / 2), (0.5 s, V2) (120 degrees) and (0, V2), with
// s = size (even) and V2 = 1 - trunc(0.5 - 0.8660254 s) rows. Each tile
// row is cut into regions by an edge table, as a scan converter does, over
// Q = 3 s / 2 columns. With a = 1.5 s / V2, b = -0.5 s / V2, c = 0.5 s /
// V2, d = -1.5 s / V2, e1 = floor(V2 / 2 - 0.5 + 1e-7) + 1 and e2 =
// floor(1.5 V2 - 0.5 + 1e-7) + 1, the edges (P31m uses the first five):
//
//   row added  x at that row               dx  rows        region
//   0          a / 2                       a   e1          1
//   0          s + b / 2                   b   e1          2
//   0          Q                           0   V2          3
//   e1         (e1 + .5) b + s             b   V2 - e1     1
//   e1         (e1 + .5) a                 a   V2 - e1     4
//   V2         .5 c + .5 s                 c   e2 - V2     5
//   V2         .5 d + 1.5 s                d   e2 - V2     4
//   V2         Q                           0   V2          6
//   e2         (e2 + .5 - V2) d + 1.5 s    d   2 V2 - e2   5
//   e2         (e2 + .5 - V2) c + .5 s     c   2 V2 - e2   7
//
// At each row the new edges join the active list, which is sorted by x;
// each edge ends a span at floor(x - 0.5 + 1e-7) and gives it its region;
// then counts fall, finished edges leave and the others move by dx.
// Region 1 is the kite itself; the others are mapped at pixel centres:
//
//   region  P6                                     P31m
//   2       (.5 -.866 .866 .5) 0, 0                (.5 .866 .866 -.5) 0, 0
//   3       (-1 0 0 -1) Q, V2                      (.5 -.866 -.866 -.5)
//                                                  .866 V2 - .5 Q, .5 V2 + .866 Q
//   4       (-.5 .866 -.866 -.5) .5 Q - .866 V2, .866 Q + .5 V2   (both)
//   5       (-.5 -.866 .866 -.5) 1.732 V2, V2
//   6       (.5 .866 -.866 .5) -.5 Q - .866 V2, .866 Q - .5 V2
//   7       (.5 -.866 .866 .5) 1.732 V2, -V2
//
// P6 computes rows 0 .. 2 V2 - 1 and writes each pixel to (y, x) and to
// (V + 1 + y, Q + x) for y <= V, (y - V - 1, Q + x) after, V =
// trunc(0.8660254 s - 0.5). P31m computes rows 0 .. V2 and writes (y, x),
// (y, TW - 1 - x), (V2 + y, Q - 1 - x), (V2 + y, Q + x); the last of its
// rows finds no edge left and writes nothing.
#include <cstddef>

#include "tile/groups/groups.h"
#include "tile/groups/tile_build.h"
#include "tile/tile_work.h"

namespace fancy {
namespace {

using namespace tile_build;

struct EdgeRecord {
  double x;
  double dx;
  int32_t rows;
  int32_t region;
  int32_t next;    // index of the next active edge, -1 at the end
  int32_t addRow;  // row at which the edge joins
};
constexpr int32_t kKiteEdges = 10;
constexpr int32_t kRegions = 8;  // 1..7

struct KiteGeometry {
  int32_t s, q, v2, v;
};

void FillEdgeTable(const KiteGeometry& g, EdgeRecord* edges) {
  const double s = g.s, v2 = g.v2, q = g.q;
  const double a = 1.5 * s / v2, b = -0.5 * s / v2, c = 0.5 * s / v2, d = -1.5 * s / v2;
  const int32_t e1 = SpanFloor(v2 / 2 - 0.5 + 1e-7) + 1;
  const int32_t e2 = SpanFloor(1.5 * v2 - 0.5 + 1e-7) + 1;
  const EdgeRecord table[kKiteEdges] = {
      {a / 2, a, e1, 1, -1, 0},
      {s + b / 2, b, e1, 2, -1, 0},
      {q, 0, g.v2, 3, -1, 0},
      {(e1 + 0.5) * b + s, b, g.v2 - e1, 1, -1, e1},
      {(e1 + 0.5) * a, a, g.v2 - e1, 4, -1, e1},
      {0.5 * c + 0.5 * s, c, e2 - g.v2, 5, -1, g.v2},
      {0.5 * d + 1.5 * s, d, e2 - g.v2, 4, -1, g.v2},
      {q, 0, g.v2, 6, -1, g.v2},
      {(e2 + 0.5 - v2) * d + 1.5 * s, d, 2 * g.v2 - e2, 5, -1, e2},
      {(e2 + 0.5 - v2) * c + 0.5 * s, c, 2 * g.v2 - e2, 7, -1, e2},
  };
  for (int32_t i = 0; i < kKiteEdges; ++i) edges[i] = table[i];
}

// Quicksort of the linked list that starts at head: an element goes before
// the pivot when pivot.x - 1e-7 >= element.x. Returns the new head.
int32_t SortEdges(EdgeRecord* edges, int32_t head) {
  if (head < 0 || edges[head].next < 0) return head;
  const int32_t pivot = head;
  int32_t beforeHead = -1, beforeTail = -1, afterHead = -1, afterTail = -1;
  for (int32_t e = edges[pivot].next; e >= 0;) {
    const int32_t next = edges[e].next;
    edges[e].next = -1;
    if (edges[pivot].x - 1e-7 >= edges[e].x) {
      (beforeTail < 0 ? beforeHead : edges[beforeTail].next) = e;
      beforeTail = e;
    } else {
      (afterTail < 0 ? afterHead : edges[afterTail].next) = e;
      afterTail = e;
    }
    e = next;
  }
  beforeHead = SortEdges(edges, beforeHead);
  edges[pivot].next = SortEdges(edges, afterHead);
  if (beforeHead < 0) return pivot;
  int32_t tail = beforeHead;
  while (edges[tail].next >= 0) tail = edges[tail].next;
  edges[tail].next = pivot;
  return beforeHead;
}

SpanMap Map(double m0, double m1, double m2, double m3, double m4, double m5) {
  return {FixedFromDouble(m0),
          FixedFromDouble(m1),
          FixedFromDouble(m2),
          FixedFromDouble(m3),
          FixedFromDouble(m4),
          FixedFromDouble(m5),
          true};
}

void P6Maps(const KiteGeometry& g, SpanMap maps[kRegions], const SpanMap* use[kRegions]) {
  const double q = g.q, v2 = g.v2;
  maps[2] = Map(.5, -.8660254, .8660254, .5, 0, 0);
  maps[3] = Map(-1, 0, 0, -1, q, v2);
  maps[4] = Map(-.5, .8660254, -.8660254, -.5, .5 * q - .8660254 * v2, .8660254 * q + .5 * v2);
  maps[5] = Map(-.5, -.8660254, .8660254, -.5, 1.7320508 * v2, v2);
  maps[6] = Map(.5, .8660254, -.8660254, .5, -.5 * q - .8660254 * v2, .8660254 * q - .5 * v2);
  maps[7] = Map(.5, -.8660254, .8660254, .5, 1.7320508 * v2, -v2);
  use[0] = use[1] = nullptr;
  for (int r = 2; r < kRegions; ++r) use[r] = &maps[r];
}

void P31mMaps(const KiteGeometry& g, SpanMap maps[kRegions], const SpanMap* use[kRegions]) {
  const double q = g.q, v2 = g.v2;
  maps[2] = Map(.5, .8660254, .8660254, -.5, 0, 0);
  maps[3] = Map(.5, -.8660254, -.8660254, -.5, .8660254 * v2 - .5 * q, .5 * v2 + .8660254 * q);
  maps[4] = Map(-.5, .8660254, -.8660254, -.5, .5 * q - .8660254 * v2, .8660254 * q + .5 * v2);
  use[0] = use[1] = nullptr;
  for (int r = 2; r < kRegions; ++r) use[r] = r <= 4 ? &maps[r] : nullptr;
}

enum class Kite { kP31m, kP6 };

template <class P>
int16_t BuildRows(Kite kind, const KiteGeometry& g, const CellRows& cell, const TileRows& tile,
                  EdgeRecord* edges, RowTicker& ticker) {
  SpanMap maps[kRegions];
  const SpanMap* use[kRegions];
  if (kind == Kite::kP6) {
    P6Maps(g, maps, use);
  } else {
    P31mMaps(g, maps, use);
  }
  const int32_t edgeCount = kind == Kite::kP6 ? kKiteEdges : 5;
  const int32_t rows = kind == Kite::kP6 ? 2 * g.v2 : g.v2 + 1;
  const int32_t tw = tile.width;
  int32_t active = -1;
  for (int32_t y = 0; y < rows; ++y) {
    if (!ticker.Next(y)) return kTileBuildCancelled;
    for (int32_t i = 0; i < edgeCount; ++i) {
      if (edges[i].addRow != y || edges[i].rows <= 0) continue;
      edges[i].next = active;
      active = i;
    }
    active = SortEdges(edges, active);
    CopyTarget targets[4];
    int32_t targetCount;
    if (kind == Kite::kP6) {
      targets[0] = {tile.Row(y), 0, 1};
      targets[1] = {tile.Row(y <= g.v ? g.v + 1 + y : y - g.v - 1), g.q, 1};
      targetCount = 2;
    } else {
      targets[0] = {tile.Row(y), 0, 1};
      targets[1] = {tile.Row(y), tw - 1, -1};
      targets[2] = {tile.Row(g.v2 + y), g.q - 1, -1};
      targets[3] = {tile.Row(g.v2 + y), g.q, 1};
      targetCount = 4;
    }
    int32_t x = 0;
    for (int32_t e = active; e >= 0; e = edges[e].next) {
      int32_t end = SpanFloor(edges[e].x - 0.5 + 1e-7);
      if (end > g.q - 1) end = g.q - 1;
      RunSpan<P>(cell, use[edges[e].region], y, x, end, targets, targetCount, tw);
      if (end + 1 > x) x = end + 1;
    }
    // Counts fall; finished edges leave, the others move on.
    int32_t* link = &active;
    while (*link >= 0) {
      EdgeRecord& edge = edges[*link];
      if (--edge.rows <= 0) {
        *link = edge.next;
      } else {
        edge.x += edge.dx;
        link = &edge.next;
      }
    }
  }
  ticker.Finish();
  return kNoError;
}

int16_t BuildKite(Kite kind, Symmetry& symmetry, int32_t size, const BuildArgs& args) {
  CellRows cell;
  TileRows tileRows;
  if (!MakeViews(symmetry, args, &cell, &tileRows)) return kErrFilterFailure;
  KiteGeometry g;
  g.s = size;
  g.q = WrapMul(size, 3) / 2;
  g.v2 = 1 - TruncToInt(0.5 - 0.8660254 * size);
  g.v = TruncToInt(0.8660254 * size - 0.5);
  if (size <= 2 || (size & 1) || g.v2 < 2 || tileRows.width != 2 * g.q ||
      tileRows.height != 2 * g.v + 2 || cell.rows < g.v2 || cell.cols < 1) {
    return kErrFilterFailure;
  }
  std::unique_ptr<uint8_t[]> block = AllocateTileWork(sizeof(EdgeRecord) * kKiteEdges);
  if (!block) return kErrOutOfMemory;
  EdgeRecord* edges = reinterpret_cast<EdgeRecord*>(block.get());
  FillEdgeTable(g, edges);
  RowTicker ticker(args.hooks, args.progressMode, kind == Kite::kP6 ? 2 * g.v2 : g.v2 + 1,
                   symmetry.targetHeight);
  const int16_t result = WithLayouts(args.sourceType, args.tileType, [&](auto px) {
    return BuildRows<decltype(px)>(kind, g, cell, tileRows, edges, ticker);
  });
  if (result == kNoError) FinishTile(symmetry, tileRows);
  return result;
}

}  // namespace

int16_t P31m::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                        int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                        TileBuildHooks* hooks) {
  return BuildKite(
      Kite::kP31m, *this, size,
      {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks});
}

int16_t P6::BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                      int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                      TileBuildHooks* hooks) {
  return BuildKite(
      Kite::kP6, *this, size,
      {source, sourceStride, sourceType, progressMode, tile, tileStride, tileType, hooks});
}

}  // namespace fancy
