// PLGPARAM.INI: the relief presets in the host's directory.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "config/config.h"
#include "frame/presets.h"
#include "frame/result_codes.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"

namespace fancy {
namespace {

using testing::MessageBoxRecorder;
using testing::ConfigFolder;

std::vector<int32_t> Parse(const char* text, int32_t count, int32_t* present = nullptr) {
  std::vector<int32_t> values(static_cast<size_t>(count), -1);
  int32_t n = ParsePresetValues(text, values.data(), count);
  if (present) *present = n;
  return values;
}

TEST(PresetValuesTest, PiecesReadAsDecimalNumbersAndMissingOnesAsZero) {
  int32_t present = 0;
  EXPECT_EQ(Parse("20, 30, 3, 0, 60", 5, &present), (std::vector<int32_t>{20, 30, 3, 0, 60}));
  EXPECT_EQ(present, 5);
  EXPECT_EQ(Parse("1,2", 4, &present), (std::vector<int32_t>{1, 2, 0, 0}));
  EXPECT_EQ(present, 2);
  // Blanks before a piece are skipped; damaged pieces count as 0; digits
  // before the damage still count.
  EXPECT_EQ(Parse("  -5,\t+7, abc, 12x ,", 5), (std::vector<int32_t>{-5, 7, 0, 12, 0}));
  EXPECT_EQ(Parse(",,9", 3), (std::vector<int32_t>{0, 0, 9}));
  EXPECT_EQ(Parse("99999999999, -99999999999", 2), (std::vector<int32_t>{INT32_MAX, INT32_MIN}));
  EXPECT_EQ(Parse("0x10, 010", 2), (std::vector<int32_t>{0, 10})) << "decimal only";
  EXPECT_EQ(Parse("7, 8, 9", 2), (std::vector<int32_t>{7, 8})) << "extra pieces are left";

  const char* cursor = "4";
  int32_t value = -1;
  EXPECT_TRUE(ReadNextNumber(&cursor, &value));
  EXPECT_EQ(value, 4);
  EXPECT_FALSE(ReadNextNumber(&cursor, &value));
  EXPECT_EQ(value, 0);
  EXPECT_FALSE(ReadNextNumber(&cursor, &value)) << "stays at the end";

  const int32_t numbers[] = {20, -3, 0, INT32_MAX, INT32_MIN};
  std::string text = FormatPresetValues(numbers, 5);
  EXPECT_EQ(text, "20, -3, 0, 2147483647, -2147483648");
  std::vector<int32_t> back = Parse(text.c_str(), 5);
  EXPECT_EQ(back, std::vector<int32_t>(numbers, numbers + 5));
}

TEST(BuiltinPresetTest, NamesComeFromTheStringRun) {
  EXPECT_TRUE(IsBuiltinPreset("Defaults", kKnurlPresetFirst));
  EXPECT_TRUE(IsBuiltinPreset("rounded dropoff", kKnurlPresetFirst));
  EXPECT_TRUE(IsBuiltinPreset("DRY", kKnurlPresetFirst));
  EXPECT_FALSE(IsBuiltinPreset("Lens", kKnurlPresetFirst)) << "a Glass name";
  EXPECT_TRUE(IsBuiltinPreset("Colored Lens", kGlassPresetFirst));
  EXPECT_FALSE(IsBuiltinPreset("Defaults ", kKnurlPresetFirst));
  EXPECT_FALSE(IsBuiltinPreset("Mine", kGlassPresetFirst));
  EXPECT_FALSE(IsBuiltinPreset("", kGlassPresetFirst));
}

// PLGPARAM.INI in the host's directory of a configuration folder of its own.
class PresetFileTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetPresetFilePath(); }
  void TearDown() override { ResetPresetFilePath(); }

  std::string Value(const char* section, const char* key) const {
    char buffer[256];
    ProfileGetString(section, key, "(absent)", buffer, sizeof(buffer), PresetFilePath());
    return buffer;
  }
  std::vector<int32_t> Read(const char* section, const char* name, int32_t count) {
    std::vector<int32_t> values(static_cast<size_t>(count), -1);
    EXPECT_TRUE(ReadPreset(section, name, values.data(), count)) << name;
    return values;
  }

