// The largest feather by group, as the tile dialog's slider measures it.
#include "tile/feather_limit.h"

#include <algorithm>

#include "frame/fixed.h"
#include "tile/symmetry.h"

namespace fancy {
namespace {

constexpr double kNoFeather = 1e-5;

// P1: min(height / 2, (width / 2) / sqrt(1 + (|shear| / height)^2)), the
// slant in 16.16 with FixedSqrt's 8 exact fraction bits.
double ParallelogramLimit(int32_t width, int32_t height, int32_t shear) {
  if (height <= 0) return 0.0;
  const int64_t absShear = shear < 0 ? -int64_t{shear} : int64_t{shear};
  const Fixed t = static_cast<Fixed>(static_cast<uint32_t>((absShear << 16) / height));
  const Fixed n = FixedSqrt(WrapAdd(FixedMul(t, t), kFixedOne));
  if (n == 0) return 0.0;
  const int64_t across = (int64_t{width} << 31) / n;  // (width / 2) / n in 16.16
  return std::min(height * 0.5, static_cast<double>(across) / 65536.0);
}

// P31m, P6: with k = 4 width / 3, a = 0.866 k and b = a k / (k + 2a) a,
// a - 2b / k - 1.
double KiteLimit(int32_t width) {
  const int32_t k = static_cast<int32_t>(int64_t{width} * 4 / 3);
  if (k <= 0) return 0.0;
  const double a = k * 0.8660254;
  const double b = a * k / (k + 2.0 * a) * a;
  return a - 2.0 * b / k - 1.0;
}

}  // namespace

double BuildFeatherLimit(int32_t groupId, int32_t width, int32_t height, int32_t shear) {
  switch (groupId) {
    case kGroupP1:
      return ParallelogramLimit(width, height, shear);
    case kGroupCm:
    case kGroupP4g:
    case kGroupCmm:
      return width * 0.2928932;
    case kGroupPm:
    case kGroupP2:
    case kGroupPg:
    case kGroupPgg:
    case kGroupPmg:
      return std::min(width, height) * 0.5 - 1.0;
    case kGroupP4:
      return width * 0.5 - 1.0;
    case kGroupP3:
      return std::min(height * 0.5, height * 0.57735025 * 0.8660254) - 1.0;
    case kGroupP31m:
    case kGroupP6:
      return KiteLimit(width);
    default:  // Pmm, P4m, P3m1, P6m: no feather
      return 0.0;
  }
}

int32_t FeatherFromPercent(int32_t percent, double limit) {
  if (limit < kNoFeather) return -1;
  return TruncToInt(percent * limit * 0.01);
}

int32_t PercentFromFeather(int32_t feather, double limit) {
  if (limit < kNoFeather) return 0;
  return TruncToInt(feather * 100.0 / limit);
}

}  // namespace fancy
