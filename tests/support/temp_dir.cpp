#include "support/temp_dir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fancy::testing {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "fancy-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

std::string TempDir::File(const std::string& name) const { return path_ + "/" + name; }

std::string TempDir::Write(const std::string& name, const std::string& text) const {
  std::string full = File(name);
  std::filesystem::create_directories(std::filesystem::path(full).parent_path());
  std::ofstream out(full, std::ios::binary);
  out << text;
  return full;
}

std::string TempDir::Read(const std::string& fullPath) {
  std::ifstream in(fullPath, std::ios::binary);
  if (!in) return "";
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

}  // namespace fancy::testing