  ConfigFolder config_;
  MessageBoxRecorder boxes_;
};

TEST_F(PresetFileTest, PathIsInTheHostsDirectoryAndKept) {
  std::string path = PresetFilePath();
  EXPECT_EQ(path, config_.hostDir() + "PLGPARAM.INI");

  // The path is formed once: a host directory that moves later is not seen
  // until the path is formed again.
  config_.temp().Write("cfg/tavinapp.ini", "[Config]\nPixelboxDir=elsewhere\n");
  ConfigReset();
  EXPECT_EQ(std::string(PresetFilePath()), path);
  ResetPresetFilePath();
  EXPECT_EQ(std::string(PresetFilePath()), config_.dir() + "elsewhere/PLGPARAM.INI");
}

TEST_F(PresetFileTest, SeedingWritesTheBuiltinsOnce) {
  SeedPresets(kPresetSectionKnurl, kKnurlPresetFirst, kKnurlPresetCount);
  SeedPresets(kPresetSectionGlass, kGlassPresetFirst, kGlassPresetCount);
  EXPECT_EQ(Read(kPresetSectionKnurl, "Defaults", 8),
            (std::vector<int32_t>{20, 30, 3, 0, 60, 30, 135, 45}));
  EXPECT_EQ(Read(kPresetSectionKnurl, "Dry", 8),
            (std::vector<int32_t>{30, 45, 5, 0, 25, 0, 135, 45}));
  EXPECT_EQ(Read(kPresetSectionGlass, "Defaults", 10),
            (std::vector<int32_t>{20, 70, 2, 50, 3, 1, 65, 40, 135, 50}));
  EXPECT_EQ(Read(kPresetSectionGlass, "Wet", 10),
            (std::vector<int32_t>{20, 80, 2, 100, 7, 2, 80, 60, 135, 45}));
  EXPECT_EQ(Value(kPresetSectionKnurl, "Smooth"), "50, 60, 5, 0, 60, 30, 135, 45");

  PresetList list;
  ASSERT_EQ(LoadPresetList(kPresetSectionKnurl, &list), 0);
  EXPECT_EQ(list.names.size(), 7u);
  ASSERT_EQ(LoadPresetList(kPresetSectionGlass, &list), 0);
  EXPECT_EQ(list.names.size(), 8u);

  // A changed built-in is not overwritten by the next seeding.
  const int32_t mine[] = {1, 2, 3, 4, 5, 6, 7, 8};
  ASSERT_TRUE(WritePreset(kPresetSectionKnurl, "Smooth", mine, 8));
  SeedPresets(kPresetSectionKnurl, kKnurlPresetFirst, kKnurlPresetCount);
  EXPECT_EQ(Value(kPresetSectionKnurl, "Smooth"), "1, 2, 3, 4, 5, 6, 7, 8");
}

TEST_F(PresetFileTest, DeletedBuiltinStaysAwayAfterReload) {
  SeedPresets(kPresetSectionGlass, kGlassPresetFirst, kGlassPresetCount);
  const int32_t mine[] = {9, 9, 9};
  ASSERT_TRUE(WritePreset(kPresetSectionGlass, "Mine", mine, 3));

  ASSERT_TRUE(DeletePreset(kPresetSectionGlass, "defaults", kGlassPresetFirst));
  ASSERT_TRUE(DeletePreset(kPresetSectionGlass, "Mine", kGlassPresetFirst));
  EXPECT_EQ(Value(kPresetSectionGlass, "Defaults"), "<deleted>");
  EXPECT_FALSE(PresetExists(kPresetSectionGlass, "Mine")) << "a user's preset is removed";

  // Close and reopen: the path is formed again, the built-ins seeded again.
  ResetPresetFilePath();
  SeedPresets(kPresetSectionGlass, kGlassPresetFirst, kGlassPresetCount);
  EXPECT_EQ(Value(kPresetSectionGlass, "Defaults"), "<deleted>");
  PresetList list;
  ASSERT_EQ(LoadPresetList(kPresetSectionGlass, &list), 0);
  EXPECT_EQ(list.names.size(), 7u);
  for (const std::string& name : list.names) EXPECT_NE(name, "Defaults");
  EXPECT_EQ(list.names[static_cast<size_t>(list.selected)], "Paint Color")
      << "without Last Used and Defaults the first entry is selected";
}

