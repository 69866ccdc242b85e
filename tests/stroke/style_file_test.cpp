// The style file: where it lies, what Load makes of every key (present,
// missing or damaged), what Save writes, the style list and the brushes.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "config/config.h"
#include "frame/effect_hooks.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "stroke/style_file.h"
#include "stroke/style_model.h"
#include "stroke_fixture.h"
#include "support/message_boxes.h"

namespace fancy {
namespace {

StrokeRecord NewRecord() {
  StrokeRecord r{};
  r.head = {kFilterBrushka, kClassStroke};
  return r;
}

class StyleFileTest : public ::testing::Test {
 protected:
  std::string Key(const char* section, const char* key) {
    char buffer[512];
    ProfileGetString(section, key, "<none>", buffer, sizeof buffer, folder_.styleFile().c_str());
    return buffer;
  }
  testing::StyleFolder folder_;
  testing::MessageBoxRecorder boxes_;
};

// A configuration folder of fewer than seven characters has no style file:
// reads give defaults, writes fail, and nothing is written anywhere.
TEST(StyleFileLocation, ShortConfigurationFolderHasNoStyleFile) {
  testing::TempDir dir;
  testing::MessageBoxRecorder boxes;
  const std::string cwd = std::filesystem::current_path().string();
  ASSERT_EQ(chdir(dir.path().c_str()), 0);
  dir.Write("c/tavinapp.ini", "[Config]\n");
  RegistrySetStorePath(dir.File("registry.ini"));
  ConfigSetProduct("Fancy", "8.00");
  ASSERT_TRUE(RegistryWriteString("HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\Fancy\\8.00", "ConfigDir", "c"));
  ConfigReset();

  EXPECT_STREQ(StyleFilePath(), "");
  StrokeRecord r = NewRecord();
  std::strcpy(r.styleName, "Mine");
  EXPECT_EQ(StyleSave(&r), 0);
  EXPECT_EQ(StyleLoad(&r), 0);
  size_t files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.path()))
    files += entry.is_regular_file();
  EXPECT_EQ(files, 2u) << "only tavinapp.ini and the registry stand-in";

  ASSERT_EQ(chdir(cwd.c_str()), 0);
  RegistrySetStorePath("");
  ConfigReset();
}

TEST_F(StyleFileTest, SaveThenLoadGivesTheStyleBack) {
  EXPECT_EQ(std::filesystem::path(StyleFilePath()), std::filesystem::path(folder_.styleFile()))
      << "in Plugins beside Config";
  StrokeRecord saved = NewRecord();
  std::strcpy(saved.styleName, "Round Trip");
  std::strcpy(saved.brushPath, "/somewhere/brush.bmp");
  saved.layering = kLayeringPaint;
  saved.density = 100;
  saved.seed = 999;
  saved.horizontalVariation = 12;
  saved.verticalVariation = 34;
  saved.backgroundMode = 1;
  CLRSetBlack(&saved.brushColor);
  saved.brushColor.value8[0] = 10, saved.brushColor.value8[2] = 30;
  CLRSetWhite(&saved.backgroundColor);
  saved.hueVariation = 5;
  saved.size = {kChoiceRadial, 10, 90, 3};
  saved.angle = {kChoiceBrightness, -180, 180, 45};
  saved.transparency = {kChoiceRandomly, 0, 100, 100};
  saved.xDistVal = 0.25;
  saved.writeable = 1;
  saved.styleDirty = 1;
  ASSERT_NE(StyleSave(&saved), 0);
  EXPECT_EQ(saved.styleDirty, 0);
  // Numbers of several digits, and signs, are written whole.
  EXPECT_EQ(Key("Round Trip", "BrushParms"), "347,100,999,12,34");
  EXPECT_EQ(Key("Round Trip", "AngleParms"), "1149,-180,180,45");
  EXPECT_EQ(Key("PresetList", "Current"), "Round Trip");

  StrokeRecord loaded = NewRecord();
  ASSERT_NE(StyleLoad(&loaded), 0);
  EXPECT_STREQ(loaded.brushPath, saved.brushPath) << "a path with a directory stands as it is";
  EXPECT_EQ(std::memcmp(&loaded.layering, &saved.layering,
                        offsetof(StrokeRecord, transparency) + sizeof(VariationControl) -
                            offsetof(StrokeRecord, layering)),
            0);
  EXPECT_EQ(loaded.xDistVal, 0.25);
  EXPECT_EQ(loaded.writeable, 1);
}

