// The drop-off curve: how the height falls with the distance from the mask.
#pragma once

#include <cstdint>

#include "frame/fixed.h"

namespace fancy {

enum : int32_t {
  kDropOffGaussian = 0,
  kDropOffFlat = 1,
  kDropOffMesa = 2,
  kDropOffRounded = 3,  // a preset-only value; the same line as Flat
};

// The first entry: just below 1.0, so that the top of a surface is never
// quite 1.0.
constexpr Fixed kDropOffTop = 65532;

// The Gaussian table ends after the first entry below this (about 0.003).
constexpr Fixed kGaussianTail = 197;

// Fills table with the curve for bevelWidth (at least 1) and returns the
// number of entries n, 1 <= n <= limit. limit is the larger side of the
// field, at least 1; table has room for limit entries. Gaussian (0):
// exp(-(c i)^2) with c = 2 / bevelWidth until an entry falls below
// kGaussianTail. Mesa (2): t^4 with t = (n - 1 - i) / (n - 1) and
// n = min(limit, bevelWidth). Every other value, Flat and rounded among
// them: t itself.
int32_t MakeDropOffTable(Fixed* table, int32_t limit, int32_t bevelWidth, int32_t dropOff);

}  // namespace fancy
