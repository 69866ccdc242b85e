#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/color_settings.h"
#include "config/config.h"
#include "platform/path.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "support/temp_dir.h"
#include "ui/message_box.h"

namespace fancy {
namespace {

using testing::TempDir;

const char kKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\Fancy\\8.00";

struct Box {
  std::string text, caption;
  uint32_t flags;
};

// A configuration folder in a temporary place, found through a registry
// stand-in of its own; every message box is recorded.
class Config : public ::testing::Test {
 protected:
  void SetUp() override {
    RegistrySetStorePath(dir_.File("registry.ini"));
    SetMessageBoxHandler([this](void*, const char* text, const char* caption, uint32_t flags) {
      boxes_.push_back({text, caption, flags});
      return kIdOk;
    });
    ConfigSetProduct("Fancy", "8.00");
    folder_ = dir_.File("cfg") + "/";
  }
  void TearDown() override {
    SetMessageBoxHandler(nullptr);
    RegistrySetStorePath("");
    ConfigReset();
  }

  // The folder with tavinapp.ini holding these lines, named by the registry
  // without its trailing separator.
  void MakeFolder(const std::string& appIni) {
    dir_.Write("cfg/tavinapp.ini", appIni);
    ASSERT_TRUE(RegistryWriteString(kKey, "ConfigDir", dir_.File("cfg").c_str()));
    ConfigReset();
  }

  std::string Dir(uint32_t (*get)(char*, uint32_t), uint32_t size = kMaxPath) {
    std::vector<char> buffer(size + 1, '#');
    uint32_t n = get(buffer.data(), size);
    std::string out(buffer.data());
    EXPECT_EQ(n, out.size());
    return out;
  }

