#include "effect_module.h"

#include <unistd.h>
#if defined(__GLIBC__)
#include <dlfcn.h>
#include <link.h>
#endif

#include <climits>

#include "frame/entry.h"
#include "frame/result_codes.h"

namespace fancy {

std::string DefaultModulePath() {
  char self[PATH_MAX];
  ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
  if (length <= 0) return "fancy.so";
  std::string path(self, size_t(length));
  size_t slash = path.find_last_of('/');
  return (slash == std::string::npos ? std::string(".") : path.substr(0, slash)) + "/fancy.so";
}

bool EffectModuleOpen(const std::string& path, EffectModule* module, std::string* error) {
  std::string loadError;
  if (!DynamicLibraryOpen(path.c_str(), &module->library, &loadError)) {
    *error = "cannot load the module " + path + ": " + loadError;
    return false;
  }
  module->entry1 = reinterpret_cast<PluginEntry>(DynamicLibrarySymbol(&module->library, "ENTRYPOINT1"));
  module->entry2 = reinterpret_cast<PluginEntry>(DynamicLibrarySymbol(&module->library, "ENTRYPOINT2"));
  module->resourceTable = DynamicLibrarySymbol(&module->library, "FancyResourceTable");
#if defined(__GLIBC__)
  // The symbol's size, so that a table smaller than its record is not read.
  Dl_info info;
  void* entry = nullptr;
  if (module->resourceTable && dladdr1(module->resourceTable, &info, &entry, RTLD_DL_SYMENT) &&
      entry)
    module->resourceTableSize = static_cast<const ElfW(Sym)*>(entry)->st_size;
#endif
  if (!module->entry1 || !module->entry2) {
    *error = "the module " + path + " does not export ENTRYPOINT1 and ENTRYPOINT2";
    DynamicLibraryClose(&module->library);
    return false;
  }
  module->loaded = true;
  return true;
}

bool EffectNeedsModule(int32_t filterId) {
  return filterId == kFilterBrushka || filterId == kFilterTessaris;
}

EffectCall EffectCaller(const EffectModule& module, int32_t filterId) {
  if (filterId == kFilterBrushka) return module.entry1;
  if (filterId == kFilterTessaris) return module.entry2;
  return [filterId](int16_t selector, FilterRecord* record, intptr_t* data, int16_t* result) {
    FilterEntry(selector, record, data, result, filterId);
  };
}

}  // namespace fancy
