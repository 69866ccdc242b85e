// The five hexagonal groups as ideal plane groups, for the tests: a
// lattice, a centre and the turns and mirrors about it, placed where each
// group's tile has them (the cell at the tile's origin, continuous
// coordinates with pixel (x, y) covering [x, x+1) x [y, y+1)).
#pragma once

#include <array>
#include <cmath>
#include <vector>

#include "tile/groups/groups.h"

namespace fancy::testing {

struct IdealGroup {
  double ax, ay, bx, by;                     // lattice vectors
  std::vector<std::array<double, 4>> point;  // 2 x 2 matrices about (0, 0)

  void Apply(const std::array<double, 4>& m, double x, double y, double* ox, double* oy) const {
    *ox = m[0] * x + m[1] * y;
    *oy = m[2] * x + m[3] * y;
  }

  // A smooth picture with exactly these symmetries: a sum of three waves
  // of the lattice, averaged over the point group, from about 30 to 225.
  double Value(double x, double y) const {
    const double det = ax * by - ay * bx;
    const double tau = 4 * 3.14159265358979323846;
    // Reciprocal vectors: k1 . a = 2 pi, k1 . b = 0; k2 . a = 0, k2 . b = 2 pi.
    const double k1x = tau * by / det, k1y = -tau * bx / det;
    const double k2x = -tau * ay / det, k2y = tau * ax / det;
    double sum = 0;
    for (const auto& m : point) {
      double px, py;
      Apply(m, x, y, &px, &py);
      sum += std::cos(k1x * px + k1y * py + 0.4) + 0.6 * std::cos(k2x * px + k2y * py + 1.3) +
             0.4 * std::cos((k1x + k2x) * px + (k1y + k2y) * py + 2.1);
    }
    return 128 + 60 * sum / point.size();
  }
};

inline std::array<double, 4> TurnMatrix(double degrees) {
  const double t = degrees * 3.14159265358979323846 / 180;
  return {std::cos(t), -std::sin(t), std::sin(t), std::cos(t)};
}
inline std::array<double, 4> MirrorMatrix(double degrees) {
  const double t = 2 * degrees * 3.14159265358979323846 / 180;
  return {std::cos(t), std::sin(t), std::sin(t), -std::cos(t)};
}

// P3: rhombus of height H with its 60 degree corner at the origin; three-
// fold turns there; lattice (sqrt 3 H, H), (0, 2H).
// P3m1: triangle of side s on row 0; mirrors at 0, 60, 120 degrees through
// the origin; lattice (1.5 s, sqrt 3 s / 2), (0, sqrt 3 s).
// P31m, P6: the kite, its 60 degree corner at the origin; the same lattice
// with s the size; P31m has mirrors at 30, 90, 150 degrees there, P6 six-
// fold turns.
// P6m: 30-60-90 triangle with its 30 degree corner at the origin; six-fold
// turns and mirrors every 30 degrees; lattice (3 s, sqrt 3 s),
// (0, 2 sqrt 3 s).
inline IdealGroup IdealGroupOf(const Symmetry& s) {
  const double size = static_cast<const SizedSymm&>(s).size;
  const double r3 = std::sqrt(3.0);
  IdealGroup g{};
  auto turns = [&](int n) {
    for (int k = 0; k < n; ++k) g.point.push_back(TurnMatrix(360.0 * k / n));
  };
  auto mirrors = [&](std::initializer_list<double> angles) {
    for (double a : angles) g.point.push_back(MirrorMatrix(a));
  };
  switch (s.groupId) {
    case kGroupP3:
      g.ax = r3 * size, g.ay = size, g.bx = 0, g.by = 2 * size;
      turns(3);
      break;
    case kGroupP3m1:
      g.ax = 1.5 * size, g.ay = r3 / 2 * size, g.bx = 0, g.by = r3 * size;
      turns(3);
      mirrors({0, 60, 120});
      break;
    case kGroupP31m:
      g.ax = 1.5 * size, g.ay = r3 / 2 * size, g.bx = 0, g.by = r3 * size;
      turns(3);
      mirrors({30, 90, 150});
      break;
    case kGroupP6:
      g.ax = 1.5 * size, g.ay = r3 / 2 * size, g.bx = 0, g.by = r3 * size;
      turns(6);
      break;
    case kGroupP6m:
      g.ax = 3 * size, g.ay = r3 * size, g.bx = 0, g.by = 2 * r3 * size;
      turns(6);
      mirrors({0, 30, 60, 90, 120, 150});
      break;
    default:
      break;
  }
  return g;
}

}  // namespace fancy::testing
