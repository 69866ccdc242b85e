#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>

#include "colour/clr_convert.h"
#include "colour_test_util.h"
#include "config/color_settings.h"

namespace fancy {
namespace {

using testing::MakeCMYK;
using testing::MakeColor;
using testing::MakeRGB;
using testing::RGB;
using testing::RGBOf;
using testing::ScopedInks;
using testing::ScopedSetting;

CLRColor Convert(int target, const CLRColor& src) {
  CLRColor dst = MakeColor(kCLRNone);
  CLRConvert(&dst, target, &src);
  return dst;
}

RGB ToRGB(const CLRColor& src) { return RGBOf(Convert(kCLRRGB255, src)); }

int U16At(const CLRColor& c, int offset) { return CLRGetU16(&c, offset); }
int I32At(const CLRColor& c, int offset) { return CLRGetI32(&c, offset); }

std::array<int, 4> Values(const CLRColor& c) {
  return {c.value8[0], c.value8[1], c.value8[2], c.value8[3]};
}

// Channel values 0, 2, 4, ..., 254 and 255: a dense lattice of the cube
// that holds its corners and edges.
template <typename F>
void ForLattice(F&& f) {
  for (int r = 0; r <= 256; r += 2)
    for (int g = 0; g <= 256; g += 2)
      for (int b = 0; b <= 256; b += 2) f(std::min(r, 255), std::min(g, 255), std::min(b, 255));
}

int ChannelError(RGB a, RGB b) {
  return std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b)});
}

// The largest channel error of RGB255 -> model -> RGB255, measured over all
// 2^24 colours: HSB 3, HLS 6 (hue in whole degrees, truncated), YIQ 4 (I and
// Q are halved into bytes), RGB48 and CMYK255 (no profile) 0.
TEST(ColourConvert, RoundTripsThroughRGB255StayWithinMeasuredBounds) {
  struct Trip {
    int model, bound;
  };
  const Trip trips[] = {{kCLRHSB, 3}, {kCLRHLS, 6}, {kCLRYIQ255, 4}, {kCLRRGB48, 0}, {kCLRCMYK255, 0}};
  int worst[5] = {};
  ForLattice([&](int r, int g, int b) {
    CLRColor rgb = MakeRGB(r, g, b);
    for (int i = 0; i < 5; ++i) {
      CLRColor there = Convert(trips[i].model, rgb);
      worst[i] = std::max(worst[i], ChannelError(ToRGB(there), RGB{r, g, b}));
    }
  });
  for (int i = 0; i < 5; ++i) EXPECT_LE(worst[i], trips[i].bound) << "model " << trips[i].model;
}

TEST(ColourConvert, HueModelsAgreeWithTheirTextbookForms) {
  ForLattice([&](int r, int g, int b) {
    int mx = std::max({r, g, b}), mn = std::min({r, g, b});
    if (mx == mn) return;
    double d = mx - mn;
    double h = r == mx ? (g - b) / d : (g == mx ? 2 + (b - r) / d : 4 + (r - g) / d);
    double hue = std::fmod(h * 60 + 360, 360);
    auto circular = [](double x, double y) {
      double e = std::fabs(x - y);
      return std::min(e, 360 - e);
    };

    CLRColor hsb = Convert(kCLRHSB, MakeRGB(r, g, b));
    ASSERT_EQ(hsb.model, kCLRHSB);
    ASSERT_LE(circular(CLRGetI16(&hsb, 8), hue), 0.5 + 1e-9) << r << "," << g << "," << b;
    ASSERT_EQ(hsb.value8[3], mx);
    ASSERT_EQ(hsb.value8[2], (mx - mn) * 255 / mx);

    CLRColor hls = Convert(kCLRHLS, MakeRGB(r, g, b));
    ASSERT_LT(circular(CLRGetI16(&hls, 8), hue), 1.0) << r << "," << g << "," << b;
    ASSERT_EQ(hls.value8[2], (mx + mn) / 2);
  });
}

