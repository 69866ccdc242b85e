// The registry stand-in and dynamic loading.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/dynamic_library.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

using testing::TempDir;

const char kKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\Fancy\\8.00";

class Registry : public ::testing::Test {
 protected:
  void SetUp() override { RegistrySetStorePath(dir_.File("store/registry.ini")); }
  void TearDown() override { RegistrySetStorePath(""); }
  TempDir dir_;
};

TEST_F(Registry, StandInReadsAndWritesValues) {
  char buffer[64] = "junk";
  EXPECT_FALSE(RegistryReadString(kKey, "ConfigDir", buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "");

  // Writing creates the store's folder and file.
  ASSERT_TRUE(RegistryWriteString(kKey, "ConfigDir", "/opt/tavin/config"));
  ASSERT_TRUE(RegistryReadString(kKey, "ConfigDir", buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "/opt/tavin/config");
  // Key paths and value names compare without case, as in the registry.
  ASSERT_TRUE(RegistryReadString("hkey_local_machine\\software\\tavin\\FANCY\\8.00", "configdir",
                                 buffer, sizeof buffer));
  // Another version is another key.
  EXPECT_FALSE(RegistryReadString("HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\Fancy\\7.00",
                                  "ConfigDir", buffer, sizeof buffer));

  // A value too long for the buffer is a failed read, not a cut one.
  char small[8] = "junk";
  EXPECT_FALSE(RegistryReadString(kKey, "ConfigDir", small, sizeof small));
  EXPECT_STREQ(small, "");

  // An empty value exists.
  ASSERT_TRUE(RegistryWriteString(kKey, "Empty", ""));
  EXPECT_TRUE(RegistryReadString(kKey, "Empty", buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "");

  // The store is an ordinary profile file with the key path as its section.
  char direct[64];
  ProfileGetString(kKey, "ConfigDir", "", direct, sizeof direct,
                   RegistryStorePath().c_str());
  EXPECT_STREQ(direct, "/opt/tavin/config");
}

TEST_F(Registry, DefaultStoreFollowsTheEnvironment) {
  RegistrySetStorePath("");
  std::string savedXdg = std::getenv("XDG_CONFIG_HOME") ? std::getenv("XDG_CONFIG_HOME") : "";
  std::string savedHome = std::getenv("HOME") ? std::getenv("HOME") : "";
  bool hadXdg = std::getenv("XDG_CONFIG_HOME") != nullptr;

  setenv("XDG_CONFIG_HOME", "/xdg", 1);
  setenv("HOME", "/home/someone", 1);
  EXPECT_EQ(RegistryStorePath(), "/xdg/Tavin/registry.ini");
  setenv("XDG_CONFIG_HOME", "", 1);
  EXPECT_EQ(RegistryStorePath(), "/home/someone/.config/Tavin/registry.ini");
  RegistrySetStorePath("/elsewhere/r.ini");
  EXPECT_EQ(RegistryStorePath(), "/elsewhere/r.ini");

  if (hadXdg) setenv("XDG_CONFIG_HOME", savedXdg.c_str(), 1);
  else unsetenv("XDG_CONFIG_HOME");
  setenv("HOME", savedHome.c_str(), 1);
}

TEST(DynamicLibrary, LoadsFindsAndReportsFailure) {
  DynamicLibrary lib{reinterpret_cast<void*>(1)};
  std::string error;
  EXPECT_FALSE(DynamicLibraryOpen("/no/such/library.so", &lib, &error));
  EXPECT_EQ(lib.handle, nullptr);
  EXPECT_FALSE(error.empty());

  ASSERT_TRUE(DynamicLibraryOpen("libm.so.6", &lib, &error)) << error;
  using Cos = double (*)(double);
  auto cosine = reinterpret_cast<Cos>(DynamicLibrarySymbol(&lib, "cos"));
  ASSERT_NE(cosine, nullptr);
  EXPECT_DOUBLE_EQ(cosine(0.0), 1.0);
  EXPECT_EQ(DynamicLibrarySymbol(&lib, "no_such_symbol_here"), nullptr);
  DynamicLibraryClose(&lib);
  EXPECT_EQ(lib.handle, nullptr);
  DynamicLibraryClose(&lib);  // a closed library closes again harmlessly
  EXPECT_EQ(DynamicLibrarySymbol(&lib, "cos"), nullptr);
}

}  // namespace
}  // namespace fancy
