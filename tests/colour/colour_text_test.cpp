#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "colour/clr_color.h"
#include "colour_test_util.h"
#include "config/color_settings.h"
#include "platform/crt_random.h"

namespace fancy {
namespace {

using testing::MakeColor;
using testing::MakeRGB;
using testing::RGB;
using testing::RGBOf;
using testing::ScopedInks;

std::string ToText(CLRColor c) {
  char buffer[kCLRTextSize];
  CLRColorToText(&c, buffer, sizeof buffer);
  return buffer;
}

// Parses a copy of text (the parser cuts it in place) into start.
CLRColor FromText(const std::string& text, CLRColor start) {
  std::vector<char> copy(text.begin(), text.end());
  copy.push_back('\0');
  CLRColorFromText(&start, copy.data());
  return start;
}

uint16_t WordOf(const std::string& text) {
  CLRColor c = FromText(text, MakeColor(kCLRGray255));
  return CLRPaletteWord(&c);
}

int Random(int below) { return static_cast<int>((CrtRand() * 32768L + CrtRand()) % below); }

// The value bytes each model with a text form defines.
struct TextModel {
  int model;
  int firstByte, byteCount;
};
const TextModel kTextModels[] = {
    {1, 8, 4}, {2, 8, 4}, {3, 8, 4}, {4, 8, 3}, {5, 8, 3},   {6, 8, 4},  {7, 8, 4},
    {8, 8, 4}, {9, 8, 1}, {11, 8, 3}, {12, 8, 3}, {14, 8, 4}, {17, 8, 4}, {18, 8, 3},
};

// Palette origins the text form can carry for a custom colour: all but the
// custom fixed palette (which the reader deliberately does not take back) and
// the custom palette itself.
const int kSubPalettes[] = {0, 1, 2, 3, 4, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
const int kFixedPalettes[] = {1, 2, 3, 4, 6, 7, 8, 9, 10, 11, 13, 14, 15, 16};

// A record whose every field the text form carries.
CLRColor RandomPrintable(const TextModel& row) {
  CLRColor c = MakeColor(row.model);
  for (int i = 0; i < row.byteCount; ++i) CLRBytes(&c)[row.firstByte + i] = static_cast<uint8_t>(Random(256));
  switch (row.model) {
    case kCLRPantone:
      CLRSetPaletteWord(&c, kCLRPalPantoneSpot);
      CLRSetU16(&c, 8, static_cast<uint32_t>(Random(32768)));  // printed signed, read unsigned
      break;
    case kCLRHexSpot:
      CLRSetPaletteWord(&c, kCLRPalHexachrome);
      CLRSetU16(&c, 8, static_cast<uint32_t>(Random(32768)));
      break;
    case kCLRCMYK:
    case kCLRRGB255:
      if (Random(2)) {
        CLRSetPaletteWord(&c, static_cast<uint32_t>(kFixedPalettes[Random(14)]));
      } else {
        c.palette = kCLRPalUser;
        c.subPalette = static_cast<uint8_t>(kSubPalettes[Random(15)]);
      }
      break;
    case kCLRHSB:
    case kCLRHLS:
      CLRSetU16(&c, 8, static_cast<uint32_t>(Random(32768)));
      break;
    case kCLRBW:
      CLRSetI32(&c, 8, static_cast<uint32_t>(Random(0x7FFFFFFF)));
      break;
    default:
      break;
  }
  return c;
}

TEST(ColourText, EveryPrintedStringReadsBackToTheSameRecord) {
  CrtSrand(6);
  for (const TextModel& row : kTextModels) {
    for (int n = 0; n < 2000; ++n) {
      CLRColor original = RandomPrintable(row);
      std::string text = ToText(original);
      ASSERT_FALSE(text.empty()) << "model " << row.model;
      ASSERT_LT(text.size(), kCLRTextSize);

      CLRColor start;
      std::memset(&start, 0xA5, sizeof start);
      CLRColor read = FromText(text, start);
      ASSERT_EQ(read.model, original.model) << text;
      ASSERT_EQ(CLRPaletteWord(&read), CLRPaletteWord(&original)) << text;
      ASSERT_EQ(0, std::memcmp(CLRBytes(&read) + row.firstByte, CLRBytes(&original) + row.firstByte,
                               row.byteCount))
          << text;
      // Parsing clears nothing: bytes the model does not use keep what they held.
      for (int i = 4; i < 12; ++i) {
        if (i >= row.firstByte && i < row.firstByte + row.byteCount) continue;
        ASSERT_EQ(CLRBytes(&read)[i], 0xA5) << text << " byte " << i;
      }
      ASSERT_EQ(ToText(read), text);
    }
  }
}

TEST(ColourText, PrintedForms) {
  CLRColor red = MakeRGB(255, 0, 0);
  EXPECT_EQ(ToText(red), "RGB255,255,0,0,USER,USER");

  CLRColor black = testing::MakeCMYK(kCLRCMYK, 0, 0, 0, 100);
  black.subPalette = kCLRPalTrumatch;
  EXPECT_EQ(ToText(black), "CMYK,0,0,0,100,USER,TRU");
  black.palette = kCLRPalFocoltone;
  black.subPalette = 0;
  EXPECT_EQ(ToText(black), "CMYK,0,0,0,100,FOCTONE");
  // Hexachrome has no keyword in the palette slot of a process colour, but
  // has one as the origin of a custom colour.
  black.palette = kCLRPalHexachrome;
  EXPECT_EQ(ToText(black), "CMYK,0,0,0,100,USER");
  black.palette = kCLRPalUser;
  black.subPalette = kCLRPalHexachrome;
  EXPECT_EQ(ToText(black), "CMYK,0,0,0,100,USER,PAN_HEX");

  CLRColor lab = MakeColor(kCLRLab);
  lab.value8[0] = 50;
  lab.value8[1] = static_cast<uint8_t>(-20);
  lab.value8[2] = 30;
  EXPECT_EQ(ToText(lab), "LAB,50,-20,30,USER");

  CLRColor spot = MakeColor(kCLRPantone, 0);
  CLRSetU16(&spot, 8, static_cast<uint32_t>(-3));
  CLRSetU16(&spot, 10, 40);
  EXPECT_EQ(ToText(spot), "PANTONE,-3,40,PAN_SPOT");
  spot.model = kCLRHexSpot;
  EXPECT_EQ(ToText(spot), "PANTONE,-3,40,PAN_HEX");

  // An unset record prints as CMYK and is changed by the printing.
  CLRColor unset = MakeColor(kCLRNone);
  EXPECT_EQ(ToText(unset), "CMYK,0,0,0,0,USER,USER");
  char buffer[kCLRTextSize];
  CLRColorToText(&unset, buffer, sizeof buffer);
  EXPECT_EQ(unset.model, kCLRCMYK);

  // Models without a text form print nothing.
  for (int model : {10, 13, 15, 16, 19, 20, 21, 22, 23, 24, 99}) EXPECT_EQ(ToText(MakeColor(model)), "");

  // A short buffer is cut, never overrun.
  char small[8];
  std::memset(small, 'z', sizeof small);
  CLRColorToText(&red, small, 5);
  EXPECT_STREQ(small, "RGB2");
  EXPECT_EQ(small[5], 'z');
}

TEST(ColourText, OddInputs) {
  CLRColor start = MakeColor(kCLRGray255);
  start.value8[3] = 77;

  CLRColor c = FromText("RGB255,1,2,3,USER", start);
  EXPECT_EQ(c.model, kCLRRGB255);
  EXPECT_EQ(c.value8[0], 3);
  EXPECT_EQ(c.value8[1], 2);
  EXPECT_EQ(c.value8[2], 1);

  c = FromText("LAB,50,-20,30,USER", start);
  EXPECT_EQ(c.value8[0], 50);
  EXPECT_EQ(static_cast<int8_t>(c.value8[1]), -20);
  EXPECT_EQ(c.value8[2], 30);

  // Only a and b of Lab take a minus sign; elsewhere it is skipped.
  c = FromText("CMYK,-5,0,0,0,USER", start);
  EXPECT_EQ(c.value8[0], 5);
  c = FromText("LAB,-50,-x,7,USER", start);
  EXPECT_EQ(c.value8[0], 50);
  EXPECT_EQ(c.value8[1], 0);

  // Parsing does not validate.
  c = FromText("CMYK,120,0,0,0,USER", start);
  EXPECT_EQ(c.value8[0], 120);
  EXPECT_EQ(CLRValidate(&c), 1);
  EXPECT_EQ(c.value8[0], 100);
  c = FromText("BW,7,USER", start);
  EXPECT_EQ(CLRGetI32(&c, 8), 7);
  CLRValidate(&c);
  EXPECT_EQ(CLRGetI32(&c, 8), 1);

  // Values are truncated to their field; a token without a digit reads 0.
  c = FromText("RGB255,300,a,b9,USER", start);
  EXPECT_EQ(RGBOf(c), (RGB{44, 0, 9}));

  // A keyword alone is white; white keeps byte 11.
  c = FromText("RGB255", start);
  EXPECT_EQ(RGBOf(c), (RGB{255, 255, 255}));
  EXPECT_EQ(c.model, kCLRRGB255);
  EXPECT_EQ(c.value8[3], 77);
  // Unknown and lower-case keywords.
  EXPECT_EQ(RGBOf(FromText("RGB,1,2,3", start)), (RGB{255, 255, 255}));
  c = FromText("rgb255,1,2,3", start);  // the older form without "x": validated as it stands
  EXPECT_EQ(0, std::memcmp(&c, &start, sizeof c));

  // The empty string and a string of commas keep the record.
  for (const char* text : {"", ",,,"}) {
    c = FromText(text, start);
    EXPECT_EQ(0, std::memcmp(&c, &start, sizeof c)) << text;
  }

  // The older numeric form: "x<model>", and palette word 5 whatever follows.
  c = FromText("x5,9,8,7", start);
  EXPECT_EQ(c.model, kCLRRGB255);
  EXPECT_EQ(RGBOf(c), (RGB{9, 8, 7}));
  EXPECT_EQ(CLRPaletteWord(&c), 5);
  c = FromText("x2,1,2,3,4,TRU", start);
  EXPECT_EQ(CLRPaletteWord(&c), 5);
  // Models out of range or without a row read as white.
  for (const char* text : {"x,1,2", "x99,1,2,3", "x10,1,2,3", "x13,1", "x19,1,2,3", "x-5,1"})
    EXPECT_EQ(RGBOf(FromText(text, start)), (RGB{255, 255, 255})) << text;

  // PANTONE: the palette token decides the model.
  c = FromText("PANTONE,12,100,PAN_HEX", start);
  EXPECT_EQ(c.model, kCLRHexSpot);
  EXPECT_EQ(CLRPaletteWord(&c), kCLRPalHexachrome);
  c = FromText("PANTONE,12,100,PAN_SPOT", start);
  EXPECT_EQ(c.model, kCLRPantone);
  EXPECT_EQ(CLRPaletteWord(&c), kCLRPalPantoneSpot);
  EXPECT_EQ(CLRGetU16(&c, 8), 12);
  EXPECT_EQ(CLRGetU16(&c, 10), 100);

  // Palette words: unknown or missing tokens give 5; an origin is read only
  // after "USER", and the custom fixed palette is not read back as one.
  EXPECT_EQ(WordOf("CMYK,1,2,3,4,NOPE"), 5);
  EXPECT_EQ(WordOf("CMYK,1,2,3,4"), 5);
  EXPECT_EQ(WordOf("CMYK,1,2,3,4,USER,CUSFIXED"), 5);
  EXPECT_EQ(WordOf("CMYK,1,2,3,4,CUSFIXED"), 6);
  EXPECT_EQ(WordOf("RGB255,1,2,3,USER,TOYO"), 2565);
  EXPECT_EQ(WordOf("RGB255,1,2,3,TRU,PAN_HEX"), 1);
  EXPECT_EQ(WordOf("HSB,1,2,3,USER,TRU"), 5);
}

TEST(ColourText, EmptyStringRunsValidation) {
  ScopedInks inks("4 10 20 30\n");
  CLRColor start = MakeColor(kCLRCMYK, 0);
  start.value8[0] = 150;
  CLRColor c = FromText("", start);
  EXPECT_EQ(c.value8[0], 100);
  EXPECT_EQ(CLRPaletteWord(&c), 5);  // a palette byte of 0 becomes the custom palette

  // A PANTONE record naming no ink becomes white.
  CLRColor spot = MakeColor(kCLRPantone);
  CLRSetU16(&spot, 8, 77);
  EXPECT_EQ(RGBOf(FromText("foo,1,2", spot)), (RGB{255, 255, 255}));
  // Index 0 is ink 4, which exists.
  CLRSetU16(&spot, 8, 0);
  c = FromText("", spot);
  EXPECT_EQ(c.model, kCLRPantone);
  EXPECT_EQ(CLRGetU16(&c, 8), 4);
}

}  // namespace
}  // namespace fancy
