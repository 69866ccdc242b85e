#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file.h"
#include "platform/profile.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

using testing::TempDir;

std::vector<std::string> FolderEntries(const std::string& path) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

// Holds the process's file-size limit low for one scope, as a full disk
// would: a write past it fails (with SIGXFSZ ignored) instead of growing the file.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    old_handler_ = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &old_);
    rlimit limit = old_;
    limit.rlim_cur = bytes;
    ok_ = setrlimit(RLIMIT_FSIZE, &limit) == 0;
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, old_handler_);
  }
  bool ok() const { return ok_; }

 private:
  rlimit old_;
  void (*old_handler_)(int);
  bool ok_;
};

TEST(File, ReadsWholeFilesWithinTheLimit) {
  TempDir dir;
  std::string path = dir.Write("a.bin", std::string("ab\0cd", 5));
  std::vector<uint8_t> bytes;
  ASSERT_TRUE(ReadWholeFile(path.c_str(), bytes));
  EXPECT_EQ(bytes, (std::vector<uint8_t>{'a', 'b', 0, 'c', 'd'}));
  EXPECT_TRUE(ReadWholeFile(path.c_str(), bytes, 5));
  EXPECT_FALSE(ReadWholeFile(path.c_str(), bytes, 4));
  EXPECT_TRUE(bytes.empty());
  EXPECT_FALSE(ReadWholeFile(dir.File("missing").c_str(), bytes));
  EXPECT_FALSE(ReadWholeFile(dir.path().c_str(), bytes));  // a folder is no file
  EXPECT_FALSE(ReadWholeFile(nullptr, bytes));

  std::string empty = dir.Write("empty", "");
  EXPECT_TRUE(ReadWholeFile(empty.c_str(), bytes));
  EXPECT_TRUE(bytes.empty());
}

TEST(File, ExistenceAndFolders) {
  TempDir dir;
  std::string file = dir.Write("f.txt", "x");
  EXPECT_TRUE(FileExists(file.c_str()));
  EXPECT_FALSE(FileExists(dir.path().c_str()));  // a folder is not a file
  EXPECT_FALSE(DirectoryExists(file.c_str()));

  std::string deep = dir.File("a/b/c");
  EXPECT_TRUE(MakeDirectories(deep.c_str()));
  EXPECT_TRUE(MakeDirectories(deep.c_str()));  // already there
  EXPECT_FALSE(MakeDirectories((file + "/sub").c_str()));  // under a file
}

TEST(File, AtomicWriteReplacesKeepingModeAndLinks) {
  TempDir dir;
  std::string path = dir.Write("a.txt", "old");
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  ASSERT_TRUE(WriteFileAtomic(path.c_str(), "new contents", 12));
  EXPECT_EQ(TempDir::Read(path), "new contents");
  struct stat info;
  ASSERT_EQ(stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);

  // Writing through a link replaces the target and leaves the link.
  std::string link = dir.File("link.txt");
  ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
  ASSERT_TRUE(WriteFileAtomic(link.c_str(), "via link", 8));
  EXPECT_EQ(TempDir::Read(path), "via link");
  ASSERT_EQ(lstat(link.c_str(), &info), 0);
  EXPECT_TRUE(S_ISLNK(info.st_mode));

  ASSERT_TRUE(WriteFileAtomic(dir.File("zero").c_str(), nullptr, 0));
  EXPECT_TRUE(FileExists(dir.File("zero").c_str()));
  EXPECT_EQ(FolderEntries(dir.path()), (std::vector<std::string>{"a.txt", "link.txt", "zero"}));
}

TEST(File, FailedWritesLeaveTheOldFileAndNoTemporary) {
  TempDir dir;
  const std::string original = "[A]\r\nKey=old\r\n";
  std::string path = dir.Write("a.ini", original);

  {
    // The disk fills while the temporary is written.
    FileSizeLimit limit(64);
    ASSERT_TRUE(limit.ok());
    std::string big(4096, 'x');
    EXPECT_FALSE(WriteFileAtomic(path.c_str(), big.data(), big.size()));
    EXPECT_FALSE(ProfileWriteString("A", "Key", big.c_str(), path.c_str()));
    EXPECT_FALSE(ProfileWriteString("B", "Other", big.c_str(), path.c_str()));
  }
  EXPECT_EQ(TempDir::Read(path), original);
  EXPECT_EQ(FolderEntries(dir.path()), std::vector<std::string>{"a.ini"});

  // The rename cannot replace a folder: the temporary goes again.
  std::string folder = dir.File("sub");
  ASSERT_TRUE(MakeDirectories((folder + "/inner").c_str()));
  EXPECT_FALSE(WriteFileAtomic(folder.c_str(), "x", 1));
  EXPECT_FALSE(ProfileWriteString("A", "K", "v", folder.c_str()));
  EXPECT_EQ(FolderEntries(dir.path()), (std::vector<std::string>{"a.ini", "sub"}));
  EXPECT_EQ(FolderEntries(folder), std::vector<std::string>{"inner"});
}

TEST(File, ReadOnlyFolderAndUnreadableFile) {
  if (geteuid() == 0) GTEST_SKIP() << "permissions do not bind the superuser";
  TempDir dir;
  const std::string original = "[A]\nKey=old\n";
  std::string sub = dir.File("ro");
  ASSERT_TRUE(MakeDirectories(sub.c_str()));
  std::string path = dir.Write("ro/a.ini", original);
  ASSERT_EQ(chmod(sub.c_str(), 0555), 0);
  EXPECT_FALSE(ProfileWriteString("A", "Key", "new", path.c_str()));
  EXPECT_EQ(TempDir::Read(path), original);
  EXPECT_EQ(FolderEntries(sub), std::vector<std::string>{"a.ini"});
  chmod(sub.c_str(), 0755);

  // A file that cannot be read is not taken for an empty one and overwritten.
  ASSERT_EQ(chmod(path.c_str(), 0200), 0);
  EXPECT_FALSE(ProfileWriteString("B", "K", "v", path.c_str()));
  chmod(path.c_str(), 0644);
  EXPECT_EQ(TempDir::Read(path), original);
}

}  // namespace
}  // namespace fancy