TEST(ColourConvert, GreyAndWhiteCases) {
  // The failure form reads as white.
  EXPECT_EQ(ToRGB(MakeColor(kCLRNone)), (RGB{255, 255, 255}));

  // Full ink in every channel, and the registration colour, are black.
  EXPECT_EQ(ToRGB(MakeCMYK(kCLRCMYK, 100, 100, 100, 100)), (RGB{0, 0, 0}));
  EXPECT_EQ(ToRGB(MakeColor(kCLRRegistration)), (RGB{0, 0, 0}));
  EXPECT_EQ(Values(Convert(kCLRCMYK, MakeColor(kCLRRegistration))), (std::array<int, 4>{100, 100, 100, 100}));

  // White RGB to any CMYK target is no ink at all; mid grey is K alone.
  for (int target : {kCLRCMYK, kCLRCMYK255, kCLRCMYK100}) {
    CLRColor white = Convert(target, MakeRGB(255, 255, 255));
    EXPECT_EQ(white.model, target);
    EXPECT_EQ(Values(white), (std::array<int, 4>{0, 0, 0, 0}));
  }
  EXPECT_EQ(Values(Convert(kCLRCMYK255, MakeRGB(128, 128, 128))), (std::array<int, 4>{0, 0, 0, 127}));
  // Lab paper white and RGB48 white are no ink either.
  CLRColor paper = MakeColor(kCLRLab255);
  paper.value8[0] = 255;
  paper.value8[1] = paper.value8[2] = 128;
  EXPECT_EQ(Values(Convert(kCLRCMYK255, paper)), (std::array<int, 4>{0, 0, 0, 0}));
  CLRColor white48 = Convert(kCLRRGB48, MakeRGB(255, 255, 255));
  EXPECT_EQ(Values(Convert(kCLRCMYK255, white48)), (std::array<int, 4>{0, 0, 0, 0}));

  // Grey through grey16: 8-bit white gives 65280, 16-bit white 65535.
  EXPECT_EQ(U16At(Convert(kCLRGray16, MakeRGB(255, 255, 255)), 8), 65280);
  CLRColor rgb48 = MakeColor(kCLRRGB48);
  for (int offset : {6, 8, 10}) CLRSetU16(&rgb48, offset, 65535);
  EXPECT_EQ(U16At(Convert(kCLRGray16, rgb48), 8), 65535);

  // Greys stay grey through every model that has one, (10, 10, 10) among
  // them as HSB hue 0, saturation 0, brightness 10.
  for (int v = 0; v < 256; ++v) {
    CLRColor grey = MakeRGB(v, v, v);
    ASSERT_EQ(Convert(kCLRGray255, grey).value8[0], v);
    ASSERT_EQ(U16At(Convert(kCLRGray16, grey), 8), v << 8);
    CLRColor hsb = Convert(kCLRHSB, grey);
    ASSERT_EQ(static_cast<uint32_t>(I32At(hsb, 8)), static_cast<uint32_t>(v) << 24);
    ASSERT_EQ(ToRGB(hsb), (RGB{v, v, v}));
    ASSERT_EQ(U16At(Convert(kCLRRGB48, hsb), 6), v * 257);
    ASSERT_EQ(U16At(Convert(kCLRRGB48, Convert(kCLRHLS, grey)), 10), v * 257);
    ASSERT_EQ(I32At(Convert(kCLRBW, grey), 8), v > 127 ? 1 : 0);
  }

  // Hue 360 is sector 0 with no fraction: the same colour as hue 0.
  CLRColor h0 = MakeColor(kCLRHSB), h360 = MakeColor(kCLRHSB);
  CLRSetU16(&h360, 8, 360);
  for (int s : {1, 128, 255})
    for (int v : {1, 128, 255}) {
      h0.value8[2] = h360.value8[2] = static_cast<uint8_t>(s);
      h0.value8[3] = h360.value8[3] = static_cast<uint8_t>(v);
      EXPECT_EQ(ToRGB(h0), ToRGB(h360));
    }
}

