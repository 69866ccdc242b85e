// ModuleHandle: the two-level block behind the host's `parameters` field. The
// host sees a pointer to a pointer; the first word of the header points to the
// data block, the second holds the tag "HNDL" (never tested: the module only
// dereferences the first word).
#pragma once

#include <cstdint>

namespace fancy {

struct ModuleHandleHeader {
  void* data;
  char tag[4];  // 'H', 'N', 'D', 'L'
};

using ModuleHandle = char**;

// A handle to a zeroed data block of size bytes. Clears the last-error word
// first. A negative size gives null with no error; a failed allocation sets
// the last-error word to -108 and gives null. A header obtained before its
// data block failed is not given back: a small loss on a path that only a
// system out of memory takes.
ModuleHandle ModuleHandleAlloc(int32_t size);

// Frees the data block, then the header. Clears the last-error word first; a
// null handle sets it to -109 and does nothing else.
void ModuleHandleFree(ModuleHandle handle);

// The data block of a handle; null for a null handle.
inline void* ModuleHandleData(ModuleHandle handle) {
  return handle ? static_cast<void*>(*handle) : nullptr;
}

// The last-error word of the handle calls: 0, -108 or -109 (as 16-bit values,
// 65428 and 65427). Nobody in the module reads it; it is kept for its contract.
int16_t ModuleHandleLastError();

}  // namespace fancy
