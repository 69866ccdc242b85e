// The device edges over pixel arrays and their arithmetic fallbacks.
//
// The Lab arithmetic runs in two stages per row through a scratch row of
// three doubles a pixel: first the row to XYZ, then XYZ to the target bytes.
// The constants are the ones the colour layer has always used; no gamma curve
// is applied, and doubles go to bytes by truncation after clamping.
#include "colour/clr_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "colour/cms_bridge.h"
#include "colour/colour_report.h"
#include "config/condition.h"

namespace fancy {

namespace {

bool ArgumentsOk(const uint8_t* src, const uint8_t* dst, int32_t width, int32_t height) {
  if (width < 0 || height < 0) return false;
  if (width == 0 || height == 0) return true;
  return src && dst;
}

uint8_t ClampToByte(double v) {
  if (v < 0.0) return 0;
  if (v > 255.0) return 255;
  return static_cast<uint8_t>(v);
}

// The scratch row of one call: the caller's, a small one on the stack, or
// one of its own for wide rows.
class ScratchFor {
 public:
  ScratchFor(CLRScratchRow* given, int32_t width) {
    if (given) {
      values_ = CLRScratchReserve(given, width) ? given->values : nullptr;
    } else if (width <= kLocalPixels) {
      values_ = local_;
    } else {
      values_ = CLRScratchReserve(&own_, width) ? own_.values : nullptr;
    }
  }
  ~ScratchFor() { CLRScratchRelease(&own_); }
  ScratchFor(const ScratchFor&) = delete;
  ScratchFor& operator=(const ScratchFor&) = delete;
  double* values() const { return values_; }

 private:
  static constexpr int32_t kLocalPixels = 16;
  double local_[3 * kLocalPixels];
  CLRScratchRow own_;
  double* values_ = nullptr;
};

// f of the Lab to XYZ stage.
inline double LabF(double t) {
  if (t >= 0.08) {
    double c = (t + 0.16) * 0.8620689655172414;
    return c * c * c;
  }
  return t * 0.11070519207350825;
}

// g of the XYZ to Lab stage.
inline double LabG(double t) {
  if (t >= 0.008856) return std::pow(t, 0.333333) * 1.16 - 0.16;
  return t * 9.033;
}

}  // namespace

bool CLRScratchReserve(CLRScratchRow* scratch, int32_t width) {
  if (!scratch || width < 0) return false;
  if (scratch->values && scratch->capacity >= width) return true;
  size_t count = 3u * static_cast<size_t>(std::max(width, 1));
  void* block = std::realloc(scratch->values, count * sizeof(double));
  if (!block) {
    ReportColourCondition(kConditionNotObtained, "clr_pixels.cpp", __LINE__);
    return false;
  }
  scratch->values = static_cast<double*>(block);
  scratch->capacity = std::max(width, 1);
  return true;
}

void CLRScratchRelease(CLRScratchRow* scratch) {
  if (!scratch) return;
  std::free(scratch->values);
  scratch->values = nullptr;
  scratch->capacity = 0;
}

// ---- the arithmetic ------------------------------------------------------------

int CLRFallbackRGBToCMYK(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                         ptrdiff_t dstStride, int32_t width, int32_t height) {
  if (!ArgumentsOk(src, dst, width, height)) return 0;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* __restrict s = src + y * srcStride;
    uint8_t* __restrict d = dst + y * dstStride;
    for (int32_t x = 0; x < width; ++x) {
      // K is what the lightest channel lacks of white: 255 - max(R, G, B).
      uint8_t b = s[3 * x], g = s[3 * x + 1], r = s[3 * x + 2];
      uint8_t mx = std::max(r, std::max(g, b));
      d[4 * x] = static_cast<uint8_t>(mx - r);
      d[4 * x + 1] = static_cast<uint8_t>(mx - g);
      d[4 * x + 2] = static_cast<uint8_t>(mx - b);
      d[4 * x + 3] = static_cast<uint8_t>(255 - mx);
    }
  }
  return 1;
}

int CLRFallbackCMYKToRGB(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                         ptrdiff_t dstStride, int32_t width, int32_t height) {
  if (!ArgumentsOk(src, dst, width, height)) return 0;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* __restrict s = src + y * srcStride;
    uint8_t* __restrict d = dst + y * dstStride;
    for (int32_t x = 0; x < width; ++x) {
      int c = s[4 * x], m = s[4 * x + 1], ye = s[4 * x + 2], k = s[4 * x + 3];
      d[3 * x + 2] = static_cast<uint8_t>(255 - std::min(c + k, 255));
      d[3 * x + 1] = static_cast<uint8_t>(255 - std::min(m + k, 255));
      d[3 * x] = static_cast<uint8_t>(255 - std::min(ye + k, 255));
    }
  }
  return 1;
}