// The textbook CIE Lab of linear RGB (sRGB primaries, D65 white), with the
// colour layer's byte encoding: L times 2.55, a and b offset by 128.
TEST(ColourConvert, Lab255AgreesWithTheTextbookWithinAByteStep) {
  auto f = [](double t) {
    const double d = 6.0 / 29.0;
    return t > d * d * d ? std::cbrt(t) : t / (3 * d * d) + 4.0 / 29.0;
  };
  double worst = 0;
  ForLattice([&](int r8, int g8, int b8) {
    double r = r8 / 255.0, g = g8 / 255.0, b = b8 / 255.0;
    double X = 0.4124564 * r + 0.3575761 * g + 0.1804375 * b;
    double Y = 0.2126729 * r + 0.7151522 * g + 0.0721750 * b;
    double Z = 0.0193339 * r + 0.1191920 * g + 0.9503041 * b;
    double fx = f(X / 0.95047), fy = f(Y), fz = f(Z / 1.08883);
    double expected[3] = {(116 * fy - 16) * 2.55, 500 * (fx - fy) + 128, 200 * (fy - fz) + 128};
    CLRColor lab = Convert(kCLRLab255, MakeRGB(r8, g8, b8));
    for (int i = 0; i < 3; ++i)
      worst = std::max(worst, std::fabs(lab.value8[i] - std::clamp(expected[i], 0.0, 255.0)));
  });
  // Truncation to bytes accounts for 1; the rest is the white point's digits.
  EXPECT_LE(worst, 1.25);

  // Model 12 is the same value with signed a and b.
  CLRColor lab255 = Convert(kCLRLab255, MakeRGB(200, 30, 90));
  CLRColor lab = Convert(kCLRLab, MakeRGB(200, 30, 90));
  EXPECT_EQ(lab.value8[0], lab255.value8[0]);
  EXPECT_EQ(static_cast<int8_t>(lab.value8[1]), lab255.value8[1] - 128);
  EXPECT_EQ(static_cast<int8_t>(lab.value8[2]), lab255.value8[2] - 128);
}

TEST(ColourConvert, ScaledPercentEdgesRoundToNearest) {
  EXPECT_EQ(CLRMulDiv(1, 1, 2), 1);
  EXPECT_EQ(CLRMulDiv(-1, 1, 2), -1);
  EXPECT_EQ(CLRMulDiv(5, -1, 2), -3);
  EXPECT_EQ(CLRMulDiv(1, 1, 0), -1);
  EXPECT_EQ(CLRMulDiv(0x40000000, 4, 2), -1);
  EXPECT_EQ(CLRMulDiv(0x40000000, 4, 8), 0x20000000);  // the product needs 64 bits

  // Every percent survives the trip through 0..255.
  for (int p = 0; p <= 100; ++p) {
    CLRColor percent = MakeCMYK(kCLRCMYK, p, p, p, p);
    CLRColor bytes = Convert(kCLRCMYK255, percent);
    ASSERT_EQ(bytes.value8[0], (p * 255 * 2 + 100) / 200);
    ASSERT_EQ(Convert(kCLRCMYK, bytes).value8[3], p);
  }
}

