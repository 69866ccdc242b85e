// The style file: where it lies, what Load makes of every key (present,
// missing or damaged), what Save writes, the style list and the brush
// buttons.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "config/config.h"
#include "frame/effect_hooks.h"
#include "platform/path.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "stroke/style_file.h"
#include "stroke/style_model.h"
#include "stroke_fixture.h"
#include "support/message_boxes.h"

namespace fancy {
namespace {

using testing::StyleFolder;

StrokeRecord NewRecord() {
  StrokeRecord r{};
  r.head = {kFilterBrushka, kClassStroke};
  return r;
}

std::string Key(const std::string& path, const char* section, const char* key) {
  char buffer[512];
  ProfileGetString(section, key, "<none>", buffer, sizeof buffer, path.c_str());
  return buffer;
}

class StyleFileTest : public ::testing::Test {
 protected:
  StyleFolder folder_;
  testing::MessageBoxRecorder boxes_;
};

TEST_F(StyleFileTest, LiesInPluginsBesideTheConfigurationFolder) {
  EXPECT_EQ(std::filesystem::path(StyleFilePath()), std::filesystem::path(folder_.styleFile()));
}

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
  r.writeable = 1;
  EXPECT_EQ(StyleSave(&r), 0);
  EXPECT_EQ(StyleLoad(&r), 0);
  EXPECT_EQ(r.xDistVal, 0.5);
  size_t files = 0;
  for (auto it = std::filesystem::recursive_directory_iterator(dir.path());
       it != std::filesystem::recursive_directory_iterator(); ++it)
    files += it->is_regular_file();
  EXPECT_EQ(files, 2u) << "only tavinapp.ini and the registry stand-in";

