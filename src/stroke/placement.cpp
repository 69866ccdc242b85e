#include "stroke/placement.h"

#include <algorithm>
#include <cmath>

#include "stroke/variation.h"

namespace fancy {

namespace {

constexpr double kStrokesPerPixel = 0.00056;  // at density 1
constexpr double kBoxTurn = 6.28;

int32_t GridSide(double n) {
  if (!(n >= 1.0)) n = 1.0;  // also when there is no number
  const double side = n + 0.5;
  return side < 2147483647.0 ? static_cast<int32_t>(side) : 2147483647;
}

}  // namespace

StrokeGrid StrokeGridOf(int32_t width, int32_t height, int32_t density) {
  StrokeGrid grid{1, 1, 1};
  if (width <= 0 || height <= 0) return grid;
  const double m = std::max(width, height);
  const double s = std::sqrt(m * m * density * kStrokesPerPixel);
  grid.cols = GridSide(width / m * s);
  grid.rows = GridSide(height / m * s);
  grid.count = static_cast<int64_t>(grid.cols) * grid.rows;
  return grid;
}

void PlaceStrokes(StrokeEntry* table, const StrokeGrid& grid, int32_t width, int32_t height,
                  double jitterX, double jitterY) {
  const double dx = 1.0 / grid.cols, dy = 1.0 / grid.rows;
  StrokeEntry* stroke = table;
  double py = 0.5 * dy;
  for (int32_t r = 0; r < grid.rows; ++r) {
    double px = 0.5 * dx;
    for (int32_t c = 0; c < grid.cols; ++c) {
      const double gx = (2.0 * UniformDraw() - 1.0) * jitterX * 0.5 * dx + px;
      const double gy = (2.0 * UniformDraw() - 1.0) * jitterY * 0.5 * dy + py;
      stroke->x = static_cast<int16_t>(TruncLow32(width * gx + 0.5));
      stroke->y = static_cast<int16_t>(TruncLow32(height * gy + 0.5));
      stroke->skip = 0;
      stroke->scan = nullptr;
      ++stroke;
      px += dx;
    }
    py += dy;
  }
}

void SortByAnchor(StrokeEntry* table, int32_t count) {
  std::stable_sort(table, table + count, [](const StrokeEntry& a, const StrokeEntry& b) {
    return a.y != b.y ? a.y < b.y : a.x < b.x;
  });
}

void SortByTop(StrokeEntry* table, int32_t count) {
  std::stable_sort(table, table + count, [](const StrokeEntry& a, const StrokeEntry& b) {
    return a.top != b.top ? a.top < b.top : a.left < b.left;
  });
}

uint32_t ColourModeFlags(const StrokeWorking& w) {
  uint32_t flags = 0;
  for (int32_t mode : {w.size.mode, w.transparency.mode, w.angle.mode}) {
    if (mode == kModeHue) flags |= 2;
    if (mode == kModeSaturation) flags |= 4;
    if (mode == kModeBrightness) flags |= 8;
  }
  return flags;
}

bool EvaluateStroke(StrokeEntry* stroke, const uint8_t* row, int32_t width, int32_t height,
                    const StrokeWorking& w, uint32_t colourModes, const InstalledBrush& brush) {
  const int32_t column = std::clamp<int32_t>(stroke->x, 0, width - 1);
  uint8_t sample[3] = {row[column * 3], row[column * 3 + 1], row[column * 3 + 2]};

  StrokeInputs in{};
  in.x = static_cast<double>(stroke->x) / width;
  in.y = static_cast<double>(stroke->y) / height;
  in.centreX = w.centreX;
  in.centreY = w.centreY;
  if (colourModes) HsvBytes(sample, &in.hue, &in.saturation, &in.brightness);

  const uint8_t size = EvaluateSize(w.size, in);
  const uint8_t opacity = EvaluateOpacity(w.transparency, in);
  const uint8_t angle = EvaluateAngle(w.angle, in);
  stroke->size = size;
  stroke->angle = angle;
  stroke->opacity = opacity;
  EvaluateColour(w, sample);
  stroke->colour[0] = sample[0];
  stroke->colour[1] = sample[1];
  stroke->colour[2] = sample[2];
  return StrokeBoxMeets(stroke, brush, width, height);
}

bool StrokeBoxMeets(StrokeEntry* stroke, const InstalledBrush& brush, int32_t width,
                    int32_t height) {
  double cx[4], cy[4];
  StrokeCorners(*stroke, brush, stroke->size * kByteScale, stroke->angle / 255.0 * kBoxTurn, cx,
                cy);
  const double leastX = std::min({cx[0], cx[1], cx[2], cx[3]});
  const double greatestX = std::max({cx[0], cx[1], cx[2], cx[3]});
  const double leastY = std::min({cy[0], cy[1], cy[2], cy[3]});
  const double greatestY = std::max({cy[0], cy[1], cy[2], cy[3]});
  stroke->left = static_cast<int16_t>(TruncLow32(leastX));
  stroke->top = static_cast<int16_t>(TruncLow32(leastY));
  return width >= leastX && 0 < greatestX && 0 < greatestY && height >= leastY;
}

}  // namespace fancy
