#include "frame/module_handle.h"

#include "frame/block.h"
#include "frame/result_codes.h"

namespace fancy {

namespace {
int16_t gModuleHandleError = 0;
}

ModuleHandle ModuleHandleAlloc(int32_t size) {
  gModuleHandleError = kNoError;
  if (size < 0) return nullptr;
  auto* header = static_cast<ModuleHandleHeader*>(BlockAlloc(sizeof(ModuleHandleHeader)));
  void* data = header ? BlockAlloc(size) : nullptr;
  if (!header || !data) {
    gModuleHandleError = kErrOutOfMemory;
    return nullptr;
  }
  header->data = data;
  header->tag[0] = 'H';
  header->tag[1] = 'N';
  header->tag[2] = 'D';
  header->tag[3] = 'L';
  // The header's first word is the data pointer, so the header itself is the
  // pointer-to-pointer that the host keeps.
  return reinterpret_cast<ModuleHandle>(header);
}

void ModuleHandleFree(ModuleHandle handle) {
  gModuleHandleError = kNoError;
  if (!handle) {
    gModuleHandleError = kErrNilHandle;
    return;
  }
  auto* header = reinterpret_cast<ModuleHandleHeader*>(handle);
  BlockFree(header->data);
  BlockFree(header);
}

int16_t ModuleHandleLastError() { return gModuleHandleError; }

}  // namespace fancy
