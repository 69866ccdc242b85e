#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/path.h"

namespace fancy {
namespace {

struct Parts {
  std::string drive, dir, fname, ext;
  bool operator==(const Parts&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Parts& p) {
  return os << "{" << p.drive << "|" << p.dir << "|" << p.fname << "|" << p.ext << "}";
}

Parts Split(const char* path) {
  char drive[kMaxDrive], dir[kMaxDir], fname[kMaxFname], ext[kMaxExt];
  std::memset(drive, '#', sizeof drive);
  SplitPath(path, drive, dir, fname, ext);
  return {drive, dir, fname, ext};
}

TEST(Path, SplitsLikeTheRuntime) {
  EXPECT_EQ(Split("/usr/share/tavin/sketchry.cpl"),
            (Parts{"", "/usr/share/tavin/", "sketchry", ".cpl"}));
  EXPECT_EQ(Split("sketchry.cpl"), (Parts{"", "", "sketchry", ".cpl"}));
  EXPECT_EQ(Split("palettes/"), (Parts{"", "palettes/", "", ""}));
  EXPECT_EQ(Split("/"), (Parts{"", "/", "", ""}));
  EXPECT_EQ(Split(""), (Parts{"", "", "", ""}));
  EXPECT_EQ(Split(nullptr), (Parts{"", "", "", ""}));
  // The extension starts at the last dot of the name, never in the folder.
  EXPECT_EQ(Split("a.b.c"), (Parts{"", "", "a.b", ".c"}));
  EXPECT_EQ(Split("dir.d/name"), (Parts{"", "dir.d/", "name", ""}));
  EXPECT_EQ(Split("dir/name."), (Parts{"", "dir/", "name", "."}));
  EXPECT_EQ(Split(".profile"), (Parts{"", "", "", ".profile"}));
  EXPECT_EQ(Split(".."), (Parts{"", "", ".", "."}));
  EXPECT_EQ(Split("a//b"), (Parts{"", "a//", "b", ""}));
#ifdef _WIN32
  EXPECT_EQ(Split("C:\\Tavin\\x.ini"), (Parts{"C:", "\\Tavin\\", "x", ".ini"}));
  EXPECT_EQ(Split("C:x.ini"), (Parts{"C:", "", "x", ".ini"}));
  EXPECT_EQ(Split("C:/a\\b/c"), (Parts{"C:", "/a\\b/", "c", ""}));
#else
  // No drives here, and a backslash is part of a name.
  EXPECT_EQ(Split("C:/x.ini"), (Parts{"", "C:/", "x", ".ini"}));
  EXPECT_EQ(Split("a\\b.c"), (Parts{"", "", "a\\b", ".c"}));
#endif
}

TEST(Path, SplitCutsPartsAndTakesNullOutputs) {
  std::string longName(400, 'n');
  std::string longPath = "/" + std::string(300, 'd') + "/" + longName + "." + std::string(300, 'e');
  Parts p = Split(longPath.c_str());
  EXPECT_EQ(p.dir.size(), kMaxDir - 1);
  EXPECT_EQ(p.fname, std::string(kMaxFname - 1, 'n'));
  EXPECT_EQ(p.ext.size(), kMaxExt - 1);
  EXPECT_EQ(p.ext.substr(0, 2), ".e");

  char fname[kMaxFname];
  SplitPath("/a/b.c", nullptr, nullptr, fname, nullptr);
  EXPECT_STREQ(fname, "b");
}

TEST(Path, JoinsAndAddsSeparators) {
  const std::string sep(1, kPathSeparator);
  EXPECT_EQ(JoinPath("a", "b"), "a" + sep + "b");
  EXPECT_EQ(JoinPath("a" + sep, "b"), "a" + sep + "b");
  EXPECT_EQ(JoinPath("", "b"), "b");

  char buffer[5] = "abc";
  EXPECT_TRUE(AddTrailingSeparator(buffer, sizeof buffer));
  EXPECT_EQ(std::string(buffer), "abc" + sep);
  EXPECT_TRUE(AddTrailingSeparator(buffer, sizeof buffer));  // already there
  EXPECT_EQ(std::string(buffer), "abc" + sep);
  char full[4] = "abc";
  EXPECT_FALSE(AddTrailingSeparator(full, sizeof full));
  EXPECT_STREQ(full, "abc");
  char empty[4] = "";
  EXPECT_TRUE(AddTrailingSeparator(empty, sizeof empty));
  EXPECT_STREQ(empty, "");
  char unterminated[3] = {'a', 'b', 'c'};
  EXPECT_FALSE(AddTrailingSeparator(unterminated, sizeof unterminated));

  EXPECT_TRUE(IsAbsolutePath((sep + "x").c_str()));
  EXPECT_FALSE(IsAbsolutePath("x/y"));
  EXPECT_FALSE(IsAbsolutePath(""));
  EXPECT_FALSE(IsAbsolutePath(nullptr));
}

}  // namespace
}  // namespace fancy