TEST_F(StyleFileTest, MissingKeysAndSectionsReadAsTheirDefaults) {
  // No file at all: Load fails and leaves the record as prepared.
  StrokeRecord r = NewRecord();
  r.density = 42;
  r.brushColor.model = kCLRCMYK255;
  EXPECT_EQ(StyleLoad(&r), 0);
  EXPECT_EQ(r.brushColor.model, kCLRRGB255);
  EXPECT_EQ(r.layering, kLayeringRandom);
  EXPECT_EQ(r.size.mode, kChoiceNoVariation);
  EXPECT_EQ(r.writeable, 1);
  EXPECT_EQ(r.density, 42) << "nothing is read past a missing Current";

  // A Current whose section does not exist: read-only, "0,0,1,0,0", and
  // mode 0 from the six-zero default of the variation keys.
  folder_.WriteStyleFile("[PresetList]\nCurrent=Gone\n[Other]\nXDistVal=0.00\n");
  ASSERT_NE(StyleLoad(&r), 0);
  EXPECT_EQ(r.writeable, 0);
  EXPECT_EQ(r.layering, 0);
  EXPECT_EQ(r.density, 0);
  EXPECT_EQ(r.seed, 1);
  EXPECT_EQ(r.angle.mode, 0);
  // A read-only style is not saved over: only Current is written.
  r.styleDirty = 1;
  EXPECT_NE(StyleSave(&r), 0);
  EXPECT_EQ(r.styleDirty, 0);
  EXPECT_EQ(Key("Gone", "BrushParms"), "<none>");

  // A centre of 0.00 is no centre: it loads as 0.5.
  ASSERT_NE(StyleChoose("Other", &r), 0);
  EXPECT_EQ(r.xDistVal, 0.5);
}

// Garbage numbers leave fields as they were, a name far longer than the
// field is cut to it, and nothing runs past the record.
TEST_F(StyleFileTest, DamagedStyleLoadsWithoutOverrun) {
  const std::string longName(200, 'N');
  folder_.WriteStyleFile("[PresetList]\nCurrent=" + longName + "\n[" + longName.substr(0, 39) +
                         "]\nBrushParms=346,abc,5\nSizeParms=1143,,7\n"
                         "AngleParms=99999999999,2\nTransParms= 1144 , 5\nWriteable=yes\n"
                         "XDistVal=nan\nColorBrush=garbage\nBrushName=" +
                         std::string(300, 'b') + "\n");
  StrokeRecord r = NewRecord();
  r.density = 33;
  r.size = {5, 6, 7, 8};
  r.transparency = {1, 2, 3, 4};
  ASSERT_NE(StyleLoad(&r), 0);
  EXPECT_EQ(std::string(r.styleName), longName.substr(0, 39));
  EXPECT_EQ(r.layering, 346);
  EXPECT_EQ(r.density, 33) << "the scan stopped at abc";
  EXPECT_EQ(r.size.mode, 1143);
  EXPECT_EQ(r.size.first, 6);
  EXPECT_EQ(r.angle.mode, static_cast<int32_t>(99999999999LL & 0xFFFFFFFF)) << "the low 32 bits";
  EXPECT_EQ(r.transparency.mode, 1144);
  EXPECT_EQ(r.transparency.first, 2) << "\" 1144 , 5\": the comma must follow the number";
  EXPECT_EQ(r.writeable, 1) << "an unreadable Writeable keeps the prepared value";
  EXPECT_EQ(r.xDistVal, 0.5) << "\"nan\" is no number";
  EXPECT_LT(std::strlen(r.brushPath), sizeof r.brushPath);
  EXPECT_EQ(ReadDecimal("  -1.5e2xyz"), -150.0);
  for (const char* none : {"inf", "0x10", "."}) EXPECT_EQ(ReadDecimal(none), 0.0) << none;
}

