// The built module as a host sees it: its exports and its resource table.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "module/resources.h"
#include "platform/dynamic_library.h"

namespace fancy {
namespace {

TEST(ModuleTest, ExportsItsEntriesAndResourceTable) {
  DynamicLibrary module{};
  std::string error;
  ASSERT_TRUE(DynamicLibraryOpen(FANCY_BIN_DIR "/fancy.so", &module, &error)) << error;

  const auto* table =
      static_cast<const FancyResources*>(DynamicLibrarySymbol(&module, kFancyResourceSymbol));
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->version, kFancyResourcesVersion);
  ASSERT_EQ(table->count, 2u);
  struct Expected {
    const char* entry;
    int32_t filterId;
    const char* menu;
    const char* info;
  };
  const Expected expected[] = {{"ENTRYPOINT1", 200, "Brushka...", "Paint Brushka"},
                               {"ENTRYPOINT2", 201, "Tessaris...", "Tessaris"}};
  for (uint32_t i = 0; i < table->count; ++i) {
    const FancyResourceEntry& entry = table->entries[i];
    EXPECT_STREQ(entry.entryName, expected[i].entry);
    EXPECT_EQ(entry.filterId, expected[i].filterId);
    EXPECT_STREQ(entry.category, "Fancy");
    EXPECT_STREQ(entry.menuName, expected[i].menu);
    EXPECT_STREQ(entry.infoLine, expected[i].info);

    // Each named entry is there.
    EXPECT_NE(DynamicLibrarySymbol(&module, entry.entryName), nullptr) << entry.entryName;
  }
  DynamicLibraryClose(&module);
}

}  // namespace
}  // namespace fancy
