// Band maps of the mask-feathered groups.
//
// Each list is every symmetry of the group that carries the cell onto a
// copy touching it, at an edge or only at a corner: for a pixel p near the
// border, the copy across that border shows p's own value at g(p), and the
// picture at g(p) is what the cross-fade mixes in. The lists are closed
// under inverses, since a copy touches the cell exactly when the cell
// touches the copy moved back. A map whose image of p falls beyond the
// mask's ramp adds weight 0, so one list serves every pixel of the band.
//
// Coordinates are continuous, x right and y down, with the cell's box
// corner at (0, 0); a map is applied at the pixel's centre.
#include "tile/groups/feather_maps.h"

#include <cmath>
#include <cstddef>
#include <initializer_list>

#include "tile/groups/groups.h"

namespace fancy {
namespace {

// An isometry in doubles: (x, y) -> (a x + b y + e, c x + d y + f).
struct Iso {
  double a, b, c, d, e, f;
};

Iso Shift(double dx, double dy) { return {1, 0, 0, 1, dx, dy}; }

// A turn by `degrees` about (cx, cy).
Iso Turn(double cx, double cy, double degrees) {
  const double t = degrees * 3.14159265358979323846 / 180.0;
  const double c = std::cos(t), s = std::sin(t);
  return {c, -s, s, c, cx - c * cx + s * cy, cy - s * cx - c * cy};
}

// The mirror in the line through (cx, cy) at `degrees` to the x axis.
Iso Mirror(double cx, double cy, double degrees) {
  const double t = 2 * degrees * 3.14159265358979323846 / 180.0;
  const double c = std::cos(t), s = std::sin(t);
  return {c, s, s, -c, cx - c * cx - s * cy, cy - s * cx + c * cy};
}

// second after first.
Iso Then(const Iso& first, const Iso& second) {
  return {second.a * first.a + second.b * first.c,
          second.a * first.b + second.b * first.d,
          second.c * first.a + second.d * first.c,
          second.c * first.b + second.d * first.d,
          second.a * first.e + second.b * first.f + second.e,
          second.c * first.e + second.d * first.f + second.f};
}

double Distance(const Iso& m, double x, double y, double tx, double ty) {
  return std::hypot(m.a * x + m.b * y + m.e - tx, m.c * x + m.d * y + m.f - ty);
}

Fixed ToFixed(double v) { return static_cast<Fixed>(std::lround(v * 65536.0)); }

void Add(FeatherGeometry* g, const Iso& m) {
  if (g->mapCount >= kMaxFeatherMaps) return;
  g->maps[g->mapCount++] = {ToFixed(m.a), ToFixed(m.b), ToFixed(m.c),
                            ToFixed(m.d), ToFixed(m.e), ToFixed(m.f)};
}

// Maps of the square groups: a, b, c, d in {-1, 0, 1}, offsets in units
// of the size s.
struct UnitMap {
  int a, b, c, d, e, f;
};

template <int N>
void AddUnitMaps(FeatherGeometry* g, const UnitMap (&maps)[N], double s) {
  for (const UnitMap& m : maps) {
    Add(g, {double(m.a), double(m.b), double(m.c), double(m.d), m.e * s, m.f * s});
  }
}

void SetOutline(FeatherGeometry* g, std::initializer_list<double> xy) {
  g->outline.count = 0;
  const double* v = xy.begin();
  for (size_t i = 0; i + 1 < xy.size() && g->outline.count < kMaskPolygonMax; i += 2) {
    g->outline.x[g->outline.count] = v[i];
    g->outline.y[g->outline.count] = v[i + 1];
    ++g->outline.count;
  }
}

// P1: a parallelogram with sides a = (W, 0) and b = (shear, H); the group
// is the translations by the lattice they span. The copies around the
// cell are the eight next lattice cells: +-a, +-b, +-(a + b), +-(a - b).
void P1Geometry(int32_t w, int32_t h, int32_t shear, FeatherGeometry* g) {
  const double x0 = shear < 0 ? -shear : 0;
  SetOutline(g, {x0, 0, x0 + w, 0, x0 + w + shear, double(h), x0 + shear, double(h)});
  for (int i = -1; i <= 1; ++i) {
    for (int j = -1; j <= 1; ++j) {
      if (i != 0 || j != 0) Add(g, Shift(i * w + j * shear, j * double(h)));
    }
  }
}

// The right isosceles triangle of Cm, Cmm and P4g: corners (0, 0), (0, s)
// and (s, s), the pixels with x <= y of an s x s square.
void TriangleOutline(int32_t s, FeatherGeometry* g) {
  SetOutline(g, {0, 0, 0, double(s), double(s), double(s)});
}

// Cm: the tile is an s x s square made of the cell and its mirror D in the
// diagonal, (x, y) -> (y, x), repeated by (s, 0) and (0, s); the group is
// the translations T(m s, n s) and T(m s, n s) D. Around the cell:
//   across the diagonal       D                     (y, x)
//   across x = 0              T(-s, 0) D, back      (y, x + s)
//   across y = s              T(0, s) D, back       (y - s, x)
//   round (0, 0), 45 degrees  T(-s, -s), T(-s, -s) D, T(0, -s), back
//                             (x + s, y + s), (y + s, x + s), (x, y + s)
//   round (0, s), 90 degrees  T(-s, 0), T(-s, s) D, T(0, s), back
//                             (x + s, y), (y - s, x + s), (x, y - s)
//   round (s, s), 45 degrees  T(s, 0), T(s, s), T(s, s) D, back
//                             (x - s, y), (x - s, y - s), (y - s, x - s)
constexpr UnitMap kCmMaps[] = {
    {0, 1, 1, 0, 0, 0},  {0, 1, 1, 0, 0, 1},  {0, 1, 1, 0, -1, 0},  {1, 0, 0, 1, 1, 1},
    {0, 1, 1, 0, 1, 1},  {1, 0, 0, 1, 0, 1},  {1, 0, 0, 1, 1, 0},   {0, 1, 1, 0, -1, 1},
    {1, 0, 0, 1, 0, -1}, {1, 0, 0, 1, -1, 0}, {1, 0, 0, 1, -1, -1}, {0, 1, 1, 0, -1, -1},
};

// Cmm: the tile is 2s x 2s with mirrors in x = 0 and x = s, in y = 0 and
// y = s (and their repeats by 2s), the half turn R about (s/2, s/2),
// (x, y) -> (s - x, s - y), and the translation by (s, s). Around the
// cell:
//   across the diagonal      R                          (s - x, s - y)
//   across x = 0, y = s      the mirrors                (-x, y), (x, 2s - y)
//   round (0, 0), 45 deg.    {1, Mx, My, Mx My} x {1, R} with the mirrors
//                            in x = 0, y = 0, moved back:
//                            (x, -y), (-x, -y), (s + x, s - y),
//                            (s - x, s + y), (s + x, s + y)
//   round (0, s), 90 deg.    (-x, 2s - y)
//   round (s, s), 45 deg.    the same with the mirrors in x = s, y = s:
//                            (2s - x, y), (2s - x, 2s - y), (x - s, s - y),
//                            (s - x, y - s), (x - s, y - s)
constexpr UnitMap kCmmMaps[] = {
    {-1, 0, 0, -1, 1, 1}, {-1, 0, 0, 1, 0, 0},  {1, 0, 0, -1, 0, 2},  {1, 0, 0, -1, 0, 0},
    {-1, 0, 0, -1, 0, 0}, {1, 0, 0, -1, 1, 1},  {-1, 0, 0, 1, 1, 1},  {1, 0, 0, 1, 1, 1},
    {-1, 0, 0, -1, 0, 2}, {-1, 0, 0, 1, 2, 0},  {-1, 0, 0, -1, 2, 2}, {1, 0, 0, -1, -1, 1},
    {-1, 0, 0, 1, 1, -1}, {1, 0, 0, 1, -1, -1},
};

// P4g: the square Q = cell + its mirror D in the diagonal, (x, y) -> (y,
// x), sits at the tile's top left; the other quarters are Q under (x, y)
// -> (x + s, s - y), (s - x, y + s) and (2s - x, 2s - y). So the group
// holds D, the quarter turn L about the cell's right-angled corner (0, s),
// (x, y) -> (y - s, s - x), and the half turns G about (s, s) and -1
// about (0, 0). Around the cell:
//   across the diagonal      D                          (y, x)
//   across x = 0             L, back                    (s - y, x + s)
//   across y = s             L^-1, back                 (y - s, s - x)
//   round (0, 0), 45 deg.    {1, D, -1, -D} x {1, L}, back:
//                            (-x, -y), (-y, -x), (s - x, y + s),
//                            (s + y, s - x), (s + x, s - y)
//   round (0, s), 90 deg.    L^2                        (-x, 2s - y)
//   round (s, s), 45 deg.    {1, D, G, G D} x {1, L^-1}, back:
//                            (2s - x, 2s - y), (2s - y, 2s - x),
//                            (x - s, s - y), (s - y, x - s), (s - x, y - s)
constexpr UnitMap kP4gMaps[] = {
    {0, 1, 1, 0, 0, 0},   {0, -1, 1, 0, 1, 1},  {0, 1, -1, 0, -1, 1}, {-1, 0, 0, -1, 0, 0},
    {0, -1, -1, 0, 0, 0}, {-1, 0, 0, 1, 1, 1},  {0, 1, -1, 0, 1, 1},  {1, 0, 0, -1, 1, 1},
    {-1, 0, 0, -1, 0, 2}, {-1, 0, 0, -1, 2, 2}, {0, -1, -1, 0, 2, 2}, {1, 0, 0, -1, -1, 1},
    {0, -1, 1, 0, 1, -1}, {-1, 0, 0, 1, 1, -1},
};

// P3: the rhombus P0 = (0, 0), P1 = (t, 0), P2 = (1.5 t, H), P3 = (0.5 t,
// H), t = 1.1547 H, two equilateral triangles; every corner is a centre of
// three-fold turns and P2 - P0 is a lattice vector. The 120 degree corners
// P1 and P3 are met by three cells, the cell and its two turns; the 60
// degree corners by six, the cell, its two turns, the two turns about the
// neighbouring 120 degree corners, and the cell moved by -(P2 - P0) (at
// P0) or +(P2 - P0) (at P2). So: turns by +-120 degrees about each corner
// and the shifts by +-(P2 - P0), ten maps.
void P3Geometry(int32_t size, FeatherGeometry* g) {
  const double h = size, t = 1.1547005 * h;
  SetOutline(g, {0, 0, t, 0, 1.5 * t, h, 0.5 * t, h});
  const double cx[4] = {0, t, 1.5 * t, 0.5 * t}, cy[4] = {0, 0, h, h};
  for (int k = 0; k < 4; ++k) {
    Add(g, Turn(cx[k], cy[k], 120));
    Add(g, Turn(cx[k], cy[k], -120));
  }
  Add(g, Shift(1.5 * t, h));
  Add(g, Shift(-1.5 * t, -h));
}

// The kite of P31m and P6: K0 = (0, 0), 60 degrees; K1 = (0.75 s, V2 / 2)
// and K3 = (0, V2), 90 degrees; K2 = (0.5 s, V2), 120 degrees.
struct Kite {
  double x[4], y[4];
};

Kite KiteCorners(int32_t size, FeatherGeometry* g) {
  const double s = size, v2 = 1 - TruncToInt(0.5 - 0.8660254 * size);
  const Kite k = {{0, 0.75 * s, 0.5 * s, 0}, {0, v2 / 2, v2, v2}};
  SetOutline(g, {k.x[0], k.y[0], k.x[1], k.y[1], k.x[2], k.y[2], k.x[3], k.y[3]});
  return k;
}

// The turn about K2 by +-120 degrees that carries `from` nearest to `to`.
Iso TurnAboutK2(const Kite& k, int from, int to) {
  const Iso plus = Turn(k.x[2], k.y[2], 120), minus = Turn(k.x[2], k.y[2], -120);
  return Distance(plus, k.x[from], k.y[from], k.x[to], k.y[to]) <
                 Distance(minus, k.x[from], k.y[from], k.x[to], k.y[to])
             ? plus
             : minus;
}

// P6: K0 is a centre of six-fold turns (six cells meet there), K2 of
// three-fold and K1, K3 of half turns (four cells meet at each: the cell,
// the two across its edges, and the half turn). So: turns by 60, 120, 180,
// 240 and 300 degrees about K0, by +-120 about K2, and by 180 about K1 and
// about K3, nine maps.
void P6Geometry(int32_t size, FeatherGeometry* g) {
  const Kite k = KiteCorners(size, g);
  for (int n = 1; n <= 5; ++n) Add(g, Turn(k.x[0], k.y[0], 60.0 * n));
  Add(g, Turn(k.x[2], k.y[2], 120));
  Add(g, Turn(k.x[2], k.y[2], -120));
  Add(g, Turn(k.x[1], k.y[1], 180));
  Add(g, Turn(k.x[3], k.y[3], 180));
}

// P31m: the edges through K0 are mirrors, M0 in x = 0 and M1 in the line
// K0 K1 (about 30 degrees), so six cells meet at K0: the cell, M0, M1,
// the turns by +-120 degrees about K0 and the third mirror through K0, at
// 180 degrees less M1's angle. K2 is a centre of three-fold turns off the
// mirrors: the cells across K1 K2 and K2 K3 are the cell turned about K2.
// At K1 (on M1) the fourth cell is M1 after the turn about K2 that carries
// K3 to K1; at K3 (on M0) it is M0 after the turn that carries K1 to K3.
// Nine maps.
void P31mGeometry(int32_t size, FeatherGeometry* g) {
  const Kite k = KiteCorners(size, g);
  const double m1 = std::atan2(k.y[1], k.x[1]) * 180.0 / 3.14159265358979323846;
  Add(g, Mirror(0, 0, 90));
  Add(g, Mirror(0, 0, m1));
  Add(g, Mirror(0, 0, 180 - m1));
  Add(g, Turn(0, 0, 120));
  Add(g, Turn(0, 0, -120));
  Add(g, Turn(k.x[2], k.y[2], 120));
  Add(g, Turn(k.x[2], k.y[2], -120));
  Add(g, Then(TurnAboutK2(k, 3, 1), Mirror(0, 0, m1)));
  Add(g, Then(TurnAboutK2(k, 1, 3), Mirror(0, 0, 90)));
}

}  // namespace

bool GetFeatherGeometry(const Symmetry& symmetry, FeatherGeometry* geometry) {
  geometry->mapCount = 0;
  geometry->outline.count = 0;
  switch (symmetry.groupId) {
    case kGroupP1: {
      const auto& p = static_cast<const P1&>(symmetry);
      P1Geometry(p.width, p.height, p.shear, geometry);
      return true;
    }
    case kGroupCm:
      TriangleOutline(static_cast<const Cm&>(symmetry).size, geometry);
      AddUnitMaps(geometry, kCmMaps, static_cast<const Cm&>(symmetry).size);
      return true;
    case kGroupCmm:
      TriangleOutline(static_cast<const Cmm&>(symmetry).size, geometry);
      AddUnitMaps(geometry, kCmmMaps, static_cast<const Cmm&>(symmetry).size);
      return true;
    case kGroupP4g:
      TriangleOutline(static_cast<const P4g&>(symmetry).size, geometry);
      AddUnitMaps(geometry, kP4gMaps, static_cast<const P4g&>(symmetry).size);
      return true;
    case kGroupP3:
      P3Geometry(static_cast<const P3&>(symmetry).size, geometry);
      return true;
    case kGroupP31m:
      P31mGeometry(static_cast<const P31m&>(symmetry).size, geometry);
      return true;
    case kGroupP6:
      P6Geometry(static_cast<const P6&>(symmetry).size, geometry);
      return true;
    default:
      return false;
  }
}

}  // namespace fancy
