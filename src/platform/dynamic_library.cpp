#include "platform/dynamic_library.h"

#include <cstdio>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace fancy {

#ifdef _WIN32

bool DynamicLibraryOpen(const char* path, DynamicLibrary* lib, std::string* error) {
  if (!lib) return false;
  lib->handle = nullptr;
  if (!path || !path[0]) {
    if (error) *error = "no library named";
    return false;
  }
  HMODULE module = LoadLibraryA(path);
  if (!module) {
    if (error) {
      char text[512] = "";
      DWORD code = GetLastError();
      if (!FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                          code, 0, text, sizeof text, nullptr))
        snprintf(text, sizeof text, "error %lu", static_cast<unsigned long>(code));
      *error = text;
    }
    return false;
  }
  lib->handle = module;
  return true;
}

void* DynamicLibrarySymbol(const DynamicLibrary* lib, const char* name) {
  if (!lib || !lib->handle || !name) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(lib->handle), name));
}

void DynamicLibraryClose(DynamicLibrary* lib) {
  if (!lib || !lib->handle) return;
  FreeLibrary(static_cast<HMODULE>(lib->handle));
  lib->handle = nullptr;
}

#else

bool DynamicLibraryOpen(const char* path, DynamicLibrary* lib, std::string* error) {
  if (!lib) return false;
  lib->handle = nullptr;
  if (!path || !path[0]) {
    if (error) *error = "no library named";
    return false;
  }
  // RTLD_LOCAL: the module's symbols stay its own and cannot clash with the
  // host's or another module's.
  void* handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    if (error) {
      const char* text = dlerror();
      *error = text ? text : "cannot load library";
    }
    return false;
  }
  lib->handle = handle;
  return true;
}

void* DynamicLibrarySymbol(const DynamicLibrary* lib, const char* name) {
  if (!lib || !lib->handle || !name) return nullptr;
  return dlsym(lib->handle, name);
}

void DynamicLibraryClose(DynamicLibrary* lib) {
  if (!lib || !lib->handle) return;
  dlclose(lib->handle);
  lib->handle = nullptr;
}

#endif

}  // namespace fancy