TEST(ColourConvert, EdgeFormulasAtTheirCorners) {
  // Each result carries palette word 5 and zero bytes 4..7, whatever the source held.
  CLRColor src = MakeRGB(10, 20, 30);
  CLRSetPaletteWord(&src, 0x0305);
  src.tint = 50;
  src.reserved = 1;
  src.value6[0] = src.value6[1] = 9;
  for (int target : {3, 4, 6, 7, 9, 11, 12, 18, 24}) {
    CLRColor c = Convert(target, src);
    EXPECT_EQ(c.model, target);
    EXPECT_EQ(CLRPaletteWord(&c), 5) << target;
    EXPECT_EQ(CLRGetI32(&c, 4), 0) << target;
  }
  CLRColor rgb48 = Convert(kCLRRGB48, src);
  EXPECT_EQ(CLRPaletteWord(&rgb48), 5);
  EXPECT_EQ(U16At(rgb48, 4), 0);  // blue sits at 6
  EXPECT_EQ(U16At(rgb48, 6), 30 * 257);

  // Copies take all 12 bytes and set palette word 5.
  CLRColor copy = Convert(kCLRRGB255, src);
  EXPECT_EQ(copy.tint, 50);
  EXPECT_EQ(CLRPaletteWord(&copy), 5);

  CLRColor yiqWhite = Convert(kCLRYIQ255, MakeRGB(255, 255, 255));
  CLRColor rgb48White = Convert(kCLRRGB48, yiqWhite);
  EXPECT_EQ(CLRGetU16(&rgb48White, 8), 65280);  // doubles times 256

  // Lab to XYZ stores fractions of unity truncated to bytes: a neutral grey
  // holds only 0 or 1.
  for (int L = 0; L < 256; ++L) {
    CLRColor lab = MakeColor(kCLRLab);
    lab.value8[0] = static_cast<uint8_t>(L);
    CLRColor xyz = Convert(kCLRXYZ, lab);
    ASSERT_EQ(xyz.model, kCLRXYZ);
    for (int i = 0; i < 3; ++i) ASSERT_LE(xyz.value8[i], 1) << L;
  }

  // Model 12 to RGB48 answers in RGB255, as it always has.
  CLRColor lab = Convert(kCLRLab, MakeRGB(100, 150, 200));
  EXPECT_EQ(Convert(kCLRRGB48, lab).model, kCLRRGB255);

  // BW from grey is a threshold at 127.
  CLRColor grey = MakeColor(kCLRGray255);
  grey.value8[0] = 127;
  EXPECT_EQ(I32At(Convert(kCLRBW, grey), 8), 0);
  grey.value8[0] = 128;
  EXPECT_EQ(I32At(Convert(kCLRBW, grey), 8), 1);
}

TEST(ColourConvert, SpotInksResolveThroughTheInkTable) {
  ScopedInks inks(
      "7 200 100 50\n"
      "P 8 10 20 30 40\n"
      "S 9 60 60 60 60 1 2 3\n");
  CLRColor spot = MakeColor(kCLRPantone, kCLRPalPantoneSpot);
  CLRSetU16(&spot, 8, 7);
  CLRSetU16(&spot, 10, 100);
  EXPECT_EQ(ToRGB(spot), (RGB{200, 100, 50}));
  CLRColor kept = Convert(kCLRPantone, spot);
  EXPECT_EQ(0, std::memcmp(&kept, &spot, sizeof spot));

  // A tint of 0 is paper white; half a tint is half way to white.
  CLRSetU16(&spot, 10, 0);
  EXPECT_EQ(ToRGB(spot), (RGB{255, 255, 255}));
  CLRSetU16(&spot, 10, 50);
  EXPECT_EQ(ToRGB(spot), (RGB{228, 178, 153}));

  // CMYK targets take the ink's CMYK form, tinted and capped at 100.
  CLRSetU16(&spot, 8, 9);
  CLRSetU16(&spot, 10, 200);
  EXPECT_EQ(Values(Convert(kCLRCMYK, spot)), (std::array<int, 4>{100, 100, 100, 100}));
  CLRSetU16(&spot, 10, 100);
  EXPECT_EQ(ToRGB(spot), (RGB{1, 2, 3}));
  {
    ScopedSetting process(SetShowSpotAsProcess, 1);
    EXPECT_EQ(ToRGB(spot), ToRGB(MakeCMYK(kCLRCMYK, 60, 60, 60, 60)));
  }
  CLRSetU16(&spot, 8, 8);
  EXPECT_EQ(Values(Convert(kCLRCMYK, spot)), (std::array<int, 4>{10, 20, 30, 40}));

  // A missing ink is the failure form.
  CLRSetU16(&spot, 8, 3);
  CLRColor failed = Convert(kCLRRGB255, spot);
  EXPECT_EQ(failed.model, kCLRNone);

  // Nearest ink: the least channel distance, first of equals, and inks that
  // do not exist count as black (so black finds index 1).
  CLRColor nearest = Convert(kCLRPantone, MakeRGB(199, 101, 52));
  EXPECT_EQ(nearest.model, kCLRPantone);
  EXPECT_EQ(CLRPaletteWord(&nearest), kCLRPalPantoneSpot);
  EXPECT_EQ(CLRGetU16(&nearest, 8), 7);
  EXPECT_EQ(CLRGetU16(&nearest, 10), 100);
  nearest = Convert(kCLRPantone, MakeRGB(0, 0, 0));
  EXPECT_EQ(CLRGetU16(&nearest, 8), 1);
  nearest = Convert(kCLRPantone, MakeCMYK(kCLRCMYK, 0, 0, 0, 0));  // white, through RGB
  EXPECT_EQ(CLRGetU16(&nearest, 8), 7);
}

