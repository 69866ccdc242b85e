#include "stroke/variation.h"

#include <cmath>

#include "platform/crt_random.h"

namespace fancy {

namespace {

constexpr double kSixth = 0.16666666666666666;
constexpr double kSixtieth = 0.016666666666666666;
// The angle byte: (angle + 3.14159) / (2 pi) x 255.
constexpr double kAlmostPi = 3.14159;
constexpr double kInverseTurn = 0.15915507752443828;

uint8_t LowByte(double value) { return static_cast<uint8_t>(TruncLow32(value)); }

double Clip01(double value) {
  if (value < 0.0) value = 0.0;
  if (value > 1.0) value = 1.0;
  return value;
}

// The position term t of a mode that has one; "Randomly" draws here.
double PositionTerm(int32_t mode, const StrokeInputs& in) {
  switch (mode) {
    case kModeRandom: return UniformDraw();
    case kModeRadial: {
      // Measured from (cx, 1 - cy): the centre's y is mirrored.
      const double dx = in.x - in.centreX;
      const double dy = in.y - (1.0 - in.centreY);
      return 2.0 * std::sqrt(dx * dx + dy * dy);
    }
    case kModeVertical: return in.y;
    case kModeHorizontal: return in.x;
    case kModeHue: return in.hue * kByteScale;
    case kModeSaturation: return in.saturation * kByteScale;
    case kModeBrightness: return in.brightness * kByteScale;
    default: return 0.0;
  }
}

bool HasPositionTerm(int32_t mode) {
  switch (mode) {
    case kModeRandom:
    case kModeRadial:
    case kModeVertical:
    case kModeHorizontal:
    case kModeHue:
    case kModeSaturation:
    case kModeBrightness: return true;
    default: return false;
  }
}

bool IsColourMode(int32_t mode) {
  return mode == kModeHue || mode == kModeSaturation || mode == kModeBrightness;
}

// The value of a size or transparency group before its spread: a for no
// variation, the interpolation for a mode with a term, 0 for anything else.
double GroupValue(const VariationWork& group, const StrokeInputs& in) {
  if (group.mode == kModeFixed) return group.first;
  if (HasPositionTerm(group.mode)) return Lerp(PositionTerm(group.mode, in), group.first, group.second);
  return 0.0;
}

void Rotate(double degrees, double* p, double* q) {
  const double r = degrees * kRotationDegree;
  const double c = std::cos(r), s = std::sin(r);
  const double x = *p * c - *q * s;
  const double y = *p * s + *q * c;
  *p = x;
  *q = y;
}

}  // namespace

double UniformDraw() { return CrtRand() * kUniformScale; }

uint8_t EvaluateSize(const VariationWork& size, const StrokeInputs& in) {
  double value = GroupValue(size, in);
  if (size.spread != 0.0) value = (2.0 * UniformDraw() - 1.0) * size.spread + value;
  return LowByte(Clip01(value) * 255.0);
}

uint8_t EvaluateOpacity(const VariationWork& transparency, const StrokeInputs& in) {
  double result;
  if (IsColourMode(transparency.mode)) {
    // The spread has no effect here: nothing is drawn and nothing added.
    result = Lerp(PositionTerm(transparency.mode, in), transparency.first, transparency.second) *
             255.0;
  } else {
    double value = GroupValue(transparency, in);
    if (transparency.spread != 0.0)
      value = (2.0 * UniformDraw() - 1.0) * transparency.spread + value;
    result = value * 255.0;
    if (result > 255.0) result = 255.0;
  }
  return LowByte(result);  // below 0 wraps
}

uint8_t EvaluateAngle(const VariationWork& angle, const StrokeInputs& in) {
  double p = 0.0, q = 0.0;
  switch (angle.mode) {
    case kModeRadial: {
      // The stroke follows the line from the centre, turned by the angle.
      p = in.x - in.centreX;
      q = in.y - (1.0 - in.centreY);
      const double turn = Lerp(PositionTerm(kModeRadial, in), angle.first, angle.second);
      Rotate(turn, &p, &q);
      const double length = std::sqrt(p * p + q * q);
      if (length == 0.0) {
        p = q = 0.0;
      } else {
        p /= length;
        q /= length;
      }
      break;
    }
    case kModeFixed:
    case kModeRandom:
    case kModeVertical:
    case kModeHorizontal:
    case kModeHue:
    case kModeSaturation:
    case kModeBrightness: {
      const double degrees = angle.mode == kModeFixed
                                 ? angle.first
                                 : Lerp(PositionTerm(angle.mode, in), angle.first, angle.second);
      p = 1.0;
      q = 0.0;
      Rotate(degrees, &p, &q);
      break;
    }
    default: break;  // no direction at all
  }
  // The jitter is drawn even when the spread is 0.
  Rotate((2.0 * UniformDraw() - 1.0) * angle.spread, &p, &q);
  const double radians = std::atan2(q, p);
  return LowByte((radians + kAlmostPi) * kInverseTurn * 255.0);
}

void EvaluateColour(const StrokeWorking& w, uint8_t colour[3]) {
  const uint8_t* start = w.brushFromImage ? colour : w.brushColour;
  const double dh = (2.0 * UniformDraw() - 1.0) * w.hueVariation;
  const double ds = (2.0 * UniformDraw() - 1.0) * w.saturationVariation;
  const double dv = (2.0 * UniformDraw() - 1.0) * w.brightnessVariation;
  double h, s, v;
  HsvFromRgb(start[0] * kByteScale, start[1] * kByteScale, start[2] * kByteScale, &h, &s, &v);
  h += dh;
  if (h > 1.0)
    h -= 1.0;
  else if (h < 0.0)
    h += 1.0;
  s = Clip01(s + ds);
  v = Clip01(v + dv);
  double r, g, b;
  RgbFromHsv(h, s, v, &r, &g, &b);
  colour[0] = LowByte(r * 255.0);
  colour[1] = LowByte(g * 255.0);
  colour[2] = LowByte(b * 255.0);
}

void HsvFromRgb(double r, double g, double b, double* h, double* s, double* v) {
  const double max = std::fmax(r, std::fmax(g, b));
  const double min = std::fmin(r, std::fmin(g, b));
  double sat = max == 0.0 ? 0.0 : (max - min) / max;
  double hue = 0.0;
  if (sat != 0.0) {
    const double d = max - min;
    const double rc = (max - r) / d, gc = (max - g) / d, bc = (max - b) / d;
    if (r == max)
      hue = bc - gc;
    else if (g == max)
      hue = rc + 2.0 - bc;
    else
      hue = gc + 4.0 - rc;
    hue *= kSixth;
    if (hue < 0.0) hue += 1.0;
  }
  *h = Clip01(hue);
  *s = Clip01(sat);
  *v = Clip01(max);
}

void RgbFromHsv(double h, double s, double v, double* r, double* g, double* b) {
  if (s == 0.0) {
    *r = *g = *b = v;
    return;
  }
  double h360 = h * 360.0;
  if (h360 == 360.0) h360 = 0.0;
  const double h60 = h360 * kSixtieth;
  const double i = std::floor(h60);
  const double f = h60 - i;
  const double p = (1.0 - s) * v;
  const double q = (1.0 - s * f) * v;
  const double t = (1.0 - (1.0 - f) * s) * v;
  *r = *g = *b = 0.0;  // a sector outside 0..5 leaves black
  const int sector = (i >= 0.0 && i <= 5.0) ? static_cast<int>(i) : -1;
  switch (sector) {
    case 0: *r = v, *g = t, *b = p; break;
    case 1: *r = q, *g = v, *b = p; break;
    case 2: *r = p, *g = v, *b = t; break;
    case 3: *r = p, *g = q, *b = v; break;
    case 4: *r = t, *g = p, *b = v; break;
    case 5: *r = v, *g = p, *b = q; break;
    default: break;
  }
}

void HsvBytes(const uint8_t colour[3], uint8_t* h, uint8_t* s, uint8_t* v) {
  double hh, ss, vv;
  HsvFromRgb(colour[0] * kByteScale, colour[1] * kByteScale, colour[2] * kByteScale, &hh, &ss, &vv);
  *h = LowByte(hh * 255.0);
  *s = LowByte(ss * 255.0);
  *v = LowByte(vv * 255.0);
}

}  // namespace fancy
