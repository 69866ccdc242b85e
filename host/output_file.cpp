#include "output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/file.h"

namespace fancy {

namespace {

std::string FolderOf(const std::string& path) {
  size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

}  // namespace

bool CanWriteOutput(const std::string& path, std::string* error) {
  struct stat info;
  if (stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
    *error = "it is a folder";
    return false;
  }
  std::string probe = FolderOf(path) + "/.fancyhost-probe-XXXXXX";
  int fd = mkstemp(probe.data());
  if (fd < 0) {
    *error = std::strerror(errno);
    return false;
  }
  close(fd);
  unlink(probe.c_str());
  return true;
}

bool WriteOutput(const std::string& path, const std::vector<uint8_t>& bytes, std::string* error) {
  if (WriteFileAtomic(path.c_str(), bytes.data(), bytes.size())) return true;
  *error = "cannot write the file";
  return false;
}

}  // namespace fancy
