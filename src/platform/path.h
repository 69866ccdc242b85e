// Path helpers. kPathSeparator is the platform's; where the system's rules
// say "\" they mean this separator.
#pragma once

#include <cstddef>
#include <string>

namespace fancy {

#ifdef _WIN32
constexpr char kPathSeparator = '\\';
#else
constexpr char kPathSeparator = '/';
#endif

constexpr size_t kMaxPath = 260;
constexpr size_t kMaxDrive = 3;
constexpr size_t kMaxDir = 256;
constexpr size_t kMaxFname = 256;
constexpr size_t kMaxExt = 256;

// _splitpath: drive ("C:" on Windows, always "" elsewhere), directory with its
// trailing separator, file name without extension, extension with its dot.
// Any output may be null; each is cut to its kMax size minus 1.
void SplitPath(const char* path, char* drive, char* dir, char* fname, char* ext);

bool IsPathSeparator(char c);
bool IsAbsolutePath(const char* path);
// dir + separator (if dir lacks one) + name; an empty dir gives name.
std::string JoinPath(const std::string& dir, const std::string& name);
// Appends a separator to buffer (of capacity size) if it has none; false if no
// room. An empty buffer stays empty (it names no folder).
bool AddTrailingSeparator(char* buffer, size_t size);

}  // namespace fancy
