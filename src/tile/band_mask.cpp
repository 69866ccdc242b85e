#include "tile/band_mask.h"

#include <cstddef>
#include <utility>

#include "frame/result_codes.h"
#include "tile/tile_work.h"

namespace fancy {
namespace {

// The eight chain-code directions, clockwise on screen (rows grow down):
// east, south-east, south, south-west, west, north-west, north, north-east.
constexpr int kDx[8] = {1, 1, 0, -1, -1, -1, 0, 1};
constexpr int kDy[8] = {0, 1, 1, 1, 0, -1, -1, -1};

int DirectionTo(int dx, int dy) {
  for (int d = 0; d < 8; ++d) {
    if (kDx[d] == dx && kDy[d] == dy) return d;
  }
  return 4;
}

struct Grid {
  uint8_t* data;
  int32_t width, height, rowBytes;

  bool Inside(int32_t x, int32_t y) const { return x >= 0 && y >= 0 && x < width && y < height; }
  uint8_t Get(int32_t x, int32_t y) const {
    return Inside(x, y) ? data[static_cast<size_t>(y) * rowBytes + x] : 0;
  }
  uint8_t& At(int32_t x, int32_t y) const { return data[static_cast<size_t>(y) * rowBytes + x]; }
};

// The first pixel at `level` or above, scanning rows from startRow on (and
// round to the rows above it), each from the left. False if there is none.
bool FindStart(const Grid& g, int32_t level, int32_t startRow, int32_t* outX, int32_t* outY) {
  for (int32_t n = 0; n < g.height; ++n) {
    const int32_t y = (startRow + n) % g.height;
    for (int32_t x = 0; x < g.width; ++x) {
      if (g.Get(x, y) >= level) {
        *outX = x;
        *outY = y;
        return true;
      }
    }
  }
  return false;
}

// Moore-neighbour tracing of the outer contour of the region {level or
// above} from its first pixel (whose west neighbour lies outside), calling
// visit(x, y) for each contour pixel in turn. The walk ends when it would
// leave the first pixel the way it first left it.
template <class Visit>
void TraceContour(const Grid& g, int32_t level, int32_t startX, int32_t startY, Visit&& visit) {
  int32_t x = startX, y = startY;
  int back = 4;  // direction from the current pixel to the last outside pixel
  int firstMove = -1;
  const int64_t limit = 4 * (int64_t{g.width} + g.height) * 4 + 16;
  for (int64_t step = 0; step < limit; ++step) {
    int found = -1;
    for (int k = 1; k <= 8; ++k) {
      const int d = (back + k) & 7;
      if (g.Get(x + kDx[d], y + kDy[d]) >= level) {
        found = d;
        break;
      }
    }
    if (step > 0 && x == startX && y == startY && found == firstMove) return;
    visit(x, y);
    if (found < 0) return;  // a single pixel
    if (step == 0) firstMove = found;
    // The outside pixel examined just before the one found becomes the
    // backtrack, seen from the new pixel.
    const int before = (found + 7) & 7;
    const int32_t bx = x + kDx[before], by = y + kDy[before];
    x += kDx[found];
    y += kDy[found];
    back = DirectionTo(bx - x, by - y);
  }
}

bool InsidePolygon(const MaskPolygon& p, double orientation, double px, double py) {
  for (int32_t i = 0; i < p.count; ++i) {
    const int32_t j = (i + 1) % p.count;
    const double ex = p.x[j] - p.x[i], ey = p.y[j] - p.y[i];
    const double cross = (ex * (py - p.y[i]) - ey * (px - p.x[i])) * orientation;
    const double length = ex * ex + ey * ey;
    if (length > 0 && cross < -1e-7 * length) return false;
  }
  return true;
}

}  // namespace

int16_t BuildBandMask(const MaskPolygon& polygon, int32_t feather, int32_t left, int32_t top,
                      int32_t width, int32_t height, BandMask* mask) {
  if (feather < 0 || feather > 127 || width <= 0 || height <= 0 || polygon.count < 3 ||
      polygon.count > kMaskPolygonMax) {
    return kErrFilterFailure;
  }
  const int64_t rowBytes = (int64_t{width} + 3) / 4 * 4;
  std::unique_ptr<uint8_t[]> data = AllocateTileWork(static_cast<size_t>(rowBytes * height));
  if (!data) return kErrOutOfMemory;
  const Grid g = {data.get(), width, height, static_cast<int32_t>(rowBytes)};
  const uint8_t deep = static_cast<uint8_t>(2 * feather + 1);
  const uint8_t outline = static_cast<uint8_t>(feather + 1);

  // Fill by pixel centres, then mark the outline.
  double area = 0;
  for (int32_t i = 0; i < polygon.count; ++i) {
    const int32_t j = (i + 1) % polygon.count;
    area += polygon.x[i] * polygon.y[j] - polygon.x[j] * polygon.y[i];
  }
  const double orientation = area >= 0 ? 1.0 : -1.0;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      if (InsidePolygon(polygon, orientation, left + x + 0.5, top + y + 0.5)) g.At(x, y) = deep;
    }
  }
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      if (g.Get(x, y) == deep && (g.Get(x - 1, y) == 0 || g.Get(x + 1, y) == 0 ||
                                  g.Get(x, y - 1) == 0 || g.Get(x, y + 1) == 0)) {
        g.At(x, y) = outline;
      }
    }
  }

  int32_t startRow = static_cast<int32_t>(polygon.y[0]) - top;
  if (startRow < 0 || startRow >= height) startRow = 0;
  auto sides = [&](int32_t x, int32_t y, auto&& touch) {
    touch(x + 1, y);
    touch(x - 1, y);
    touch(x, y + 1);
    touch(x, y - 1);
  };
  // Inward: the contour of the pixels at L or above is ring L; the deeper
  // pixels beside it make ring L + 1.
  for (int32_t level = feather + 1; level < 2 * feather; ++level) {
    int32_t sx, sy;
    if (!FindStart(g, level, startRow, &sx, &sy)) break;
    TraceContour(g, level, sx, sy, [&](int32_t x, int32_t y) {
      uint8_t& here = g.At(x, y);
      if (here > level) here = static_cast<uint8_t>(level);
      sides(x, y, [&](int32_t nx, int32_t ny) {
        if (g.Get(nx, ny) > level + 1) g.At(nx, ny) = static_cast<uint8_t>(level + 1);
      });
    });
  }
  // Outward: the pixels outside beside the contour of those above L get L.
  for (int32_t level = feather; level >= 1; --level) {
    int32_t sx, sy;
    if (!FindStart(g, level + 1, startRow, &sx, &sy)) break;
    TraceContour(g, level + 1, sx, sy, [&](int32_t x, int32_t y) {
      sides(x, y, [&](int32_t nx, int32_t ny) {
        if (g.Inside(nx, ny) && g.Get(nx, ny) < level) g.At(nx, ny) = static_cast<uint8_t>(level);
      });
    });
  }

  mask->data = std::move(data);
  mask->left = left;
  mask->top = top;
  mask->width = width;
  mask->height = height;
  mask->rowBytes = static_cast<int32_t>(rowBytes);
  return kNoError;
}

}  // namespace fancy