TEST_F(StyleFileTest, BrushNamesResolveInTheBrushDirectory) {
  folder_.WriteStyleFile(
      "[PresetList]\nCurrent=A\n[Brushes]\nDir=../Plugins/./brushes\nBrush1=one.bmp\n"
      "Brush2=/abs/two.bmp\n[A]\nBrushName=a.bmp\n[B]\nBrushName=/x/b.bmp\n");
  const std::string dir = folder_.plugins() + "/brushes";
  StrokeRecord r = NewRecord();
  ASSERT_NE(StyleLoad(&r), 0);
  EXPECT_EQ(std::string(r.brushPath), dir + "/a.bmp");
  ASSERT_NE(StyleChoose("B", &r), 0);
  EXPECT_STREQ(r.brushPath, "/x/b.bmp");
  EXPECT_EQ(Key("PresetList", "Current"), "B");

  char path[260];
  BrushButtonPath(1, path, sizeof path);
  EXPECT_EQ(std::string(path), dir + "/one.bmp");
  BrushButtonPath(2, path, sizeof path);
  EXPECT_STREQ(path, "/abs/two.bmp");
  for (int32_t n : {0, 3, 7}) EXPECT_EQ(BrushButtonPath(n, path, sizeof path), 0u) << n;
  char small[8];
  EXPECT_EQ(BrushButtonPath(1, small, sizeof small), 0u) << "a path that does not fit is none";

  // An empty Dir is the style file's folder; one of 256 characters or more
  // is empty.
  folder_.WriteStyleFile("[Brushes]\nDir=\n");
  EXPECT_EQ(BrushDirectory(), folder_.plugins());
  folder_.WriteStyleFile("[Brushes]\nDir=/" + std::string(300, 'd') + "\n");
  EXPECT_EQ(BrushDirectory(), "");
}

TEST_F(StyleFileTest, StyleListSkipsMissingKeysAndShrinksOnWriteBack) {
  folder_.WriteStyleFile(
      "[PresetList]\nCurrent=Third\nNumStyles=5\nStyle1=First\nStyle3=Third\nStyle4=\n"
      "[First]\nSeed=1\n");
  StyleList list;
  StyleListRead(&list);
  EXPECT_EQ(list.names, (std::vector<std::string>{"First", "Third"}));
  EXPECT_EQ(list.selected, 1);
  list.names.push_back("Fourth");
  ASSERT_TRUE(StyleListWrite(list));
  EXPECT_EQ(Key("PresetList", "NumStyles"), "3");
  EXPECT_EQ(Key("PresetList", "Style2"), "Third");
  EXPECT_EQ(Key("PresetList", "Style3"), "Fourth");
  ASSERT_TRUE(StyleRemove("First"));
  EXPECT_EQ(Key("First", "Seed"), "<none>");

  // A count that is damage, not a list, does not make the list endless.
  folder_.WriteStyleFile("[PresetList]\nNumStyles=2000000000\nStyle1=Only\n");
  StyleListRead(&list);
  EXPECT_EQ(list.names, (std::vector<std::string>{"Only"}));
}

TEST_F(StyleFileTest, NewRecordTakesTheCurrentStyle) {
  folder_.WriteStyleFile("[PresetList]\nCurrent=Mine\n[Mine]\nBrushParms=346,55,8,1,2\n");
  StrokeRecord r = NewRecord();
  EXPECT_EQ(StrokeCreateRecord(&r), 0);
  EXPECT_EQ(r.density, 55);
  folder_.WriteStyleFile("");
  EXPECT_EQ(StrokeCreateRecord(&r), 0) << "a missing current style is no failure";
}

}  // namespace
}  // namespace fancy
