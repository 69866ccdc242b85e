// A temporary folder for one test, removed with everything in it at the end.
#pragma once

#include <string>

namespace fancy::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }
  // path() + "/" + name
  std::string File(const std::string& name) const;
  // Writes text to path() + "/" + name and returns the full path.
  std::string Write(const std::string& name, const std::string& text) const;
  // Reads a whole file; "" if missing.
  static std::string Read(const std::string& fullPath);

 private:
  std::string path_;
};

}  // namespace fancy::testing
