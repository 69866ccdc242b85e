#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "colour/clr_color.h"
#include "colour_test_util.h"
#include "config/color_settings.h"

namespace fancy {
namespace {

using testing::MakeCMYK;
using testing::MakeColor;
using testing::MakeRGB;
using testing::ScopedInks;
using testing::ScopedSetting;

TEST(ColourRecord, DefaultsKeepByteElevenAndClearThePalette) {
  CLRColor c;
  std::memset(&c, 0x5A, sizeof c);
  CLRSetWhite(&c);
  const uint8_t white[12] = {5, 0, 5, 0, 0, 0, 0, 0, 255, 255, 255, 0x5A};
  EXPECT_EQ(0, std::memcmp(&c, white, 12));
  CLRSetBlack(&c);
  const uint8_t black[12] = {5, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0x5A};
  EXPECT_EQ(0, std::memcmp(&c, black, 12));
  std::memset(&c, 0x5A, sizeof c);
  CLRSetFailure(&c);
  const uint8_t failure[12] = {0, 0, 5, 0, 0, 0, 0, 0, 0x5A, 0x5A, 0x5A, 0x5A};
  EXPECT_EQ(0, std::memcmp(&c, failure, 12));
}

TEST(ColourRecord, ValidateRepairsRangesByModel) {
  ScopedInks inks("4 1 2 3\n9 1 2 3\n");

  CLRColor cmyk = MakeCMYK(kCLRCMYK, 101, 100, 255, 0);
  EXPECT_EQ(CLRValidate(&cmyk), 1);
  EXPECT_EQ(cmyk.value8[0], 100);
  EXPECT_EQ(cmyk.value8[2], 100);
  // CMYK255 is not capped.
  CLRColor cmyk255 = MakeCMYK(kCLRCMYK255, 255, 0, 0, 0);
  CLRValidate(&cmyk255);
  EXPECT_EQ(cmyk255.value8[0], 255);

  for (int model : {kCLRHSB, kCLRHLS}) {
    CLRColor hue = MakeColor(model);
    CLRSetU16(&hue, 8, 361);
    CLRValidate(&hue);
    EXPECT_EQ(CLRGetI16(&hue, 8), 360);
    CLRSetU16(&hue, 8, static_cast<uint32_t>(-5));  // below 0 is left alone
    CLRValidate(&hue);
    EXPECT_EQ(CLRGetI16(&hue, 8), -5);
  }

  CLRColor bw = MakeColor(kCLRBW, 0);
  CLRSetI32(&bw, 8, 2);
  CLRValidate(&bw);
  EXPECT_EQ(CLRGetI32(&bw, 8), 1);
  EXPECT_EQ(CLRPaletteWord(&bw), 5);  // palette byte 0 becomes the custom palette

  CLRColor spot = MakeColor(kCLRPantone, 0x0707);
  CLRSetU16(&spot, 8, 9);
  CLRSetU16(&spot, 10, 250);
  EXPECT_EQ(CLRValidate(&spot), 1);
  EXPECT_EQ(CLRPaletteWord(&spot), kCLRPalPantoneSpot);
  EXPECT_EQ(CLRGetU16(&spot, 10), 100);
  CLRSetU16(&spot, 8, 0);  // index 0 stands for ink 4
  EXPECT_EQ(CLRValidate(&spot), 1);
  EXPECT_EQ(CLRGetU16(&spot, 8), 4);
  CLRSetU16(&spot, 8, 5);  // no ink 5
  EXPECT_EQ(CLRValidate(&spot), 0);
  CLRSetU16(&spot, 8, static_cast<uint32_t>(-9));
  EXPECT_EQ(CLRValidate(&spot), 0);
}

TEST(ColourRecord, CompareModelsThenValuesAtTheirShownPrecision) {
  // Models first, with the CMYK family as model 2.
  CLRColor rgb = MakeRGB(0, 0, 0);
  CLRColor cmyk100 = MakeCMYK(kCLRCMYK100, 0, 0, 0, 0);
  EXPECT_EQ(CLRCompare(&cmyk100, &rgb), -1);
  EXPECT_EQ(CLRCompare(&rgb, &cmyk100), 1);
  CLRColor hsb = MakeColor(kCLRHSB);
  EXPECT_EQ(CLRCompare(&hsb, &rgb), 1);

  // Unsigned bytes from byte 8, the first difference deciding; the palette
  // and unused bytes do not count.
  CLRColor a = MakeRGB(0, 0, 200), b = MakeRGB(255, 255, 100);  // blue is byte 8
  EXPECT_EQ(CLRCompare(&a, &b), 1);
  CLRColor c = a;
  c.value8[3] = 9;
  CLRSetPaletteWord(&c, kCLRPalTrumatch);
  EXPECT_TRUE(CLRSame(&a, &c));
  CLRColor rgb48a = MakeColor(kCLRRGB48), rgb48b = MakeColor(kCLRRGB48);
  rgb48a.tint = 1;  // RGB48 compares the 8 bytes from offset 4
  EXPECT_EQ(CLRCompare(&rgb48a, &rgb48b), 1);

  // CMYK through the representation the dialogs show: 50 percent is 128 in
  // 0..255 (127.5 rounded away from zero), and 127 also shows as 50 percent.
  CLRColor percent = MakeCMYK(kCLRCMYK, 50, 0, 0, 100);
  CLRColor bytes128 = MakeCMYK(kCLRCMYK255, 128, 0, 0, 255);
  CLRColor bytes127 = MakeCMYK(kCLRCMYK100, 127, 0, 0, 255);
  {
    ScopedSetting shown(SetCMYKDisplayPercent, 1);
    EXPECT_TRUE(CLRSame(&percent, &bytes128));
    EXPECT_TRUE(CLRSame(&bytes127, &bytes128));
  }
  {
    ScopedSetting shown(SetCMYKDisplayPercent, 0);
    EXPECT_TRUE(CLRSame(&percent, &bytes128));
    EXPECT_EQ(CLRCompare(&bytes127, &bytes128), -1);
  }

  // HSB and HLS: the raw hue difference, then whole display percents.
  for (int model : {kCLRHSB, kCLRHLS}) {
    CLRColor h1 = MakeColor(model), h2 = MakeColor(model);
    CLRSetU16(&h1, 8, 10);
    CLRSetU16(&h2, 8, 30);
    EXPECT_EQ(CLRCompare(&h1, &h2), -20);
    CLRSetU16(&h2, 8, 10);
    h2.value8[2] = 1;  // 0 and 1 are both 0 percent
    EXPECT_TRUE(CLRSame(&h1, &h2));
    h2.value8[2] = 2;
    EXPECT_EQ(CLRCompare(&h1, &h2), -1);
  }

  // Lab255 by its display form, L before a.
  CLRColor lab1 = MakeColor(kCLRLab255), lab2 = MakeColor(kCLRLab255);
  lab1.value8[0] = 10;
  lab1.value8[1] = 255;
  lab2.value8[0] = 11;
  EXPECT_EQ(CLRCompare(&lab1, &lab2), -1);
  lab2.value8[0] = 10;
  EXPECT_EQ(CLRCompare(&lab1, &lab2), 1);

  // Models without a rule compare equal.
  CLRColor x1 = MakeColor(kCLRXYZ), x2 = MakeColor(kCLRXYZ);
  x2.value8[0] = 1;
  EXPECT_TRUE(CLRSame(&x1, &x2));
}

TEST(ColourRecord, SpotTestAndTint) {
  struct Case {
    uint8_t palette, subPalette;
    int model;
    bool spot;
  };
  {
    ScopedSetting f(SetFocoltoneAsSpot, 1), t(SetToyoAsSpot, 0), d(SetDICAsSpot, 1);
    const Case cases[] = {
        {3, 0, 5, true},   {16, 0, 5, true},  {8, 0, 5, true},  {10, 0, 5, false},
        {11, 0, 2, true},  {5, 3, 5, true},   {5, 8, 5, true},  {5, 10, 5, false},
        {5, 0, 1, true},   {5, 10, 1, true},  {5, 0, 5, false}, {1, 0, 1, false},
        {12, 0, 14, false}, {0, 0, 1, false},
    };
    for (const Case& c : cases) {
      CLRColor color = MakeColor(c.model);
      color.palette = c.palette;
      color.subPalette = c.subPalette;
      EXPECT_EQ(CLRIsSpot(&color), c.spot) << int(c.palette) << "/" << int(c.subPalette);
    }
  }

  CLRColor plain = MakeRGB(1, 2, 3);
  plain.tint = 40;
  EXPECT_EQ(CLRSpotTint(&plain), 100);
  CLRColor userInk = MakeColor(kCLRUserInk, kCLRPalUserInks);
  userInk.tint = 10;
  userInk.value8[3] = 60;
  EXPECT_EQ(CLRSpotTint(&userInk), 60);
  CLRColor reference = MakeColor(kCLRUserInkRef, kCLRPalUserInks);
  reference.value8[2] = 70;
  EXPECT_EQ(CLRSpotTint(&reference), 70);
  CLRColor spot = MakeColor(kCLRPantone, kCLRPalPantoneSpot);
  CLRSetU16(&spot, 10, 300);
  EXPECT_EQ(CLRSpotTint(&spot), 300);
  CLRColor inked = MakeCMYK(kCLRCMYK, 1, 2, 3, 4);
  inked.palette = kCLRPalUserInks;
  inked.tint = 35;
  EXPECT_EQ(CLRSpotTint(&inked), 35);
}

TEST(ColourRecord, PaletteNames) {
  char out[kCLRPaletteNameSize];
  CLRPaletteName(out, "12-a", kCLRPalTrumatch);
  EXPECT_STREQ(out, "TRUMATCH 12-a");
  CLRPaletteName(out, "1-1", kCLRPalPantoneProcess);
  EXPECT_STREQ(out, "PANTONE S1-1");
  CLRPaletteName(out, "Red", kCLRPalUser);
  EXPECT_STREQ(out, "Red");
  CLRPaletteName(out, "", kCLRPalImage);
  EXPECT_STREQ(out, "unnamed color");
  CLRPaletteName(out, nullptr, kCLRPalUser);
  EXPECT_STREQ(out, "unnamed color");

  // A stored name may fill its 32 bytes with no terminator.
  char stored[40];
  std::memset(stored, 'n', sizeof stored);
  CLRPaletteName(out, stored, kCLRPalDupont);
  std::string shown = out;
  EXPECT_EQ(shown.substr(0, 13), "SpectraMaster");
  EXPECT_EQ(shown.size(), std::strlen("SpectraMaster\xC2\xAE ") + 32);
  EXPECT_LT(shown.size(), kCLRPaletteNameSize);
}

}  // namespace
}  // namespace fancy
