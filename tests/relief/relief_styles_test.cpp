// The style step that stands in for the relief dialogs: seeding, the list's
// choice, "Last Used", scripted choices and deleted built-in styles.
#include <gtest/gtest.h>

#include <string>

#include "frame/presets.h"
#include "frame/result_codes.h"
#include "platform/profile.h"
#include "relief/relief_styles.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

class ReliefStyleTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetPresetFilePath(); }
  void TearDown() override { ResetPresetFilePath(); }

  std::string Value(int32_t id, const char* key) const {
    char buffer[256];
    ProfileGetString(ReliefStyleFileOf(id).section, key, "(absent)", buffer, sizeof(buffer),
                     PresetFilePath());
    return buffer;
  }
  std::string Columns(int32_t id, const ReliefParams& p) const {
    int32_t values[kReliefMaxColumns];
    ReliefParamsToColumns(id, p, values);
    return FormatPresetValues(values, ReliefStyleFileOf(id).columns);
  }

  testing::ConfigFolder config_;
  testing::MessageBoxRecorder boxes_;
};

TEST_F(ReliefStyleTest, FirstOpeningLoadsDefaultsAndKeepsThemAsLastUsed) {
  // Each effect's numbers go to its own columns: Glass's height stays 0.
  ReliefParams glass{};
  ASSERT_EQ(ReliefStyleStep(kFilterGlass, &glass), kNoError);
  EXPECT_EQ(glass.bevelWidth, 20);
  EXPECT_EQ(glass.refraction, 70);
  EXPECT_EQ(glass.opacity, 50);
  EXPECT_EQ(glass.angle, 50);
  EXPECT_EQ(glass.height, 0);
  EXPECT_EQ(Columns(kFilterGlass, glass), "20, 70, 2, 50, 3, 1, 65, 40, 135, 50");
  EXPECT_EQ(std::string(glass.presetName), "Defaults");
  EXPECT_EQ(glass.presetIndex, 0);
  EXPECT_EQ(Value(kFilterGlass, "Last Used"), "20, 70, 2, 50, 3, 1, 65, 40, 135, 50");
  EXPECT_EQ(Value(kFilterGlass, "Warp"), "20, 60, 2, 70, 5, 0, 80, 40, 135, 45") << "seeded";
  ReliefParams knurl{};
  ASSERT_EQ(ReliefStyleStep(kFilterKnurl, &knurl), kNoError);
  EXPECT_EQ(knurl.height, 30);
  EXPECT_EQ(Value(kFilterKnurl, "Last Used"), "20, 30, 3, 0, 60, 30, 135, 45");
  EXPECT_TRUE(boxes_.boxes().empty());

  // Next time "Last Used" is the choice, with whatever it holds then.
  ProfileWriteString("The Knurl", "Last Used", "40, 90, 1, 2, 10, 20, 300, 80", PresetFilePath());
  ASSERT_EQ(ReliefStyleStep(kFilterKnurl, &knurl), kNoError);
  EXPECT_EQ(Columns(kFilterKnurl, knurl), "40, 90, 1, 2, 10, 20, 300, 80");
  EXPECT_EQ(knurl.presetIndex, 7);
}

TEST_F(ReliefStyleTest, ScriptedChoiceLoadsThatStyleAndAnUnknownOneWritesNothing) {
  ReliefParams p{};
  ReliefDialogScript().style = "colored LENS";
  ASSERT_EQ(ReliefStyleStep(kFilterGlass, &p), kNoError);
  EXPECT_EQ(Columns(kFilterGlass, p), "30, 70, 0, 80, 6, 0, 80, 40, 135, 45");
  EXPECT_EQ(std::string(p.presetName), "Colored lens");
  EXPECT_EQ(p.presetIndex, 4);
  EXPECT_EQ(Value(kFilterGlass, "Last Used"), "30, 70, 0, 80, 6, 0, 80, 40, 135, 45");
  EXPECT_TRUE(ReliefDialogScript().style.empty()) << "a script is used once";

  // A style with fewer numbers changes only the fields it has; a damaged
  // number reads as 0.
  ProfileWriteString("Glass", "Short", "7, x", PresetFilePath());
  ReliefDialogScript().style = "Short";
  ASSERT_EQ(ReliefStyleStep(kFilterGlass, &p), kNoError);
  EXPECT_EQ(Columns(kFilterGlass, p), "7, 0, 0, 80, 6, 0, 80, 40, 135, 45");

  const std::string file = testing::TempDir::Read(PresetFilePath());
  ReliefDialogScript().style = "Frosted";
  EXPECT_EQ(ReliefStyleStep(kFilterGlass, &p), kErrUserCancelled);
  EXPECT_TRUE(ReliefDialogScript().missing);
  EXPECT_EQ(ReliefDialogScript().listed.size(), 10u) << "eight built-in, Last Used, Short";
  EXPECT_EQ(testing::TempDir::Read(PresetFilePath()), file);
  ASSERT_EQ(ReliefStyleStep(kFilterGlass, &p), kNoError);
  EXPECT_FALSE(ReliefDialogScript().missing);
}

TEST_F(ReliefStyleTest, DeletedBuiltinStylesStayAwayAfterAReload) {
  for (int32_t id : {kFilterGlass, kFilterKnurl}) {
    SCOPED_TRACE(id);
    const ReliefStyleFile file = ReliefStyleFileOf(id);
    ReliefParams p{};
    ASSERT_EQ(ReliefStyleStep(id, &p), kNoError);
    ASSERT_TRUE(DeletePreset(file.section, "Defaults", file.firstBuiltin));
    ASSERT_TRUE(DeletePreset(file.section, "Last Used", file.firstBuiltin));
    // "Lens" is Glass's own: its strings, not The Knurl's, say it is built in.
    if (id == kFilterGlass) {
      ASSERT_TRUE(DeletePreset(file.section, "Lens", file.firstBuiltin));
    }

    ASSERT_EQ(ReliefStyleStep(id, &p), kNoError);  // seeds again
    EXPECT_EQ(Value(id, "Defaults"), "<deleted>");
    if (id == kFilterGlass) {
      EXPECT_EQ(Value(id, "Lens"), "<deleted>");
    }
    PresetList list;
    ASSERT_EQ(LoadPresetList(file.section, &list), kNoError);
    for (const std::string& name : list.names) {
      EXPECT_NE(name, "Defaults");
      EXPECT_NE(name, "Lens");
    }
    // With neither "Last Used" nor "Defaults" the first style is chosen.
    EXPECT_EQ(p.presetIndex, 0);
    EXPECT_EQ(std::string(p.presetName), list.names[0]);
    ReliefDialogScript().style = "Defaults";
    EXPECT_EQ(ReliefStyleStep(id, &p), kErrUserCancelled);
  }
}

}  // namespace
}  // namespace fancy