TEST(ColourConvert, HexachromeUserInksAndTints) {
  testing::ReleaseColourTables();
  testing::MessageBoxRecorder boxes;
  const uint8_t junk[2] = {1, 2};
  HexTableLoadBytes(junk, sizeof junk);  // the built-in "Hex. Yellow", id 1
  CLRColor hex = MakeColor(kCLRHexSpot, kCLRPalHexachrome);
  CLRSetU16(&hex, 8, 1);
  CLRSetU16(&hex, 10, 50);
  CLRColor inks = Convert(kCLRHexProcess, hex);
  EXPECT_EQ(inks.model, kCLRHexProcess);
  const uint8_t expectedInks[6] = {50, 0, 0, 0, 0, 0};
  EXPECT_EQ(0, std::memcmp(CLRBytes(&inks) + 6, expectedInks, 6));
  // Its Lab value through RGB, half way to white.
  CLRColor lab = MakeColor(kCLRLab);
  lab.value8[0] = 233;
  lab.value8[1] = static_cast<uint8_t>(-13);
  lab.value8[2] = 107;
  RGB full = ToRGB(lab), half = ToRGB(hex);
  EXPECT_EQ(half, (RGB{255 - (255 - full.r) / 2, 255 - (255 - full.g) / 2, 255 - (255 - full.b) / 2}));
  EXPECT_GT(full.r, full.b);
  CLRColor missing = hex;
  CLRSetU16(&missing, 8, 2);
  EXPECT_EQ(Convert(kCLRRGB255, missing).model, kCLRNone);
  EXPECT_EQ(CLRWorkingModel(&hex), kCLRHexProcess);
  EXPECT_EQ(0, std::memcmp(CLRBytes(&hex) + 6, expectedInks, 6));
  testing::ReleaseColourTables();

  // User ink: RGB with its own tint at byte 11.
  CLRColor userInk = MakeColor(kCLRUserInk, kCLRPalUserInks);
  userInk.value8[2] = 255;  // red
  userInk.value8[3] = 100;
  EXPECT_EQ(ToRGB(userInk), (RGB{255, 0, 0}));
  userInk.value8[3] = 40;
  EXPECT_EQ(ToRGB(userInk), (RGB{255, 153, 153}));
  EXPECT_EQ(CLRWorkingModel(&userInk), kCLRRGB255);

  // A colour of the user-ink palette is tinted by byte 4.
  CLRColor inked = MakeCMYK(kCLRCMYK, 80, 40, 20, 10);
  inked.palette = kCLRPalUserInks;
  inked.tint = 50;
  EXPECT_EQ(Values(Convert(kCLRCMYK, inked)), (std::array<int, 4>{40, 20, 10, 5}));
  CLRColor cmyInk = MakeColor(kCLRCMY255, kCLRPalUserInks);
  cmyInk.tint = 50;
  cmyInk.value8[0] = 100;
  cmyInk.value8[3] = 30;  // CMY taken for CMYK percent, K untouched
  EXPECT_EQ(Values(Convert(kCLRCMYK, cmyInk)), (std::array<int, 4>{50, 0, 0, 30}));
  CLRColor noTint = MakeColor(kCLRXYZ, kCLRPalUserInks);
  EXPECT_EQ(Convert(kCLRRGB255, noTint).model, kCLRNone);

  // A user-ink reference needs the user-ink palette, which no layer holds
  // yet: it converts to the failure form, keeping the value bytes.
  CLRColor reference = MakeColor(kCLRUserInkRef, kCLRPalUserInks);
  CLRSetU16(&reference, 8, 0);
  reference.value8[2] = 100;
  CLRColor failed = MakeRGB(1, 2, 3);
  CLRConvert(&failed, kCLRRGB255, &reference);
  EXPECT_EQ(failed.model, kCLRNone);
  EXPECT_EQ(CLRPaletteWord(&failed), 5);
  EXPECT_EQ(RGBOf(failed), (RGB{1, 2, 3}));
  CLRColor same = Convert(kCLRUserInkRef, reference);
  EXPECT_EQ(0, std::memcmp(&same, &reference, sizeof same));
  EXPECT_EQ(CLRWorkingModel(&reference), 0);
  EXPECT_EQ(reference.model, kCLRUserInkRef);
}

