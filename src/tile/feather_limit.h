// The largest feather a mother cell allows, and the conversions between a
// feather in pixels and the percentage the user sets.
#pragma once

#include <cstdint>

namespace fancy {

// The largest feather, in pixels, for a cell of group groupId whose box is
// width by height (shear: the parallelogram's). Groups Pmm, P4m, P3m1 and
// P6m have mirrors on every edge and give 0.
double BuildFeatherLimit(int32_t groupId, int32_t width, int32_t height, int32_t shear);

// trunc(percent x limit x 0.01); -1 when the limit is below 1e-5, meaning
// that the cell allows no feather.
int32_t FeatherFromPercent(int32_t percent, double limit);

// trunc(feather x 100 / limit); 0 when the limit is below 1e-5.
int32_t PercentFromFeather(int32_t feather, double limit);

}  // namespace fancy
