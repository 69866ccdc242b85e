#include "config/memblock.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace fancy {

// The handle is the record; only data moves when the block is resized.
struct MemBlock {
  void* data;
  size_t size;
};

namespace {

// Larger requests fail at once rather than asking the allocator for more than
// an address space can give.
constexpr size_t kMaxBlockBytes =
    sizeof(void*) >= 8 ? (size_t{1} << 40) : size_t{0x7FFFFFFF};

}  // namespace

MemHandle MemBlockAlloc(size_t size) {
  if (size > kMaxBlockBytes) return nullptr;
  auto* block = static_cast<MemBlock*>(std::malloc(sizeof(MemBlock)));
  if (!block) return nullptr;
  // An empty block still has an address, so that locking it succeeds.
  block->data = std::calloc(size ? size : 1, 1);
  if (!block->data) {
    std::free(block);
    return nullptr;
  }
  block->size = size;
  return block;
}

MemHandle MemBlockResize(MemHandle handle, size_t size) {
  if (!handle || size > kMaxBlockBytes) return nullptr;
  void* data = std::realloc(handle->data, size ? size : 1);
  if (!data) return nullptr;  // the block stays as it was
  // Grown bytes are zeroed, as the block was at its allocation.
  if (size > handle->size)
    std::memset(static_cast<uint8_t*>(data) + handle->size, 0, size - handle->size);
  handle->data = data;
  handle->size = size;
  return handle;
}

void* MemBlockLock(MemHandle handle) { return handle ? handle->data : nullptr; }

void MemBlockUnlock(MemHandle) {}

void MemBlockFree(MemHandle handle) {
  if (!handle) return;
  std::free(handle->data);
  std::free(handle);
}

}  // namespace fancy
