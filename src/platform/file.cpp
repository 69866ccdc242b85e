#include "platform/file.h"

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fancy {

namespace {

// Temporary names must differ between writers of the same file, in this
// process and in others.
std::atomic<unsigned> gTempCounter{0};

}  // namespace

bool FileExists(const char* path) {
  if (!path || !path[0]) return false;
  std::error_code ec;
  auto status = std::filesystem::status(path, ec);
  return !ec && std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

bool DirectoryExists(const char* path) {
  if (!path || !path[0]) return false;
  std::error_code ec;
  return std::filesystem::is_directory(path, ec);
}

bool MakeDirectories(const char* path) {
  if (!path || !path[0]) return false;
  std::error_code ec;
  std::filesystem::create_directories(path, ec);
  return DirectoryExists(path);
}

bool ReadWholeFile(const char* path, std::vector<uint8_t>& out, size_t maxBytes) {
  out.clear();
  if (!path || !path[0] || DirectoryExists(path)) return false;
  std::FILE* file = std::fopen(path, "rb");
  if (!file) return false;
  // Read in chunks up to one byte past the limit, so a file that grows while
  // being read is still held to it.
  uint8_t chunk[65536];
  bool ok = true;
  for (;;) {
    size_t got = std::fread(chunk, 1, sizeof chunk, file);
    if (got > 0) {
      if (out.size() + got > maxBytes) {
        ok = false;
        break;
      }
      out.insert(out.end(), chunk, chunk + got);
    }
    if (got < sizeof chunk) {
      if (std::ferror(file)) ok = false;
      break;
    }
  }
  std::fclose(file);
  if (!ok) out.clear();
  return ok;
}

#ifdef _WIN32

bool WriteFileAtomic(const char* path, const void* data, size_t size) {
  if (!path || !path[0] || (!data && size)) return false;
  std::string temp;
  HANDLE handle = INVALID_HANDLE_VALUE;
  for (int attempt = 0; attempt < 100 && handle == INVALID_HANDLE_VALUE; ++attempt) {
    temp = std::string(path) + "." + std::to_string(GetCurrentProcessId()) + "." +
           std::to_string(gTempCounter++) + ".tmp";
    handle = CreateFileA(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) return false;
  }
  if (handle == INVALID_HANDLE_VALUE) return false;

  const char* bytes = static_cast<const char*>(data);
  bool ok = true;
  while (ok && size > 0) {
    DWORD chunk = size > 0x40000000u ? 0x40000000u : static_cast<DWORD>(size);
    DWORD written = 0;
    ok = WriteFile(handle, bytes, chunk, &written, nullptr) && written > 0;
    bytes += written;
    size -= written;
  }
  ok = ok && FlushFileBuffers(handle);
  ok = CloseHandle(handle) && ok;
  ok = ok && MoveFileExA(temp.c_str(), path, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
  if (!ok) DeleteFileA(temp.c_str());
  return ok;
}

#else

namespace {

bool WriteAll(int fd, const uint8_t* bytes, size_t size) {
  while (size > 0) {
    ssize_t written = ::write(fd, bytes, size);
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    if (written == 0) return false;
    bytes += written;
    size -= static_cast<size_t>(written);
  }
  return true;
}

// Makes a finished rename durable: the folder's entry is on disk too.
void SyncDirectory(const std::string& dir) {
  int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

}  // namespace

bool WriteFileAtomic(const char* path, const void* data, size_t size) {
  if (!path || !path[0] || (!data && size)) return false;

  // A symbolic link stays a link: its target is the file that is replaced.
  std::string target = path;
  struct stat info;
  if (::lstat(path, &info) == 0 && S_ISLNK(info.st_mode)) {
    if (char* real = ::realpath(path, nullptr)) {
      target = real;
      std::free(real);
    }
  }
  bool replacing = ::stat(target.c_str(), &info) == 0;
  if (replacing && S_ISDIR(info.st_mode)) return false;

  size_t slash = target.rfind('/');
  std::string dir = slash == std::string::npos ? "." : target.substr(0, slash == 0 ? 1 : slash);
  std::string base = slash == std::string::npos ? target : target.substr(slash + 1);
  if (base.empty()) return false;
  // A hidden name beside the file; the base is shortened so that the
  // temporary's name stays within the folder's name limit.
  std::string prefix = dir + "/." + base.substr(0, 64) + ".";

  std::string temp;
  int fd = -1;
  for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
    temp = prefix + std::to_string(::getpid()) + "." + std::to_string(gTempCounter++) + ".tmp";
    fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST) return false;
  }
  if (fd < 0) return false;

  // The new file keeps the old one's permissions.
  if (replacing) ::fchmod(fd, info.st_mode & 07777);

  bool ok = WriteAll(fd, static_cast<const uint8_t*>(data), size);
  ok = ok && ::fsync(fd) == 0;
  ok = ::close(fd) == 0 && ok;
  ok = ok && ::rename(temp.c_str(), target.c_str()) == 0;
  if (!ok) {
    ::unlink(temp.c_str());
    return false;
  }
  SyncDirectory(dir);
  return true;
}

#endif

}  // namespace fancy
