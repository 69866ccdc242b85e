#include "relief/height_field.h"

#include "frame/result_codes.h"
#include "relief/distance_field.h"
#include "relief/smooth_field.h"

namespace fancy {

namespace {

// 0.1 in 16.16, a tenth of the height's unit.
constexpr Fixed kHeightStep = 6554;

}  // namespace

int32_t HeightFieldSteps(int32_t fieldWidth, int32_t fieldHeight, int32_t smoothness) {
  int32_t steps = fieldHeight;
  if (smoothness > 0) steps += fieldHeight / 2 + fieldWidth / 2;
  return steps;
}

int16_t BuildHeightField(ByteMap** mask, HeightMap** field, int32_t width, int32_t smoothness,
                         int32_t dropOff, int32_t height, int32_t offsetX, int32_t offsetY,
                         ReliefProgress* progress) {
  int16_t result = kErrOutOfMemory;
  if (*mask && *field)
    result = ScaledDistanceField(*mask, *field, width, smoothness, dropOff, offsetX, offsetY,
                                 progress);
  // The distances are in the field now; the mask is not needed any more.
  FreeByteMap(*mask);
  *mask = nullptr;

  if (result == kNoError && smoothness > 0)
    result = SmoothField(*field, WrapShl(smoothness, 16), progress);

  if (result == kNoError && height > 0) {
    const Fixed scale = WrapMul(kHeightStep, height);
    HeightMap* f = *field;
    for (int32_t y = 0; y < f->height; ++y)
      for (int32_t x = 0; x < f->width; ++x) f->rows[y][x] = FixedMul(f->rows[y][x], scale);
  }

  if (result != kNoError) {
    FreeHeightMap(*field);
    *field = nullptr;
  }
  return result;
}

}  // namespace fancy