TEST_F(PresetFileTest, ListingSelectsLastUsedThenDefaults) {
  SeedPresets(kPresetSectionKnurl, kKnurlPresetFirst, kKnurlPresetCount);
  PresetList list;
  ASSERT_EQ(LoadPresetList(kPresetSectionKnurl, &list), 0);
  EXPECT_EQ(list.names[static_cast<size_t>(list.selected)], "Defaults");

  const int32_t values[] = {33, 44, 5, 1, 60, 30, 90, 10};
  ASSERT_TRUE(WriteLastUsedPreset(kPresetSectionKnurl, values, 8));
  EXPECT_EQ(Value(kPresetSectionKnurl, "Last Used"), "33, 44, 5, 1, 60, 30, 90, 10");
  ASSERT_EQ(LoadPresetList(kPresetSectionKnurl, &list), 0);
  EXPECT_EQ(list.names.size(), 8u);
  EXPECT_EQ(list.names[static_cast<size_t>(list.selected)], "Last Used");

  // "<deleted>" is matched without regard to case.
  ASSERT_TRUE(ProfileWriteString(kPresetSectionKnurl, "Wet", "<DELETED>", PresetFilePath()));
  ASSERT_EQ(LoadPresetList(kPresetSectionKnurl, &list), 0);
  EXPECT_EQ(list.names.size(), 7u);
}

TEST_F(PresetFileTest, ListIsCutAtItsBuffer) {
  // 40 keys of 9 characters and a terminator: 400 characters of names.
  std::vector<std::string> keys;
  for (int i = 0; i < 40; ++i) {
    keys.push_back("Preset" + std::to_string(100 + i));
    ASSERT_TRUE(ProfileWriteString("Glass", keys.back().c_str(), "1, 2", PresetFilePath()));
  }
  PresetList list;
  ASSERT_EQ(LoadPresetList("Glass", &list), 0);
  ASSERT_GT(list.names.size(), 20u);
  ASSERT_LT(list.names.size(), 27u);
  size_t used = 0;
  for (size_t i = 0; i < list.names.size(); ++i) {
    // Every name but the last is whole; the last may be cut.
    if (i + 1 < list.names.size()) {
      EXPECT_EQ(list.names[i], keys[i]);
    }
    EXPECT_EQ(keys[i].rfind(list.names[i], 0), 0u);
    used += list.names[i].size() + 1;
  }
  EXPECT_LE(used, 254u);
  EXPECT_EQ(list.selected, 0);
}

TEST_F(PresetFileTest, EmptySectionCannotBeListed) {
  PresetList list;
  EXPECT_EQ(LoadPresetList(kPresetSectionKnurl, &list), kErrUserCancelled);
  ASSERT_EQ(boxes_.boxes().size(), 1u);
  EXPECT_EQ(boxes_.boxes()[0].caption, "Error");
  EXPECT_EQ(boxes_.boxes()[0].text, "Cannot access filter presets");
  EXPECT_EQ(boxes_.boxes()[0].owner, nullptr);

  // Keys that are all deleted are a list with nothing in it, not a failure.
  ASSERT_TRUE(ProfileWriteString(kPresetSectionKnurl, "Defaults", "<deleted>", PresetFilePath()));
  EXPECT_EQ(LoadPresetList(kPresetSectionKnurl, &list), 0);
  EXPECT_TRUE(list.names.empty());
  EXPECT_EQ(list.selected, -1);
  EXPECT_EQ(boxes_.boxes().size(), 1u);
}

}  // namespace
}  // namespace fancy