TEST(ColourConvert, SpotPalettesCountAsCMYKPercent) {
  // A DIC colour held as RGB255 is read as CMYK percent, tinted by byte 4.
  CLRColor dic = MakeRGB(0, 0, 0);
  dic.palette = kCLRPalDIC;
  dic.tint = 100;
  dic.value8[0] = 100;  // taken as C
  {
    ScopedSetting d(SetDICAsSpot, 1);
    EXPECT_EQ(Values(Convert(kCLRCMYK, dic)), (std::array<int, 4>{100, 0, 0, 0}));
    dic.tint = 50;
    EXPECT_EQ(Values(Convert(kCLRCMYK, dic)), (std::array<int, 4>{50, 0, 0, 0}));
    // The same for a custom colour first taken from DIC.
    CLRColor custom = dic;
    custom.palette = kCLRPalUser;
    custom.subPalette = kCLRPalDIC;
    EXPECT_EQ(Values(Convert(kCLRCMYK, custom)), (std::array<int, 4>{50, 0, 0, 0}));
  }
  {
    ScopedSetting d(SetDICAsSpot, 0);
    EXPECT_EQ(RGBOf(Convert(kCLRRGB255, dic)), (RGB{0, 0, 100}));
  }
}

TEST(ColourConvert, FailureFormsAndUntouchedTargets) {
  // A one-edge conversion of the wrong model keeps the value bytes.
  CLRColor dst = MakeRGB(7, 8, 9);
  dst.tint = 3;
  CLRColor hsb = MakeColor(kCLRHSB);
  CLRConvertRGB255ToCMYK255(&dst, &hsb);
  EXPECT_EQ(dst.model, kCLRNone);
  EXPECT_EQ(dst.tint, 0);
  EXPECT_EQ(RGBOf(dst), (RGB{7, 8, 9}));

  // Targets 5 and 23 leave dst as it stands for a source with no edge.
  for (int model : {10, 13, 15, 16, 19, 25, 300}) {
    CLRColor src = MakeColor(model);
    for (int target : {kCLRRGB255, kCLRRGB48}) {
      CLRColor out = MakeRGB(1, 2, 3);
      CLRColor before = out;
      CLRConvert(&out, target, &src);
      EXPECT_EQ(0, std::memcmp(&out, &before, sizeof out)) << model << " to " << target;
    }
    // A target that goes through RGB first fails cleanly.
    EXPECT_EQ(Convert(kCLRCMYK255, src).model, kCLRNone) << model;
  }
  // Out-of-range targets do nothing.
  for (int target : {0, 25, -1, 1007}) {
    CLRColor out = MakeRGB(1, 2, 3), before = out;
    CLRConvert(&out, target, &hsb);
    EXPECT_EQ(0, std::memcmp(&out, &before, sizeof out));
  }
  // dst may be the source.
  CLRColor inPlace = MakeRGB(255, 0, 0);
  CLRConvert(&inPlace, kCLRHSB, &inPlace);
  CLRConvert(&inPlace, kCLRRGB255, &inPlace);
  EXPECT_EQ(RGBOf(inPlace), (RGB{255, 0, 0}));
}

