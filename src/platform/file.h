// Small file helpers over the operating system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace fancy {

bool FileExists(const char* path);
bool DirectoryExists(const char* path);
// Creates the directory and its parents; true if it exists afterwards.
bool MakeDirectories(const char* path);

// A C file closed when its owner goes; a null file is left alone.
struct FileCloser {
  void operator()(std::FILE* file) const {
    if (file) std::fclose(file);
  }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// Reads a whole file; false if it cannot be read or is larger than maxBytes.
bool ReadWholeFile(const char* path, std::vector<uint8_t>& out, size_t maxBytes = 1u << 30);

// Writes to a temporary file beside path, flushes it to disk and renames it
// over path. On failure path is left as it was and the temporary is removed.
bool WriteFileAtomic(const char* path, const void* data, size_t size);

}  // namespace fancy