  TempDir dir_;
  std::string folder_;
  std::vector<Box> boxes_;
};

TEST_F(Config, FolderNotFoundIsToldWithFileKeyAndValue) {
  // No registry value: the box names the value and the key.
  EXPECT_FALSE(ConfigFind(0));
  EXPECT_TRUE(boxes_.empty());
  EXPECT_FALSE(ConfigFind(1));
  ASSERT_EQ(boxes_.size(), 1u);
  EXPECT_EQ(boxes_[0].caption, "Tavin");
  EXPECT_EQ(boxes_[0].flags, 8240u);
  EXPECT_NE(boxes_[0].text.find(kKey), std::string::npos) << boxes_[0].text;
  EXPECT_NE(boxes_[0].text.find("ConfigDir"), std::string::npos);

  // A folder without tavinapp.ini: the box names the file too. Each call
  // with showError tells it again.
  ASSERT_TRUE(RegistryWriteString(kKey, "ConfigDir", dir_.path().c_str()));
  boxes_.clear();
  EXPECT_FALSE(ConfigFind(1));
  EXPECT_FALSE(ConfigFind(1));
  ASSERT_EQ(boxes_.size(), 2u);
  const std::string& text = boxes_[0].text;
  EXPECT_NE(text.find(dir_.path() + "/tavinapp.ini"), std::string::npos) << text;
  EXPECT_NE(text.find(kKey), std::string::npos);
  EXPECT_NE(text.find("ConfigDir"), std::string::npos);
  EXPECT_EQ(text.find("%s"), std::string::npos);

  // Without a folder, directories read empty and the other keys their defaults.
  EXPECT_EQ(Dir(GetDataDir), "");
  EXPECT_EQ(Dir(GetUserPalette), "");
  EXPECT_STREQ(ConfigAppIniPath(), "");
  EXPECT_EQ(Dir(GetPaintArea), "pntarea.bmp");
  EXPECT_FALSE(SetUserPalette("/x/y.cpl"));
  EXPECT_EQ(Config3DLook(), 1);

  // An empty product makes no lookup and shows nothing.
  ConfigSetProduct("", "");
  boxes_.clear();
  EXPECT_FALSE(ConfigFind(1));
  EXPECT_TRUE(boxes_.empty());
}

TEST_F(Config, FindsTheFolderOnceAndFormsItsFiles) {
  MakeFolder("[Config]\n");
  ASSERT_TRUE(ConfigFind(1));
  EXPECT_TRUE(boxes_.empty());
  EXPECT_EQ(Dir(ConfigDirOf), folder_);  // the separator added
  EXPECT_EQ(std::string(ConfigAppIniPath()), folder_ + "tavinapp.ini");
  EXPECT_EQ(std::string(ConfigPrnIniPath()), folder_ + "tavinprn.ini");
  EXPECT_EQ(std::string(ConfigFntIniPath()), folder_ + "tavinfnt.ini");
  EXPECT_EQ(std::string(ConfigColorIniPath()), folder_ + "Color.ini");

  // Found once: a later change of the registry is not seen until a reset.
  ASSERT_TRUE(RegistryWriteString(kKey, "ConfigDir", "/nowhere"));
  EXPECT_TRUE(ConfigFind(1));
  EXPECT_EQ(Dir(ConfigDirOf), folder_);
  ConfigReset();
  EXPECT_FALSE(ConfigFind(0));

  // The caller's buffer cuts the folder to size - 1.
  ASSERT_TRUE(RegistryWriteString(kKey, "ConfigDir", folder_.c_str()));
  ConfigReset();
  EXPECT_EQ(Dir(ConfigDirOf, 5), folder_.substr(0, 4));
}

TEST_F(Config, FilesFromACaseInsensitiveSystemAreFound) {
  dir_.Write("cfg/TAVINAPP.INI", "[Config]\nBigPalette=2\n");
  dir_.Write("cfg/COLOR.INI", "[Color Calibration]\nMonRenderMode=0\n");
  ASSERT_TRUE(RegistryWriteString(kKey, "ConfigDir", dir_.File("cfg").c_str()));
  ConfigReset();
  ASSERT_TRUE(ConfigFind(1));
  EXPECT_EQ(std::string(ConfigAppIniPath()), folder_ + "TAVINAPP.INI");
  EXPECT_EQ(ConfigBigPalette(), 2);
  EXPECT_EQ(GetColorSettings().monRenderMode, 0);
}

TEST_F(Config, ResolvesDirectoryKeys) {
  MakeFolder(
      "[Config]\n"
      "DataDir=/opt/shared/data\n"
      "ColorDir=color\n"
      "CustomDir=../cfg/./custom/sub/..\n"
      "ProgramsDir=../../../../../../../../../../bin\n"
      "PixelboxDir=\n");
  EXPECT_EQ(Dir(GetDataDir), "/opt/shared/data/");  // absolute: as it stands
  EXPECT_EQ(Dir(GetColorDir), folder_ + "color/");  // relative: under the folder
  EXPECT_EQ(Dir(GetCustomDir), folder_ + "custom/");
  EXPECT_EQ(Dir(GetProgramsDir), "/bin/");  // never above the root
  EXPECT_EQ(Dir(GetHostDir), folder_);       // empty: the folder itself

  // Cached: the file may change, the answer stays until a reset.
  ASSERT_TRUE(ProfileWriteString("Config", "ColorDir", "other", ConfigAppIniPath()));
  EXPECT_EQ(Dir(GetColorDir), folder_ + "color/");
  ConfigReset();
  EXPECT_EQ(Dir(GetColorDir), folder_ + "other/");

  // The caller's size cuts the copy.
  EXPECT_EQ(Dir(GetDataDir, 4), "/op");
  EXPECT_EQ(Dir(GetDataDir, 1), "");
}

TEST_F(Config, DirectoryKeysDefaultToTheFolderAndLongValuesReadEmpty) {
  MakeFolder("[Other]\n");
  EXPECT_EQ(Dir(GetDataDir), folder_);
  EXPECT_EQ(Dir(GetColorDir), folder_);
  EXPECT_EQ(Dir(GetCustomDir), folder_);
  EXPECT_EQ(Dir(GetProgramsDir), folder_);
  EXPECT_EQ(Dir(GetHostDir), folder_);

  // With its separator, a directory must fit in 259 characters.
  std::string fits = "/" + std::string(257, 'a');       // 258, 259 with the separator
  std::string tooLong = "/" + std::string(258, 'a');    // 260 with the separator
  std::string huge = "/" + std::string(5000, 'a');      // longer than any read buffer
  MakeFolder("[Config]\nDataDir=" + fits + "\nColorDir=" + tooLong + "\nCustomDir=" + huge +
             "\nProgramsDir=" + std::string(300, 'r') + "\n");
  EXPECT_EQ(Dir(GetDataDir), fits + "/");
  EXPECT_EQ(Dir(GetColorDir), "");
  EXPECT_EQ(Dir(GetCustomDir), "");
  EXPECT_EQ(Dir(GetProgramsDir), "");
}

TEST_F(Config, UserPaletteRoundTripsRelativeToTheFolder) {
  MakeFolder("[Config]\nCustomDir=custom\n");
  // The default is CustomDir + sketchry.cpl.
  EXPECT_EQ(Dir(GetUserPalette), folder_ + "custom/sketchry.cpl");

  // A palette under the folder is stored relative to it and read back whole.
  std::string inside = folder_ + "custom/palettes/mine.cpl";
  ASSERT_TRUE(SetUserPalette(inside.c_str()));
  char stored[kMaxPath];
  ProfileGetString("Configuration", "UserPalette", "", stored, sizeof stored, ConfigAppIniPath());
  EXPECT_STREQ(stored, "custom/palettes/mine.cpl");
  EXPECT_EQ(Dir(GetUserPalette), inside);

  // Elsewhere it is stored as it stands.
  ASSERT_TRUE(SetUserPalette("/elsewhere/p.cpl"));
  ProfileGetString("Configuration", "UserPalette", "", stored, sizeof stored, ConfigAppIniPath());
  EXPECT_STREQ(stored, "/elsewhere/p.cpl");
  EXPECT_EQ(Dir(GetUserPalette), "/elsewhere/p.cpl");

  // A sibling folder whose name starts like the folder's is not under it.
  std::string sibling = dir_.File("cfgother/p.cpl");
  ASSERT_TRUE(SetUserPalette(sibling.c_str()));
  EXPECT_EQ(Dir(GetUserPalette), sibling);

  // A stored ".." path is resolved with the parts taken off.
  ASSERT_TRUE(ProfileWriteString("Configuration", "UserPalette", "custom/../x.cpl",
                                 ConfigAppIniPath()));
  EXPECT_EQ(Dir(GetUserPalette), folder_ + "x.cpl");
}

TEST_F(Config, PaintAreasAndFlags) {
  MakeFolder("[Config]\nBigPalette=3\n[Debug]\n3DLook=0\n");
  EXPECT_EQ(Dir(GetPaintArea), "pntarea.bmp");
  EXPECT_EQ(Dir(GetRollupPaintArea), "pnt_roll.bmp");
  ASSERT_TRUE(SetPaintArea("mix.bmp"));
  EXPECT_EQ(Dir(GetPaintArea), "mix.bmp");
  EXPECT_EQ(Dir(GetRollupPaintArea), "pnt_roll.bmp");

  // BigPalette is read once and kept; 3DLook is read as it stands.
  EXPECT_EQ(ConfigBigPalette(), 3);
  EXPECT_EQ(Config3DLook(), 0);
  ASSERT_TRUE(ProfileWriteString("Config", "BigPalette", "0", ConfigAppIniPath()));
  ASSERT_TRUE(ProfileWriteString("Debug", "3DLook", "5", ConfigAppIniPath()));
  EXPECT_EQ(ConfigBigPalette(), 3);
  EXPECT_EQ(Config3DLook(), 5);
  ConfigReset();
  EXPECT_EQ(ConfigBigPalette(), 0);
}

TEST_F(Config, ColorSettingsDefaultsValuesAndExactFlags) {
  MakeFolder("[Config]\n");
  const ColorSettings& defaults = GetColorSettings();
  EXPECT_EQ(defaults.cmykDisplayPercent, 1);
  EXPECT_STREQ(defaults.systemColorProfile, "profiles.ccm");
  EXPECT_STREQ(defaults.gamutAlarmColor, "");
  EXPECT_EQ(defaults.gamutAlarmTransparency, 128);
  EXPECT_EQ(defaults.profileMatchMode, 0);
  EXPECT_EQ(defaults.monRenderMode, 2);
  EXPECT_EQ(defaults.scnRenderMode, 1);
  EXPECT_EQ(defaults.prnPhotoRenderMode, 1);
  EXPECT_EQ(defaults.prnIllustRenderMode, 3);
  EXPECT_EQ(defaults.colorCorrectText, 1);
  EXPECT_TRUE(CMYKDisplayPercent());
  EXPECT_TRUE(GrayConvertsToCMYK_K());
  EXPECT_TRUE(FocoltoneAsSpot());
  EXPECT_TRUE(ToyoAsSpot());
  EXPECT_TRUE(DICAsSpot());
  EXPECT_FALSE(CompSimsSeps());
  EXPECT_FALSE(ShowSpotAsProcess());

  dir_.Write("cfg/Color.ini",
             "[Color Calibration]\n"
             "CMYKDisplayPercent=2\n"
             "SystemColorProfile=my.ccm\n"
             "GamutAlarmColor=RGB 0 255 0\n"
             "GamutAlarmTransparency=50\n"
             "GrayConvertsToCMYK_K=-1\n"
             "FocoltoneAsSpot=0\n"
             "ToyoAsSpot=yes\n"
             "CompSimsSeps=1\n"
             "ShowSpotAsProcess=01\n"
             "PrnIllustRenderMode=0\n");
  ColorSettingsReset();
  const ColorSettings& s = GetColorSettings();
  EXPECT_STREQ(s.systemColorProfile, "my.ccm");
  EXPECT_STREQ(s.gamutAlarmColor, "RGB 0 255 0");
  EXPECT_EQ(s.gamutAlarmTransparency, 50);
  EXPECT_EQ(s.prnIllustRenderMode, 0);
  // On only when exactly 1.
  EXPECT_FALSE(CMYKDisplayPercent());
  EXPECT_FALSE(GrayConvertsToCMYK_K());
  EXPECT_FALSE(FocoltoneAsSpot());
  EXPECT_FALSE(ToyoAsSpot());
  EXPECT_TRUE(DICAsSpot());
  EXPECT_TRUE(CompSimsSeps());
  EXPECT_TRUE(ShowSpotAsProcess());

  // Setters answer the former value and change the setting in memory only.
  EXPECT_EQ(SetCMYKDisplayPercent(1), 2);
  EXPECT_TRUE(CMYKDisplayPercent());
  EXPECT_EQ(SetCMYKDisplayPercent(0), 1);
  EXPECT_EQ(SetGrayConvertsToCMYK_K(1), -1);
  EXPECT_EQ(SetFocoltoneAsSpot(1), 0);
  EXPECT_EQ(SetToyoAsSpot(1), 0);
  EXPECT_EQ(SetDICAsSpot(0), 1);
  EXPECT_EQ(SetShowSpotAsProcess(0), 1);
  EXPECT_EQ(SetCompSimsSeps(0), 1);
  EXPECT_FALSE(DICAsSpot());
  ColorSettingsReset();
  EXPECT_EQ(GetColorSettings().cmykDisplayPercent, 2);
}

}  // namespace
}  // namespace fancy