TEST(ColourConvert, SixteenBitDeviceEdgesSayTheyHaveNoPathOfTheirOwn) {
  CLRColor rgb48 = Convert(kCLRRGB48, MakeRGB(10, 200, 30));
  CLRColor lab255 = Convert(kCLRLab255, MakeRGB(10, 200, 30));
  CLRColor cmyk = Convert(kCLRCMYK255, MakeRGB(10, 200, 30));
  struct Edge {
    void (*edge)(CLRColor*, const CLRColor*);
    const CLRColor* src;
    int model;
    const char* line;
  };
  const Edge edges[] = {
      {CLRConvertRGB48ToLAB255, &rgb48, kCLRLab255, "CLRConvertRGB48ToLAB255 not implemented yet!\n"},
      {CLRConvertLAB255ToRGB48, &lab255, kCLRRGB48, "CLRConvertLAB255ToRGB48 not implemented yet!\n"},
      {CLRConvertCMYK255ToRGB48, &cmyk, kCLRRGB48, "CLRConvertCMYK255ToRGB48 not implemented yet!\n"},
      {CLRConvertRGB48ToCMYK255, &rgb48, kCLRCMYK255, "CLRConvertRGB48ToCMYK255 not implemented yet!\n"},
  };
  for (const Edge& e : edges) {
    CLRColor out;
    ::testing::internal::CaptureStderr();
    e.edge(&out, e.src);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), e.line);
    EXPECT_EQ(out.model, e.model);
  }
  // They agree with the 8-bit edges on the high bytes.
  ::testing::internal::CaptureStderr();
  CLRColor viaLab = Convert(kCLRLab255, rgb48);
  ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(0, std::memcmp(viaLab.value8, lab255.value8, 3));
  ::testing::internal::CaptureStderr();
  CLRColor back = Convert(kCLRRGB48, cmyk);
  ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(CLRGetU16(&back, 8), 200 * 257);
}

TEST(ColourConvert, WorkingModels) {
  ScopedInks inks("P 3 0 100 100 0\n");
  CLRColor spot = MakeColor(kCLRPantone, kCLRPalPantoneSpot);
  CLRSetU16(&spot, 8, 3);
  CLRSetU16(&spot, 10, 100);
  EXPECT_EQ(CLRWorkingModel(&spot), kCLRCMYK255);
  EXPECT_EQ(Values(spot), (std::array<int, 4>{0, 255, 255, 0}));

  for (int model : {kCLRCMYK, kCLRCMYK100, kCLRRegistration}) {
    CLRColor c = MakeCMYK(model, 100, 0, 0, 0);
    EXPECT_EQ(CLRWorkingModel(&c), kCLRCMYK255);
    EXPECT_EQ(c.model, kCLRCMYK255);
  }
  CLRColor hsb = MakeColor(kCLRHSB), before = hsb;
  EXPECT_EQ(CLRWorkingModel(&hsb), kCLRHSB);
  EXPECT_EQ(0, std::memcmp(&hsb, &before, sizeof hsb));
  CLRColor reserved = MakeColor(13);
  EXPECT_EQ(CLRWorkingModel(&reserved), 0);
}

}  // namespace
}  // namespace fancy
