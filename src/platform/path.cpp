#include "platform/path.h"

#include <cstring>

namespace fancy {

namespace {

// Copies [begin, end) into out, cut to capacity - 1 characters.
void CopyPart(const char* begin, const char* end, char* out, size_t capacity) {
  if (!out) return;
  size_t length = static_cast<size_t>(end - begin);
  if (length > capacity - 1) length = capacity - 1;
  std::memcpy(out, begin, length);
  out[length] = '\0';
}

}  // namespace

bool IsPathSeparator(char c) {
#ifdef _WIN32
  return c == '\\' || c == '/';
#else
  return c == '/';
#endif
}

bool IsAbsolutePath(const char* path) {
  if (!path || !path[0]) return false;
  if (IsPathSeparator(path[0])) return true;
#ifdef _WIN32
  // "C:" names a drive; a path with a drive cannot hang under another folder.
  if (path[1] == ':') return true;
#endif
  return false;
}

void SplitPath(const char* path, char* drive, char* dir, char* fname, char* ext) {
  if (!path) path = "";
  const char* p = path;

  const char* driveEnd = p;
#ifdef _WIN32
  if (p[0] && p[1] == ':') driveEnd = p + 2;
#endif
  CopyPart(p, driveEnd, drive, kMaxDrive);
  p = driveEnd;

  // The directory runs to the last separator (included); the extension starts
  // at the last dot after it.
  const char* lastSeparator = nullptr;
  const char* lastDot = nullptr;
  const char* end = p;
  for (; *end; ++end) {
    if (IsPathSeparator(*end)) {
      lastSeparator = end;
      lastDot = nullptr;
    } else if (*end == '.') {
      lastDot = end;
    }
  }

  const char* nameStart = lastSeparator ? lastSeparator + 1 : p;
  CopyPart(p, nameStart, dir, kMaxDir);
  const char* nameEnd = lastDot ? lastDot : end;
  CopyPart(nameStart, nameEnd, fname, kMaxFname);
  CopyPart(nameEnd, end, ext, kMaxExt);
}

std::string JoinPath(const std::string& dir, const std::string& name) {
  if (dir.empty()) return name;
  std::string out = dir;
  if (!IsPathSeparator(out.back())) out += kPathSeparator;
  out += name;
  return out;
}

bool AddTrailingSeparator(char* buffer, size_t size) {
  if (!buffer || size == 0) return false;
  size_t length = strnlen(buffer, size);
  if (length == size) return false;  // not terminated within its capacity
  if (length == 0 || IsPathSeparator(buffer[length - 1])) return true;
  if (length + 2 > size) return false;
  buffer[length] = kPathSeparator;
  buffer[length + 1] = '\0';
  return true;
}

}  // namespace fancy
