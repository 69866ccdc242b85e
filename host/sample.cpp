#include "sample.h"

#include <algorithm>
#include <cmath>

namespace fancy {

namespace {

struct Rgb {
  double r, g, b;
};

Rgb Mix(Rgb a, Rgb b, double t) {
  t = std::clamp(t, 0.0, 1.0);
  return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

double Smooth(double t) { return t * t * (3 - 2 * t); }

// A hash of lattice points to [0, 1).
double Hash(int32_t x, int32_t y, uint32_t seed) {
  uint32_t h = uint32_t(x) * 374761393u + uint32_t(y) * 668265263u + seed * 2246822519u;
  h = (h ^ (h >> 13)) * 1274126177u;
  h ^= h >> 16;
  return double(h & 0xFFFFFF) / double(0x1000000);
}

double ValueNoise(double x, double y, uint32_t seed) {
  double fx = std::floor(x), fy = std::floor(y);
  int32_t ix = int32_t(fx), iy = int32_t(fy);
  double tx = Smooth(x - fx), ty = Smooth(y - fy);
  double a = Hash(ix, iy, seed), b = Hash(ix + 1, iy, seed);
  double c = Hash(ix, iy + 1, seed), d = Hash(ix + 1, iy + 1, seed);
  return (a + (b - a) * tx) + ((c + (d - c) * tx) - (a + (b - a) * tx)) * ty;
}

// Fractal noise: octaves of value noise, about 0..1.
double Fbm(double x, double y, uint32_t seed, int octaves) {
  double sum = 0, amplitude = 0.5, total = 0;
  for (int i = 0; i < octaves; ++i) {
    sum += amplitude * ValueNoise(x, y, seed + uint32_t(i) * 17u);
    total += amplitude;
    x *= 2.03;
    y *= 2.03;
    amplitude *= 0.5;
  }
  return sum / total;
}

// The scene above the water line at (u, v), both 0..1 of the picture.
Rgb Scene(double u, double v, double aspect) {
  const double horizon = 0.62;
  const Rgb skyTop{38, 82, 160}, skyLow{236, 176, 128}, sunColour{255, 236, 190};
  Rgb colour = Mix(skyTop, skyLow, Smooth(v / horizon));
  // Sun and its glow.
  double du = (u - 0.68) * aspect, dv = v - 0.40;
  double distance = std::sqrt(du * du + dv * dv);
  colour = Mix(colour, sunColour, std::exp(-distance * 9.0) * 0.8);
  if (distance < 0.035) colour = Mix(colour, {255, 250, 235}, 1.0 - distance / 0.035 * 0.3);
  // Clouds.
  double cloud = Fbm(u * 4.0 * aspect, v * 9.0, 11, 6);
  cloud = std::clamp((cloud - 0.52) * 3.0, 0.0, 1.0) * (1.0 - Smooth(v / horizon) * 0.6);
  colour = Mix(colour, Mix({250, 240, 235}, {150, 120, 140}, v * 1.4), cloud * 0.85);
  // Far mountains, hazy blue.
  double ridge = 0.47 - 0.30 * std::max(0.0, Fbm(u * 1.6 * aspect, 0.5, 23, 6) - 0.35);
  if (v > ridge) {
    double rock = Fbm(u * 30.0 * aspect, v * 30.0, 31, 4);
    Rgb mountain = Mix({92, 104, 142}, {130, 130, 160}, rock);
    colour = Mix(colour, mountain, 0.85 - (v - ridge) * 0.5);
  }
  // Near hills, green to olive, with texture.
  double hill = 0.53 + 0.07 * Fbm(u * 2.0 * aspect + 7.0, 1.5, 41, 5);
  if (v > hill) {
    double grass = Fbm(u * 60.0 * aspect, v * 60.0, 53, 4);
    double shade = Fbm(u * 6.0 * aspect, v * 6.0, 59, 3);
    Rgb land = Mix({48, 88, 36}, {128, 132, 54}, grass * 0.6 + shade * 0.6);
    colour = Mix(land, {70, 80, 90}, std::clamp((horizon - v) * 3.0, 0.0, 0.3));
  }
  return colour;
}

}  // namespace

HostImage DrawSample(int32_t width, int32_t height) {
  HostImage image;
  image.width = width;
  image.height = height;
  image.mode = PixelMode::kRGB;
  image.planes = 3;
  image.pixels.resize(size_t(width) * size_t(height) * 3);
  const double aspect = double(width) / double(height);
  const double horizon = 0.62;
  for (int32_t y = 0; y < height; ++y) {
    double v = (y + 0.5) / height;
    for (int32_t x = 0; x < width; ++x) {
      double u = (x + 0.5) / width;
      Rgb colour;
      if (v < horizon) {
        colour = Scene(u, v, aspect);
      } else {
        // The lake mirrors the scene, rippled and darkened with depth.
        double depth = (v - horizon) / (1.0 - horizon);
        double ripple = (Fbm(u * 8.0 * aspect, v * 80.0, 71, 3) - 0.5) * 0.02 * (0.3 + depth);
        double mirrored = std::clamp(2 * horizon - v + ripple, 0.0, horizon - 1e-6);
        colour = Mix(Scene(u + ripple * 0.5, mirrored, aspect), {20, 40, 60}, 0.25 + depth * 0.45);
        // A glitter path under the sun.
        double path = std::exp(-std::abs(u - 0.68) * aspect * 14.0) *
                      std::clamp((Fbm(u * 90.0, v * 300.0, 83, 2) - 0.55) * 4.0, 0.0, 1.0);
        colour = Mix(colour, {255, 240, 200}, path * 0.8);
      }
      double grain = (Hash(x, y, 97) - 0.5) * 6.0;
      uint8_t* p = image.Pixel(x, y);
      p[0] = uint8_t(std::clamp(colour.b + grain, 0.0, 255.0));
      p[1] = uint8_t(std::clamp(colour.g + grain, 0.0, 255.0));
      p[2] = uint8_t(std::clamp(colour.r + grain, 0.0, 255.0));
    }
  }
  return image;
}

HostImage DrawSampleMask(int32_t width, int32_t height, int32_t feather) {
  HostImage mask;
  mask.width = width;
  mask.height = height;
  mask.mode = PixelMode::kGrey;
  mask.planes = 1;
  mask.pixels.resize(size_t(width) * size_t(height));
  const double cx = width * 0.5, cy = height * 0.5;
  const double radius = std::min(width, height) * 0.22, soft = std::max(1.5, radius * 0.04);
  // Coverage at a signed distance inside an edge.
  auto cover = [&](double inside) {
    return feather > 0 ? std::clamp(0.5 + inside / feather, 0.0, 1.0)
                       : std::clamp(inside / soft, 0.0, 1.0);
  };
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) {
      double d = std::hypot(x + 0.5 - cx, y + 0.5 - cy);
      double disc = cover(radius - d);
      double ring = cover(radius * 0.18 - std::abs(d - radius * 1.6));
      mask.Pixel(x, y)[0] = uint8_t(std::lround(std::max(disc, ring) * 255.0));
    }
  return mask;
}

}  // namespace fancy