int CLRFallbackRGBToLab(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                        ptrdiff_t dstStride, int32_t width, int32_t height,
                        CLRScratchRow* scratch) {
  if (!ArgumentsOk(src, dst, width, height)) return 0;
  if (width == 0 || height == 0) return 1;
  ScratchFor row(scratch, width);
  double* xyz = row.values();
  if (!xyz) return 0;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* s = src + y * srcStride;
    double* w = xyz;
    for (int32_t x = 0; x < width; ++x, s += 3, w += 3) {
      double r = s[2] * 0.00392156862745098;
      double g = s[1] * 0.00392156862745098;
      double b = s[0] * 0.00392156862745098;
      w[0] = 0.412453 * r + 0.35758 * g + 0.180423 * b;
      w[1] = 0.212671 * r + 0.71516 * g + 0.072169 * b;
      w[2] = 0.019334 * r + 0.119193 * g + 0.950227 * b;
    }
    uint8_t* d = dst + y * dstStride;
    w = xyz;
    for (int32_t x = 0; x < width; ++x, d += 3, w += 3) {
      double gx = LabG(w[0] * 1.0526315591341904);
      double gy = LabG(w[1] * 1.0000000298023233);
      double gz = LabG(w[2] * 0.9193711501055996);
      double L = gy * 100.0;
      double a = (gx - gy) * 431.0;
      double bb = (gy - gz) * 172.4;
      d[0] = ClampToByte(L * 2.55);
      d[1] = ClampToByte(a + 128.0);
      d[2] = ClampToByte(bb + 128.0);
    }
  }
  return 1;
}

int CLRFallbackLabToRGB(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                        ptrdiff_t dstStride, int32_t width, int32_t height,
                        CLRScratchRow* scratch) {
  if (!ArgumentsOk(src, dst, width, height)) return 0;
  if (width == 0 || height == 0) return 1;
  ScratchFor row(scratch, width);
  double* xyz = row.values();
  if (!xyz) return 0;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* s = src + y * srcStride;
    double* w = xyz;
    for (int32_t x = 0; x < width; ++x, s += 3, w += 3) {
      double u = s[0] * 0.00392156862745098;
      w[0] = LabF(u + (s[1] - 128) * 0.002320185614849188) * 0.9500000178813934;
      w[1] = LabF(u) * 0.9999999701976776;
      w[2] = LabF(u - (s[2] - 128) * 0.00580046403712297) * 1.0877000000327826;
    }
    uint8_t* d = dst + y * dstStride;
    w = xyz;
    for (int32_t x = 0; x < width; ++x, d += 3, w += 3) {
      double X = w[0], Y = w[1], Z = w[2];
      d[2] = ClampToByte(255.0 * (3.240479 * X - 1.53715 * Y - 0.498535 * Z));
      d[1] = ClampToByte(255.0 * (1.875991 * Y - 0.969256 * X + 0.041556 * Z));
      d[0] = ClampToByte(255.0 * (1.057311 * Z - 0.204043 * Y + 0.055648 * X));
    }
  }
  return 1;
}

// ---- the device edges ------------------------------------------------------------

int CLRPixelsRGBToCMYK(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                       ptrdiff_t dstStride, int32_t width, int32_t height) {
  if (!ArgumentsOk(src, dst, width, height)) return 0;
  if (width == 0 || height == 0) return 1;
  if (CmsToDeviceFromRGB(nullptr, src, srcStride, dst, dstStride, width, height)) return 1;
  return CLRFallbackRGBToCMYK(src, srcStride, dst, dstStride, width, height);
}

int CLRPixelsCMYKToRGB(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                       ptrdiff_t dstStride, int32_t width, int32_t height) {
  if (!ArgumentsOk(src, dst, width, height)) return 0;
  if (width == 0 || height == 0) return 1;
  if (CmsFromCMYK(nullptr, kCmsToRGB, src, srcStride, dst, dstStride, width, height)) return 1;
  return CLRFallbackCMYKToRGB(src, srcStride, dst, dstStride, width, height);
}

int CLRPixelsRGBToLab(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                      ptrdiff_t dstStride, int32_t width, int32_t height,
                      CLRScratchRow* scratch) {
  if (!ArgumentsOk(src, dst, width, height)) return 0;
  if (width == 0 || height == 0) return 1;
  if (CmsRGBToLab(nullptr, src, srcStride, dst, dstStride, width, height)) return 1;
  return CLRFallbackRGBToLab(src, srcStride, dst, dstStride, width, height, scratch);
}

int CLRPixelsLabToRGB(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst,
                      ptrdiff_t dstStride, int32_t width, int32_t height,
                      CLRScratchRow* scratch) {
  if (!ArgumentsOk(src, dst, width, height)) return 0;
  if (width == 0 || height == 0) return 1;
  if (CmsLabToRGB(nullptr, src, srcStride, dst, dstStride, width, height)) return 1;
  return CLRFallbackLabToRGB(src, srcStride, dst, dstStride, width, height, scratch);
}

}  // namespace fancy
