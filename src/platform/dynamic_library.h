// Loading a dynamic library and finding its symbols (dlopen / LoadLibrary).
#pragma once

#include <string>

namespace fancy {

struct DynamicLibrary {
  void* handle;
};

// Returns false and fills error with the system's text when it cannot load.
bool DynamicLibraryOpen(const char* path, DynamicLibrary* lib, std::string* error);
void* DynamicLibrarySymbol(const DynamicLibrary* lib, const char* name);
void DynamicLibraryClose(DynamicLibrary* lib);

}  // namespace fancy
