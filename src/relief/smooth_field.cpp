#include "relief/smooth_field.h"

#include <algorithm>
#include <cstring>

#include "frame/result_codes.h"
#include "relief/relief_memory.h"

namespace fancy {

namespace {

constexpr Fixed kSmallestTap = 65536 / 300;

// Columns blurred together, so that the field is read and written a cache
// line at a time rather than a sample a row.
constexpr int32_t kStrip = 16;

// Scatters every non-zero sample of a line into acc: sample i of the line
// is line[i * stride], and acc[(i + reach) * stride] stands for the same
// place, acc having reach spare samples at both ends, all zero to begin
// with. Zeros cost nothing, which is most of a field.
void ScatterLine(const Fixed* line, int32_t length, int32_t stride, const Fixed* kernel,
                 int32_t taps, Fixed* acc) {
  const int32_t reach = taps - 1;
  for (int32_t i = 0; i < length; ++i) {
    const Fixed v = line[static_cast<intptr_t>(i) * stride];
    if (v == 0) continue;
    Fixed* centre = acc + static_cast<intptr_t>(i + reach) * stride;
    centre[0] = WrapAdd(centre[0], FixedMul(kernel[0], v));
    for (int32_t j = 1; j <= reach; ++j) {
      const Fixed part = FixedMul(kernel[j], v);
      const intptr_t step = static_cast<intptr_t>(j) * stride;
      centre[-step] = WrapAdd(centre[-step], part);
      centre[step] = WrapAdd(centre[step], part);
    }
  }
}

}  // namespace

int32_t MakeGaussianKernel(Fixed* out, Fixed sigma, int32_t limit) {
  if (limit < 1) limit = 1;
  const Fixed c = FixedDiv(2 << 16, sigma);
  out[0] = kFixedOne;
  int32_t taps = 1;
  while (taps < limit && out[taps - 1] >= kSmallestTap) {
    const Fixed x = WrapMul(c, taps);
    out[taps] = FixedExp(WrapNeg(FixedMul(x, x)));
    ++taps;
  }
  Fixed sum = out[0];
  for (int32_t i = 1; i < taps; ++i) sum = WrapAdd(sum, 2 * out[i]);
  const Fixed scale = FixedRecip(sum);
  for (int32_t i = 0; i < taps; ++i) out[i] = FixedMul(out[i], scale);
  return taps;
}

int16_t SmoothField(HeightMap* field, Fixed sigma, ReliefProgress* progress) {
  const int32_t width = field->width;
  const int32_t height = field->height;
  const int32_t limit = std::max(width, height);
  auto* kernel = static_cast<Fixed*>(AllocRelief(limit * static_cast<int32_t>(sizeof(Fixed))));
  if (!kernel) return kErrOutOfMemory;
  const int32_t taps = MakeGaussianKernel(kernel, sigma, limit);
  const int32_t reach = taps - 1;
  // The gathered lines and their accumulators, a strip of columns side by
  // side, each line with reach spare samples at both ends.
  const int64_t samples = static_cast<int64_t>(limit + 2 * reach) * kStrip;
  Fixed* line = nullptr;
  Fixed* acc = nullptr;
  if (samples * static_cast<int64_t>(sizeof(Fixed)) <= INT32_MAX) {
    const auto bytes = static_cast<int32_t>(samples * sizeof(Fixed));
    line = static_cast<Fixed*>(AllocRelief(bytes));
    acc = static_cast<Fixed*>(AllocRelief(bytes));
  }
  int16_t result = kNoError;
  if (!line || !acc) result = kErrOutOfMemory;

  for (int32_t y = 0; y < height && result == kNoError; ++y) {
    Fixed* row = field->rows[y];
    std::memset(acc, 0, sizeof(Fixed) * static_cast<size_t>(width + 2 * reach));
    ScatterLine(row, width, 1, kernel, taps, acc);
    std::memcpy(row, acc + reach, sizeof(Fixed) * static_cast<size_t>(width));
    if ((y & 1) && ReliefTick(progress)) result = kErrUserCancelled;
  }
  for (int32_t x0 = 0; x0 < width && result == kNoError; x0 += kStrip) {
    const int32_t strip = std::min(kStrip, width - x0);
    const size_t stripBytes = sizeof(Fixed) * static_cast<size_t>(strip);
    for (int32_t y = 0; y < height; ++y)
      std::memcpy(line + static_cast<intptr_t>(y) * kStrip, field->rows[y] + x0, stripBytes);
    std::memset(acc, 0, sizeof(Fixed) * static_cast<size_t>(height + 2 * reach) * kStrip);
    for (int32_t c = 0; c < strip; ++c) ScatterLine(line + c, height, kStrip, kernel, taps, acc + c);
    for (int32_t y = 0; y < height; ++y)
      std::memcpy(field->rows[y] + x0, acc + static_cast<intptr_t>(y + reach) * kStrip, stripBytes);
    for (int32_t x = x0; x < x0 + strip && result == kNoError; ++x)
      if ((x & 1) && ReliefTick(progress)) result = kErrUserCancelled;
  }

  FreeRelief(acc);
  FreeRelief(line);
  FreeRelief(kernel);
  return result;
}

}  // namespace fancy
