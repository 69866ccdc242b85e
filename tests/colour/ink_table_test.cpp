#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "colour/clr_convert.h"
#include "colour/ink_table.h"
#include "colour_test_util.h"
#include "platform/crt_random.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

using testing::MessageBoxRecorder;
using testing::RGB;
using testing::RGBOf;
using testing::ScopedInks;

std::string Name(int index) {
  char out[200];
  InkName(index, out, sizeof out);
  return out;
}

RGB InkRGBOf(int index) {
  CLRColor c;
  InkRGB(index, &c);
  return RGBOf(c);
}

TEST(InkTable, LineShapesNamesAndForms) {
  ScopedInks inks(
      "; the spot inks\r\n"
      "\r\n"
      "   ; indented comment 9 9 9 9\n"
      "12 249 245 131 \"Yellow\"\n"
      "P 13 10 20 30 40 \"185\"\n"
      "S 14 0 100 100 0 200 16 46 \"Warm Red\"\n"
      "ink 15 1 2 3\n"          // anything before the first digit is skipped
      "16 300 0 0 \"0 Black\"\n"  // digits worth 0: kept as text
      "17 1 2 3 \"\"\n"         // an empty name is no name
      "18 4 5 6 \"unclosed\n"
      "19 1 1 1 \"\xff\xff" "7\"\n"  // a leading 255 would read as a number mark
      "20 1 1 1 \"\xff\"\n");
  EXPECT_EQ(InkTableLoadCount(), 1);

  EXPECT_EQ(Name(0), "BLACK");
  EXPECT_EQ(Name(12), "PANTONE Yellow CV");
  EXPECT_EQ(Name(13), "PANTONE 185 CV");
  EXPECT_EQ(Name(14), "PANTONE Warm Red CV");
  EXPECT_EQ(Name(15), "PANTONE 15 CV");
  EXPECT_EQ(Name(16), "PANTONE 0 Black CV");
  EXPECT_EQ(Name(17), "PANTONE 17 CV");
  EXPECT_EQ(Name(18), "PANTONE unclosed CV");
  EXPECT_EQ(Name(19), "PANTONE 7 CV");
  EXPECT_EQ(Name(20), "PANTONE 20 CV");
  EXPECT_EQ(Name(21), "unknown PANTONE color 21");
  EXPECT_EQ(Name(-1), "unknown PANTONE color -1");
  EXPECT_EQ(Name(1050), "unknown PANTONE color 1050");

  // Plain lines: RGB in both forms, capped at 255.
  CLRColor given;
  EXPECT_EQ(InkCMYK(12, &given), 1);
  EXPECT_EQ(given.model, kCLRRGB255);
  EXPECT_EQ(RGBOf(given), (RGB{249, 245, 131}));
  EXPECT_EQ(InkRGBOf(12), (RGB{249, 245, 131}));
  EXPECT_EQ(InkRGBOf(16), (RGB{255, 0, 0}));
  // "P" lines: CMYK percent, and RGB by conversion.
  EXPECT_EQ(InkCMYK(13, &given), 1);
  EXPECT_EQ(given.model, kCLRCMYK);
  EXPECT_EQ(given.value8[3], 40);
  CLRColor cmyk = testing::MakeCMYK(kCLRCMYK, 10, 20, 30, 40), viaConvert;
  CLRConvert(&viaConvert, kCLRRGB255, &cmyk);
  EXPECT_EQ(InkRGBOf(13), RGBOf(viaConvert));
  // "S" lines: both forms as given.
  EXPECT_EQ(InkCMYK(14, &given), 1);
  EXPECT_EQ(given.value8[1], 100);
  EXPECT_EQ(InkRGBOf(14), (RGB{200, 16, 46}));
  CLRColor rgb;
  EXPECT_EQ(InkRGB(14, &rgb), 1);
  EXPECT_EQ(rgb.model, kCLRRGB255);
  EXPECT_EQ(CLRPaletteWord(&rgb), 5);

  // Missing inks read as black.
  EXPECT_EQ(InkRGB(21, &rgb), 0);
  EXPECT_EQ(rgb.model, kCLRRGB255);
  EXPECT_EQ(RGBOf(rgb), (RGB{0, 0, 0}));
  EXPECT_FALSE(InkExists(0));
  EXPECT_TRUE(InkExists(18));

  // By load order, as palette colours.
  CLRColor at;
  ASSERT_EQ(InkAt(0, &at), 1);
  EXPECT_EQ(at.model, kCLRPantone);
  EXPECT_EQ(CLRPaletteWord(&at), kCLRPalPantoneSpot);
  EXPECT_EQ(CLRGetU16(&at, 8), 12);
  EXPECT_EQ(CLRGetU16(&at, 10), 100);
  ASSERT_EQ(InkAt(8, &at), 1);
  EXPECT_EQ(CLRGetU16(&at, 8), 20);
  EXPECT_EQ(InkAt(9, &at), 0);
  EXPECT_EQ(InkAt(-1, &at), 0);

  // Names are cut to the caller's buffer.
  char small[6];
  InkName(14, small, sizeof small);
  EXPECT_STREQ(small, "PANTO");
}

