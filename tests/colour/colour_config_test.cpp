#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "colour/clr_convert.h"
#include "colour/hex_table.h"
#include "colour/ink_table.h"
#include "colour_test_util.h"
#include "config/color_settings.h"
#include "config/config.h"
#include "platform/registry.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

// A configuration folder of its own, found through a registry stand-in, with
// the ink files in its data directory and colour settings in Color.ini.
class ColourConfig : public ::testing::Test {
 protected:
  void SetUp() override {
    testing::ReleaseColourTables();
    RegistrySetStorePath(dir_.File("registry.ini"));
    ConfigSetProduct("Fancy", "8.00");
    dir_.Write("cfg/tavinapp.ini", "[Config]\nDataDir=shared\n");
    ASSERT_TRUE(RegistryWriteString("HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\Fancy\\8.00",
                                    "ConfigDir", dir_.File("cfg").c_str()));
    ConfigReset();
    ColorSettingsReset();
  }
  void TearDown() override {
    testing::ReleaseColourTables();
    RegistrySetStorePath("");
    ConfigReset();
    ColorSettingsReset();
  }
  fancy::testing::TempDir dir_;
};

TEST_F(ColourConfig, TablesComeFromTheDataDirectoryAndFlagsFromColorIni) {
  dir_.Write("cfg/shared/sketchry.ink", "P 30 0 0 100 0 \"Yellow\"\n");
  std::vector<char> hex = {'\xCC', '\xDD', '\x01', '\x00'};  // a bad count
  dir_.Write("cfg/shared/pantone.hex", std::string(hex.begin(), hex.end()));
  dir_.Write("cfg/Color.ini", "[Color Calibration]\nDICAsSpot=0\n");

  testing::MessageBoxRecorder boxes;
  char name[64];
  InkName(30, name, sizeof name);  // the first query loads the table
  EXPECT_STREQ(name, "PANTONE Yellow CV");
  EXPECT_EQ(InkTableLoadCount(), 1);
  EXPECT_TRUE(boxes.boxes().empty());

  ASSERT_EQ(HexTableLoad(), 1);
  ASSERT_EQ(boxes.boxes().size(), 1u);
  EXPECT_EQ(boxes.boxes()[0].text,
            "Error Reading " + dir_.File("cfg/shared/pantone.hex") + " file.");
  HexName(1, name, sizeof name, true);
  EXPECT_STREQ(name, "Hexachrome Yellow");

  // DIC colours are not spot inks here, so an RGB one stays RGB.
  EXPECT_FALSE(DICAsSpot());
  CLRColor dic = testing::MakeRGB(10, 20, 30);
  dic.palette = kCLRPalDIC;
  CLRColor rgb;
  CLRConvert(&rgb, kCLRRGB255, &dic);
  EXPECT_EQ(testing::RGBOf(rgb), (testing::RGB{10, 20, 30}));
}

}  // namespace
}  // namespace fancy