  ASSERT_EQ(chdir(cwd.c_str()), 0);
  RegistrySetStorePath("");
  ConfigReset();
}

TEST_F(StyleFileTest, SaveThenLoadGivesTheStyleBack) {
  folder_.WriteStyleFile("[Brushes]\nDir=brushes\n");
  StrokeRecord saved = NewRecord();
  std::strcpy(saved.styleName, "Round Trip");
  std::strcpy(saved.brushPath, "/somewhere/else/brush.bmp");
  saved.layering = kLayeringPaint;
  saved.density = 100;
  saved.seed = 999;
  saved.horizontalVariation = 12;
  saved.verticalVariation = 34;
  saved.brushColorMode = 1;
  saved.backgroundMode = 1;
  CLRSetBlack(&saved.brushColor);
  saved.brushColor.value8[0] = 10, saved.brushColor.value8[1] = 20, saved.brushColor.value8[2] = 30;
  CLRSetWhite(&saved.backgroundColor);
  saved.hueVariation = 5;
  saved.saturationVariation = 6;
  saved.brightnessVariation = 7;
  saved.size = {kChoiceRadial, 10, 90, 3};
  saved.angle = {kChoiceBrightness, -180, 180, 45};
  saved.transparency = {kChoiceRandomly, 0, 100, 100};
  saved.xDistVal = 0.25;
  saved.yDistVal = 0.75;
  saved.writeable = 1;
  saved.styleDirty = 1;
  ASSERT_NE(StyleSave(&saved), 0);
  EXPECT_EQ(saved.styleDirty, 0);
  const std::string file = folder_.ReadStyleFile();
  // Numbers of several digits and signs are written whole.
  EXPECT_NE(file.find("BrushParms=347,100,999,12,34"), std::string::npos) << file;
  EXPECT_NE(file.find("AngleParms=1149,-180,180,45"), std::string::npos) << file;
  EXPECT_NE(file.find("XDistVal=0.25"), std::string::npos) << file;
  EXPECT_EQ(Key(folder_.styleFile(), "PresetList", "Current"), "Round Trip");

  StrokeRecord loaded = NewRecord();
  loaded.styleDirty = 1;
  ASSERT_NE(StyleLoad(&loaded), 0);
  EXPECT_STREQ(loaded.styleName, saved.styleName);
  EXPECT_STREQ(loaded.brushPath, saved.brushPath) << "a path with a directory stands as it is";
  EXPECT_EQ(std::memcmp(&loaded.layering, &saved.layering,
                        offsetof(StrokeRecord, transparency) + sizeof(VariationControl) -
                            offsetof(StrokeRecord, layering)),
            0);
  EXPECT_EQ(loaded.xDistVal, 0.25);
  EXPECT_EQ(loaded.yDistVal, 0.75);
  EXPECT_EQ(loaded.writeable, 1);
  EXPECT_EQ(loaded.styleDirty, 0);
}

TEST_F(StyleFileTest, MissingKeysAndSectionsReadAsTheirDefaults) {
  // No file at all: Load fails and leaves the record as prepared.
  StrokeRecord r = NewRecord();
  r.density = 42;
  r.brushColor.model = kCLRCMYK255;
  r.size.mode = 7;
  EXPECT_EQ(StyleLoad(&r), 0);
  EXPECT_EQ(r.brushColor.model, kCLRRGB255);
  EXPECT_EQ(r.layering, kLayeringRandom);
  EXPECT_EQ(r.size.mode, kChoiceNoVariation);
  EXPECT_EQ(r.writeable, 1);
  EXPECT_EQ(r.density, 42) << "nothing is read past a missing Current";

  // A Current whose section does not exist: read-only, and the defaults of
  // every key: "0,0,1,0,0" and zero for the rest, mode 0 from the six-zero
  // default of the variation keys.
  folder_.WriteStyleFile("[PresetList]\nCurrent=Gone\n");
  r = NewRecord();
  r.density = 42;
  ASSERT_NE(StyleLoad(&r), 0);
  EXPECT_STREQ(r.styleName, "Gone");
  EXPECT_EQ(r.writeable, 0);
  EXPECT_EQ(r.layering, 0);
  EXPECT_EQ(r.density, 0);
  EXPECT_EQ(r.seed, 1);
  EXPECT_EQ(r.size.mode, 0);
  EXPECT_EQ(r.angle.mode, 0);
  EXPECT_EQ(r.transparency.mode, 0);
  EXPECT_EQ(r.xDistVal, 0.5);
  EXPECT_EQ(r.brushPath[0], '\0');

  // A read-only style is not saved over: only Current is written.
  r.density = 77;
  r.styleDirty = 1;
  EXPECT_NE(StyleSave(&r), 0);
  EXPECT_EQ(r.styleDirty, 0);
  EXPECT_EQ(Key(folder_.styleFile(), "Gone", "BrushParms"), "<none>");
}

TEST_F(StyleFileTest, CentreOfZeroLoadsAsTheMiddle) {
  folder_.WriteStyleFile(
      "[PresetList]\nCurrent=S\n[S]\nXDistVal=0.00\nYDistVal=0.3\n");
  StrokeRecord r = NewRecord();
  ASSERT_NE(StyleLoad(&r), 0);
  EXPECT_EQ(r.xDistVal, 0.5);
  EXPECT_DOUBLE_EQ(r.yDistVal, 0.3);
}

// Garbage numbers leave fields as they were, a name far longer than the
// field is cut to it, and nothing runs past the record.
TEST_F(StyleFileTest, DamagedStyleLoadsWithoutOverrun) {
  const std::string longName(200, 'N');
  folder_.WriteStyleFile("[PresetList]\nCurrent=" + longName +
                         "\n[" + longName.substr(0, 39) +
                         "]\nBrushParms=346,abc,5\nColorParms=x\nSizeParms=1143,,7\n"
                         "AngleParms=99999999999,2,3,4\nTransParms= 1144 , 5\nWriteable=yes\n"
                         "XDistVal=nan\nYDistVal=1e999x\nColorBrush=garbage\n"
                         "BrushName=" + std::string(300, 'b') + "\n");
  StrokeRecord r = NewRecord();
  r.density = 33;
  r.seed = 44;
  r.size = {5, 6, 7, 8};
  r.transparency = {1, 2, 3, 4};
  ASSERT_NE(StyleLoad(&r), 0);
  EXPECT_EQ(std::string(r.styleName), longName.substr(0, 39));
  EXPECT_EQ(r.layering, 346);
  EXPECT_EQ(r.density, 33) << "the scan stopped at abc";
  EXPECT_EQ(r.seed, 44);
  EXPECT_EQ(r.brushColorMode, 0) << "ColorParms scanned nothing; the record held 0";
  EXPECT_EQ(r.size.mode, 1143);
  EXPECT_EQ(r.size.first, 6);
  EXPECT_EQ(r.angle.mode, static_cast<int32_t>(99999999999LL & 0xFFFFFFFF));
  EXPECT_EQ(r.transparency.mode, 1144);
  EXPECT_EQ(r.transparency.first, 2) << "\" 1144 , 5\": the comma must follow the number";
  EXPECT_EQ(r.writeable, 1) << "an unreadable Writeable keeps the prepared value";
  EXPECT_EQ(r.xDistVal, 0.5) << "\"nan\" is no number";
  EXPECT_EQ(r.brushColor.model, kCLRRGB255);
  EXPECT_LT(std::strlen(r.brushPath), sizeof r.brushPath);
}

TEST_F(StyleFileTest, BrushNamesResolveInTheBrushDirectory) {
  folder_.WriteStyleFile(
      "[PresetList]\nCurrent=A\n[Brushes]\nDir=../Plugins/./brushes\nBrush1=one.bmp\n"
      "Brush2=/abs/two.bmp\nBrush3=sub/three.bmp\n[A]\nBrushName=a.bmp\n[B]\nBrushName=/x/b.bmp\n");
  const std::string dir = folder_.plugins() + "/brushes";
  EXPECT_EQ(BrushDirectory(), dir);
  StrokeRecord r = NewRecord();
  ASSERT_NE(StyleLoad(&r), 0);
  EXPECT_EQ(std::string(r.brushPath), dir + "/a.bmp");
  ASSERT_NE(StyleChoose("B", &r), 0);
  EXPECT_STREQ(r.brushPath, "/x/b.bmp");
  EXPECT_EQ(Key(folder_.styleFile(), "PresetList", "Current"), "B");

  char path[260];
  EXPECT_EQ(BrushButtonPath(1, path, sizeof path), dir.size() + 8);
  EXPECT_EQ(std::string(path), dir + "/one.bmp");
  BrushButtonPath(2, path, sizeof path);
  EXPECT_STREQ(path, "/abs/two.bmp");
  BrushButtonPath(3, path, sizeof path);
  EXPECT_STREQ(path, "sub/three.bmp") << "a name with a directory stands as it is";
  for (int32_t n : {0, 4, 7, -1}) {
    EXPECT_EQ(BrushButtonPath(n, path, sizeof path), 0u) << n;
    EXPECT_STREQ(path, "") << n;
  }
  // A path that does not fit the caller's buffer is no path.
  char small[8];
  EXPECT_EQ(BrushButtonPath(1, small, sizeof small), 0u);

  // An empty Dir is the style file's folder; one of 256 characters or more
  // is empty.
  folder_.WriteStyleFile("[Brushes]\nDir=\n");
  EXPECT_EQ(BrushDirectory(), folder_.plugins());
  folder_.WriteStyleFile("[Brushes]\nDir=/" + std::string(300, 'd') + "\n");
  EXPECT_EQ(BrushDirectory(), "");
}

TEST_F(StyleFileTest, StyleListSkipsMissingKeysAndShrinksOnWriteBack) {
  folder_.WriteStyleFile(
      "[PresetList]\nCurrent=Third\nNumStyles=5\nStyle1=First\nStyle3=Third\nStyle4=\n");
  StyleList list;
  StyleListRead(&list);
  EXPECT_EQ(list.names, (std::vector<std::string>{"First", "Third"}));
  EXPECT_EQ(list.selected, 1);

  list.names.push_back("Fourth");
  ASSERT_TRUE(StyleListWrite(list));
  const std::string path = folder_.styleFile();
  EXPECT_EQ(Key(path, "PresetList", "NumStyles"), "3");
  EXPECT_EQ(Key(path, "PresetList", "Style2"), "Third");
  EXPECT_EQ(Key(path, "PresetList", "Style3"), "Fourth");
  StyleList again;
  StyleListRead(&again);
  EXPECT_EQ(again.names, list.names);

  // A count that is damage, not a list, does not make the list endless.
  folder_.WriteStyleFile("[PresetList]\nNumStyles=2000000000\nStyle1=Only\n");
  StyleListRead(&again);
  EXPECT_EQ(again.names, (std::vector<std::string>{"Only"}));
  EXPECT_EQ(again.selected, -1);
}

TEST_F(StyleFileTest, RemoveTakesTheWholeSection) {
  folder_.WriteStyleFile("[A]\nBrushParms=345,1,1,0,0\n[B]\nBrushParms=345,2,2,0,0\n");
  ASSERT_TRUE(StyleRemove("A"));
  EXPECT_EQ(Key(folder_.styleFile(), "A", "BrushParms"), "<none>");
  EXPECT_EQ(Key(folder_.styleFile(), "B", "BrushParms"), "345,2,2,0,0");
}

TEST_F(StyleFileTest, NewRecordTakesTheCurrentStyle) {
  folder_.WriteStyleFile("[PresetList]\nCurrent=Mine\n[Mine]\nBrushParms=346,55,8,1,2\n");
  StrokeRecord r = NewRecord();
  std::strcpy(r.loadedBrushPath, "stale");
  EXPECT_EQ(StrokeCreateRecord(&r), 0);
  EXPECT_EQ(r.density, 55);
  EXPECT_EQ(r.layering, 346);
  EXPECT_STREQ(r.loadedBrushPath, "");
  // A missing current style is no failure.
  folder_.WriteStyleFile("");
  StrokeRecord empty = NewRecord();
  EXPECT_EQ(StrokeCreateRecord(&empty), 0);
}

TEST(StyleValueForms, IntegersScanAsPercentDScans) {
  int32_t v[5] = {-1, -1, -1, -1, -1};
  EXPECT_EQ(ScanIntegers(" 1, -2,+3", v, 5), 3);
  EXPECT_EQ(v[0], 1);
  EXPECT_EQ(v[1], -2);
  EXPECT_EQ(v[2], 3);
  EXPECT_EQ(v[3], -1);
  EXPECT_EQ(ScanIntegers("7 ,8", v, 2), 1);
  EXPECT_EQ(ScanIntegers("", v, 2), 0);
  EXPECT_EQ(ScanIntegers("-", v, 1), 0);
  EXPECT_EQ(ScanIntegers("1,2,3,4,5,6", v, 4), 4) << "a longer text is harmless";
  EXPECT_EQ(ScanIntegers("4294967297", v, 1), 1);
  EXPECT_EQ(v[0], 1) << "the low 32 bits";

  EXPECT_EQ(ReadDecimal("0.25"), 0.25);
  EXPECT_EQ(ReadDecimal("  -1.5e2xyz"), -150.0);
  EXPECT_EQ(ReadDecimal(".5"), 0.5);
  EXPECT_EQ(ReadDecimal("2e"), 2.0);
  for (const char* none : {"", "nan", "inf", "-", ".", "x1"}) EXPECT_EQ(ReadDecimal(none), 0.0) << none;
  EXPECT_EQ(ReadDecimal("0x10"), 0.0);
}

}  // namespace
}  // namespace fancy