TEST(InkTable, LinesThatHoldNoInk) {
  std::string longComment = ";" + std::string(126, 'x');  // 127 characters: a whole line
  std::string text =
      "1050 1 2 3\n"                  // index out of range
      "99999999999999999999 1 2 3\n"  // far out of range
      "20 1 2\n"                      // too few numbers
      "P 21 1 2 3\n"
      "S 22 1 2 3 4 5 6\n"
      "23 10 20 30 40 50\n"           // only four numbers are read
      "24 10 20 30 40 50 \"Named\"\n";  // the rest is skipped up to a name
  text += longComment + "25 7 8 9\n";   // a line goes on after 127 characters
  text += std::string("26 5\0 6 7 8\n", 12);  // a NUL ends the line
  text += "27 1 2 3\n27 4 5 6\n";        // a later line of the same index wins
  ScopedInks inks(text);
  for (int index : {20, 21, 22, 26}) EXPECT_FALSE(InkExists(index)) << index;
  EXPECT_EQ(InkRGBOf(23), (RGB{10, 20, 30}));
  EXPECT_EQ(Name(23), "PANTONE 23 CV");
  EXPECT_EQ(Name(24), "PANTONE Named CV");
  EXPECT_EQ(InkRGBOf(25), (RGB{7, 8, 9}));
  EXPECT_EQ(InkRGBOf(27), (RGB{4, 5, 6}));
}

TEST(InkTable, HoldsAtMost1050InksWithLongNames) {
  // Names of 100 characters outgrow the first block several times over.
  std::string text;
  std::string pad(96, 'n');
  for (int i = 0; i < kInkTableSize; ++i) {
    char line[160];
    std::snprintf(line, sizeof line, "%d %d 0 0 \"%s%04d\"\n", kInkTableSize - 1 - i, i % 256,
                  pad.c_str(), i);
    text += line;
  }
  text += "5 1 1 1\n";  // the 1051st valid ink is not read
  ScopedInks inks(text);
  for (int i = 0; i < kInkTableSize; ++i) {
    int index = kInkTableSize - 1 - i;
    char expected[160];
    std::snprintf(expected, sizeof expected, "PANTONE %s%04d CV", pad.c_str(), i);
    ASSERT_EQ(Name(index), index == 0 ? "BLACK" : expected);  // ink 0 is always black by name
    ASSERT_EQ(InkRGBOf(index).r, i % 256);
    CLRColor at;
    ASSERT_EQ(InkAt(i, &at), 1);
    ASSERT_EQ(CLRGetU16(&at, 8), index);
  }
  EXPECT_NE(InkRGBOf(5), (RGB{1, 1, 1}));
}

TEST(InkTable, UnreadableFileFallsBackToOneInk) {
  testing::ReleaseColourTables();
  fancy::testing::TempDir dir;
  std::string path = dir.File("sketchry.ink");
  {
    MessageBoxRecorder boxes;
    EXPECT_EQ(InkTableLoadFile(path.c_str()), 1);
    ASSERT_EQ(boxes.boxes().size(), 1u);
    EXPECT_EQ(boxes.boxes()[0].caption, "Tavin Color Manager");
    EXPECT_EQ(boxes.boxes()[0].text, "Error Opening " + path + " file.");
    EXPECT_EQ(boxes.boxes()[0].flags, 8240u);
  }
  EXPECT_EQ(InkRGBOf(1), (RGB{249, 245, 131}));
  CLRColor given;
  EXPECT_EQ(InkCMYK(1, &given), 1);
  EXPECT_EQ(given.model, kCLRRGB255);
  EXPECT_EQ(Name(1), "PANTONE 1 CV");
  CLRColor at;
  EXPECT_EQ(InkAt(1, &at), 0);
  for (int i = 2; i < kInkTableSize; ++i) ASSERT_FALSE(InkExists(i));
  testing::ReleaseColourTables();
}

TEST(InkTable, LoadsAreCounted) {
  testing::ReleaseColourTables();
  fancy::testing::TempDir dir;
  std::string path = dir.Write("sketchry.ink", "3 1 2 3\n");
  EXPECT_EQ(InkTableLoadFile(path.c_str()), 1);
  dir.Write("sketchry.ink", "3 9 9 9\n");
  EXPECT_EQ(InkTableLoadFile(path.c_str()), 1);  // counted, not read again
  EXPECT_EQ(InkTableLoadCount(), 2);
  InkTableRelease();
  EXPECT_EQ(InkRGBOf(3), (RGB{1, 2, 3}));
  InkTableRelease();
  EXPECT_EQ(InkTableLoadCount(), 0);
  InkTableRelease();  // one release too many is harmless
  EXPECT_EQ(InkTableLoadCount(), 0);
  EXPECT_EQ(InkTableLoadFile(path.c_str()), 1);
  EXPECT_EQ(InkRGBOf(3), (RGB{9, 9, 9}));
  testing::ReleaseColourTables();

  // A query finds the table loaded, or loads it from the data directory.
  MessageBoxRecorder boxes;
  InkExists(1);
  EXPECT_EQ(InkTableLoadCount(), 1);
  testing::ReleaseColourTables();
}

TEST(InkTable, HostileTextNeverOverruns) {
  CrtSrand(1050);
  const char alphabet[] = "0123456789 PS\";\r\n\t-x\0\xff";
  for (int round = 0; round < 300; ++round) {
    std::string text;
    int length = CrtRand() % 3000;
    for (int i = 0; i < length; ++i) text += alphabet[CrtRand() % (sizeof alphabet - 1)];
    ScopedInks inks(text);
    char name[64];
    for (int index = -1; index <= kInkTableSize; ++index) {
      CLRColor c;
      InkRGB(index, &c);
      InkCMYK(index, &c);
      InkName(index, name, sizeof name);
      ASSERT_LT(std::strlen(name), sizeof name);
    }
    CLRColor at;
    for (int order = 0; InkAt(order, &at); ++order) {
      ASSERT_LT(order, kInkTableSize);
      ASSERT_TRUE(InkExists(CLRGetU16(&at, 8)));
    }
  }
}

}  // namespace
}  // namespace fancy
